#!/usr/bin/env bash
# both-wines.sh BUILD: runs the Windows tests of BUILD under this system's Wine and under Debian 13's, and
# lists the test cases with different results. For ./run debian13 --tests, which starts this system's
# Wine server.
#   both-wines.sh BUILD --play FOLDER [CTEST-OPTION...]   runs them under one Wine; reports go to FOLDER
set -euo pipefail
. "$(dirname "$0")/common.sh"

build=$1
self="$tree/toolchain/both-wines.sh"

# Tests that run programs of the build machine do not depend on Wine.
windows_side=(--label-exclude '^native$')

# play RESULTS [CTEST-OPTION...]: runs the tests. Writes the system's name, CTest's list of tests, its
# report and a report of each test program to RESULTS, which must be empty. The reports contain the
# failures; the function itself succeeds.
play() {
    local results=$1
    shift
    rm -rf "$results"
    mkdir -p "$results"
    /usr/lib/wine/wine64 --version >"$results/system"
    ctest --test-dir "$build" --show-only=json-v1 >"$results/entries.json"
    say "== $(<"$results/system")"
    QX_TEST_REPORTS="Z:$results/" ctest --test-dir "$build" "${windows_side[@]}" "$@" \
        --output-on-failure --no-tests=error --test-output-size-passed 1000000 -j "$jobs" \
        --output-junit "$results/ctest.junit" || [ -f "$results/ctest.junit" ]
}

case ${2:-} in
--play) play "${@:3}" ;;
*)
    play "$build/results/here"
    # The package is a fixture that only this system's tools can make.
    bash "$tree/toolchain/in-debian13.sh" --with-build bash "$tree/toolchain/with-wine.sh" \
        bash "$self" "$build" --play "$build/results/debian13" --fixture-exclude-setup '.*'
    python3 "$tree/toolchain/compare_results.py" "$build/results/here" "$build/results/debian13"
    ;;
esac
