#!/usr/bin/env bash
# format.sh FORMATTER TREE: all C and C++ files are formatted according to .clang-format.
set -euo pipefail
formatter=$1 root=$2
[ -x "$formatter" ] || { echo "skipped: needs clang-format 16; other versions format differently"; exit 77; }

mapfile -t files < <(find "$root"/{bench,examples,fuzz,include,kit,Source,programs,tests} \
    -name '*.cpp' -o -name '*.h' -o -name '*.hpp' -o -name '*.c')
[ ${#files[@]} -gt 50 ] || { echo "only ${#files[@]} files found"; exit 1; }
"$formatter" --style="file:$root/.clang-format" --dry-run --Werror "${files[@]}"
echo "${#files[@]} files"
