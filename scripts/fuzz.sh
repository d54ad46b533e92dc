#!/bin/sh
# Runs the fuzz targets one after the other, each from its corpus in fuzz/corpus on. A finding is an error; the input stands in
# build/fuzz/findings then, and belongs into the target's corpus as "found-..." once it is mended. New inputs of the run are
# gathered in build/fuzz/gathered and never change the corpus.
#   fuzz.sh [SECONDS] [TARGET...]   by default 60 seconds for each of all targets
set -eu
cd "$(dirname "$0")/.."
seconds=${1:-60}
[ "$#" -eq 0 ] || shift
case "$seconds" in
    "" | *[!0-9]*)
        echo "usage: scripts/fuzz.sh [SECONDS] [TARGET...]" >&2
        exit 2
        ;;
esac
scripts/install-dependencies.sh clang libclang-rt-14-dev

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
[ "$#" -gt 0 ] || set -- $(ls fuzz/corpus)

# The proxy of the machine has no part in this.
unset http_proxy https_proxy HTTPS_PROXY all_proxy ALL_PROXY || true
export UBSAN_OPTIONS=print_stacktrace=1
# What was freed is kept for a while to be watched; it must not count as the target's own use of memory.
export ASAN_OPTIONS=quarantine_size_mb=16
status=0
for target in "$@"; do
    gathered=build/fuzz/gathered/$target
    findings=build/fuzz/findings/$target
    mkdir -p "$gathered" "$findings"
    # The time limit is by the wall clock: the machine may have other work to do.
    longest=4096
    memory=256  # MB, with what libFuzzer and the sanitizers take themselves
    dictionary=""
    [ ! -f "fuzz/dictionaries/$target.dict" ] || dictionary=-dict=fuzz/dictionaries/$target.dict
    echo "== $target: $seconds s"
    # shellcheck disable=SC2086
    "build/fuzz/fuzz/${target}_fuzzer" -max_total_time="$seconds" -max_len="$longest" -timeout=60 -rss_limit_mb="$memory" \
        -malloc_limit_mb=64 -print_final_stats=1 -verbosity=0 -artifact_prefix="$findings/" $dictionary \
        "$gathered" "fuzz/corpus/$target" 2>"$findings/log" || {
        echo "fuzz.sh: $target has a finding:" >&2
        tail -n 40 "$findings/log" >&2
        status=1
    }
    grep -E 'number_of_executed_units|peak_rss_mb' "$findings/log" || true
done
exit $status
