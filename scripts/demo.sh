#!/bin/sh
# The second half of run.sh: runs a program that was built for the demo service, on a bus and a home of its own.
#   demo.sh BUILD SERVICE_PORT UPDATE_PORT CA_FILE [import|update]
set -eu
cd "$(dirname "$0")/.."
. scripts/waiting.sh
build=$1
service_port=$2
update_port=$3
ca_file=$4
show=${5:-import}
pictures=$build/pictures

home=$(mktemp -d)
started=""
clean_up() {
    for process in $started; do
        kill "$process" 2>/dev/null || true
    done
    rm -rf "$home"
}
trap clean_up EXIT
trap 'exit 1' INT TERM

fail() {
    echo "run.sh: $1" >&2
    exit 1
}

mkdir -p "$pictures" "$home/run"
chmod 700 "$home/run"
export HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" XDG_CACHE_HOME="$home/cache"
export XDG_RUNTIME_DIR="${XDG_RUNTIME_DIR:-$home/run}"

has_display=yes
if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    has_display=no
    Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$home/display" 2>/dev/null &
    started="$started $!"
    wait_until 10 test -s "$home/display" || fail "the display without a screen does not start"
    DISPLAY=:$(cat "$home/display")
    export DISPLAY
fi

take_picture() {
    [ "$has_display" = no ] || return 0
    import -window root "$pictures/$1.png" && echo "Picture: $pictures/$1.png"
}

dbus-daemon --session --nofork --nopidfile --print-address=3 3>"$home/bus" 2>"$home/bus.log" &
started="$started $!"
wait_until 10 test -s "$home/bus" || fail "the session bus does not start"
DBUS_SESSION_BUS_ADDRESS=$(cat "$home/bus")
export DBUS_SESSION_BUS_ADDRESS

feed=""
[ "$show" = import ] || feed="--feed-version 99.0 --feed-link https://www.example.com/ --feed-notes Everything_is_better."
# The feed's options are words without blanks.
# shellcheck disable=SC2086
"$build/src/demo_service/corvane-demo-service" --port "$service_port" --update-port "$update_port" \
    --ca-file "$ca_file" --latency 20 $feed >"$home/service" &
started="$started $!"
wait_until 10 grep -q READY=1 "$home/service" || fail "the demo service does not start"

scripts/write-demo-settings.py "$XDG_CONFIG_HOME/corvane/settings.plist"
"$build/src/desktop/corvane" 2>"$home/log" &
program=$!
started="$started $program"
gdbus wait --session --timeout 20 com.quessartolvinger.Corvane || fail "the program does not come onto the bus"
echo "The program is on the bus."
sleep 1
take_picture settings-window

if [ "$show" = update ]; then
    take_picture update-alert
    if [ "$has_display" = yes ]; then
        echo "The update alert is open; quit the program to go on."
        wait "$program" || true
    fi
    exit 0
fi

"$build/src/import_command/corvane-import" --timeout 120 >"$home/summary" &
import=$!
started="$started $import"
sleep 4
take_picture import-window
wait "$import" || { cat "$home/log" >&2; fail "the import did not come to its end"; }
cat "$home/summary"

ended() { ! kill -0 "$program" 2>/dev/null; }
wait_until 10 ended || fail "the program does not end after its import"
wait "$program" || { cat "$home/log" >&2; fail "the program ended with an error"; }
echo "The program has ended by itself."
