#!/usr/bin/env bash
# Prepares the Wine prefix of the build tree and keeps a Wine server running for it. Without one, each
# program start takes a second or more.
#   prefix.sh up        creates the prefix if it is missing and starts the server
#   prefix.sh up-both   does the same for the tests' second prefix too
#   prefix.sh down      ends the servers of these two prefixes only
set -euo pipefail
. "$(dirname "$0")/common.sh"

export WINEPREFIX=${WINEPREFIX:-$tree/build/windows/prefix}
export WINEDEBUG=-all
wine="$tree/toolchain/wine.sh"
server=/usr/lib/wine/wineserver64

create() {
    mkdir -p "$WINEPREFIX"
    "$wine" wineboot --init
    # A debug break ends the process immediately, because the debugger named here does not exist. Auto=0
    # would ask the user and start a desktop that keeps the process's pipes open.
    "$wine" reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' \
        /v Auto /d 1 /f
    "$wine" reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' \
        /v Debugger /d 'none.exe %ld %ld' /f
    "$wine" reg add 'HKCU\Software\Wine' /v Version /d win10 /f
    "$server" -w
    mark_complete "$WINEPREFIX"
}

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
    if "$server" -p >>"$WINEPREFIX/server.log" 2>&1 </dev/null; then rm -f "$WINEPREFIX/kept"; fi
    exec 8>"$WINEPREFIX/kept"
    if flock -n 8; then
        local input="$WINEPREFIX/no-input"
        [ -p "$input" ] || mkfifo "$input"
        "$wine" cmd >/dev/null 2>&1 <>"$input" &
        "$wine" explorer /desktop >/dev/null 2>&1 </dev/null 8>&- &
    fi
    exec 8>&-
}

up() {
    if ! is_complete "$WINEPREFIX"; then
        rm -rf "$WINEPREFIX"
        steps_total=1
        step "Wine prefix" "10 s" create
    fi
    keep_server
    # The first program starts Wine's services, which hold its output open while they run.
    "$wine" cmd /c exit >/dev/null 2>&1 </dev/null
}

# Each prefix has its own pipes and registry. Tests that use the product's real names in the second prefix
# run in parallel with those in the first.
second="$WINEPREFIX-2"

case ${1:-up} in
up) up ;;
up-both)
    up
    WINEPREFIX=$second
    up
    ;;
down)
    "$server" -k >/dev/null 2>&1 || true
    [ ! -d "$second" ] || WINEPREFIX=$second "$server" -k >/dev/null 2>&1 || true
    ;;
*) die "prefix.sh: up, up-both or down" ;;
esac
