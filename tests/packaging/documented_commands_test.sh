#!/bin/sh
# Sees to it that the commands, scripts, presets and files that the documents name are there.
#   documented_commands_test.sh SOURCE_FOLDER
set -eu
cd "$1"
status=0
missing() {
    echo "$1: there is no $2" >&2
    status=1
}

scripts/check-documents.sh --list >/dev/null || status=1
for document in README.md CONTRIBUTING.md docs/*.md; do
    for script in $(grep -oE '(^|[ `(])(\./|scripts/)[a-z-]+\.(sh|py)' "$document" | tr -d ' `(' | sort -u); do
        [ -x "$script" ] || missing "$document" "$script"
    done
    for preset in $(sed -n 's/.*--preset \([a-z]*\).*/\1/p' "$document" | sort -u); do
        grep -q "\"name\": \"$preset\"" CMakePresets.json || missing "$document" "preset $preset"
    done
    for link in $(grep -oE '\]\([^)]+\)' "$document" | sed 's/^](//; s/)$//; s/#.*//' | sort -u); do
        case "$link" in http* | "") continue ;; esac
        [ -e "$(dirname "$document")/$link" ] || missing "$document" "$link"
    done
done
exit "$status"
