#!/usr/bin/env bash
# Builds the C and C++ toolchain for 64-bit Windows with the Universal C Runtime: Debian's clang
# and lld, and the mingw-w64 and LLVM runtimes built from Debian's source packages. Debian's own
# mingw g++ links the older msvcrt.dll, which has no UTF-8 locale.
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$tree/toolchain/sources.sh"

cached_build "$(toolchain_dir)" "the Windows toolchain"
work="$prefix/build"
resources="$prefix/lib/clang/$llvm_version"
mkdir -p "$work" "$prefix/bin"

# What the library, Qt and the tests link. mingw-w64 has some 800 more, which take a minute to make.
import_libraries="advapi32 bcrypt comctl32 comdlg32 crypt32 dbghelp dnsapi gdi32 iphlpapi kernel32 mpr netapi32
    ntdll ole32 oleaut32 psapi rpcrt4 secur32 shell32 shlwapi user32 userenv uuid version winmm winspool
    ws2_32"

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
    for tool in ar ranlib nm strip dlltool objcopy objdump readelf rc; do
        ln -sf "$llvm/llvm-$tool" "$prefix/bin/$triple-$tool"
    done
    # The preprocessor that it starts does not always know this toolchain's headers.
    printf '#!/bin/sh\nexec %s -I "%s" "$@"\n' "$llvm/llvm-windres" "$prefix/$triple/include" \
        >"$prefix/bin/$triple-windres"
    chmod +x "$prefix/bin/$triple-windres"
    mkdir -p "$resources"
    rm -rf "$resources/include"
    cp -r "$("$llvm/clang" -print-resource-dir)/include" "$resources/include"
}

fetch() {
    fetch_source --tar-only mingw-w64 "llvm-toolchain-$llvm_version"
}

# Neither needs Debian's patches, which are about Debian's own packages.
unpack_mingw() {
    rm -rf "$work/mingw-w64"
    mkdir "$work/mingw-w64"
    tar -xf "$(source_file 'mingw-w64_*.orig.tar.*[2z]')" -C "$work/mingw-w64" \
        --strip-components=1
}

unpack_llvm() {
    rm -rf "$work/llvm"
    mkdir "$work/llvm"
    tar -xf "$(source_file "llvm-toolchain-${llvm_version}_*.orig.tar.xz")" -C "$work/llvm" \
        --strip-components=1 --wildcards --no-wildcards-match-slash \
        '*/cmake' '*/compiler-rt' '*/libcxx' '*/libcxxabi' '*/libunwind' '*/runtimes' \
        '*/llvm/cmake'
}

unpack() {
    local mingw
    unpack_mingw &
    mingw=$!
    unpack_llvm
    wait "$mingw"
}

windows_headers() {
    mkdir -p "$work/headers"
    cd "$work/headers"
    "$work/mingw-w64/mingw-w64-headers/configure" --prefix="$prefix/$triple" \
        --with-default-msvcrt=ucrt --with-default-win32-winnt=0x0A00 --enable-idl
    make install
}

c_runtime() {
    local library wanted=()
    mkdir -p "$work/crt/lib64" "$prefix/$triple/lib"
    cd "$work/crt"
    export PATH="$prefix/bin:$PATH"
    [ -f Makefile ] || "$work/mingw-w64/mingw-w64-crt/configure" --host="$triple" \
        --prefix="$prefix/$triple" --disable-lib32 --enable-lib64 --with-default-msvcrt=ucrt \
        CC="$triple-clang" CFLAGS="-O2 $neutral" \
        AR="$llvm/llvm-ar" RANLIB="$llvm/llvm-ranlib" DLLTOOL="$llvm/llvm-dlltool"
    for library in crt2.o crtbegin.o crtend.o dllcrt2.o libm.a libmingw32.a libmingwex.a \
        libmingwthrd.a libmoldname.a libmsvcrt.a libucrt.a; do wanted+=("lib64/$library"); done
    for library in $import_libraries; do wanted+=("lib64/lib$library.a"); done
    make -j"$jobs" "${wanted[@]}"
    cp "${wanted[@]}" "$prefix/$triple/lib/"
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

# HAS_THREAD_LOCAL: exceptions keep their state in the compiler's thread-local storage. Otherwise
# libc++abi would register a fibre-local callback at the first exception, which Windows calls at the end
# of each thread, also after the DLL with its code has been unloaded. Each function has a section of its
# own, so that the linker drops those that nothing calls: one of them imports FlsAlloc.
cxx_runtimes() {
    cross_cmake -S "$work/llvm/runtimes" -B "$work/runtimes" \
        -DCMAKE_INSTALL_PREFIX="$prefix/$triple" \
        -DLLVM_ENABLE_RUNTIMES="libunwind;libcxxabi;libcxx" \
        -DCMAKE_CXX_FLAGS="$neutral -DHAS_THREAD_LOCAL -ffunction-sections" \
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
step "Toolchain sources" "10 s" fetch
step "Unpack toolchain sources" "10 s" unpack
step "Compiler wrappers" "1 s" compiler_wrappers
step "Windows headers" "2 s" windows_headers
step "Import libraries of the C runtime" "45 s" c_runtime
step "Compiler support library" "5 s" builtins
step "Runtime libraries for C++" "1 min" cxx_runtimes
step "Toolchain probe" "1 s" probe
rm -rf "$work" "$checkpoints"
mark_complete "$prefix"
