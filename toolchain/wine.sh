#!/usr/bin/env bash
# Runs a Windows program under Wine in the build tree's own prefix: wine.sh PROGRAM ARGUMENT...
# Unix sees only the low byte of an exit status: 0x80000003 arrives as 3.
set -u
tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$tree/build/windows/prefix}${QX_SECOND_PREFIX:+-2}
unset QX_SECOND_PREFIX
export WINEDEBUG=${WINEDEBUG:--all}
export WINESERVER=/usr/lib/wine/wineserver64
# Never ask to install anything, never open a crash dialog or a browser.
export WINEDLLOVERRIDES="mscoree=;mshtml=;winedbg.exe=d${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
unset DISPLAY
# The kernel puts a program's heap anywhere within a gigabyte, and Wine needs the page at 0x7ffe0000
# there: one start in some twenty thousand fails on it ("failed to map the shared user data"). With the
# heap in its fixed place none does. Not every container lets a program ask for that.
wine=(/usr/lib/wine/wine64)
if setarch -R true 2>/dev/null; then wine=(setarch -R "${wine[@]}"); fi
exec "${wine[@]}" "$@"
