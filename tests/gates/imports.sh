#!/usr/bin/env bash
# imports.sh READOBJ LIBRARY QT-DLL...: the library imports only system DLLs, the Universal C Runtime,
# Qt5Core and Qt5Network. None of the DLLs uses fibre-local storage, because Windows calls its callback at
# the end of a thread, when the host may already have unloaded the DLL.
set -euo pipefail
readobj=$1 dll=$2
shift

imported=$("$readobj" --coff-imports "$dll" | sed -n 's/^  Name: \(..*\)$/\1/p' | sort -u)
[ -n "$imported" ] || { echo "no imports found"; exit 1; }
echo "$imported"
foreign=$(grep -viE '^(kernel32|advapi32|shell32|psapi|user32)\.dll$|^api-ms-win-crt-.*\.dll$|^Qt5(Core|Network)\.dll$' \
    <<<"$imported" || true)
[ -z "$foreign" ] || { echo "not allowed: $foreign"; exit 1; }
grep -q '^api-ms-win-crt-' <<<"$imported" || { echo "not linked to the Universal C Runtime"; exit 1; }

for module; do
    functions=$("$readobj" --coff-imports "$module" | sed -n 's/^  Symbol: \([^ ]*\).*$/\1/p')
    grep -qx 'GetLastError' <<<"$functions" || { echo "$module: no functions found"; exit 1; }
    if grep -x 'FlsAlloc' <<<"$functions"; then echo "not allowed in $module"; exit 1; fi
done
