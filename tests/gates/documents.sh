#!/usr/bin/env bash
# Checks the documents' links and pictures (documents.py), and that the log lines that they explain are in the
# source.
set -euo pipefail
root=$1
cd "$root"

PYTHONDONTWRITEBYTECODE=1 python3 tests/gates/documents.py "$root"

source=$(find Source -name '*.cpp' -exec cat {} + -o -name '*.h' -exec cat {} +)
lines=0
while read -r line; do
    lines=$((lines + 1))
    grep -qF "\"$line" <<<"$source" || { echo "no module logs: $line"; exit 1; }
done < <(sed -n 's/^| `\(.*%[sd].*\|Error .*\)` |.*/\1/p' docs/reference/codes.md)
[ "$lines" -gt 10 ] || { echo "only $lines log lines found"; exit 1; }
echo "$lines log lines"
