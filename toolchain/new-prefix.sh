#!/usr/bin/env bash
# new-prefix.sh FOLDER: makes a Wine prefix in FOLDER, which must not exist. The first one for a version of
# Wine takes ten seconds and stays in the cache. The others are copies of it.
set -euo pipefail
. "$(dirname "$0")/common.sh"

folder=$1
wine="$tree/toolchain/wine.sh"
server=/usr/lib/wine/wineserver64
first="$cache/prefix-$(digest <(/usr/lib/wine/wine64 --version) "$0")"
export WINEDEBUG=-all

# Each program reads these keys at its start, which is nearly half of its messages to the server. It compares
# the time zones with this system's one by one, and does without those that are missing.
remove_keys() {
    local key version='HKLM\Software\Microsoft\Windows NT\CurrentVersion'
    for key in 'Time Zones' Fonts FontLink FontSubstitutes; do
        "$wine" reg delete "$version\\$key" /f
    done
}

# A debug break ends the process immediately, because the debugger named here does not exist. Auto=0
# would ask the user and start a desktop that keeps the process's pipes open.
add_values() {
    local debugger='HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug'
    "$wine" reg add "$debugger" /v Auto /d 1 /f
    "$wine" reg add "$debugger" /v Debugger /d 'none.exe %ld %ld' /f
    "$wine" reg add 'HKCU\Software\Wine' /v Version /d win10 /f
}

make_first() {
    mkdir -p "$cache"
    made=$(mktemp -d "$cache/prefix.XXXXXX")
    trap 'rm -rf "$made"' EXIT  # if it is interrupted
    export WINEPREFIX=$made
    "$wine" wineboot --init
    remove_keys
    add_values
    "$server" -w
    rm -f "$made/wineserver"  # the name of the server's folder; each prefix has its own
    mark_complete "$made"
    mv -T "$made" "$first" || is_complete "$first"  # another run can have made it meanwhile
}

# Programs do not change the files that Wine itself puts on the drive, so copies share them if they are on
# the same file system. The server would write to shared registry files in place.
copy_first() {
    local part="$folder.part"  # an interrupted copy is not taken for a prefix
    rm -rf "$part"
    mkdir -p "$(dirname "$part")"
    cp -a --link "$first" "$part" 2>/dev/null || cp -a "$first/." "$part"
    cp --remove-destination "$first"/*.reg "$part"
    mv -T "$part" "$folder"
}

is_complete "$first" || make_first
copy_first
