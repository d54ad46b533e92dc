#!/bin/sh
# A part of try-package.sh: in a network of its own, lets this machine be the report service and the update host in the eyes
# of the system in SYSTEM, and runs try-package-inside.sh there as the user tester.
#   try-package-isolated.sh DEMO_SERVICE SYSTEM
set -eu
. "$(dirname "$0")/waiting.sh"
service=$1
system=$2
report_host=reportingitc.apple.com
authority=$system/usr/local/share/ca-certificates/demo-authority.crt
inside() { chroot "$system" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 "$@"; }

ip link set lo up

# A user's service manager wants a system that systemd has started, and control groups that are its user's.
groups=$(mktemp -d)
group=$groups/try-package-$$

[ ! -e "$system/etc/hosts" ] || cp "$system/etc/hosts" "$system/etc/hosts.before"
: >"$system/tmp/service"
"$service" --port 443 --update-port 80 --host-name "$report_host" --ca-file "$authority" >"$system/tmp/service" &
service_process=$!
remove_group() {
    [ ! -d "$group" ] || find "$group" -depth -type d -exec rmdir {} \;
    [ ! -d "$group" ]
}
clean_up() {
    kill "$service_process" 2>/dev/null || true
    # Whoever is left there is ours.
    [ ! -e "$group/cgroup.kill" ] || echo 1 >"$group/cgroup.kill"
    wait_until 5 remove_group || echo "try-package.sh: the control group $group is still in use and stays" >&2
    umount "$groups" 2>/dev/null || true
    rmdir "$groups" "$system/run/systemd/system" 2>/dev/null || true
    rm "$system/etc/hosts"
    [ ! -e "$system/etc/hosts.before" ] || mv "$system/etc/hosts.before" "$system/etc/hosts"
    rm -f "$authority"
    inside update-ca-certificates --fresh >/dev/null 2>&1
}
trap clean_up EXIT
trap 'exit 1' INT TERM

printf '127.0.0.1 localhost %s updates.corvane.invalid\n' "$report_host" >"$system/etc/hosts"
wait_until 10 grep -q READY=1 "$system/tmp/service" || { echo "try-package.sh: the demo service does not start" >&2; exit 1; }
inside update-ca-certificates >/dev/null 2>&1

mkdir -p "$system/tmp/.X11-unix"
chmod 1777 "$system/tmp/.X11-unix"
chroot "$system" mkdir -p -m 700 /tmp/tester-run
chroot "$system" chown -R tester:tester /tmp/tester-run /tmp/try
mount -t cgroup2 none "$groups"
mkdir "$group"
chroot "$system" id -u tester | xargs -I{} chown {} "$group" "$group/cgroup.procs" "$group/cgroup.subtree_control"
mkdir -p "$system/run/systemd/system"
# Joins the group, and then sees nothing of the others.
sh -euc 'echo $$ >"$1/cgroup.procs"; exec unshare --mount --cgroup sh -euc "$2" - "$3"' - "$group" '
    mount -t tmpfs none "$1/sys"
    mkdir -p "$1/sys/fs/cgroup"
    mount -t cgroup2 none "$1/sys/fs/cgroup"
    exec chroot --userspec=tester:tester "$1" /usr/bin/env -i PATH=/usr/bin:/bin HOME=/home/tester USER=tester LC_ALL=C.UTF-8 \
        XDG_RUNTIME_DIR=/tmp/tester-run xvfb-run --auto-servernum --server-args="-screen 0 1280x800x24 -nolisten tcp" \
        dbus-run-session -- sh /tmp/try/try-package-inside.sh' "$system"
