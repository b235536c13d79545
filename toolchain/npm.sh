# Shared by the scripts of this folder that fetch programs for Windows from npm. No install script of a
# package runs: packages are only unpacked.
# shellcheck shell=bash

install_npm() {
    [ "$(id -u)" = 0 ] || die "npm is missing, and installing it needs root"
    apt-get update
    DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends npm
}

# unpack_packages PACKAGES FILE...: fails when a package is not the one with the sum, or lacks a FILE.
unpack_packages() {
    local packages=$1 name version sum folder
    shift
    mkdir -p "$prefix/packed"
    cd "$prefix/packed"
    while read -r name version sum folder; do
        [ -n "$name" ] || continue
        npm pack --ignore-scripts "$name@$version"
        echo "$sum  $name-$version.tgz" | sha256sum --check
        mkdir -p "$prefix/$folder"
        tar xzf "$name-$version.tgz" -C "$prefix/$folder" --strip-components=1
    done <<<"$packages"
    cd "$prefix"
    rm -rf packed
    ls "$@"
}

# fetch_from_npm LABEL USUAL PACKAGES FILE...: completes $prefix. A line of PACKAGES has name, version,
# sha256 of the package, and the folder of $prefix that it is unpacked into.
fetch_from_npm() {
    local label=$1 usual=$2
    shift 2
    steps_total=1
    if ! command -v npm >/dev/null; then
        steps_total=2
        step "npm" "1 min" install_npm
    fi
    step "$label" "$usual" unpack_packages "$@"
    mark_complete "$prefix"
}
