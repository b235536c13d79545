# Everything that depends on this machine's release of Debian. No other file names releases.
# shellcheck shell=bash

# shellcheck disable=SC1091
case "$(. /etc/os-release 2>/dev/null && echo "${ID:-} ${VERSION_CODENAME:-}")" in
"debian bookworm") release=bookworm llvm_version=16 ;;
"debian trixie") release=trixie llvm_version=19 ;;
*) release='' llvm_version=16 ;;
esac
release_number() { [ "$release" = trixie ] && echo 13 || echo 12; }
llvm=/usr/lib/llvm-$llvm_version/bin

# Ends a command that needs a supported release.
require_release() {
    [ -n "$release" ] || die "this system is neither Debian 12 nor Debian 13. The scripts in toolchain/" \
        "need one of these, amd64, as root, with its own LLVM 16 or 19, Wine and sources of mingw-w64" \
        "and Qt 5.15; toolchain/packages.txt lists every package."
}
