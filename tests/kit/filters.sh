#!/usr/bin/env bash
# filters.sh TREE TESTS: each filter of kit/checks.txt names tests of its program in the folder TESTS:
# those for Windows alone do not run here.
set -euo pipefail
tree=$1 tests=$2

count=0
while read -r program filter; do
    [ -f "$tests/${program#tests/}" ] || { echo "no program $program"; exit 1; }
    IFS=: read -ra patterns <<<"${filter#--gtest_filter=}"
    for pattern in "${patterns[@]}"; do
        case $pattern in -*) pattern=${pattern#-} ;; esac
        names=$("$tree/toolchain/wine.sh" "$tests/${program#tests/}" --gtest_list_tests \
            --gtest_filter="$pattern" </dev/null)
        grep -q '^  ' <<<"$names" || { echo "no test of $program is named $pattern"; exit 1; }
        count=$((count + 1))
    done
done < <(sed -n 's/^run = \(tests[^ ]*\) \(--gtest_filter=.*\)/\1 \2/p' "$tree/kit/checks.txt")
[ "$count" -gt 30 ] || { echo "only $count patterns found"; exit 1; }
echo "$count patterns"
