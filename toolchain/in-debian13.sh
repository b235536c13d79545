#!/usr/bin/env bash
# in-debian13.sh [--with-build] COMMAND...: runs a command in the Debian 13 of the cache. The tree and the
# cache have the same paths there. ./run uses a separate build tree and a separate cache. With
# --with-build the command uses those of this system and a separate Wine prefix. When the command ends,
# its processes end too, and nothing stays mounted.
#   --root FOLDER, as the first option, uses another root folder
set -euo pipefail
. "$(dirname "$0")/common.sh"

root=
build=own
entered=
while true; do
    case ${1:-} in
    --root) root=$2 && shift 2 ;;
    --with-build) build=shared && shift ;;
    --entered) entered=yes && shift ;;
    *) break ;;
    esac
done
[ $# -gt 0 ] || die "in-debian13.sh [--with-build] COMMAND..."
[ -n "$root" ] || root="$(bash "$tree/toolchain/debian13.sh" --dir)/root"

# The folder of the other system for this tree's data.
kept="/var/lib/qx-bridge$tree"

bind() {
    mkdir -p "$root$1"
    mount --bind "${2:-$1}" "$root$1"
}

# Mounts a file of this system at another path there.
bind_file() {
    [ -f "$1" ] || return 0
    [ -e "$root$2" ] || install -D /dev/null "$root$2"
    mount --bind "$1" "$root$2"
}

mount_all() {
    mount -t proc proc "$root/proc"
    mount --rbind /sys "$root/sys"
    mount --rbind /dev "$root/dev"
    mount -t tmpfs tmpfs "$root/dev/shm"
    bind_file /etc/resolv.conf /etc/resolv.conf
    bind_file /etc/hosts /etc/hosts
    bind_file "${HOME:-/root}/.npmrc" /root/.npmrc
    bind "$tree"
    bind "$cache"
    mkdir -p "$root$kept"/{build,Testing}
    if [ $build = own ]; then
        bind "$tree/build" "$root$kept/build"
    elif [ -d "$tree/build/windows" ]; then
        bind "$tree/build/windows/Testing" "$root$kept/Testing"  # where CTest writes
    fi
}

environment() {
    local name
    variables=(HOME=/root LANG=C.UTF-8 "TERM=${TERM:-dumb}"
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin)
    for name in {http,https,no}_proxy {HTTP,HTTPS,NO}_PROXY; do
        if [ -n "${!name:-}" ]; then variables+=("$name=${!name}"); fi
    done
    if [ $build = own ]; then
        variables+=(QX_BRIDGE_CACHE=/var/cache/qx-bridge)
    else
        variables+=("QX_BRIDGE_CACHE=$cache" "WINEPREFIX=$kept/prefix")
    fi
}

# One command at a time, because a Wine server cannot serve programs of another process namespace.
wait_for_others() {
    mkdir -p "$root$kept"
    exec 8>"$root$kept/lock"
    flock -n 8 || { say "Waiting for another command in Debian 13."; flock 8; }
}

if [ -z "$entered" ]; then
    [ "$(id -u)" = 0 ] || die "Debian 13 needs root rights to run"
    wait_for_others
    [ $build = own ] || set -- --with-build "$@"
    exec unshare --mount --pid --fork --kill-child bash "$0" --root "$root" --entered "$@"
fi

# This shell must outlive the command: all processes of its namespace end with it.
mount_all
environment
case $PWD in "$tree" | "$tree"/*) folder=$PWD ;; *) folder=$tree ;; esac
status=0
chroot "$root" /usr/bin/env -i "${variables[@]}" /bin/bash -c 'cd "$0" && exec "$@"' "$folder" "$@" ||
    status=$?
exit $status
