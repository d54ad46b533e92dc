"""The rows that come from the benchmarks of functions."""

import json
import subprocess
import sys

from table import Row


def medians(build, repetitions):
    """CPU seconds by name; real or manual time where the benchmark says so."""
    output = subprocess.run(
        [
            build.functions,
            f"--benchmark_repetitions={repetitions}",
            "--benchmark_enable_random_interleaving=true",
            "--benchmark_report_aggregates_only=true",
            "--benchmark_format=json",
        ],
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        check=True,
    ).stdout
    unit = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
    times = {}
    for each in json.loads(output)["benchmarks"]:
        if each["aggregate_name"] == "median":
            name = each["run_name"]
            key = "real_time" if "manual_time" in name else "cpu_time"
            times[name.split("/iterations")[0].removesuffix("/real_time")] = each[key] * unit[each["time_unit"]]
    return times


def microseconds(seconds):
    return f"{seconds * 1e6:.4g} µs"


def rows(build, repetitions):
    times = medians(build, repetitions)
    for name, size in (("5000", "5 KB"), ("500000", "500 KB"), ("50000000", "50 MB")):
        ours, theirs = times["unpack/" + name], times["unpackInOneCall/" + name]
        yield Row(f"unpack {size}, against one inflate", microseconds(ours), microseconds(theirs), ours / theirs, 1.1)
    few, many = times["costOfReport/10"], times["costOfReport/1000"]
    yield Row(
        "one report at 1,000 accounts, against 10", microseconds(many), microseconds(few), many / few, 1.2
    )
    print("\nCPU of functions:", file=sys.stderr)
    for name, time in times.items():
        print(f"  {name:32}{microseconds(time)}", file=sys.stderr)
