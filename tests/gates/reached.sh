#!/usr/bin/env bash
# reached.sh READOBJ PROGRAM DEF: bridgectl imports every function that the library exports.
set -euo pipefail
readobj=$1 program=$2 def=$3

exported=$(sed -n 's/^    \([A-Za-z0-9]*\)$/\1/p' "$def" | sort)
imported=$("$readobj" --coff-imports "$program" | sed -n 's/^ *Symbol: \(bridge[A-Za-z0-9]*\) .*/\1/p' | sort)
diff <(echo "$exported") <(echo "$imported") || { echo "the exports (<) and the imports of bridgectl (>) differ"; exit 1; }
echo "$(wc -l <<<"$imported") functions"
