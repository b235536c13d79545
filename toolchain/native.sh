#!/usr/bin/env bash
# Builds the library's layers for this system, where clang's sanitizers and fuzzer run. The package
# contains nothing of this build.
#   native.sh sanitize           runs the tests under ASan and UBSan, then under TSan
#   native.sh fuzz [SECONDS]     runs each fuzzer, by default for 600 seconds
#   native.sh briefly            runs the short tests under ASan and UBSan, and each fuzzer on its seeds and
#                                a fixed series of changes to them
#   native.sh mutate [N]         tries N small changes to the pure cores and lists those that no test
#                                detects
set -euo pipefail
. "$(dirname "$0")/common.sh"

export CC="$llvm/clang" CXX="$llvm/clang++"
export UBSAN_OPTIONS=print_stacktrace=1
export ASAN_OPTIONS=detect_stack_use_after_return=1:check_initialization_order=1
export TSAN_OPTIONS=suppressions=$tree/tests/sanitizers/tsan.supp
# Qt's own event loop, as on Windows, instead of GLib's.
export QT_NO_GLIB=1

# The folder for a run's files, sockets and named mutexes, in memory if possible.
private_folder() {
    TMPDIR=$(mktemp -d -p "$([ -d /dev/shm ] && echo /dev/shm || echo /tmp)" qxb.XXXXXX)
    export TMPDIR
    trap 'rm -rf "$TMPDIR"' EXIT
}

build() {
    (cd "$tree" && cmake --preset "$1" && cmake --build "$tree/build/$1")
}

# run_tests BUILD OPTION...
run_tests() {
    local build=$1
    shift
    ctest --test-dir "$tree/build/$build" --output-on-failure --no-tests=error -j "$jobs" "$@"
}

build_asan() { step "Build with ASan and UBSan" "3 min, later seconds" build asan; }

sanitize() {
    steps_total=2
    build_asan
    run_tests asan
    step "Build with TSan" "2 min, later seconds" build tsan
    run_tests tsan
}

# The sanitizers' options for one fuzzer. Only one fuzzer hits a leak in Qt that is suppressed. The
# suppression names a function, so every allocation records its whole stack, which makes that fuzzer ten times
# slower.
sanitizers_for() {
    [ "$1" = appc_json ] || return 0
    echo "LSAN_OPTIONS=suppressions=$tree/tests/sanitizers/lsan.supp:print_suppressions=0"
    echo "ASAN_OPTIONS=$ASAN_OPTIONS:fast_unwind_on_malloc=0:malloc_context_size=250"
}

# one_fuzzer FOUND NAME OPTION...: runs a fuzzer. New inputs go to FOUND/NAME, and inputs that cause a
# failure to the build tree.
one_fuzzer() {
    local found="$1/$2" name=$2 broken="$tree/build/asan/broken" log="$tree/build/asan/$2.log"
    local options
    shift 2
    mapfile -t options < <(sanitizers_for "$name")
    mkdir -p "$found" "$broken"
    if ! env "${options[@]}" "$tree/build/asan/tests/fuzz_$name" -artifact_prefix="$broken/$name-" -print_final_stats=1 \
        -timeout=20 "$@" "$found" "$tree/fuzz/corpus/$name" >"$log" 2>&1; then
        tail -n 40 "$log"
        die "the fuzzer $name found a failure; log: $log"
    fi
    awk -v name="$name" '
        / cov: / { for (i = 1; i < NF; ++i) { if ($i == "cov:") cov = $(i + 1)
                                             if ($i == "ft:") ft = $(i + 1) } }
        /number_of_executed_units/ { runs = $2 }
        /average_exec_per_sec/ { speed = $2 }
        END { printf "%-16s %10d runs %16s %6d edges %7d features\n", name, runs,
                     (speed > 0 ? speed " a second" : "within a second"), cov, ft }' "$log"
}

each_fuzzer() {
    local found=$1 folder
    shift
    for folder in "$tree"/fuzz/corpus/*/; do
        one_fuzzer "$found" "$(basename "$folder")" "$@"
    done
}

private_folder
case ${1:-} in
sanitize) sanitize ;;
fuzz)
    steps_total=1
    build_asan
    each_fuzzer "$tree/build/asan/found" -max_total_time="${2:-600}" -max_len=8192
    ;;
briefly)
    steps_total=1
    build_asan
    run_tests asan --label-exclude '^long$'
    # Every run starts with the same inputs, without those that earlier runs found.
    each_fuzzer "$TMPDIR/found" -seed=1 -runs=5000 -max_len=8192
    ;;
mutate)
    shift
    QX_STANDIN_CLIENTS=none python3 "$tree/tests/mutation/mutate.py" "$@"
    ;;
*) die "native.sh: sanitize, briefly, fuzz or mutate" ;;
esac
