#!/usr/bin/env bash
# Builds Qt 5.15 Core and Network as DLLs with the Windows toolchain, from Debian's source package
# with Debian's patches.
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$tree/toolchain/sources.sh"

cached_build "$(qt_dir)" "Qt"
work="$prefix/build"
mkdir -p "$work"
host_tools=/usr/lib/qt5/bin
PATH="$(toolchain_dir)/bin:$PATH"
export PATH

fetch() { fetch_source qtbase-opensource-src; }
unpack() { unpack_source "$(source_file 'qtbase-opensource-src_*.dsc')" "$work/qt"; }

# Sections that nothing uses are dropped: one of libc++ imports FlsAlloc (see windows.sh).
#
# Debian has built this Qt's qmake, moc and rcc already. The configure script would build its own
# qmake; what it does after that is one call of qmake, which takes the same options.
configure_qt() {
    cd "$work/qt"
    rm -f config.cache config.log config.summary
    printf '[EffectivePaths]\nPrefix=..\n[Paths]\nTargetSpec=dummy\nHostSpec=linux-g++\n' >bin/qt.conf
    export MAKE=make
    "$host_tools/qmake" -qtconf "$work/qt/bin/qt.conf" "$work/qt" -- -opensource -confirm-license \
        -release -shared -xplatform win32-clang-g++ -external-hostbindir "$host_tools" \
        -device-option CROSS_COMPILE="$triple-" -prefix "$prefix" \
        -nomake examples -nomake tests -nomake tools \
        -no-gui -no-widgets -no-dbus -no-opengl -no-openssl -no-schannel -no-icu \
        -no-feature-sql -no-feature-testlib -no-feature-xml -no-feature-concurrent \
        -qt-zlib -qt-pcre -qt-doubleconversion -pch -no-glib QMAKE_LFLAGS+=-Wl,--gc-sections
}
generate() { cd "$work/qt" && make -j"$jobs" qmake_all; }

# compile FOLDER...: in this order. The targets of src/Makefile would build the host tools too.
compile() {
    local folder
    for folder in "$@"; do make -C "$work/qt/src/$folder" -j"$jobs"; done
}

install_qt() {
    cd "$work/qt"
    make -C src/corelib install
    make -C src/network install
    make install_mkspecs
    cp "$host_tools/qmake" "$host_tools/moc" "$host_tools/rcc" "$prefix/bin/"
    mkdir -p "$prefix/licences"
    cp LICENSE* "$prefix/licences/"
    basename "$(source_file 'qtbase-opensource-src_*.dsc')" .dsc >"$prefix/licences/source"
    ls "$prefix/bin/Qt5Core.dll" "$prefix/bin/Qt5Network.dll"
}

say "Building Qt in $prefix"
steps_total=7
step "Qt sources" "5 s" fetch
step "Unpack Qt sources" "10 s" unpack
step "Configure Qt" "15 s" configure_qt
step "Qt makefiles" "2 s" generate
step "Qt Core" "2 min" compile 3rdparty/pcre2 corelib
step "Qt Network" "40 s" compile network
step "Install Qt" "2 s" install_qt
rm -rf "$work" "$checkpoints"
mark_complete "$prefix"
