#!/bin/sh
# Builds the benchmarks, runs them all and prints a table of what was reached: docs/performance.md says how it is
# measured. Takes about eight minutes on a machine that has nothing else to do, which is how the figures count.
#   bench.sh [--quick] [--accounts COUNT]   fewer repetitions; accounts for the peak of memory; ends with 1 when a goal
#                                           is missed
set -eu
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh libbenchmark-dev curl
cmake -S . -B build/bench -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_TESTING=OFF -DCORVANE_BUILD_BENCHMARKS=ON \
    >&2
cmake --build build/bench --target corvane_benchmarks corvane_bench_programs >&2
exec python3 bench/compare build/bench "$@"
