#!/usr/bin/env bash
# spelling.sh CODESPELL TREE: codespell finds no misspelling in what the project consists of.
set -euo pipefail
codespell=$1
cd "$2"

mapfile -t files < <(find . \( -name .git -o -name build -o -name corpus -o -name node_modules \) -prune \
    -o -type f ! -name '*.png' ! -name '*.svg' -print)
[ ${#files[@]} -gt 500 ] || { echo "only ${#files[@]} files found"; exit 1; }
"$codespell" --ignore-words tests/gates/spelling.txt "${files[@]}"
echo "${#files[@]} files"
