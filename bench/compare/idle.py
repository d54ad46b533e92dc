"""What the program does while nobody asks for anything."""

import os
import pathlib
import signal
import subprocess
import time

import settings
from imports import BUS_NAME
from surroundings import Home

# Seconds. What a start leaves behind, such as threads of the toolkit with nothing to do, ends within thirty.
SETTLING_TIME = 35


def threads(pid):
    return pathlib.Path(f"/proc/{pid}/task").iterdir()


def switches(pid):
    """How often each thread of the process has waited for something, and so been woken up."""
    counts = {}
    for thread in threads(pid):
        for line in (thread / "status").read_text().splitlines():
            if line.startswith("voluntary_ctxt_switches"):
                counts[thread.name] = int(line.split()[1])
    return counts


def cpu_ticks(pid):
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
    return int(fields[11]) + int(fields[12])


def watch(program, screen, scratch, seconds):
    """Wake-ups and CPU seconds of the program with its settings window on the screen, in so many seconds."""
    with Home(scratch) as home:
        settings.write(home.settings_file, 1)
        environment = {**home.environment, "QT_QPA_PLATFORM": "xcb", "DISPLAY": screen.name}
        process = subprocess.Popen([program], env=environment, stderr=subprocess.DEVNULL)
        subprocess.run(
            ["gdbus", "wait", "--session", "--timeout", "20", BUS_NAME], env=home.environment, check=True
        )
        time.sleep(SETTLING_TIME)
        before = switches(process.pid), cpu_ticks(process.pid)
        time.sleep(seconds)
        after = switches(process.pid), cpu_ticks(process.pid)
        process.send_signal(signal.SIGTERM)
        process.wait()
        # A thread that ended meanwhile did so once, which is no wake-up that goes on.
        wake_ups = sum(count - before[0].get(thread, 0) for thread, count in after[0].items())
        return wake_ups, (after[1] - before[1]) / os.sysconf("SC_CLK_TCK")
