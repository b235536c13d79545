#!/usr/bin/env bash
# exports.sh READOBJ LIBRARY DEF HEADER NM IMPORT-LIBRARY...: the library exports exactly the names in the
# reviewed .def file, and the header and the import libraries contain the same names.
set -euo pipefail
readobj=$1 dll=$2 def=$3 header=$4 nm=$5
shift 5

reviewed=$(sed -n 's/^    \([A-Za-z0-9]*\)$/\1/p' "$def" | sort)
exported=$("$readobj" --coff-exports "$dll" | sed -n 's/^ *Name: \(..*\)$/\1/p' | sort)
declared=$(grep -o 'BRIDGE_CALL bridge[A-Za-z0-9]*(' "$header" | sed 's/BRIDGE_CALL //; s/($//' | sort)

[ -n "$reviewed" ] || { echo "the list is empty"; exit 1; }
diff <(echo "$reviewed") <(echo "$exported") || { echo "the library exports other names"; exit 1; }
diff <(echo "$reviewed") <(echo "$declared") || { echo "the header declares other names"; exit 1; }
for library in "$@"; do
    offered=$("$nm" "$library" 2>/dev/null | sed -n 's/.* __imp_\(bridge.*\)$/\1/p' | sort -u)
    diff <(echo "$reviewed") <(echo "$offered") || { echo "$library contains other names"; exit 1; }
done
echo "$(wc -l <<<"$reviewed") names: reviewed, exported, declared, and in $# import libraries"
