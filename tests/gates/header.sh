#!/usr/bin/env bash
# Each public header compiles alone, as each language it is for, without a warning.
set -euo pipefail
gcc=$1 clang=$2 include=$3

compile() {
    echo "#include <bridge/${header:-bridge.h}>" | "$@" -I"$include" -pedantic -Wall -Wextra -Werror \
        -fsyntax-only -
    echo "ok: ${header:-bridge.h} $*"
}

for standard in c89 c11; do
    compile "$gcc" -x c -std=$standard
    compile "$clang" -x c -std=$standard -Wdocumentation
    compile "$clang" -x c -std=$standard --target=x86_64-pc-windows-msvc -DBRIDGE_DLLIMPORT \
        -Wno-language-extension-token -Wno-long-long  # __int64 is that compiler's own
done
compile "$gcc" -x c++ -std=c++17
compile "$clang" -x c++ -std=c++17 -Wdocumentation
header=bridge.hpp compile "$gcc" -x c++ -std=c++17
header=bridge.hpp compile "$clang" -x c++ -std=c++17 -Wdocumentation
