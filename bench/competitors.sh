#!/usr/bin/env bash
# Installs the competitors from Debian's packages into the cache: the headers of
# spdlog, fmt and RapidJSON, and libuv built with the Windows toolchain. QX_TOOLCHAIN and QX_QT are
# set by ./run.
set -euo pipefail
. "$(dirname "$0")/../toolchain/common.sh"
. "$tree/toolchain/sources.sh"

cached_build "$cache/competitors-$llvm_version-$(digest "$tree/toolchain/windows.sh" "$tree/bench/competitors.sh")" \
    "the competitors" "$@"
work="$prefix/build"
mkdir -p "$work" "$prefix/licences"

headers() {
    local name
    cd "$work"
    for name in libspdlog-dev libfmt-dev rapidjson-dev; do
        apt-get -o APT::Sandbox::User=root download "$name"
        dpkg-deb -x "$name"_*.deb "$work/$name"
        mkdir -p "$prefix/include"
        cp -r "$work/$name/usr/include/." "$prefix/include/"
        cp "$work/$name/usr/share/doc/$name/copyright" "$prefix/licences/$name"
    done
    # Some are in the architecture's folder.
    if [ -d "$prefix/include/x86_64-linux-gnu" ]; then
        cp -r "$prefix/include/x86_64-linux-gnu/." "$prefix/include/"
    fi
    ls "$prefix/include/spdlog/spdlog.h" "$prefix/include/fmt/format.h" \
        "$prefix/include/rapidjson/prettywriter.h"
}

libuv() {
    fetch_source libuv1
    dpkg-source --no-check -x "$(source_file 'libuv1_*.dsc')" "$work/libuv"
    cmake -G Ninja -S "$work/libuv" -B "$work/uv" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_TOOLCHAIN_FILE="$tree/cmake/WindowsToolchain.cmake" -DBUILD_TESTING=OFF
    cmake --build "$work/uv" --target uv_a
    mkdir -p "$prefix/lib"
    cp "$work/uv/libuv_a.a" "$prefix/lib/libuv.a" || cp "$work/uv/libuv.a" "$prefix/lib/libuv.a"
    cp -r "$work/libuv/include/." "$prefix/include/"
    cp "$work/libuv/LICENSE" "$prefix/licences/libuv"
}

say "Fetching what the library is measured against into $prefix"
steps_total=2
step "Headers of spdlog, fmt and RapidJSON" "5 s" headers
step "libuv" "30 s" libuv
rm -rf "$work"
mark_complete "$prefix"
