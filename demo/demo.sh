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

title "What cannot be done is said before the library is asked"
bridgectl conf set vtr.instance.Nougat64_1.dpi many
bridgectl conf get vtr.no_such_key

explain ""
explain "Try more: ./run wine bridgectl.exe --help. The data folder is"
explain "${data#"$tree"/}"
