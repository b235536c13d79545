#!/usr/bin/env bash
# header.sh INCLUDE KIND=COMPILER...: each public header compiles alone, as each language it is for,
# without a warning. Kinds of compilers:
#   gcc, gcc-c   GCC, and one that has C only
#   clang        clang, with every warning that it has but those below
#   each         one that compiles each header of bridge.hpp alone
#   microsoft    clang in Microsoft's mode; the same, and bridge.h also as a compiler that is neither
#                clang nor GCC reads it
set -euo pipefail
include=$1
shift

usual=(-pedantic -Wall -Wextra -Werror)

# These are about the language that C++11 replaced, about padding, which most records have, about a
# default in a switch that has every value, about pointers into buffers, which C has no other way for,
# and about exceptions that no source file is the home of.
every=("${usual[@]}" -Weverything -Wno-c++98-compat -Wno-c++98-compat-pedantic -Wno-padded
    -Wno-switch-default -Wno-unsafe-buffer-usage -Wno-weak-vtables)

# Such a compiler needs no mark at its long long, and has none. Not for headers that include others,
# which go by the compiler.
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

# What stands around the header. Alone, it leaves none of the macros of windows.h.
alone() {
    before=() after=("#if defined(min) || defined(max) || defined(CreateFile)" "#error windows.h" "#endif")
}

# Whether windows.h, whole, comes first or last, it fits to what is declared here.
beside_windows() {
    after=("#include <windows.h>")
    before=() && compile windows_calls.h "$@"
    before=("#include <windows.h>") && compile windows_calls.h "$@"
    alone
}

# Each header that bridge.hpp is made of needs nothing before it.
each() {
    local path
    for path in "$include"/bridge/*.hpp; do compile "${path##*/}" c++ c++17 "$@"; done
}

# preflight.h has windows_calls.h in it.
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
        echo "no such kind of compilers: $1"
        exit 1
        ;;
    esac
}

compiled=0
alone
for pair; do judge "${pair%%=*}" "${pair#*=}"; done
[ "$compiled" -gt 0 ] || { echo "no compiler is given"; exit 1; }
echo "$compiled times without a warning"
