#!/usr/bin/env bash
# spelling.sh CODESPELL TREE: codespell finds no misspellings in the tree.
set -euo pipefail
codespell=$1
cd "$2"
# The letter of an escape sequence, as in "\nFile", is not part of the next word.
options=(--ignore-words tests/gates/spelling.txt --ignore-regex '(?<!\\)(?:\\\\)*\\[nrt](?=[A-Z])')

if echo '"a\nT'eh'"' | "$codespell" "${options[@]}" - >/dev/null; then
    echo "codespell misses a misspelling after an escape sequence"
    exit 1
fi
mapfile -t files < <(find . \( -name .git -o -name build -o -name corpus -o -name node_modules \) -prune \
    -o -type f ! -name '*.png' ! -name '*.svg' -print)
[ ${#files[@]} -gt 500 ] || { echo "only ${#files[@]} files found"; exit 1; }
"$codespell" "${options[@]}" "${files[@]}"
echo "${#files[@]} files"
