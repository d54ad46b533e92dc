#!/bin/sh
# Builds the Debian package out of the last commit, running the tests on the way, and lets lintian judge it.
#   scripts/package.sh [FOLDER]    puts the files into FOLDER, by default build/package
# CORVANE_CMAKE_ARGUMENTS in the environment goes to CMake, see docs/packaging.md for the settings; DEB_BUILD_OPTIONS as ever.
set -eu
cd "$(dirname "$0")/.."
case "${1:-}" in
    -*)
        echo "usage: scripts/package.sh [FOLDER]" >&2
        exit 2
        ;;
esac
target=${1:-build/package}
scripts/install-package-tools.sh

version=$(dpkg-parsechangelog -l packaging/debian/changelog -S Version)
upstream=${version%-*}
# Always the same folder, which lets a compiler cache help.
work=$PWD/build/package-work
rm -rf "$work"
mkdir -p "$work"

git archive --prefix="corvane-$upstream/" -o "$work/corvane_$upstream.orig.tar.gz" HEAD
tar -xf "$work/corvane_$upstream.orig.tar.gz" -C "$work"
cp -a packaging/debian "$work/corvane-$upstream/debian"
(cd "$work/corvane-$upstream" && dpkg-buildpackage -us -uc)
(cd "$work" && lintian --fail-on error,warning "corvane_${version}_$(dpkg --print-architecture).changes")

mkdir -p "$target"
rm -f "$target"/corvane_* "$target"/corvane-dbgsym_*
find "$work" -maxdepth 1 -type f -exec cp -t "$target" {} +
rm -rf "$work"
ls "$target"/*.deb
