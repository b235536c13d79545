#!/usr/bin/env bash
# The documents' links lead somewhere, and the log lines that they explain are in the source.
set -euo pipefail
root=$1
cd "$root"

links=0
for page in README.md docs/*.md docs/*/*.md; do
    while read -r link; do
        [ -e "$(dirname "$page")/$link" ] || { echo "$page: no $link"; exit 1; }
        links=$((links + 1))
    done < <(grep -oE '\]\([^)#:]+' "$page" | sed 's/^](//')
done
[ "$links" -gt 20 ] || { echo "only $links links found"; exit 1; }

source=$(find Source -name '*.cpp' -exec cat {} + -o -name '*.h' -exec cat {} +)
lines=0
while read -r line; do
    lines=$((lines + 1))
    grep -qF "\"$line" <<<"$source" || { echo "no module logs: $line"; exit 1; }
done < <(sed -n 's/^| `\(.*%[sd].*\|Error .*\)` |.*/\1/p' docs/reference/codes.md)
[ "$lines" -gt 10 ] || { echo "only $lines log lines found"; exit 1; }
echo "$links links, $lines log lines"
