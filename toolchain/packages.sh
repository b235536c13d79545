#!/usr/bin/env bash
# packages.sh [NAME...]: installs the Debian packages of packages.txt, and these, that are missing.
set -euo pipefail
. "$(dirname "$0")/common.sh"

wanted=$(grep -v '^#' "$tree/toolchain/packages.txt")
missing=()
for name in $wanted "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null)" = installed ] ||
        missing+=("$name")
done
[ ${#missing[@]} -gt 0 ] || exit 0

[ "$(id -u)" = 0 ] || die "these packages are missing, and installing needs root: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
steps_total=2
step "Package lists" "5 s" apt-get update
step "Packages" "1 min" apt-get install -y --no-install-recommends "${missing[@]}"
