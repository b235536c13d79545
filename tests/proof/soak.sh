#!/usr/bin/env bash
# soak.sh BUILD: the long forms of what each run of the tests plays shortly (support/Proof.h).
set -euo pipefail
build=$1
tree=$(cd "$(dirname "$0")/../.." && pwd)
export BRIDGE_PROOF=full QX_STANDIN_CLIENTS=none

play() {
    local test=$1 filter=$2
    printf '== %s: %s\n' "$test" "$filter"
    "$tree/toolchain/wine.sh" "$build/bin/$test.exe" --gtest_filter="$filter" | grep -E '^\[ |Failure|Which|actual'
}

play ipc_test 'IpcServerLoadTest.*:IpcPeerDeathTest.*'
play hosts_test 'EventsTest.TheLibraryIsLoaded*:ShutdownTest.ManyRequests*'
play conf_test 'ConfCrowdTest.*'
play proof_test '*'
printf '== inject.sh\n'
bash "$tree/tests/proof/inject.sh" "$build"
