#!/usr/bin/env bash
# Debian 13 in a folder of the cache, with its own Wine: a second system to run the project on.
#   debian13.sh          makes it when it is missing
#   debian13.sh --dir    says where it is
set -euo pipefail
. "$(dirname "$0")/common.sh"

cached_build "$cache/debian13-$(digest "$tree/toolchain/debian13.sh")" "Debian 13" "$@"
release=trixie
root="$prefix/root"
packages=(ca-certificates cmake python3 wine wine64)

install_debootstrap() {
    apt-get update
    DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends debootstrap
}

# This machine's own package sources, turned into those of the other release.
sources_of_release() {
    local own file
    own=$(. /etc/os-release && echo "$VERSION_CODENAME")
    mkdir -p "$1"
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.{list,sources}; do
        [ -f "$file" ] && grep -qw "$own" "$file" || continue
        sed "s/\b$own\b/$release/g" "$file" >"$1/$(basename "$file")"
    done
    # The one that belongs beside the folder.
    if [ -f "$1/sources.list" ]; then mv "$1/sources.list" "$1/../"; fi
}

# The first address with the release itself, in either form of a list.
mirror() {
    sed -nE "s/^deb (\[.*\] )?(\S+) $release .*/\2/p" "$prefix"/sources*.list \
        "$prefix"/sources/*.list 2>/dev/null | grep -m 1 . && return
    awk -v release="$release" '
        /^$/ || FNR == 1 { if (wanted && uri != "") exit; uri = wanted = "" }
        /^URIs:/ { uri = $2 }
        /^Suites:/ { for (i = 2; i <= NF; ++i) if ($i == release) wanted = 1 }
        END { if (wanted) print uri }' "$prefix"/sources/*.sources 2>/dev/null | grep .
}

# What apt was told about the way to the sources, and whom to trust.
apt_settings() {
    apt-config dump --no-empty Acquire | grep -E '^Acquire::(http|https|ftp|Check-|Retries|ForceIPv)' || true
}

bootstrap() {
    local site
    sources_of_release "$prefix/sources"
    site=$(mirror) || die "no package source of this machine has Debian's own packages"
    # What it mounts in the new root is gone with the namespace.
    unshare --mount debootstrap --variant=minbase --include=ca-certificates \
        "$release" "$root" "$site"
}

configure_apt() {
    apt_settings >"$root/etc/apt/apt.conf.d/90machine"
    rm -f "$root/etc/apt/sources.list"
    cp "$prefix"/sources/* "$root/etc/apt/sources.list.d/"
    if [ -f "$prefix/sources.list" ]; then cp "$prefix/sources.list" "$root/etc/apt/"; fi
    if [ -d /usr/local/share/ca-certificates ]; then
        cp -rL /usr/local/share/ca-certificates "$root/usr/local/share/"
        chroot "$root" update-ca-certificates
    fi
}

install_packages() {
    bash "$tree/toolchain/in-debian13.sh" --root "$root" bash -c '
        export DEBIAN_FRONTEND=noninteractive
        apt-get update && apt-get install -y --no-install-recommends "$@" && apt-get clean' \
        bash "${packages[@]}"
}

[ "$(id -u)" = 0 ] || die "making another system needs root"
say "Making Debian 13 in $prefix"
steps_total=3
if ! command -v debootstrap >/dev/null; then
    steps_total=4
    step "debootstrap" "10 s" install_debootstrap
fi
step "Debian 13" "3 min" bootstrap
step "Package sources of Debian 13" "2 s" configure_apt
step "Packages of Debian 13" "1 min" install_packages
mark_complete "$prefix"
