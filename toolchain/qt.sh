#!/usr/bin/env bash
# Builds Qt 5.15 Core and Network as DLLs with the Windows toolchain, from Debian's source package
# with Debian's patches.
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$tree/toolchain/sources.sh"

cached_build "$(qt_dir)" "Qt"
work="$prefix/build"
mkdir -p "$work"
PATH="$(toolchain_dir)/bin:$PATH"
export PATH

fetch() { fetch_source qtbase-opensource-src; }
unpack() { dpkg-source --no-check -x "$(source_file 'qtbase-opensource-src_*.dsc')" "$work/qt"; }

configure_qt() {
    cd "$work/qt"
    ./configure -opensource -confirm-license -release -shared -xplatform win32-clang-g++ \
        -device-option CROSS_COMPILE="$triple-" -prefix "$prefix" \
        -nomake examples -nomake tests -nomake tools \
        -no-gui -no-widgets -no-dbus -no-opengl -no-openssl -no-schannel -no-icu \
        -no-feature-sql -no-feature-testlib -no-feature-xml -no-feature-concurrent \
        -qt-zlib -qt-pcre -qt-doubleconversion -no-pch -no-glib
}
generate() { cd "$work/qt" && make qmake_all; }
compile() { cd "$work/qt/src" && make -j"$jobs" "$1"; }

install_qt() {
    cd "$work/qt/src"
    make sub-corelib-install_subtargets sub-network-install_subtargets
    cd .. && make install_mkspecs
    cp bin/qmake bin/moc bin/rcc "$prefix/bin/"
    mkdir -p "$prefix/licences"
    cp LICENSE* "$prefix/licences/"
    basename "$(source_file 'qtbase-opensource-src_*.dsc')" .dsc >"$prefix/licences/source"
    ls "$prefix/bin/Qt5Core.dll" "$prefix/bin/Qt5Network.dll"
}

say "Building Qt in $prefix"
steps_total=8
step "Qt sources" "10 s" fetch
step "Unpack Qt sources" "20 s" unpack
step "Configure Qt (compiles qmake)" "1 min 30 s" configure_qt
step "Qt makefiles" "10 s" generate
step "Qt Core" "3 min" compile sub-corelib
step "Qt Network" "40 s" compile sub-network
step "Qt resource compiler" "10 s" compile sub-rcc
step "Install Qt" "10 s" install_qt
rm -rf "$work"
mark_complete "$prefix"
