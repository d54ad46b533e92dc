#!/bin/sh
# The newest release of each list of changes is the version that is built.
#   documented_version_test.sh SOURCE VERSION
set -eu
source=$1
version=$2

status=0
compare() {
    if [ "$2" != "$version" ]; then
        echo "$1 has version '$2', not $version." >&2
        status=1
    fi
}

compare CHANGELOG.md "$(sed -n 's/^## \([0-9.]*\).*/\1/p' "$source/CHANGELOG.md" | head -n 1)"
compare "the AppStream metadata" \
    "$(sed -n 's/.*<release version="\([^"]*\)".*/\1/p' "$source"/packaging/*.metainfo.xml | head -n 1)"
compare "the package's changelog" \
    "$(sed -n '1s/^corvane (\(.*\)-[^-]*) .*/\1/p' "$source/packaging/debian/changelog")"
exit "$status"
