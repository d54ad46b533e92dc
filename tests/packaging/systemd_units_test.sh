#!/bin/sh
# Has the units verified. In a runtime folder of its own with a short name: the sockets of other packages' units, which are
# read as well, lie there, and the name of a socket must not be long.
#   systemd_units_test.sh SYSTEMD_ANALYZE UNIT...
set -eu
analyze=$1
shift
XDG_RUNTIME_DIR=$(mktemp -d)
export XDG_RUNTIME_DIR
trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
"$analyze" verify --user --man=no "$@"
