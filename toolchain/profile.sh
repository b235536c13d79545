#!/usr/bin/env bash
# The runtime of clang's source-based coverage for the Windows toolchain, from Debian's LLVM source
# package, into the cache: `profile.sh --dir` tells where. QX_TOOLCHAIN is set by ./run.
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$tree/toolchain/sources.sh"

cached_build "$cache/profile-$llvm_version-$(digest "$tree/toolchain/windows.sh" "$tree/toolchain/profile.sh")" \
    "the coverage runtime" "$@"
work="$prefix/build"
mkdir -p "$work"

unpack() {
    local archive="llvm-toolchain-${llvm_version}_*.orig.tar.xz"
    source_file "$archive" >"$work/archive" || {
        fetch_source "llvm-toolchain-$llvm_version"
        source_file "$archive" >"$work/archive"
    }
    tar -xf "$(cat "$work/archive")" -C "$work" --strip-components=1 --wildcards \
        '*/compiler-rt/lib/profile' '*/compiler-rt/include/profile'
}

# What its CMakeLists.txt compiles for Windows, without the half that is for another kind of profile.
compile() {
    local source objects=() sources="$work/compiler-rt/lib/profile"
    for source in "$sources"/InstrProfiling*.c "$sources"/InstrProfilingRuntime.cpp \
        "$sources"/WindowsMMap.c; do
        objects+=("$work/$(basename "$source").obj")
        "$QX_TOOLCHAIN/bin/$triple-clang" -c -O2 -DCOMPILER_RT_HAS_ATOMICS=1 -fno-exceptions -w \
            -I"$work/compiler-rt/include" -I"$work/compiler-rt/lib" "$source" -o "${objects[-1]}"
    done
    "$QX_TOOLCHAIN/bin/$triple-ar" rcs "$prefix/profile.lib" "${objects[@]}"
}

say "Building the coverage runtime in $prefix"
steps_total=2
step "Source of the coverage runtime" "20 s" unpack
step "Coverage runtime" "5 s" compile
rm -rf "$work"
mark_complete "$prefix"
