# Shared by the scripts of this folder and by ./run: the cache, numbered steps, logs, stamps.
# shellcheck shell=bash

tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cache=${QX_BRIDGE_CACHE:-${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/qx-bridge}
jobs=$(nproc)
triple=x86_64-w64-mingw32
llvm=/usr/lib/llvm-16/bin

die() {
    printf '%s\n' "error: $*" >&2
    exit 1
}

say() { printf '%s\n' "$*"; }

project_version() {
    sed -n 's/^project(QXBridge VERSION \([0-9.]*\).*/\1/p' "$tree/CMakeLists.txt"
}

# The time of the newest commit: the same commit gives the same package.
package_stamp() { git -C "$tree" log -1 --format=%ct 2>/dev/null || echo 315532800; }

# digest FILE...: 12 characters that change whenever one of the files does.
digest() { cat "$@" | sha256sum | cut -c1-12; }

# A finished build carries its stamp; a folder without one was interrupted.
toolchain_dir() {
    printf '%s' "$cache/toolchain-$(digest "$tree/toolchain/windows.sh")"
}
qt_dir() {
    printf '%s' "$cache/qt-$(digest "$tree/toolchain/windows.sh" "$tree/toolchain/qt.sh")"
}
is_complete() { [ -f "$1/.complete" ]; }
mark_complete() { touch "$1/.complete"; }

# begin_build DIR NAME: an empty DIR to build in. What an interrupted build left is thrown away.
begin_build() {
    if [ -d "$1" ]; then
        say "An earlier build of $2 was interrupted: starting it again."
        rm -rf "$1"
    fi
    mkdir -p "$1"
}

# cached_build DIR NAME [--dir]: what a script that fills DIR begins with. It ends here when DIR is
# complete, and with --dir, which only asks where DIR is.
cached_build() {
    prefix=$1
    if [ "${3:-}" = --dir ]; then
        printf '%s' "$prefix"
        exit 0
    fi
    if is_complete "$prefix"; then exit 0; fi
    begin_build "$prefix" "$2"
}

# step LABEL USUAL COMMAND...: runs COMMAND with its output in a log, and shows that it is alive.
# The caller sets steps_total; USUAL is the time that the step took on two cores.
steps_done=0
steps_total=0
step() {
    local label=$1 usual=$2 log pid started=$SECONDS shown=0 elapsed
    shift 2
    steps_done=$((steps_done + 1))
    mkdir -p "$cache/logs"
    log="$cache/logs/$(printf '%s' "$label" | tr -cs 'A-Za-z0-9' '-').log"
    printf '[%d/%d] %s (usually %s)\n' "$steps_done" "$steps_total" "$label" "$usual"
    (set -e; "$@") >"$log" 2>&1 </dev/null &
    pid=$!
    while kill -0 "$pid" 2>/dev/null; do
        sleep 0.2
        elapsed=$((SECONDS - started))
        if [ $((elapsed - shown)) -ge 20 ]; then
            shown=$elapsed
            printf '        %d s so far, %d lines of output\n' "$elapsed" "$(wc -l <"$log")"
        fi
    done
    if ! wait "$pid"; then
        printf '        failed after %d s; its last lines:\n' $((SECONDS - started)) >&2
        tail -n 25 "$log" | sed 's/^/        | /' >&2
        die "step \"$label\" failed; the whole log: $log"
    fi
    printf '        done in %d s\n' $((SECONDS - started))
}
