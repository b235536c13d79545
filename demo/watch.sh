#!/usr/bin/env bash
# Draws docs/pictures/watch.svg: what `bridgectl watch` shows on a console while the stand-ins work. Needs
# a build, and the target console_shot.
set -euo pipefail
. "$(dirname "$0")/../toolchain/common.sh"

export WINEPREFIX=${WINEPREFIX:-$tree/build/windows/prefix}
build="$tree/build/windows"
wine="$tree/toolchain/wine.sh"
data=$(mktemp -d)
trap 'rm -rf "$data"' EXIT
folders=(--client LogCollector --data-folder "Z:$data" --install-folder "Z:$build/standins")
export QX_STANDIN_OUTPUT="Z:$data/standins.txt" QX_STANDIN_CLIENTS=LogCollector QX_STANDIN_SECONDS=60

bridgectl() { "$wine" "$build/bin/bridgectl.exe" "${folders[@]}" "$@" >/dev/null; }

# Waits until bridgectl watch receives events.
wait_for_watch() {
    local i
    for i in $(seq 100); do
        "$wine" "$build/bin/bridgectl.exe" "${folders[@]}" doctor |
            grep -q "vtr_LogCollector_bridge_nvo is served" && return
        sleep 0.1
    done
    die "bridgectl watch does not listen"
}

"$tree/toolchain/prefix.sh" up
mkdir "$data/Logs"
cp "$tree/demo/vantrel.conf" "$data"
"$wine" "$build/tests/console_shot.exe" "Z:$data/screen.txt" app-uninstalled \
    "$build/bin/bridgectl.exe" "${folders[@]}" watch &
shot=$!
wait_for_watch
bridgectl conf set vtr.locale nl-NL
bridgectl launch Nougat64 com.example.notes
bridgectl conf set vtr.instance.Nougat64.dpi 320
bridgectl install-image Nougat32
bridgectl install-apk Nougat64 'C:\Downloads\com.example.chess.apk'
sleep 2  # bridgectl watch refreshes once a second
bridgectl uninstall Nougat64 com.example.notes
wait "$shot"
bridgectl shutdown Nougat64
bridgectl shutdown
python3 "$tree/demo/screen.py" "$data/screen.txt" "$tree/docs/pictures/watch.svg"
