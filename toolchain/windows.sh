#!/usr/bin/env bash
# Builds the C and C++ toolchain for 64-bit Windows with the Universal C Runtime: Debian's clang
# and lld, and the mingw-w64 and LLVM runtimes built from Debian's source packages. Debian's own
# mingw g++ links the older msvcrt.dll, which has no UTF-8 locale.
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$tree/toolchain/sources.sh"

cached_build "$(toolchain_dir)" "the Windows toolchain"
work="$prefix/build"
resources="$prefix/lib/clang/16"
mkdir -p "$work" "$prefix/bin"

# The runtimes become part of every program: without debug data, and without this machine's folders
# in the texts of their assertions.
neutral="-ffile-prefix-map=$work=."

wrapper() {
    cat >"$prefix/bin/$triple-$1" <<END
#!/bin/sh
exec $llvm/$1 --target=x86_64-w64-windows-gnu --sysroot="$prefix" -resource-dir="$resources" \\
    -fuse-ld=lld -rtlib=compiler-rt -unwindlib=libunwind -stdlib=libc++ -Qunused-arguments "\$@"
END
    chmod +x "$prefix/bin/$triple-$1"
}

compiler_wrappers() {
    local tool
    wrapper clang
    wrapper clang++
    for tool in ar ranlib nm strip dlltool objcopy objdump readelf windres rc; do
        ln -sf "$llvm/llvm-$tool" "$prefix/bin/$triple-$tool"
    done
    mkdir -p "$resources"
    cp -r "$("$llvm/clang" -print-resource-dir)/include" "$resources/include"
}

fetch() {
    fetch_source mingw-w64
    fetch_source llvm-toolchain-16
}

unpack() {
    dpkg-source --no-check -x "$(source_file 'mingw-w64_*.dsc')" "$work/mingw-w64"
    mkdir "$work/llvm"
    tar -xf "$(source_file 'llvm-toolchain-16_*.orig.tar.xz')" -C "$work/llvm" \
        --strip-components=1 --wildcards --no-wildcards-match-slash \
        '*/cmake' '*/compiler-rt' '*/libcxx' '*/libcxxabi' '*/libunwind' '*/runtimes' \
        '*/llvm/cmake'
}

windows_headers() {
    mkdir -p "$work/headers"
    cd "$work/headers"
    "$work/mingw-w64/mingw-w64-headers/configure" --prefix="$prefix/$triple" \
        --with-default-msvcrt=ucrt --with-default-win32-winnt=0x0A00 --enable-idl
    make install
}

c_runtime() {
    mkdir -p "$work/crt"
    cd "$work/crt"
    export PATH="$prefix/bin:$PATH"
    "$work/mingw-w64/mingw-w64-crt/configure" --host="$triple" --prefix="$prefix/$triple" \
        --disable-lib32 --enable-lib64 --with-default-msvcrt=ucrt \
        CC="$triple-clang" CFLAGS="-O2 $neutral" \
        AR="$llvm/llvm-ar" RANLIB="$llvm/llvm-ranlib" DLLTOOL="$llvm/llvm-dlltool"
    make -j"$jobs"
    make install
}

cross_cmake() {
    cmake -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_SYSTEM_NAME=Windows \
        -DCMAKE_C_COMPILER="$prefix/bin/$triple-clang" \
        -DCMAKE_CXX_COMPILER="$prefix/bin/$triple-clang++" \
        -DCMAKE_ASM_COMPILER="$prefix/bin/$triple-clang" \
        -DCMAKE_C_COMPILER_TARGET=x86_64-w64-windows-gnu \
        -DCMAKE_CXX_COMPILER_TARGET=x86_64-w64-windows-gnu \
        -DCMAKE_AR="$llvm/llvm-ar" -DCMAKE_RANLIB="$llvm/llvm-ranlib" \
        -DCMAKE_C_COMPILER_WORKS=1 -DCMAKE_CXX_COMPILER_WORKS=1 \
        -DCMAKE_C_FLAGS="$neutral" -DCMAKE_CXX_FLAGS="$neutral" -DCMAKE_ASM_FLAGS="$neutral" \
        -DLLVM_CONFIG_PATH="" "$@"
}

builtins() {
    cross_cmake -S "$work/llvm/compiler-rt/lib/builtins" -B "$work/builtins" \
        -DCMAKE_INSTALL_PREFIX="$resources" -DCOMPILER_RT_DEFAULT_TARGET_ONLY=ON \
        -DCOMPILER_RT_USE_BUILTINS_LIBRARY=ON
    cmake --build "$work/builtins" --target install
}

cxx_runtimes() {
    cross_cmake -S "$work/llvm/runtimes" -B "$work/runtimes" \
        -DCMAKE_INSTALL_PREFIX="$prefix/$triple" \
        -DLLVM_ENABLE_RUNTIMES="libunwind;libcxxabi;libcxx" \
        -DLIBUNWIND_USE_COMPILER_RT=ON -DLIBUNWIND_ENABLE_SHARED=OFF \
        -DLIBUNWIND_ENABLE_STATIC=ON \
        -DLIBCXXABI_USE_COMPILER_RT=ON -DLIBCXXABI_USE_LLVM_UNWINDER=ON \
        -DLIBCXXABI_ENABLE_SHARED=OFF \
        -DLIBCXX_USE_COMPILER_RT=ON -DLIBCXX_ENABLE_SHARED=OFF -DLIBCXX_ENABLE_STATIC=ON \
        -DLIBCXX_ENABLE_STATIC_ABI_LIBRARY=ON -DLIBCXX_CXX_ABI=libcxxabi \
        -DLLVM_INCLUDE_TESTS=OFF -DLIBCXX_INCLUDE_TESTS=OFF -DLIBCXX_INCLUDE_BENCHMARKS=OFF \
        -DLIBCXXABI_INCLUDE_TESTS=OFF -DLIBUNWIND_INCLUDE_TESTS=OFF
    cmake --build "$work/runtimes" --target install
}

# A program that the whole project depends on: UTF-8 locale and C++17 on the Universal C Runtime.
probe() {
    cat >"$work/probe.cpp" <<'END'
#include <clocale>
#include <filesystem>
#include <stdexcept>
int main() {
    try { throw std::runtime_error("x"); } catch (const std::exception&) {}
    return std::setlocale(LC_ALL, ".UTF8") != nullptr ? 0 : 1;
}
END
    "$prefix/bin/$triple-clang++" -std=c++17 -O1 -o "$work/probe.exe" "$work/probe.cpp"
    "$llvm/llvm-readobj" --coff-imports "$work/probe.exe" >"$work/probe.imports"
    grep -q 'api-ms-win-crt' "$work/probe.imports"
    ! grep -qi 'msvcrt.dll' "$work/probe.imports"
}

say "Building the Windows toolchain in $prefix"
steps_total=8
step "Toolchain sources" "20 s" fetch
step "Unpack toolchain sources" "30 s" unpack
step "Compiler wrappers" "1 s" compiler_wrappers
step "Windows headers" "5 s" windows_headers
step "Import libraries of the C runtime" "1 min" c_runtime
step "Compiler support library" "10 s" builtins
step "Runtime libraries for C++" "40 s" cxx_runtimes
step "Toolchain probe" "2 s" probe
rm -rf "$work"
mark_complete "$prefix"
