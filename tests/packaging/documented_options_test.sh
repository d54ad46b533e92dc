#!/bin/sh
# The options that corvane-import names in its help are those of its manual page and of each completion.
#   documented_options_test.sh PACKAGING CORVANE_IMPORT
set -eu
packaging=$1
corvane_import=$2

options_in_help() { "$corvane_import" --help | grep -o -e '--[a-z][a-z-]*' | sort -u; }
options_in_manual() { sed -n 's/^\.It.*Fl Fl \([a-z-]*\).*/--\1/p' "$packaging/man/corvane-import.1" | sort -u; }
options_in_completion() { grep -o -e '--[a-z][a-z-]*' "$1" | sort -u; }
options_in_fish() { sed -n 's/.* -l \([a-z-]*\).*/--\1/p' "$packaging/completions/corvane-import.fish" | sort -u; }

status=0
compare() {
    if [ "$2" != "$expected" ]; then
        printf '%s has other options than the help.\nThe help:\n%s\n%s:\n%s\n' "$1" "$expected" "$1" "$2" >&2
        status=1
    fi
}

expected=$(options_in_help)
[ -n "$expected" ] || { echo "The help names no options." >&2; exit 1; }
compare "the manual page" "$(options_in_manual)"
compare "bash" "$(options_in_completion "$packaging/completions/corvane-import.bash")"
compare "zsh" "$(options_in_completion "$packaging/completions/_corvane-import")"
compare "fish" "$(options_in_fish)"
exit "$status"
