#!/bin/sh
# The promises of docs/reliability.md in full: as many rounds as they speak of, in an optimised build. Takes minutes.
#   reliability.sh [TEST...]   of the reliability tests; by default all
set -eu
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh
[ "$#" -gt 0 ] || set -- reliability_files_test reliability_settings_test reliability_engine_test reliability_service_test \
    reliability_program_test

build=build/reliability
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCORVANE_WARNINGS_AS_ERRORS=ON -DCORVANE_BUILD_DESKTOP=ON >/dev/null
cmake --build "$build" --target "$@"
export CORVANE_TEST_ALL_ROUNDS=1
for test in "$@"; do
    echo "== $test"
    "$build"/tests/*/"$test"
done
