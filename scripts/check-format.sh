#!/bin/sh
# Fails when a source file is not formatted as .clang-format says; with --fix it formats them.
set -eu
cd "$(dirname "$0")/.."
case "${1:-}" in
    --fix) mode="-i" ;;
    "") mode="--dry-run -Werror" ;;
    *)
        echo "usage: scripts/check-format.sh [--fix]" >&2
        exit 2
        ;;
esac
# The mode is one or two words.
# shellcheck disable=SC2086
git ls-files -z '*.h' '*.cpp' '*.h.in' | grep -zv '\.in$' | xargs -0 clang-format $mode
