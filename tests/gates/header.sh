#!/usr/bin/env bash
# header.sh INCLUDE KIND=COMPILER...: each public header compiles alone, in each of its languages, without
# warnings. Kinds of compilers:
#   gcc, gcc-c   GCC, and a GCC for C only
#   clang        clang with all warnings except those below
#   each         compiles each header of bridge.hpp alone
#   microsoft    clang in Microsoft's mode with all warnings; compiles bridge.h a second time like a
#                compiler that is neither clang nor GCC
set -euo pipefail
include=$1
shift

usual=(-pedantic -Wall -Wextra -Werror)

# Excluded are warnings about code that is not C++98, about padding, about a missing default in a switch
# that covers every value, about pointers into buffers, which C needs, and about virtual tables without a
# source file.
every=("${usual[@]}" -Weverything -Wno-c++98-compat -Wno-c++98-compat-pedantic -Wno-padded
    -Wno-switch-default -Wno-unsafe-buffer-usage -Wno-weak-vtables)

# An unknown compiler has no __extension__ and no warning about long long. Only for headers that include
# no system headers, which depend on the compiler.
unknown=("${every[@]}" -U__clang__ -U__GNUC__ -D__extension__=unmarked
    -Wno-long-long)

# compile HEADER LANGUAGE STANDARDS COMPILER OPTION...
compile() {
    local header=$1 language=$2 standard
    for standard in $3; do
        printf '%s\n' "${before[@]}" "#include <bridge/$header>" "${after[@]}" |
            "$4" "${@:5}" -x "$language" "-std=$standard" -I"$include" -fsyntax-only -
        echo "ok: $header, $standard, $4"
        compiled=$((compiled + 1))
    done
}

# alone: sets the lines around the header, which check that it defines no macros of windows.h.
alone() {
    before=() after=("#if defined(min) || defined(max) || defined(CreateFile)" "#error windows.h" "#endif")
}

# windows_calls.h is compatible with the complete windows.h, before and after it.
beside_windows() {
    after=("#include <windows.h>")
    before=() && compile windows_calls.h "$@"
    before=("#include <windows.h>") && compile windows_calls.h "$@"
    alone
}

# Each part of bridge.hpp compiles alone.
each() {
    local path
    for path in "$include"/bridge/*.hpp; do compile "${path##*/}" c++ c++17 "$@"; done
}

# preflight.h includes windows_calls.h.
as_c() {
    compile bridge.h c "c89 c99 c11 c17" "$@"
    compile preflight.h c "c89 c17" "$@"
}
as_cpp() {
    compile bridge.h c++ "c++11 c++14 c++17 c++20" "$@"
    compile preflight.h c++ "c++11 c++20" "$@"
}
wrapper() { compile bridge.hpp c++ "c++17 c++20" "$@"; }

all() {
    as_c "$@"
    as_cpp "$@"
    wrapper "$@"
}

judge() {
    case $1 in
    gcc-c)
        as_c "$2" "${usual[@]}"
        beside_windows c c89 "$2" "${usual[@]}"
        ;;
    gcc) all "$2" "${usual[@]}" ;;
    clang) all "$2" "${every[@]}" ;;
    each) each "$2" "${usual[@]}" ;;
    microsoft)
        all "$2" "${every[@]}" -DBRIDGE_DLLIMPORT
        compile bridge.h c "c89 c99 c11 c17" "$2" "${unknown[@]}"
        compile bridge.h c++ "c++11 c++14 c++17 c++20" "$2" "${unknown[@]}"
        beside_windows c++ c++17 "$2" "${usual[@]}"
        ;;
    *)
        echo "unknown kind of compiler: $1"
        exit 1
        ;;
    esac
}

compiled=0
alone
for pair; do judge "${pair%%=*}" "${pair#*=}"; done
[ "$compiled" -gt 0 ] || { echo "no compiler given"; exit 1; }
echo "$compiled compilations without warnings"
