#!/usr/bin/env bash
# Prepares the Wine prefix of the build tree and keeps a Wine server running for it. Without one, each
# program start takes a second or more.
#   prefix.sh up        creates the prefix if it is missing and starts the server
#   prefix.sh up-both   does the same for the tests' second prefix too, and gives each prefix a core
#   prefix.sh down      ends the servers of these two prefixes only
set -euo pipefail
. "$(dirname "$0")/common.sh"

export WINEPREFIX=${WINEPREFIX:-$tree/build/windows/prefix}
export WINEDEBUG=-all
wine="$tree/toolchain/wine.sh"
server=/usr/lib/wine/wineserver64

# A server that a program starts ends with its last program, and a program that starts at that moment can
# hang. A new server therefore gets an option to stay. For a server that runs already, a program that
# waits for input forever keeps it running. That program holds the lock.
#
# It also keeps Wine's desktop running. Otherwise the first program with a message window would start the
# desktop, which would hold that program's output open.
keep_server() {
    # A server without programs is about to end.
    timeout 2 "$server" -w >/dev/null 2>&1 || true
    # Fails when a server runs. It must not hold the caller's output open. Programs of a server that has
    # crashed hang and keep their lock.
    if "${pin[@]}" "$server" -p >>"$WINEPREFIX/server.log" 2>&1 </dev/null; then rm -f "$WINEPREFIX/kept"; fi
    exec 8>"$WINEPREFIX/kept"
    if flock -n 8; then
        local input="$WINEPREFIX/no-input"
        [ -p "$input" ] || mkfifo "$input"
        "$wine" cmd >/dev/null 2>&1 <>"$input" &
        "$wine" explorer /desktop >/dev/null 2>&1 </dev/null 8>&- &
    fi
    exec 8>&-
}

# up [CORE]: with a core, the server and all programs run there. Many calls of a program are a message to
# the server and a reply. Between two cores these take twice as long, because the other core sleeps.
up() {
    if ! is_complete "$WINEPREFIX"; then
        rm -rf "$WINEPREFIX"
        steps_done=0
        steps_total=1
        step "Wine prefix" "10 s, later at once" bash "$tree/toolchain/new-prefix.sh" "$WINEPREFIX"
    fi
    pin=()
    rm -f "$WINEPREFIX/core"
    if [ $# -gt 0 ] && taskset -c "$1" true 2>/dev/null; then
        pin=(taskset -c "$1")
        echo "$1" >"$WINEPREFIX/core"
    fi
    keep_server
    # The first program starts Wine's services, which hold its output open while they run.
    "$wine" cmd /c exit >/dev/null 2>&1 </dev/null
}

# Each prefix has its own pipes and registry. Tests that use the product's real names in the second prefix
# run in parallel with those in the first.
second="$WINEPREFIX-2"

up_both() {
    local cores  # such as "0-3,6"
    cores=$(sed -n 's/^Cpus_allowed_list:[[:space:]]*//p' /proc/self/status)
    up "${cores%%[-,]*}"
    WINEPREFIX=$second
    up "${cores##*[-,]}"
}

case ${1:-up} in
up) up ;;
up-both) up_both ;;
down)
    "$server" -k >/dev/null 2>&1 || true
    [ ! -d "$second" ] || WINEPREFIX=$second "$server" -k >/dev/null 2>&1 || true
    ;;
*) die "prefix.sh: up, up-both or down" ;;
esac
