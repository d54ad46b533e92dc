#!/bin/sh
# Installs what building the Debian package needs beyond scripts/install-dependencies.sh. Quick and silent when nothing is
# missing.
set -eu
cd "$(dirname "$0")"
exec ./install-dependencies.sh build-essential debhelper dpkg-dev git lintian
