#!/bin/sh
# Starts the program in every way there is, also at once, on a display and a session bus of its own, and sees to it that
# there is only one of it; on X11 with a window manager, and that it leaves the keyboard where the user is at work.
#   activation_test.sh x11|wayland PROGRAM CORVANE_IMPORT DEMO_SERVICE WRITE_SETTINGS PORT UPDATE_PORT CA_FILE
set -eu
. "$(dirname "$0")/../../scripts/waiting.sh"
display=$1
program=$2
corvane_import=$3
demo_service=$4
write_settings=$5
port=$6
update_port=$7
ca_file=$8
name=com.quessartolvinger.Corvane

home=$(mktemp -d)
started=""
clean_up() {
    for process in $started $(pgrep -f "^$program" || true); do
        kill "$process" 2>/dev/null || true
    done
    rm -rf "$home"
}
trap clean_up EXIT
trap 'exit 1' INT TERM

fail() {
    echo "$1" >&2
    for file in "$home"/*.log; do
        echo "-- $(basename "$file")" >&2
        cat "$file" >&2
    done
    exit 1
}
mkdir "$home/services"
mkdir -m 700 "$home/run"
export HOME="$home" XDG_RUNTIME_DIR="$home/run" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data"
export XDG_CACHE_HOME="$home/cache"
unset DISPLAY WAYLAND_DISPLAY XDG_ACTIVATION_TOKEN

case "$display" in
    x11)
        Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$home/display" 2>"$home/display.log" &
        started="$started $!"
        wait_until 10 test -s "$home/display" || fail "the X server does not start"
        DISPLAY=:$(cat "$home/display")
        export DISPLAY QT_QPA_PLATFORM=xcb
        openbox >"$home/window-manager.log" 2>&1 &
        started="$started $!"
        wait_until 10 sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "#"' || fail "the window manager does not start"
        ;;
    wayland)
        weston --backend=headless-backend.so --socket=wayland-test --idle-time=0 >"$home/display.log" 2>&1 &
        started="$started $!"
        wait_until 10 test -S "$XDG_RUNTIME_DIR/wayland-test" || fail "the compositor does not start"
        export WAYLAND_DISPLAY=wayland-test QT_QPA_PLATFORM=wayland
        ;;
esac

# The bus can start the program.
printf '[D-BUS Service]\nName=%s\nExec=%s\n' "$name" "$program" >"$home/services/$name.service"
cat >"$home/bus.conf" <<END
<busconfig>
  <type>session</type>
  <listen>unix:path=$home/run/bus</listen>
  <servicedir>$home/services</servicedir>
  <policy context="default"><allow send_destination="*"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>
END
dbus-daemon --config-file="$home/bus.conf" --nofork --nopidfile --print-address=3 3>"$home/address" 2>"$home/bus.log" &
started="$started $!"
wait_until 10 test -s "$home/address" || fail "the bus does not start"
DBUS_SESSION_BUS_ADDRESS=$(cat "$home/address")
export DBUS_SESSION_BUS_ADDRESS

"$demo_service" --port "$port" --update-port "$update_port" --ca-file "$ca_file" >"$home/service" 2>"$home/service.log" &
started="$started $!"
wait_until 10 grep -q READY=1 "$home/service" || fail "the demo service does not start"
"$write_settings" "$XDG_CONFIG_HOME/corvane/settings.plist"

call() {
    method=$1
    shift
    gdbus call --session --timeout 30 --dest "$name" --object-path /com/quessartolvinger/Corvane \
        --method "org.freedesktop.Application.$method" "$@" >/dev/null
}
owner() {
    gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
        --method org.freedesktop.DBus.GetConnectionUnixProcessID "$name" 2>/dev/null | tr -cd '0-9\n' | sed 's/^32//'
}
processes() { pgrep -f "^$program"; }
is_gone() { ! processes; }
has_owner() { [ -n "$(owner)" ]; }
is_one() {
    wait_until 20 has_owner || fail "$1: the program is not on the bus"
    # A second start ends by itself as soon as it has reached the first.
    wait_until 20 test_one || fail "$1: there is not one process, but: $(processes | tr '\n' ' ')"
    [ "$(processes)" = "$(owner)" ] || fail "$1: the process is not the one on the bus"
}
test_one() { [ "$(processes | wc -l)" -eq 1 ]; }
quit() {
    call ActivateAction quit '[]' '{}' || fail "the program does not take the action quit"
    wait_until 10 is_gone || fail "the program was told to quit, and did not"
}

"$program" 2>"$home/first.log" &
first=$!
is_one "by the menu entry's command"
"$program" 2>"$home/second.log" || fail "a second start fails"
call Activate '{}'
is_one "by the command and by the bus, when it runs"
[ "$(owner)" = "$first" ] || fail "it is another process than the first"
quit
wait "$first" || fail "the program ended with an error"

"$program" 2>"$home/first.log" &
one=$!
"$program" 2>"$home/second.log" &
other=$!
call Activate '{}' &
third=$!
wait "$third" || fail "activation fails while the program starts"
is_one "twice at once by the command, and by the bus"
quit
wait "$one" || fail "the first of two starts at once fails"
wait "$other" || fail "the second of two starts at once fails"

call Activate '{}' &
one=$!
call Activate '{}' &
other=$!
wait "$one" || fail "the first of two activations at once fails"
wait "$other" || fail "the second of two activations at once fails"
is_one "twice at once by the bus"
quit

"$corvane_import" --timeout 60 >"$home/import.log" 2>&1 &
import=$!
call Activate '{}'
is_one "by corvane-import and by the bus at once"
wait "$import" || fail "the import failed"
grep -q 'Import finished: [1-9]' "$home/import.log" || fail "the import brought nothing"
wait_until 10 is_gone || fail "the program does not end after its import"
[ "$display" = x11 ] || exit 0

# The host's window is the one at work. It writes down when it gets the keyboard, and when it loses it.
stdbuf -oL xev -event focus >"$home/host.log" 2>&1 &
started="$started $!"
focus_events() { sed -n 's/^\(Focus[A-Za-z]*\) event.*/\1/p' "$home/host.log"; }
host_has_focus() { [ "$(focus_events | tail -n 1)" = FocusIn ]; }
windows() { xprop -root _NET_CLIENT_LIST | grep -o 0x | wc -l; }
are_two_windows() { [ "$(windows)" -eq 2 ]; }
wait_until 10 host_has_focus || fail "the host's window does not get the keyboard"

gdbus wait --session --activate "$name" --timeout 20 "$name" || fail "the bus does not start the program"
wait_until 10 are_two_windows || fail "the settings window does not appear"
sleep 0.5  # as long as it may take the window manager to hand the keyboard on
[ "$(focus_events)" = FocusIn ] || fail "the settings window takes the keyboard when only an import is asked for"

"$corvane_import" --timeout 60 >"$home/import.log" 2>&1 || fail "the second import failed"
wait_until 10 is_gone || fail "the program does not end after its second import"
wait_until 10 host_has_focus || fail "the keyboard is not back with the host after the import"

call Activate '{}'
host_lost_focus() { ! host_has_focus; }
wait_until 10 host_lost_focus || fail "the settings window does not come to the front when it is asked for"
call ActivateAction about '[]' '{}' || fail "the program does not take the action about"
are_three_windows() { [ "$(windows)" -eq 3 ]; }
wait_until 10 are_three_windows || fail "the action about shows nothing"
quit
