#!/bin/sh
# A part of try-package.sh: as an ordinary user of the system on which the package is installed, with a display and a bus.
set -eu
cd "$(dirname "$0")"
. ./waiting.sh
program=com.quessartolvinger.Corvane
entry=/usr/share/applications/$program.desktop
reports=$HOME/.local/share/QX4ZT7M2P9.group.quessartolvinger.brindlecount/ToImport

say() { echo "-- $1"; }
fail() {
    echo "try-package.sh: $1" >&2
    [ ! -f "$HOME/log" ] || cat "$HOME/log" >&2
    exit 1
}
has_no_owner() {
    gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
        --method org.freedesktop.DBus.NameHasOwner "$program" | grep -q false
}
program_processes() { pgrep -u "$(id -u)" -x corvane | wc -l; }
no_process() { [ "$(program_processes)" -eq 0 ]; }
run_as_written() {
    printf '   %s\n' "$1"
    sh -euc "$1" || fail "this failed: $1"
}

say "What the package says of itself"
[ "$(corvane --version)" = "Corvane $(corvane-import --version | sed 's/.* //')" ] || fail "the versions differ"
corvane --help | grep -q Usage: || fail "the program shows no help"
desktop-file-validate "$entry"
man corvane corvane-import >/dev/null
systemd-analyze verify --user /usr/lib/systemd/user/corvane-import.timer /usr/lib/systemd/user/corvane-import.service

say "Settings from elsewhere, as the README says"
./write-demo-settings.py ./com.quessartolvinger.Corvane.plist
./commands-of.sh README.md "Moving from a Mac" >moving
sh -eu ./moving

say "Started by the menu entry's command"
command=$(sed -n 's/^Exec=//p' "$entry" | head -n 1)
$command 2>"$HOME/log" &
started=$!
gdbus wait --session --timeout 20 "$program" || fail "the program does not come onto the bus"
$command || fail "a second start fails"
[ "$(program_processes)" -eq 1 ] || fail "there are two of it"

say "An import"
corvane-import --timeout 300 >"$HOME/summary" || fail "the import failed"
tail -n 1 "$HOME/summary"
named=$(grep -c '^/' "$HOME/summary") || fail "the import brought nothing"
stored=$(find "$reports" -name 'S_*.txt' | wc -l)
[ "$named" -eq "$stored" ] || fail "$named reports were named, but $stored are there"
[ "$stored" -gt 300 ] || fail "only $stored reports came"
ended() { ! kill -0 "$started" 2>/dev/null; }
wait_until 10 ended || fail "the program does not end after its import"
wait "$started" || fail "the program ended with an error"

say "Started by the menu through the bus"
gio launch "$entry"
gdbus wait --session --timeout 20 "$program" || fail "the menu entry does not start the program"

say "The host's examples and the guide's commands, as written"
examples/host/import.sh 60
./commands-of.sh docs/host-integration.md | grep -v '^cmake ' >guide
while IFS= read -r line; do
    run_as_written "$line" </dev/null
done <guide
wait_until 10 has_no_owner || fail "the program was told to quit, and did not"

say "The daily import, as the README says"
/lib/systemd/systemd --user 2>"$HOME/log" &
manager=$!
wait_until 20 systemctl --user is-system-running || fail "the user's service manager does not start"
systemctl --user import-environment DBUS_SESSION_BUS_ADDRESS DISPLAY XAUTHORITY
[ "$(systemctl --user is-enabled corvane-import.timer)" = disabled ] || fail "the timer is enabled without being asked for"
# As if the machine had been off for two days: the timer makes up for it, here without its random delay.
mkdir -p "$HOME/.local/share/systemd/timers" "$HOME/.config/systemd/user/corvane-import.timer.d"
touch -d '2 days ago' "$HOME/.local/share/systemd/timers/stamp-corvane-import.timer"
printf '[Timer]\nRandomizedDelaySec=0\n' >"$HOME/.config/systemd/user/corvane-import.timer.d/at-once.conf"
systemctl --user daemon-reload
run_as_written "$(./commands-of.sh README.md "Every day by itself")"
has_imported() { [ "$(systemctl --user show -P ExecMainExitTimestampMonotonic corvane-import.service)" -gt 0 ]; }
wait_until 60 has_imported || fail "the timer starts no import"
[ "$(systemctl --user show -P Result corvane-import.service)" = success ] || fail "the daily import failed"
systemctl --user list-timers --no-legend corvane-import.timer | grep -q corvane-import.service || fail "the timer does not wait"
run_as_written "$(./commands-of.sh README.md "Remove it" | grep '^systemctl')"
[ "$(systemctl --user is-enabled corvane-import.timer)" = disabled ] || fail "the timer is still enabled"
systemctl --user exit
wait "$manager" || fail "the user's service manager ended with an error"
rm -r "$HOME/.config/systemd" "$HOME/.local/share/systemd"
gdbus call --session --dest "$program" --object-path /com/quessartolvinger/Corvane \
    --method org.freedesktop.Application.ActivateAction quit '[]' '{}' >/dev/null
wait_until 10 has_no_owner || fail "the program was told to quit, and did not"

say "The README's check of the bus"
./commands-of.sh README.md Trouble >trouble
run_as_written "$(cat trouble)"
gdbus call --session --dest "$program" --object-path /com/quessartolvinger/Corvane \
    --method org.freedesktop.Application.ActivateAction quit '[]' '{}' >/dev/null
wait_until 10 has_no_owner || fail "the program was told to quit, and did not"
wait_until 10 no_process || fail "a process is left"

rm -f "$HOME/log" "$HOME/summary"
