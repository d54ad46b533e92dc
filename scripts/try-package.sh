#!/bin/sh
# Tries the package as a user would, on a Debian 12 of its own in a folder: install with apt, start from the menu entry,
# import from a demo service that stands in for the real one, run the commands of the documents, remove, and look for
# anything left behind. Needs root, and Debian's archive. Nothing reaches the real report service: what runs has no network
# but the loopback.
#   scripts/try-package.sh PACKAGE_FOLDER [SYSTEM_FOLDER]
# PACKAGE_FOLDER is what scripts/package.sh made. SYSTEM_FOLDER is a Debian 12 made by debootstrap to start from; without
# one, one is made.
set -eu
cd "$(dirname "$0")/.."
if [ "$#" -lt 1 ] || [ "$#" -gt 2 ]; then
    echo "usage: scripts/try-package.sh PACKAGE_FOLDER [SYSTEM_FOLDER]" >&2
    exit 2
fi
package=$(find "$1" -name 'corvane_*.deb')
given_system=${2:-}
[ -f "$package" ] || { echo "try-package.sh: there is not one package in $1" >&2; exit 1; }
[ "$(id -u)" -eq 0 ] || { echo "try-package.sh: this needs root" >&2; exit 1; }

scripts/install-dependencies.sh debootstrap util-linux iproute2
build=build/demo-service
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_TESTING=OFF
cmake --build "$build" --target corvane-demo-service
# The host developer's guide, as it is written.
scripts/commands-of.sh docs/host-integration.md | grep '^cmake ' | sh -eu

work=$(mktemp -d)
system=$work/system
clean_up() {
    umount -R "$system/proc" 2>/dev/null || true
    umount -R "$system/dev" 2>/dev/null || true
    if mountpoint -q "$system/proc" || mountpoint -q "$system/dev"; then
        echo "try-package.sh: $system is still in use and stays" >&2
    else
        rm -rf "$work"
    fi
}
trap clean_up EXIT
trap 'exit 1' INT TERM

say() { echo "== $1"; }
fail() {
    echo "try-package.sh: $1" >&2
    exit 1
}

# inside COMMAND...: as root in the system.
inside() {
    chroot "$system" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 "$@"
}
install_inside() { inside apt-get install -y -qq --no-install-recommends "$@" >"$work/apt.log" 2>&1 || { cat "$work/apt.log" >&2; fail "apt failed"; }; }

say "A fresh Debian 12"
if [ -n "$given_system" ]; then
    cp -a "$given_system" "$system"
else
    debootstrap --variant=minbase bookworm "$system" >"$work/debootstrap.log" || { tail "$work/debootstrap.log"; exit 1; }
fi
cp /etc/resolv.conf "$system/etc/resolv.conf"
mount -t proc proc "$system/proc"
mount --rbind /dev "$system/dev"
mount --make-rslave "$system/dev"
inside apt-get update -qq
# What a desktop, a developer and this script have: a display, a bus, the network's basic files, the tools of the documents'
# examples, and Python to write settings with.
install_inside xvfb xauth dbus dbus-x11 netbase libglib2.0-bin python3 procps desktop-file-utils ca-certificates systemd man-db
inside useradd --create-home --uid 4242 tester

list_files() {
    find "$system" -xdev \( -path "$system/proc" -o -path "$system/dev" -o -path "$system/tmp" -o -path "$system/run" \
        -o -path "$system/var/cache" -o -path "$system/var/log" -o -path "$system/var/lib/apt" \
        -o -path "$system/var/lib/dpkg" -o -path "$system/home" \) -prune -o -print | sort
}
list_files >"$work/before"

say "Installing the package with apt, as the README says"
mkdir -p "$system/tmp/try/build/package"
cp "$package" "$system/tmp/try/build/package"
echo 'APT::Get::Assume-Yes "true";' >"$system/tmp/apt.conf"
# as_written HEADING: the README's apt command below that heading; here it is root's, and asks nothing.
as_written() {
    command=$(scripts/commands-of.sh README.md "$1" | sed -n 's/^sudo apt /apt /p')
    echo "   $command"
    inside APT_CONFIG=/tmp/apt.conf sh -euc "cd /tmp/try && $command" >"$work/apt.log" 2>&1 || { cat "$work/apt.log" >&2; fail "apt failed"; }
}
as_written "Install it"
inside dpkg --verify corvane
inside man -w corvane corvane-import >/dev/null || fail "the manual pages are not found"

say "Trying it"
cp -r docs README.md examples "$system/tmp/try"
cp -r build/example "$system/tmp/try/build"
cp scripts/commands-of.sh scripts/try-package-inside.sh scripts/waiting.sh scripts/write-demo-settings.py "$system/tmp/try"
unshare --net scripts/try-package-isolated.sh "$build/src/demo_service/corvane-demo-service" "$system" ||
    fail "the package does not work"

say "Removing the package, as the README says"
as_written "Remove it"
# And what came along with it. By itself apt keeps what anything else installed would recommend.
inside apt-get autoremove --purge -y -qq -o APT::AutoRemove::RecommendsImportant=false \
    -o APT::AutoRemove::SuggestsImportant=false >"$work/apt.log" 2>&1 || { cat "$work/apt.log" >&2; fail "apt failed"; }
list_files >"$work/after"
if ! diff "$work/before" "$work/after" >"$work/difference"; then
    head -n 50 "$work/difference" >&2
    fail "the system is not as it was"
fi
named=$(find "$system" -xdev \( -path "$system/proc" -o -path "$system/dev" -o -path "$system/tmp" -o -path "$system/home" \) \
    -prune -o -iname '*corvane*' -print)
[ -z "$named" ] || fail "left behind: $named"

say "What is left is the user's"
(cd "$system/home/tester" && find . -type f | sed -n '1,/ToImport/p')
leftovers=$(cd "$system/home/tester" && find . -iname '*corvane*' ! -path './.config/corvane')
[ -z "$leftovers" ] || fail "left in the home: $leftovers"
[ -f "$system/home/tester/.config/corvane/settings.plist" ] || fail "the settings have gone"
say "Done"
