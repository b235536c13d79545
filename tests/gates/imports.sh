#!/usr/bin/env bash
# The library needs system DLLs, the Universal C Runtime, Qt5Core and Qt5Network, and nothing else.
set -euo pipefail
readobj=$1 dll=$2

imported=$("$readobj" --coff-imports "$dll" | sed -n 's/^  Name: \(..*\)$/\1/p' | sort -u)
[ -n "$imported" ] || { echo "no imports found"; exit 1; }
echo "$imported"
foreign=$(grep -viE '^(kernel32|advapi32|shell32|psapi|user32)\.dll$|^api-ms-win-crt-.*\.dll$|^Qt5(Core|Network)\.dll$' \
    <<<"$imported" || true)
[ -z "$foreign" ] || { echo "not allowed: $foreign"; exit 1; }
grep -q '^api-ms-win-crt-' <<<"$imported" || { echo "not linked to the Universal C Runtime"; exit 1; }
