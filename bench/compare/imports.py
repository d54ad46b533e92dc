"""One import by the program, from its start to its end."""

import dataclasses
import subprocess

import settings
from processes import Cost, Measured
from surroundings import Home, now

BUS_NAME = "com.quessartolvinger.Corvane"
CENTER_PATH = "/com/quessartolvinger/DistributedNotificationCenter"
CENTER = "com.quessartolvinger.DistributedNotificationCenter"
FINISHED = "reportUpdateViewControllerDidFinishDistributedNotification"


@dataclasses.dataclass
class Import:
    cost: Cost  # of the whole program
    time: float  # from the request to the finish notification, seconds
    stretches: list  # (wall, CPU) of the main thread's longer stretches of work since the request, milliseconds


def read_stretches(path, begin):
    if not path.exists():
        return []
    lines = (map(float, line.split()) for line in path.read_text().splitlines())
    return [(wall, cpu) for start, wall, cpu in lines if start >= begin * 1000]


def run_import(program, scratch, account_count=1):
    with Home(scratch) as home:
        settings.write(home.settings_file, account_count)
        stretches = home.path / "stretches"
        environment = {**home.environment, "CORVANE_BENCH_STRETCHES": str(stretches)}
        with open(home.path / "log", "w", encoding="utf-8") as log:
            monitor = subprocess.Popen(
                ["gdbus", "monitor", "--session", "--dest", BUS_NAME],
                env=home.environment,
                stdout=subprocess.PIPE,
                text=True,
            )
            running = Measured([program], environment, log)
            subprocess.run(
                ["gdbus", "wait", "--session", "--timeout", "20", BUS_NAME], env=home.environment, check=True
            )
            begin = now()
            subprocess.run(
                ["gdbus", "emit", "--session", "--object-path", CENTER_PATH,
                 "--signal", CENTER + ".kNotificationCorvaneReloadData", "'{}'"],
                env=home.environment,
                check=True,
            )  # fmt: skip
            for line in monitor.stdout:
                if FINISHED in line:
                    break
            time = now() - begin
            cost = running.end()
            monitor.terminate()
            monitor.wait()
        expected = 447 * account_count
        if len(home.reports()) < expected * 0.98:  # days of one month or year share a file
            raise SystemExit(f"only {len(home.reports())} of {expected} reports came")
        return Import(cost, time, read_stretches(stretches, begin))
