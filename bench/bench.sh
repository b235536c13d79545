#!/usr/bin/env bash
# Measures and reports; ./run bench comes here when everything is built and Wine runs.
#   bench.sh [--check|--record] [ROW...]
# --check compares the ratios with bench/recorded.json; --record, for a whole run on a quiet machine,
# replaces that file and the figures of docs/performance.md.
set -euo pipefail
. "$(dirname "$0")/../toolchain/common.sh"

mode=table
case ${1:-} in
--check | --record)
    mode=${1#--}
    shift
    ;;
esac
[ "$mode" != record ] || [ $# = 0 ] || die "--record takes a whole run"

results="$tree/build/windows/bench"
mkdir -p "$results"
say "Measuring (a whole run takes about 5 minutes)"
"$tree/toolchain/wine.sh" "$tree/build/windows/bin/bench.exe" "$@" >"$results/raw.jsonl"
python3 "$tree/bench/report.py" "$mode" "$results/raw.jsonl" "$results"
say "Samples: build/windows/bench/results.json; chart: build/windows/bench/chart.svg"
