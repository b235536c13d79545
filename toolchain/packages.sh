#!/usr/bin/env bash
# packages.sh GROUP... [NAME...]: installs the Debian packages that are missing from these groups of
# packages.txt (build, test) and these single ones.
set -euo pipefail
. "$(dirname "$0")/common.sh"

# group NAME: its packages.
group() {
    sed -n "/^# $1:/,/^$/{/^[^#]/p}" "$tree/toolchain/packages.txt" | sed "s/@LLVM@/$llvm_version/"
}

wanted=()
for name in "$@"; do
    case $name in
    build | test) mapfile -t -O "${#wanted[@]}" wanted < <(group "$name") ;;
    *) wanted+=("$name") ;;
    esac
done
mapfile -t missing < <(
    dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null |
        sed -n 's/^installed //p' | sort | comm -13 - <(printf '%s\n' "${wanted[@]}" | sort))
[ ${#missing[@]} -gt 0 ] || exit 0

require_release
[ "$(id -u)" = 0 ] || die "installing packages needs root; missing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
steps_total=2
step "Package lists" "5 s" apt-get update
step "Packages" "30 s" apt-get -o DPkg::Lock::Timeout="${QX_APT_WAIT:-60}" install -y --no-install-recommends "${missing[@]}"
