#!/bin/sh
# Brings po/ up to the sources: the catalogue of all texts, po/corvane.pot, and with it every translation. New and changed
# texts are left for a translator: empty, or marked "fuzzy" beside a former text. The test "translations" tells which.
set -eu
cd "$(dirname "$0")/.."
new=$(mktemp)
trap 'rm -f "$new"' EXIT
scripts/translations/extract.py >"$new"
cat "$new" >po/corvane.pot
while read -r language; do
    msgmerge --quiet --previous --no-wrap -o "$new" "po/$language.po" po/corvane.pot
    msgattrib --no-obsolete --no-wrap -o "po/$language.po" "$new"
done <po/LINGUAS
