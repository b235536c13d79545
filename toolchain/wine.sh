#!/usr/bin/env bash
# wine.sh PROGRAM ARGUMENT...: runs a Windows program under Wine in the build tree's prefix. Unix keeps only
# the low byte of an exit status, so 0x80000003 becomes 3.
set -u
tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$tree/build/windows/prefix}${QX_SECOND_PREFIX:+-2}
unset QX_SECOND_PREFIX
export WINEDEBUG=${WINEDEBUG:--all}
export WINESERVER=/usr/lib/wine/wineserver64
# Never ask to install anything, never open a crash dialog or a browser.
export WINEDLLOVERRIDES="mscoree=;mshtml=;winedbg.exe=d${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
export FONTCONFIG_FILE="$tree/toolchain/fonts.conf"
unset DISPLAY
# Wine needs the page at 0x7ffe0000, which is in the gigabyte where the kernel places the heap at random.
# About one start in 20,000 fails ("failed to map the shared user data"). A fixed heap address avoids
# that, but not every container allows it.
wine=(/usr/lib/wine/wine64)
if setarch -R true 2>/dev/null; then wine=(setarch -R "${wine[@]}"); fi
# The core of the prefix, if the tests gave it one. Programs that test concurrency use all cores.
if [ -z "${QX_ALL_CORES:-}" ] && [ -f "$WINEPREFIX/core" ]; then wine=(taskset -c "$(<"$WINEPREFIX/core")" "${wine[@]}"); fi
unset QX_ALL_CORES
exec "${wine[@]}" "$@"
