#!/bin/sh
# Builds and tests the last commit out of a source archive: with GCC and Clang, with Ninja and Make, and the logic without Qt.
#   scripts/build-matrix.sh [COMBINATION...]   of gcc-ninja gcc-make clang-ninja clang-make logic; by default all
set -eu
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh clang make

[ "$#" -gt 0 ] || set -- gcc-ninja gcc-make clang-ninja clang-make logic
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' INT TERM
git archive --prefix=source/ HEAD | tar -x -C "$work"

for combination in "$@"; do
    compiler=g++
    generator=Ninja
    desktop=ON
    case "$combination" in
        gcc-ninja) ;;
        gcc-make) generator="Unix Makefiles" ;;
        clang-ninja) compiler=clang++ ;;
        clang-make)
            compiler=clang++
            generator="Unix Makefiles"
            ;;
        logic) desktop=OFF ;;
        *)
            echo "build-matrix.sh: there is no combination $combination" >&2
            exit 2
            ;;
    esac
    echo "== $combination"
    build=$work/$combination
    without_qt=""
    # What finds Qt all the same does not find it now.
    [ "$desktop" = ON ] || without_qt=-DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON
    cmake -S "$work/source" -B "$build" -G "$generator" -DCMAKE_CXX_COMPILER="$compiler" -DCORVANE_WARNINGS_AS_ERRORS=ON \
        -DCORVANE_BUILD_DESKTOP="$desktop" $without_qt
    cmake --build "$build" --parallel "$(nproc)"
    ctest --test-dir "$build" --output-on-failure --no-tests=error
    rm -rf "$build"
done
