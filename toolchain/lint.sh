#!/usr/bin/env bash
# lint.sh BUILD: clang-tidy over the library, as the Windows build compiles it. Any finding fails.
# QX_TOOLCHAIN is set by ./run.
set -euo pipefail
. "$(dirname "$0")/common.sh"
build=$1

bash "$tree/toolchain/packages.sh" clang-tidy-16
# The compile commands name a wrapper, whose options clang-tidy cannot see.
options=()
for option in --target=x86_64-w64-windows-gnu "--sysroot=$QX_TOOLCHAIN" \
    -resource-dir="$QX_TOOLCHAIN/lib/clang/16" -stdlib=libc++; do
    options+=("-extra-arg-before=$option")
done
tidy() {
    run-clang-tidy-16 -j "$jobs" -p "$build" -quiet "${options[@]}" "$tree/Source/.*\.cpp"
}

steps_total=1
step "clang-tidy over $(find "$tree/Source" -name '*.cpp' | wc -l) files" "5 min" tidy
say "No findings."
