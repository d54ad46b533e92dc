#!/bin/sh
# Shows Corvane at work on this machine, with no outside network: installs what the build needs, builds, starts the demo
# report service, and lets the real program do an import in a throw-away home. Without a display it runs all the same and
# leaves pictures of its windows behind.
#   ./run.sh           settings window, import request, import window, finish
#   ./run.sh --update  the offer of a newer version
set -eu
cd "$(dirname "$0")"
case "${1:-}" in
    "") show=import ;;
    --update) show=update ;;
    *)
        echo "usage: ./run.sh [--update]" >&2
        exit 2
        ;;
esac
scripts/install-dependencies.sh

build=build/demo
service_port=24843
update_port=24880
ca_file=$PWD/$build/demo-authority.pem

cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_TESTING=OFF \
    -DCORVANE_REPORT_SERVICE_HOST="localhost:$service_port" -DCORVANE_UPDATE_HOST="localhost:$update_port" \
    -DCORVANE_CA_FILE="$ca_file" -DCMAKE_INSTALL_LOCALEDIR="$PWD/$build/locale"
cmake --build "$build"
exec scripts/demo.sh "$build" "$service_port" "$update_port" "$ca_file" "$show"
