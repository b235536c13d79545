#!/usr/bin/env bash
# in-debian13.sh [--with-build] COMMAND...: runs a command in the Debian 13 of the cache, with the tree
# and the cache at their own paths. The build tree and the cache that ./run uses there are the other
# system's own. With --with-build the command sees those of this system, and a Wine prefix of its own.
# What it leaves running ends with it, and nothing stays mounted.
#   --root FOLDER first: that root
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

# Where the other system keeps what belongs to this tree.
kept="/var/lib/qx-bridge$tree"

bind() {
    mkdir -p "$root$1"
    mount --bind "${2:-$1}" "$root$1"
}

# A file of this system at another path there.
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

# One command at a time: Wine's server of one cannot serve programs of another's process namespace.
wait_for_others() {
    mkdir -p "$root$kept"
    exec 8>"$root$kept/lock"
    flock -n 8 || { say "Waiting for another command in Debian 13."; flock 8; }
}

if [ -z "$entered" ]; then
    [ "$(id -u)" = 0 ] || die "another system as a root folder needs root"
    wait_for_others
    [ $build = own ] || set -- --with-build "$@"
    exec unshare --mount --pid --fork --kill-child bash "$0" --root "$root" --entered "$@"
fi

# This shell is the first process of its namespace: all others end with it. So it stays.
mount_all
environment
case $PWD in "$tree" | "$tree"/*) folder=$PWD ;; *) folder=$tree ;; esac
status=0
chroot "$root" /usr/bin/env -i "${variables[@]}" /bin/bash -c 'cd "$0" && exec "$@"' "$folder" "$@" ||
    status=$?
exit $status
