#!/bin/sh
# Measures how much of the logic the tests cover, and fails below 95 % of the lines or 90 % of the branches. The report is
# build/coverage/report.txt, with the lines that are not covered, and build/coverage/index.html.
#
# The logic is what has no Qt in it, in the build without Qt. Two of its folders do not count: the demo service and the doubles in
# memory are tools of the tests, and would only make the figures look better. Branches that only an exception takes, and those of
# lines without code, are left out: nearly every call of the standard library has one for the case that memory runs out.
# What ends the process with abort() or a signal writes no figures, so a test of that counts for nothing here.
set -eu
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh gcovr

build=build/coverage
# Counted atomically: the logic has threads.
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCORVANE_BUILD_DESKTOP=OFF \
    -DCMAKE_CXX_FLAGS="--coverage -fno-inline -fprofile-update=atomic" \
    -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache || true)" >/dev/null
cmake --build "$build"
find "$build" -name '*.gcda' -delete
ctest --test-dir "$build" --output-on-failure --no-tests=error --parallel "$(nproc)"
gcovr --root . --filter src/ --exclude src/demo_service/ --exclude src/platform/memory/ --exclude-throw-branches \
    --exclude-unreachable-branches --txt "$build/report.txt" --html-details "$build/index.html" --print-summary \
    --fail-under-line 95 --fail-under-branch 90 "$build"
