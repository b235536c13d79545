#!/usr/bin/env bash
# both-wines.sh BUILD: plays the Windows side of the tests of BUILD under this system's Wine and under
# that of Debian 13, and says which test cases ended differently. For ./run debian13 --tests, which has
# this system's Wine server running.
#   both-wines.sh BUILD --play FOLDER [CTEST-OPTION...]   plays them under one Wine; reports in FOLDER
set -euo pipefail
. "$(dirname "$0")/common.sh"

build=$1
self="$tree/toolchain/both-wines.sh"

# What runs programs of the build machine says nothing about Windows.
windows_side=(--label-exclude '^native$')

# play RESULTS [CTEST-OPTION...]: the system's name, CTest's entries and report, and one of each program
# of tests, in an empty folder. What fails is in the reports, and not this function's failure.
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
    # The package was made here, by tools of this system: a fixture, which is not made again there.
    bash "$tree/toolchain/in-debian13.sh" --with-build bash "$tree/toolchain/with-wine.sh" \
        bash "$self" "$build" --play "$build/results/debian13" --fixture-exclude-setup '.*'
    python3 "$tree/toolchain/compare_results.py" "$build/results/here" "$build/results/debian13"
    ;;
esac
