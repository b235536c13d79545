#!/usr/bin/env bash
# Measures and reports, for ./run bench. Everything is built, and Wine is running.
#   bench.sh [--check|--record|--native] [ROW...]
#   bench.sh --count
# --check compares the ratios with bench/recorded.json; --record, for a whole run on a quiet machine,
# replaces that file and the figures of docs/explanation/performance.md. --native measures the rows that need
# no program and no DLL in the native build; --count counts their instructions.
set -euo pipefail
. "$(dirname "$0")/../toolchain/common.sh"

mode=table
case ${1:-} in
--check | --record | --native | --count)
    mode=${1#--}
    shift
    ;;
esac
[ "$mode" != record ] || [ $# = 0 ] || die "--record takes a whole run"
results="$tree/build/windows/bench"
mkdir -p "$results"

build_native() {
    (cd "$tree" && CC="$llvm/clang" CXX="$llvm/clang++" cmake --preset native \
        "-DBRIDGE_COMPETITORS=$(bash "$tree/bench/competitors.sh" --dir)")
    ninja -C "$tree/build/native" bench
}

# Qt's own event loop, and files in memory where possible.
native() (
    folder=$(mktemp -d -p "$([ -d /dev/shm ] && echo /dev/shm || echo /tmp)" qxb.XXXXXX)
    trap 'rm -rf "$folder"' EXIT
    QT_NO_GLIB=1 TMPDIR="$folder" "$@"
)

measure_native() {
    steps_done=0
    step "Build the native measurements" "1 min, later seconds" build_native
    say "Measuring natively (a whole run takes about a minute)"
    native "$tree/build/native/tests/bench" "$@" >"$results/native.jsonl"
}

count() {
    steps_done=0
    step "Build the native measurements" "1 min, later seconds" build_native
    bash "$tree/toolchain/packages.sh" valgrind
    say "Counting instructions (about 4 minutes)"
    native python3 "$tree/bench/count.py" "$tree/build/native/tests/bench" >"$results/counts.jsonl"
}

measure() {
    say "Measuring (a whole run takes about 2 minutes)"
    "$tree/toolchain/wine.sh" "$tree/build/windows/tests/bench.exe" "$@" >"$results/raw.jsonl"
}

steps_total=1
case $mode in
native)
    measure_native "$@"
    python3 "$tree/bench/report.py" native "$results"
    ;;
count)
    count
    python3 "$tree/bench/report.py" count "$results"
    ;;
*)
    measure "$@"
    if [ "$mode" = record ]; then
        measure_native
        count
    fi
    python3 "$tree/bench/report.py" "$mode" "$results"
    say "Samples: build/windows/bench/results.json; chart: build/windows/bench/chart.svg"
    ;;
esac
