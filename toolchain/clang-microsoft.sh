#!/usr/bin/env bash
# clang-microsoft.sh OPTION...: runs clang in Microsoft's mode, for its warnings. The result cannot be
# linked. The headers of the Windows toolchain replace Microsoft's, so the options pretend a GNU compiler
# and its C++ ABI.
set -euo pipefail
. "$(dirname "$0")/common.sh"

toolchain=${QX_TOOLCHAIN:-$(toolchain_dir)}
headers="$toolchain/$triple/include"
# The headers of mingw-w64 precede clang's own, because clang's intrin.h redeclares functions of
# setjmp.h. Newer versions of clang report a header that they include as deprecated.
exec "$llvm/clang++" --target=x86_64-pc-windows-msvc -fms-compatibility-version=19.29 \
    -nostdinc -isystem "$headers/c++/v1" -isystem "$headers" \
    -isystem "$toolchain/lib/clang/$llvm_version/include" \
    -fgnuc-version=4.2.1 -D__MINGW32__ -D__MINGW64__ -D_UCRT -D_LIBCPP_ABI_FORCE_ITANIUM \
    -D__CORRECT_ISO_CPP_STRING_H_PROTO -D__CORRECT_ISO_CPP_WCHAR_H_PROTO \
    -D_CLANG_DISABLE_CRT_DEPRECATION_WARNINGS "$@"
