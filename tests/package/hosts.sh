#!/usr/bin/env bash
# hosts.sh TREE WORK: runs the hosts that package.sh built, in a new Wine prefix.
set -euo pipefail
tree=$1 work=$2
. "$tree/toolchain/common.sh"

folder=$(mktemp -d)
export WINEPREFIX="$folder/prefix"
trap 'bash "$tree/toolchain/prefix.sh" down; rm -rf "$folder"' EXIT
bash "$tree/toolchain/prefix.sh" up
wine() { timeout 60 "$tree/toolchain/wine.sh" "$@"; }
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

root=$(echo "$work"/unpacked/*)
cd "$root"

mkdir -p "$folder/data/Logs"
printf 'vtr.instance.Nougat64.display_name="Jeux"\n' >"$folder/data/vantrel.conf"
key='HKLM\SOFTWARE\Vantrel_nvo'
wine reg add "$key" /v UserDefinedDir /d "$(windows_path "$folder/data")" /f
wine reg add "$key" /v InstallDir /d "$(windows_path "$root/tools")\\" /f

listing=$(wine bin/bridgectl.exe instances --json)
grep -q '"displayName": "Jeux"' <<<"$listing" || die "bridgectl lists: $listing"
for host in "$work"/gcc/host_{c,pc}.exe "$work/clang/host_c.exe" "$work/clang/host_cxx.exe" \
    "$work/clang/host_lib.exe" "$work/port/host_cxx.exe" "$work/pasted/build/host.exe"; do
    got=$(wine "$host" | tr -d '\r')  # printed in text mode
    [ "$got" = "$listing" ] || die "$host lists: $got"
done
dotnet=$(bash "$tree/toolchain/dotnet.sh" --dir)
for program in host event; do
    cp "$work/${program}_cs.exe" "$folder"
    cp "$tree/tests/bindings/csharp/runtimeconfig.json" "$folder/${program}_cs.runtimeconfig.json"
done
got=$(wine "$dotnet/dotnet.exe" "$(windows_path "$folder/host_cs.exe")" \
    "$(windows_path "$root/bin/QX-Bridge.dll")" | tr -d '\r')
[ "$got" = "$listing" ] || die "host.cs lists: $got"
# Under Wine Node cannot write to this system's pipes.
node=$(bash "$tree/toolchain/node.sh" --dir)
wine "$node/node/bin/node.exe" "$(windows_path "$work/npm/host.js")" \
    "$(windows_path "$root/bin/QX-Bridge.dll")" >"$folder/node.txt" 2>&1
[ "$(tr -d '\r' <"$folder/node.txt")" = "Nougat64 Jeux" ] || die "host.js lists: $(<"$folder/node.txt")"

# event_arrives COMMAND...: a program of the document that waits for an event prints it and ends. Its
# standard input stays open until the event is sent, because the C program ends at the end of its input.
event_arrives() {
    local host sent='' status=0 log="$folder/data/Logs/Player.log"
    rm -f "$folder/input" "$folder/event.txt" "$log"
    mkfifo "$folder/input"
    wine "$@" <"$folder/input" >"$folder/event.txt" 2>&1 &
    host=$!
    exec 8>"$folder/input"
    for ((i = 0; i < 100; i++)); do
        if QX_STANDIN_OUTPUT="$(windows_path "$folder/sender.txt")" QX_STANDIN_CLIENTS=Helper \
            wine tools/QX-Player.exe --event app-displayed Nougat64 com.example.app; then
            sent=yes
            break
        fi
        sleep 0.1
    done
    for ((i = 0; i < 100; i++)); do
        ! grep -q "bridgeOnAppDisplayedClbk called" "$log" || break
        sleep 0.1
    done
    exec 8>&-
    wait "$host" || status=$?
    [ -n "$sent" ] || die "$*: no event was taken; $(<"$folder/event.txt")"
    [ "$(tr -d '\r' <"$folder/event.txt")" = "Nougat64 shows com.example.app" ] && [ "$status" = 0 ] ||
        die "$*: status $status, $(<"$folder/event.txt")"
}
for program in "$work/gcc/event_c.exe" "$work/pasted/build/event.exe" "$work"/clang/event_{c,cxx}.exe; do
    event_arrives "$program"
done
event_arrives "$dotnet/dotnet.exe" "$(windows_path "$folder/event_cs.exe")" \
    "$(windows_path "$root/bin/QX-Bridge.dll")"
event_arrives "$node/node/bin/node.exe" "$(windows_path "$work/npm/event.js")" \
    "$(windows_path "$root/bin/QX-Bridge.dll")"

QX_STANDIN_OUTPUT="$(windows_path "$folder/standins.txt")" QX_STANDIN_SECONDS=1 QX_STANDIN_CLIENTS=none \
    wine bin/bridgectl.exe launch Nougat64 com.example.app
for ((i = 0; i < 100; i++)); do
    grep -q '^serving: ' "$folder/standins.txt" 2>/dev/null && break
    sleep 0.1
done
grep -q '"launchApp" "--package" "com.example.app"' "$folder/standins.txt" || die "no player was started"
