#!/usr/bin/env bash
# both-wines.sh BUILD: plays the Windows programs among the tests of BUILD under this system's Wine and
# under that of Debian 13, and says which ended differently. For ./run debian13 --tests, which has this
# system's Wine server running.
set -euo pipefail
. "$(dirname "$0")/common.sh"

build=$1

# play RESULTS: CTest's report and one of each program of tests, in an empty folder. What fails is in
# the reports, and not this function's failure.
play() {
    rm -rf "$1"
    mkdir -p "$1"
    QX_TEST_REPORTS="Z:$1/" ctest --test-dir "$build" --label-exclude '^native$' --output-on-failure \
        --no-tests=error -j "$jobs" --output-junit "$1/ctest.junit" || [ -f "$1/ctest.junit" ]
}

play_there() {
    bash "$tree/toolchain/prefix.sh" up
    trap 'bash "$tree/toolchain/prefix.sh" down' EXIT
    play "$1"
}

case ${2:-} in
--there) play_there "$3" ;;
*)
    say "== $(/usr/lib/wine/wine64 --version), here"
    play "$build/results/here"
    there=$(bash "$tree/toolchain/in-debian13.sh" --with-build /usr/lib/wine/wine64 --version)
    say "== $there, in Debian 13"
    bash "$tree/toolchain/in-debian13.sh" --with-build \
        bash "$tree/toolchain/both-wines.sh" "$build" --there "$build/results/debian13"
    python3 "$tree/toolchain/compare_results.py" "$build/results/here" "$build/results/debian13"
    ;;
esac
