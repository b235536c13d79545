#!/usr/bin/env bash
# wine-test.sh PROGRAM ARGUMENT...: runs a test program under Wine for CTest, which waits until the
# program's output is closed. Wine can leave a console process or a desktop running, which holds the
# output open. The program therefore writes to a file, and this script copies it while the program runs.
set -u
output=$(mktemp)
trap 'rm -f "$output"' EXIT
"$(dirname "$0")/wine.sh" "$@" >"$output" 2>&1 &
program=$!
tail --pid="$program" -s 0.05 -n +1 -f "$output"
wait "$program"
status=$?
# A program that loses its Wine server ends with status 0.
if [ "$status" = 0 ] && ! grep -qa '^\[  PASSED  \]' "$output"; then
    echo "the program has ended without a result"
    status=1
fi
exit "$status"
