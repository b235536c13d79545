#!/usr/bin/env bash
# example.sh [--test | --screenshot FILE]: runs examples/launcher under Wine until Ctrl+C, with the stand-ins
# and its own data folder. --test tests it in a headless browser instead. --screenshot saves a picture.
set -euo pipefail
. "$(dirname "$0")/common.sh"

wine="$tree/toolchain/wine.sh"
build="$tree/build/windows"
tools=$(bash "$tree/toolchain/node.sh" --dir)
folder=$(mktemp -d)
server=
: >"$folder/address"
cleanup() {
    [ -z "$server" ] || kill "$server" 2>/dev/null || true
    "$wine" taskkill /f /im QX-Player.exe >/dev/null 2>&1 || true
    rm -rf "$folder"
}
trap cleanup EXIT

windows_path() { printf 'Z:%s' "${1//\//\\}"; }

# The product's data: two instances with apps, and one with a hostile name.
data="$folder/data"
mkdir -p "$data/Logs" "$data/Engine/Nougat64" "$folder/node_modules"
cp -r "$tree/demo/AppCache" "$data/Engine/Nougat64"
cp "$tree/demo/vantrel.conf" "$data"
[ "${1:-}" != --test ] ||
    sed -i 's|^\(vtr.instance.Nougat32.display_name\)=.*|\1="<img src=x onerror=document.title=1>"|' "$data/vantrel.conf"
ln -s "$tree/bindings/node" "$folder/node_modules/qx-bridge"
ln -s "$tools/node_modules/koffi" "$folder/node_modules/koffi"

NODE_PATH="$(windows_path "$folder/node_modules")" QX_STANDIN_SECONDS=3600 \
    QX_STANDIN_OUTPUT="$(windows_path "$folder/programs.txt")" \
    "$wine" "$tools/node/bin/node.exe" "$(windows_path "$tree/examples/launcher/server.js")" \
    "$(windows_path "$build/bin/QX-Bridge.dll")" "$(windows_path "$data")" "$(windows_path "$build/standins")" \
    >"$folder/address" 2>&1 </dev/null &
server=$!
for ((i = 0; i < 300; i++)); do
    address=$(tr -d '\r' <"$folder/address" | grep '^http://' || true)
    [ -z "$address" ] || break
    kill -0 "$server" 2>/dev/null || die "the launcher has ended: $(<"$folder/address")"
    sleep 0.1
done
[ -n "$address" ] || die "the launcher did not print its address: $(<"$folder/address")"

case ${1:-} in
--test) python3 "$tree/tests/launcher/browser_test.py" "$address" "$data" ;;
--screenshot) python3 "$tree/tests/launcher/screenshot.py" "$address" "$2" ;;
*)
    say "The launcher: $address"
    say "Press Ctrl+C to end it."
    wait "$server"
    ;;
esac
