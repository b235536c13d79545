#!/usr/bin/env bash
# What ./run demo plays, after the build: the product's registry values and data folder in a private
# Wine prefix, and then the real bridgectl.exe on the real library.
set -euo pipefail
. "$(dirname "$0")/../toolchain/common.sh"

wine="$tree/toolchain/wine.sh"
bin="$tree/build/windows/bin"
data="$WINEPREFIX/drive_c/ProgramData/BridgeDemo"
windows_data='C:\ProgramData\BridgeDemo'

bold='' plain=''
if [ -t 1 ] && [ -z "${NO_COLOR:-}" ]; then bold=$'\033[1m' plain=$'\033[0m'; fi
title() { printf '\n%s== %s%s\n' "$bold" "$*" "$plain"; }
explain() { printf '%s\n' "$*"; }

bridgectl() {
    local shown=
    printf -v shown ' %q' "$@"
    printf '\n$ bridgectl%s\n' "$shown"
    "$wine" "$bin/bridgectl.exe" "$@" 2>&1 || printf '(exit code %d)\n' $?
}

# Waits for a line that the stand-ins write.
wait_for() {
    local i
    for i in $(seq 200); do
        grep -qxF "$1" "$data/programs.txt" 2>/dev/null && return
        sleep 0.05
    done
    die "the programs did not come to \"$1\""
}

registry_value() {
    "$wine" reg add 'HKLM\Software\Vantrel_nvo' /v "$1" /d "$2" /f >/dev/null
    printf '  %-16s %s\n' "$1" "$2"
}

title "The product's side: registry, data folder, configuration"
explain "In the registry (HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo):"
registry_value UserDefinedDir "$windows_data"
registry_value InstallDir "$windows_data\\Install\\"
registry_value Version 5.2.0.1052
rm -rf "$data"
mkdir -p "$data/Logs"
cp -r "$tree/build/windows/standins" "$data/Install"
cp "$tree/demo/vantrel.conf" "$data/vantrel.conf"
explain "In the data folder: Logs/, and vantrel.conf with $(wc -l <"$data/vantrel.conf") lines, among them:"
grep -E 'display_name|vtr.locale' "$data/vantrel.conf" | sed 's/^/  /'
cp "$data/vantrel.conf" "$data/before.conf"

title "A front end lists the instances"
bridgectl instances

title "It reads typed values"
bridgectl conf get vtr.instance.Nougat64.display_name
bridgectl conf get vtr.instance.Nougat64_1.dpi
bridgectl conf get vtr.enable_adb_access
bridgectl conf get vtr.prefer_dedicated_gpu

title "It changes some and commits each change"
bridgectl conf set vtr.instance.Nougat64_1.dpi 320
bridgectl conf set vtr.enable_adb_access true
bridgectl conf set vtr.instance.Nougat64.display_name 'Zweitgerät 第二'

title "The lines of vantrel.conf that changed (- before, + after)"
diff -U0 "$data/before.conf" "$data/vantrel.conf" | grep -E '^[-+]vtr' || true

title "What the library wrote into the product's log about the last change"
tail -n 4 "$data/Logs/Player.log"

title "It launches an app: the player (a stand-in) is started from the install folder"
rm -f "$data/programs.txt"
export QX_STANDIN_OUTPUT="$windows_data\\programs.txt"
bridgectl launch Nougat64 com.example.app
wait_for "serving: vtr_plr_Nougat64_nvo"
explain "The command line that the player got, and the local socket that it serves now:"
cat "$data/programs.txt"

title "One player is shut down; then everything, the manager first"
bridgectl launch-url Nougat64_1 https://example.com/
wait_for "serving: vtr_plr_Nougat64_1_nvo"
bridgectl install-image Nougat32
wait_for "serving: vtr_mim_nvo"
bridgectl shutdown Nougat64
wait_for "ended: vtr_plr_Nougat64_nvo"
bridgectl shutdown
wait_for "ended: vtr_plr_Nougat64_1_nvo"
explain "What the programs were asked, in order:"
grep -E 'Rpc|ended' "$data/programs.txt"
explain "The player of Nougat32 was not running, which the log says:"
grep 'command failed' "$data/Logs/Player.log" | tail -n 1

title "What cannot be done is said before the library is asked"
bridgectl conf set vtr.instance.Nougat64_1.dpi many
bridgectl conf get vtr.no_such_key

explain ""
explain "Try more: ./run wine bridgectl.exe --help. The data folder is"
explain "${data#"$tree"/}"
