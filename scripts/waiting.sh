# For scripts that start something and go on when it is there; read with ".".

# wait_until SECONDS COMMAND...: succeeds as soon as the command does.
wait_until() {
    tries=$(($1 * 20))
    shift
    until "$@" >/dev/null 2>&1; do
        tries=$((tries - 1))
        [ "$tries" -gt 0 ] || return 1
        sleep 0.05
    done
}
