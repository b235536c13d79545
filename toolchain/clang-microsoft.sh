#!/usr/bin/env bash
# clang-microsoft.sh OPTION...: clang as it reads code for Microsoft's compiler, to hear its warnings;
# nothing can be linked. Microsoft's headers are not there: those of the Windows toolchain take their
# place, and believe that the compiler is GNU's and the C++ ABI theirs.
set -euo pipefail
. "$(dirname "$0")/common.sh"

toolchain=${QX_TOOLCHAIN:-$(toolchain_dir)}
headers="$toolchain/$triple/include"
# Those of mingw-w64 come before clang's own, whose intrin.h declares again what setjmp.h has; theirs
# includes one that newer clangs call deprecated.
exec "$llvm/clang++" --target=x86_64-pc-windows-msvc -fms-compatibility-version=19.29 \
    -nostdinc -isystem "$headers/c++/v1" -isystem "$headers" \
    -isystem "$toolchain/lib/clang/$llvm_version/include" \
    -fgnuc-version=4.2.1 -D__MINGW32__ -D__MINGW64__ -D_UCRT -D_LIBCPP_ABI_FORCE_ITANIUM \
    -D__CORRECT_ISO_CPP_STRING_H_PROTO -D__CORRECT_ISO_CPP_WCHAR_H_PROTO \
    -D_CLANG_DISABLE_CRT_DEPRECATION_WARNINGS "$@"
