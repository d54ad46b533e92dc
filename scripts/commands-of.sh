#!/bin/sh
# Prints the commands of a document, as they are written: its blocks between "```sh" and "```" and its indented ones, with a
# heading's text as the second argument the indented ones below that heading.
#   commands-of.sh DOCUMENT [HEADING]
set -eu
case "$#" in
    1) awk '/^ *```sh$/ { shell = 1; next }
           /^ *```/ { if (shell) shell = 0; else other = !other; next }
           shell || (!other && /^    /) { sub(/^ +/, ""); print }' "$1" ;;
    2) awk -v heading="$2" '/^#/ { text = $0; sub(/^#+ /, "", text); shows = text == heading; next }
           shows && /^    / { sub(/^ +/, ""); print }' "$1" ;;
    *)
        echo "usage: commands-of.sh DOCUMENT [HEADING]" >&2
        exit 2
        ;;
esac
