# Functions for the scripts of this folder and ./run: cache, numbered steps, logs, stamps.
# shellcheck shell=bash

tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cache=${QX_BRIDGE_CACHE:-${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/qx-bridge}
jobs=$(nproc)
triple=x86_64-w64-mingw32

die() {
    printf '%s\n' "error: $*" >&2
    exit 1
}

. "$tree/toolchain/release.sh"

say() { printf '%s\n' "$*"; }

project_version() {
    sed -n 's/^project(QXBridge VERSION \([0-9.]*\).*/\1/p' "$tree/CMakeLists.txt"
}

# The time of the newest commit, so that a commit always gives the same package.
package_stamp() { git -C "$tree" log -1 --format=%ct 2>/dev/null || echo 315532800; }

# digest FILE...: 12 characters of a checksum over the files, without the usual times of the steps.
digest() { sed -E 's/^(step "[^"]*") "[^"]*"/\1/' "$@" | sha256sum | cut -c1-12; }

# A complete build has a stamp. A folder without one was interrupted.
toolchain_dir() {
    printf '%s' "$cache/toolchain-$llvm_version-$(digest "$tree/toolchain/windows.sh")"
}
qt_dir() {
    printf '%s' "$cache/qt-$llvm_version-$(digest "$tree/toolchain/windows.sh" "$tree/toolchain/qt.sh")"
}
is_complete() { [ -f "$1/.complete" ]; }
mark_complete() { touch "$1/.complete"; }

# begin_build DIR NAME: prepares DIR for a build and skips the steps that an interrupted build has
# finished.
begin_build() {
    if [ -d "$1" ]; then
        say "Continuing an interrupted build of $2."
    fi
    mkdir -p "$1"
    checkpoints="$1/.steps"
    mkdir -p "$checkpoints"
}

# cached_build DIR NAME [--dir]: the start of a script that fills DIR. Ends the script if DIR is complete.
# With --dir it prints DIR and ends the script.
cached_build() {
    prefix=$1
    if [ "${3:-}" = --dir ]; then
        printf '%s' "$prefix"
        exit 0
    fi
    if is_complete "$prefix"; then exit 0; fi
    begin_build "$prefix" "$2"
}

# unpack_source DSC FOLDER: unpacks a Debian source package and applies Debian's patches.
unpack_source() {
    rm -rf "$2"
    dpkg-source --no-check -x "$1" "$2"
}

# Prints the free space of the cache and the tree: "/: 12 MB free".
free_space() {
    df -m --output=target,avail "$cache" "$tree" |
        awk 'NR > 1 && !seen[$1]++ { printf "%s%s: %s MB free", comma, $1, $2; comma = ", " }'
}

# reason_for LOG: prints the cause of a failure if the user can remove it. The log can be on a full disk,
# so this also checks the free space.
reason_for() {
    if grep -q 'No space left on device\|You don.t have enough free space' "$1" ||
        free_space | grep -q ': 0 MB'; then
        printf 'the disk is full (%s)' "$(free_space)"
    elif grep -q 'Could not get lock\|Unable to acquire the dpkg' "$1"; then
        printf 'another program is installing packages; try again when it has finished'
    elif grep -q 'Temporary failure resolving\|Could not resolve\|Could not connect\|Unable to connect\|Connection failed\|Network is unreachable' "$1"; then
        printf 'the package archive cannot be reached; check the network and /etc/apt'
    elif grep -q 'Read-only file system' "$1"; then
        printf 'the file system of %s or %s is read-only' "$cache" "$tree"
    fi
}

# progress LOG: prints ninja's progress from the log, such as "[12/345]".
progress() { tail -c 400 "$1" | grep -o '^\[[0-9]*/[0-9]*\]' | tail -n 1; }

# show_progress LOG SECONDS: updates a line on a terminal, otherwise prints a line every 20 seconds.
show_progress() {
    local done_part=''
    done_part=$(progress "$1") || true
    if [ -n "$done_part" ]; then
        done_part=$(printf '%s' "$done_part" | awk -F'[][/]' '{ printf ", %d %% (%d of %d)", 100 * $2 / $3, $2, $3 }')
    fi
    if [ -t 1 ]; then
        printf '\r\033[K        %d s%s' "$2" "$done_part"
    elif [ $(($2 - shown)) -ge 20 ]; then
        shown=$2
        printf '        %d s%s\n' "$2" "$done_part"
    fi
}

# step LABEL USUAL COMMAND...: runs COMMAND with its output in a log and shows the progress. USUAL is the
# time that the step takes on two cores. The caller sets steps_total. Skips a step that an interrupted
# build has finished.
steps_done=0
steps_total=0
checkpoints=''
step() {
    local label=$1 usual=$2 name log pid started=$SECONDS shown=0 reason
    shift 2
    steps_done=$((steps_done + 1))
    name=$(printf '%s' "$label" | tr -cs 'A-Za-z0-9' '-')
    if [ -n "$checkpoints" ] && [ -f "$checkpoints/$name" ]; then
        printf '[%d/%d] %s: already done\n' "$steps_done" "$steps_total" "$label"
        return
    fi
    mkdir -p "$cache/logs"
    log="$cache/logs/$name.log"
    printf '[%d/%d] %s (usually %s)\n' "$steps_done" "$steps_total" "$label" "$usual"
    (set -e; "$@") >"$log" 2>&1 </dev/null &
    pid=$!
    while kill -0 "$pid" 2>/dev/null; do
        sleep 0.2
        show_progress "$log" $((SECONDS - started))
    done
    if [ -t 1 ]; then printf '\r\033[K'; fi
    if ! wait "$pid"; then
        reason=$(reason_for "$log")
        [ -z "$reason" ] || die "$label: $reason (log: $log)"
        printf '        failed after %d s; the last lines of the log:\n' $((SECONDS - started)) >&2
        tail -n 25 "$log" | sed 's/^/        | /' >&2
        die "step \"$label\" failed; log: $log"
    fi
    if [ -n "$checkpoints" ]; then touch "$checkpoints/$name"; fi
    printf '        done in %d s\n' $((SECONDS - started))
}
