"""Compares Corvane with what a user would do instead, and with its limits.

    python3 bench/compare BUILD [--quick] [--accounts COUNT]    BUILD: a build folder with CORVANE_BUILD_BENCHMARKS
"""

import argparse
import sys

import downloads
import functions
import idle
import imports
import starts
from builds import Build
from surroundings import Scratch, Screen, Service
from table import HEAD, Row, median, megabytes, milliseconds, ratio

ANSWER = 0.050  # seconds that the service takes for an answer
LONGEST_JOB = 366  # reports
DELAYS = 1 + 2  # seconds: before the run, and of each delivery
BODY_SIZE = 5000  # bytes of a packed report, nearly
PACKING = 3.4  # how much smaller a made-up report gets


def progress(text):
    print(f"{text} ...", file=sys.stderr, flush=True)


def import_rows(build, scratch, repetitions):
    progress("imports from a service that answers at once, and the same with curl")
    ours, theirs, loops, stretches = [], [], [], []
    with Service(build):
        for _ in range(repetitions):
            theirs.append(downloads.four_curls(build, scratch).cpu)
            ours.append(imports.run_import(build.program, scratch).cost.cpu)
            observed = imports.run_import(build.observed_program, scratch)
            stretches.append(max(wall for wall, _ in observed.stretches))
            if len(loops) < 2:
                loops.append(downloads.shell_loop(build, scratch).cpu)
    yield ratio("CPU of a first import, against four curl and gunzip", ours, theirs, 1.0, milliseconds)
    loop = median(loops)
    yield Row(
        "the same, against a shell loop",
        milliseconds(median(ours)),
        milliseconds(loop),
        loop / median(ours),
        10,
        " times less",
        at_least=True,
    )
    stretch = median(stretches)
    yield Row("main thread's longest stretch in an import", f"{stretch:.1f} ms", "", stretch, 50, " ms")


def wall_row(build, scratch, repetitions):
    progress(f"imports from a service that takes {milliseconds(ANSWER)} an answer")
    with Service(build, latency=int(ANSWER * 1000)):
        times = [imports.run_import(build.program, scratch).time for _ in range(repetitions)]
    limit = LONGEST_JOB * ANSWER + DELAYS
    return Row(
        "wall time of a first import, 50 ms an answer",
        f"{median(times):.2f} s",
        f"{limit:.2f} s",
        median(times) / limit,
        1.05,
    )


def start_rows(build, scratch, repetitions):
    progress("starts")
    with Screen() as screen:
        ours, theirs = [], []
        for _ in range(repetitions * 4):
            theirs.append(starts.start(build.empty_window, screen, scratch))
            ours.append(starts.start(build.start, screen, scratch))
    what = "from start to window, against an empty window: "
    yield ratio(what + "time", [c.wall for c in ours], [c.wall for c in theirs], 2.5, milliseconds)
    yield ratio(what + "memory", [c.memory for c in ours], [c.memory for c in theirs], 1.5, megabytes)


def memory_row(build, scratch, accounts):
    progress(f"an import of {accounts} accounts")
    with Service(build, report_size=int(BODY_SIZE * PACKING)):
        memory = imports.run_import(build.program, scratch, accounts).cost.memory
    return Row(f"peak memory at {accounts} accounts, 5 KB a body", megabytes(memory), "", memory, 300, " MB")


def idle_rows(build, scratch, seconds):
    progress(f"{seconds} s of doing nothing")
    with Screen() as screen:
        wake_ups, cpu = idle.watch(build.program, screen, scratch, seconds)
    yield Row(f"wake-ups while idle, {seconds} s", str(wake_ups), "", wake_ups, 0)
    yield Row(f"CPU while idle, {seconds} s", milliseconds(cpu), "", cpu, 0, " s")


def all_rows(build, is_quick, accounts):
    repetitions = 2 if is_quick else 5
    with Scratch(build.folder / "bench/scratch") as scratch:
        yield from start_rows(build, scratch, repetitions)
        yield from import_rows(build, scratch, repetitions)
        yield wall_row(build, scratch, 1 if is_quick else repetitions)
        yield memory_row(build, scratch, accounts)
        yield from idle_rows(build, scratch, 10 if is_quick else 60)
    progress("functions")
    yield from functions.rows(build, repetitions)


def main():
    parser = argparse.ArgumentParser(prog="bench.sh")
    parser.add_argument("build", help=argparse.SUPPRESS)
    parser.add_argument("--quick", action="store_true", help="fewer repetitions")
    parser.add_argument("--accounts", type=int, default=100, help="for the peak of memory; 100 by default")
    arguments = parser.parse_args()
    print(HEAD)
    misses = 0
    for row in all_rows(Build(arguments.build), arguments.quick, arguments.accounts):
        print(row.line(), flush=True)
        misses += not row.passes()
    sys.exit(1 if misses else 0)


main()
