#!/bin/sh
# Looks through the sources with clang-tidy as .clang-tidy says, and ends with 0 when there is nothing to report. It reads the
# sources as the build folder compiles them and builds nothing but what is generated. Takes minutes.
#   check-tidy.sh [FILE...]   of src; by default all
set -eu
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh clang-tidy

[ "$#" -gt 0 ] || set -- $(git ls-files 'src/*.cpp')
build=build/tidy
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DBUILD_TESTING=OFF >/dev/null
# The compiler of the build folder may know warnings that Clang does not.
printf '%s\0' "$@" | xargs -0 -n 1 -P "$(nproc)" \
    clang-tidy --quiet -p "$build" --extra-arg=-Wno-unknown-warning-option
