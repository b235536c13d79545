#!/usr/bin/env bash
# coverage.sh: builds the product with coverage counters, runs the tests under Wine, and compares the
# coverage with the limits and the reasons in tests/coverage. For ./run coverage, which sets QX_TOOLCHAIN
# and QX_QT and starts the Wine server.
set -euo pipefail
. "$(dirname "$0")/common.sh"

build="$tree/build/coverage"
profiles="$build/profiles"
# In this test each process writes a profile of its own. A runtime that merges profiles would leak two
# handles at each load of the library.
unmerged='EventsTest.TheLibraryIsLoadedUsedAndUnloadedAgainAndAgain'

compile() {
    local runtime
    runtime="$(bash "$tree/toolchain/profile.sh" --dir)/profile.lib"
    (cd "$tree" && cmake --preset coverage "-DBRIDGE_COVERAGE=$runtime" \
        "-DBRIDGE_TESTS_ELSEWHERE=$unmerged")
    ninja -C "$build"
}

run_tests() {
    rm -rf "$profiles"
    LLVM_PROFILE_FILE="Z:$profiles/%8m.profraw" \
        ctest --test-dir "$build" --output-on-failure --no-tests=error -j "$jobs"
    # The runtime leaks a copy of this name at each load of the library, and a test counts bytes.
    (cd "$profiles" && LLVM_PROFILE_FILE="%p.profraw" "$tree/toolchain/wine.sh" \
        "$build/tests/hosts_test.exe" --gtest_brief=1 --gtest_filter="$unmerged")
}

# The paths in the programs are relative to the tree. The report covers the library only.
report() {
    local program objects=()
    "$llvm/llvm-profdata" merge -sparse "$profiles"/*.profraw -o "$build/all.profdata"
    for program in "$build"/{bin,tests,standins}/*.exe; do objects+=(-object "$program"); done
    "$llvm/llvm-cov" export -format=lcov "$build/bin/QX-Bridge.dll" "${objects[@]}" \
        -instr-profile="$build/all.profdata" -compilation-dir="$tree" \
        -ignore-filename-regex='(^|/)(tests|programs|examples|googletest)/|_autogen|/mingw' \
        >"$build/all.lcov"
    python3 "$tree/tests/coverage/report.py" "$tree" "$build/all.lcov"
}

bash "$tree/toolchain/profile.sh"
steps_total=1
step "Build for coverage" "4 min, later seconds" compile
run_tests
report
