#!/usr/bin/env bash
# Prepares the Wine prefix of the build tree and keeps one wineserver alive for it, without which
# each program start takes a second or more.
#   prefix.sh up     creates the prefix when it is missing, and starts the server
#   prefix.sh down   ends the server of this prefix, and of no other
set -euo pipefail
. "$(dirname "$0")/common.sh"

export WINEPREFIX=${WINEPREFIX:-$tree/build/windows/prefix}
export WINEDEBUG=-all
wine="$tree/toolchain/wine.sh"
server=/usr/lib/wine/wineserver64

create() {
    mkdir -p "$WINEPREFIX"
    "$wine" wineboot --init
    # A debug break ends the process at once: the debugger named here does not exist. (Asking the
    # user instead, as Auto=0 does, would start a desktop that keeps the process's pipes open.)
    "$wine" reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' \
        /v Auto /d 1 /f
    "$wine" reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' \
        /v Debugger /d 'none.exe %ld %ld' /f
    "$wine" reg add 'HKCU\Software\Wine' /v Version /d win10 /f
    "$server" -w
    mark_complete "$WINEPREFIX"
}

# Wine's desktop is started by the first program that needs a message window, inherits that
# program's output and keeps it open; it ends a second after the last program. So it is started here,
# without output, and a shell that waits for input for ever keeps it.
keep_desktop() {
    local input="$WINEPREFIX/no-input"
    [ -p "$input" ] || mkfifo "$input"
    "$wine" explorer /desktop >/dev/null 2>&1 </dev/null &
    "$wine" cmd >/dev/null 2>&1 <>"$input" &
}

case ${1:-up} in
up)
    if ! is_complete "$WINEPREFIX"; then
        rm -rf "$WINEPREFIX"
        steps_total=1
        step "Wine prefix" "10 s" create
    fi
    # Fails when it runs already. It must not hold the caller's output open.
    if "$server" -p >/dev/null 2>&1 </dev/null; then keep_desktop; fi
    # The first program starts Wine's services, which keep its output open as long as they live.
    "$wine" cmd /c exit >/dev/null 2>&1 </dev/null
    ;;
down) "$server" -k >/dev/null 2>&1 || true ;;
*) die "prefix.sh: up or down" ;;
esac
