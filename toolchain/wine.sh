#!/usr/bin/env bash
# Runs a Windows program under Wine in the build tree's own prefix: wine.sh PROGRAM ARGUMENT...
# Unix sees only the low byte of an exit status: 0x80000003 arrives as 3.
set -u
tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$tree/build/windows/prefix}
export WINEDEBUG=${WINEDEBUG:--all}
export WINESERVER=/usr/lib/wine/wineserver64
# Never ask to install anything, never open a crash dialog or a browser.
export WINEDLLOVERRIDES="mscoree=;mshtml=;winedbg.exe=d${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
unset DISPLAY
exec /usr/lib/wine/wine64 "$@"
