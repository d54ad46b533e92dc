#!/bin/sh
# Installs what building and testing Corvane needs on Debian 12, as root or through sudo. Quick and silent when nothing
# is missing. What each package is for: docs/dependencies.md.
#   install-dependencies.sh [PACKAGE...]   further packages
set -eu

packages="
cmake ninja-build g++ gettext locales
libcurl4-openssl-dev libssl-dev zlib1g-dev nlohmann-json3-dev libutfcpp-dev libfmt-dev
qt6-base-dev libgl-dev libqt6svg6 ca-certificates tzdata
libgtest-dev libgmock-dev libplist-dev pkg-config python3 clang-format
dbus-bin dbus-daemon libglib2.0-bin xvfb xauth fonts-dejavu-core imagemagick procps
appstream desktop-file-utils mandoc openbox qt6-wayland systemd weston x11-utils
at-spi2-core python3-gi gir1.2-atspi-2.0
$*
"

missing=""
for package in $packages; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=""
if [ "$(id -u)" -ne 0 ]; then
    as_root="sudo"
fi
echo "Installing:$missing"
export DEBIAN_FRONTEND=noninteractive
$as_root apt-get update -qq
# The variable holds a list of words.
# shellcheck disable=SC2086
$as_root apt-get install -y -qq --no-install-recommends $missing >/dev/null
