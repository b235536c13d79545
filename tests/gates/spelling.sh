#!/usr/bin/env bash
# spelling.sh CODESPELL TREE: codespell finds no misspellings in the tree.
set -euo pipefail
codespell=$1
cd "$2"
usual=(--ignore-words tests/gates/spelling.txt)
code=("${usual[@]}")
# In code, the letter of an escape sequence is not part of the next word. Only newer versions consider that.
echo '"\nin"' | "$codespell" - >/dev/null || code+=(--ignore-regex '(?<!\\)(?:\\\\)*\\[nrt]')

mapfile -t files < <(find . \( -name .git -o -name build -o -name corpus -o -name node_modules \) -prune \
    -o -type f ! -name '*.png' ! -name '*.svg' -print)
mapfile -t sources < <(printf '%s\n' "${files[@]}" | grep -E '\.(c|cpp|cs|h|hpp|js|mjs|mts|py|sh|ts)$')
mapfile -t others < <(printf '%s\n' "${files[@]}" | grep -vxFf <(printf '%s\n' "${sources[@]}"))
[ ${#sources[@]} -gt 400 ] && [ ${#others[@]} -gt 50 ] || { echo "only ${#files[@]} files found"; exit 1; }
"$codespell" "${code[@]}" "${sources[@]}"
"$codespell" "${usual[@]}" "${others[@]}"
echo "${#files[@]} files"
