#!/bin/sh
# A host application's half of an import, in shell: listen, start the program, ask, wait for the end, take the new files.
#   import.sh [SECONDS]    waits that long for the end, by default an hour
set -eu
program=com.quessartolvinger.Corvane
center=com.quessartolvinger.DistributedNotificationCenter
center_path=/com/quessartolvinger/DistributedNotificationCenter
finish=reportUpdateViewControllerDidFinishDistributedNotification
folder=${XDG_DATA_HOME:-$HOME/.local/share}/QX4ZT7M2P9.group.quessartolvinger.brindlecount/ToImport
tries=$((${1:-3600} * 5))

work=$(mktemp -d)
listener=""
clean_up() {
    [ -z "$listener" ] || kill "$listener" 2>/dev/null || true
    rm -rf "$work"
}
trap clean_up EXIT
trap 'exit 1' INT TERM

# Whoever listens only after asking can miss a quick end.
dbus-monitor --session "type='signal',interface='$center',member='$finish'" >"$work/signals" 2>"$work/problem" &
listener=$!
until grep -q 'member=NameLost' "$work/signals"; do
    kill -0 "$listener" || { cat "$work/problem" >&2; exit 1; }
    sleep 0.1
done

touch "$work/asked"
gdbus wait --session --activate "$program" --timeout 30 "$program"
gdbus emit --session --object-path "$center_path" --signal "$center.kNotificationCorvaneReloadData" "'{\"isLite\": false}'"

until grep -q "member=$finish" "$work/signals"; do
    tries=$((tries - 1))
    [ "$tries" -gt 0 ] || { echo "import.sh: the import is not over yet" >&2; exit 3; }
    sleep 0.2
done
[ ! -d "$folder" ] || find "$folder" -name '*.txt' -newer "$work/asked"
