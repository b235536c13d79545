#!/usr/bin/env bash
# The demo of ./run demo: creates the product's registry values and data folder in a private Wine prefix,
# then runs bridgectl.exe on the library.
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

play() {
    local shown=
    printf -v shown ' %q' "$@"
    printf '\n$%s\n' "$shown"
    "$wine" "$bin/$1.exe" "${@:2}" 2>&1 || printf '(exit code %d)\n' $?
}
bridgectl() { play bridgectl "$@"; }
bridgeadm() { play bridgeadm "$@"; }

# wait_for_text FILE TEXT GREP_OPTION: waits for a line of a file below the data folder.
wait_for_text() {
    local i
    for i in $(seq 200); do
        grep -q"$3" "$2" "$data/$1" 2>/dev/null && return
        sleep 0.05
    done
    die "$1 has no \"$2\""
}

# Waits for a line that the stand-ins write.
wait_for() { wait_for_text programs.txt "$1" xF; }

# Waits until the listening front end prints this event, which is given without its time.
wait_for_event() { wait_for_text events.txt " $1" F; }

# What an event means for a front end.
meaning() {
    case $1 in
    app-installed) echo "The player installed an app; a launcher adds its icon now." ;;
    apk-install-completed) echo "The APK file was installed: status 0 means success." ;;
    app-displayed) echo "The app is on the screen." ;;
    app-uninstalled) echo "The app and its icon are gone." ;;
    image-install-progress) echo "The manager downloads an image: status 1 means in progress, 2 complete." ;;
    instance-list-updated) echo "The list of instances may have changed; the library has loaded it." ;;
    create-instance-completed) echo "A new instance is ready." ;;
    *) die "unknown event $1" ;;
    esac
}

# Shows the events in their order, each with its meaning.
show_events() {
    local time name fields previous=
    while read -r time name fields; do
        [ "$name" = "$previous" ] || explain "$(meaning "$name")"
        printf '  %s %s %s\n' "${time:11:12}" "$name" "$fields"
        previous=$name
    done <"$data/events.txt"
}

registry_value() {
    "$wine" reg add 'HKLM\Software\Vantrel_nvo' /v "$1" /d "$2" /f >/dev/null
    printf '  %-16s %s\n' "$1" "$2"
}

title "The product: registry, data folder, configuration"
explain "In the registry (HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo):"
registry_value UserDefinedDir "$windows_data"
registry_value InstallDir "$windows_data\\Install\\"
registry_value Version "$(project_version)"
rm -rf "$data"
mkdir -p "$data/Logs"
cp -r "$tree/build/windows/standins" "$data/Install"
cp "$tree/demo/vantrel.conf" "$tree/demo/apps.json" "$data"
mkdir -p "$data/Engine/Nougat64"
cp -r "$tree/demo/AppCache" "$data/Engine/Nougat64"
explain "In the data folder: Logs/, the apps of an instance in Engine/, and vantrel.conf with $(wc -l <"$data/vantrel.conf") lines, among them:"
grep -E 'display_name|vtr.locale' "$data/vantrel.conf" | sed 's/^/  /'
cp "$data/vantrel.conf" "$data/before.conf"

title "A front end lists the instances"
bridgectl instances

title "It lists the apps of an instance, even if its player is not running"
bridgectl apps Nougat64

title "It reads typed values"
bridgectl conf get vtr.instance.Nougat64.display_name
bridgectl conf get vtr.instance.Nougat64_1.dpi
bridgectl conf get vtr.enable_adb_access
bridgectl conf get vtr.prefer_dedicated_gpu

title "It changes values and commits each change"
bridgectl conf set vtr.instance.Nougat64_1.dpi 320
bridgectl conf set vtr.enable_adb_access true
bridgectl conf set vtr.instance.Nougat64.display_name 'Zweitgerät 第二'

title "The lines of vantrel.conf that changed (- before, + after)"
diff -U0 "$data/before.conf" "$data/vantrel.conf" | grep -E '^[-+]vtr' || true

title "The log lines of the last change"
tail -n 4 "$data/Logs/Player.log"

title "Another front end listens for the events of the programs"
rm -f "$data/programs.txt"
export QX_STANDIN_OUTPUT="$windows_data\\programs.txt"
export QX_STANDIN_SECONDS=120
printf '\n$ bridgectl --client LogCollector events --count 11 &\n'
"$wine" "$bin/bridgectl.exe" --client LogCollector events --count 11 --timeout 120 \
    >"$data/events.txt" 2>"$data/listener.txt" &
listener=$!
wait_for_text listener.txt "bridgectl: listening on vtr_LogCollector_bridge_nvo" xF
explain "It runs in the background and prints each event; the events are shown below."

title "An app is installed: the player (a stand-in) is started from the install folder"
bridgectl install-apk Nougat64 'C:\Downloads\com.example.app.apk'
wait_for "serving: vtr_plr_Nougat64_nvo"
wait_for_text programs.txt "event apk-install-completed(" F
explain "The player's command line, the pipe that it serves, and the events that it sent when the work was"
explain "done, each with the pipe of the front end that received it:"
cat "$data/programs.txt"

title "The app is launched and uninstalled"
bridgectl launch Nougat64 com.example.app
wait_for_event 'app-displayed instance="Nougat64" package="com.example.app"'
bridgectl uninstall Nougat64 com.example.app
wait_for_event 'app-uninstalled instance="Nougat64" package="com.example.app"'

title "The manager (a stand-in) installs an image and creates an instance"
bridgectl install-image Nougat32
wait_for "serving: vtr_mim_nvo"
wait_for_event 'image-install-progress imageName="Nougat32" status=2 progress=100.0'
bridgectl create-instance Nougat64 4 4096 aga dx s21u
wait_for_event 'create-instance-completed status=0 instance="Nougat64_1"'

title "The events that the front end received, in order"
wait "$listener" || die "the listening front end ended with $?"
show_events

title "The player updates its app cache (here bridgeadm does); the next listing shows it"
bridgeadm sync-apps Nougat64 "$windows_data\\apps.json"
bridgectl apps Nougat64

title "One player is shut down, then all programs, the manager first"
bridgectl launch-url Nougat64_1 https://example.com/
wait_for "serving: vtr_plr_Nougat64_1_nvo"
bridgectl shutdown Nougat64
wait_for "ended: vtr_plr_Nougat64_nvo"
bridgectl shutdown
wait_for "ended: vtr_plr_Nougat64_1_nvo"
explain "The requests that the programs received, in order:"
grep -E 'Rpc|ended' "$data/programs.txt"
explain "The player of Nougat32 was not running; the log shows it:"
grep 'command failed' "$data/Logs/Player.log" | tail -n 1

title "bridgectl reports a wrong value or key before it calls the library"
bridgectl conf set vtr.instance.Nougat64_1.dpi many
bridgectl conf get vtr.no_such_key

explain ""
explain "Try more: ./run wine bridgectl.exe --help. The data folder is"
explain "${data#"$tree"/}"
