#!/bin/sh
# Measures how much of the logic the tests of the logic cover, and fails below 95 % of the lines or 90 % of the branches.
# Branches that only an exception of the standard library takes are left out: the logic throws nothing. The report is
# build/coverage/report.txt, with the lines that are not covered, and build/coverage/index.html.
set -eu
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh gcovr

build=build/coverage
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCORVANE_BUILD_DESKTOP=OFF \
    -DCMAKE_CXX_FLAGS="--coverage -fno-inline" -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache || true)" >/dev/null
cmake --build "$build"
find "$build" -name '*.gcda' -delete
ctest --test-dir "$build" --output-on-failure --no-tests=error
gcovr --root . --filter src/ --exclude src/demo_service/ --exclude src/platform/memory/ --exclude-throw-branches \
    --exclude-unreachable-branches --txt "$build/report.txt" --html-details "$build/index.html" --print-summary \
    --fail-under-line 95 --fail-under-branch 90 "$build"
