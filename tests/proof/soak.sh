#!/usr/bin/env bash
# soak.sh BUILD [PERCENT]: plays the long forms of the proofs, or PERCENT of them. Each test run plays the
# short forms (support/Proof.h).
set -euo pipefail
build=$1 percent=${2:-100}
tree=$(cd "$(dirname "$0")/../.." && pwd)
# Other values would give batches of different sizes.
[[ $percent =~ ^([1-9]0|100)$ ]] || {
    echo "error: the part of the long forms is 10, 20 ... 100 percent, not $percent" >&2
    exit 1
}
export BRIDGE_PROOF=$percent QX_STANDIN_CLIENTS=none

# Much more than any part takes on a busy machine.
minutes=60

# play TEST PATTERN...: a pattern that matches no test is an error, for example after a renaming.
play() {
    local test=$1 pattern names filter
    shift
    printf '== %s: %s\n' "$test" "$*"
    for pattern in "$@"; do
        names=$("$tree/toolchain/wine.sh" "$build/tests/$test.exe" --gtest_list_tests \
            --gtest_filter="$pattern")
        grep -q '^  ' <<<"$names" || {
            echo "no test of $test is named $pattern" >&2
            return 1
        }
    done
    filter=$(IFS=: && echo "$*")
    timeout -k 10 "${minutes}m" "$tree/toolchain/wine.sh" "$build/tests/$test.exe" \
        --gtest_filter="$filter" | grep -E '^\[ |Failure|Which|actual'
}

play ipc_test 'IpcServerLoadTest.*' 'IpcPeerDeathTest.*'
play hosts_test 'EventsTest.TheLibraryIsLoaded*' 'EventsTest.TenThousandEvents*' \
    'EventsTest.MalformedPacketsOn*' 'ShutdownTest.ManyRequests*'
play conf_test 'ConfCrowdTest.*' 'ConfModelTest.*'
play proof_test '*'
printf '== inject.sh\n'
timeout -k 10 "${minutes}m" bash "$tree/tests/proof/inject.sh" "$build"
