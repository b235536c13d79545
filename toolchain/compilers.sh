#!/usr/bin/env bash
# compilers.sh BUILD: compiles the library, its programs and the public headers with two other compilers:
# Debian 13's GCC for the Universal C Runtime, and clang in Microsoft's mode. A warning is an error.
# ./run configures BUILD, sets QX_TOOLCHAIN and makes Debian 13.
set -euo pipefail
. "$(dirname "$0")/common.sh"
build=$1

gcc=x86_64-w64-mingw32ucrt

# there COMMAND...: runs a command in Debian 13, where this tree and BUILD have the same paths.
there() {
    if [ "$release" = trixie ]; then
        "$@"
    else
        bash "$tree/toolchain/in-debian13.sh" --with-build "$@"
    fi
}

# The compiling system's own headers for the programs.
install_gcc() {
    there bash "$tree/toolchain/packages.sh" g++-mingw-w64-ucrt64 libcli11-dev nlohmann-json3-dev
}

headers() { there bash "$tree/tests/gates/header.sh" "$tree/include" "gcc=$gcc-gcc"; }

# GCC finds more when it optimises.
code_with_gcc() {
    there python3 "$tree/toolchain/other_compiler.py" "$tree" "$build" \
        "$gcc-g++" -O1 -Wall -Wextra -Wpedantic
}

code_with_clang() {
    python3 "$tree/toolchain/other_compiler.py" "$tree" "$build" \
        bash "$tree/toolchain/clang-microsoft.sh" -fsyntax-only -Wall -Wextra -Wpedantic -Wmicrosoft \
        -Wshadow-all -Wconversion -Wsign-conversion -Wunreachable-code-aggressive \
        -Wconditional-uninitialized -Wunused
}

# A build file has the time of the last build.
compile_commands() { ninja -C "$build" build.ninja; }

steps_total=5
step "Compile commands" "1 s" compile_commands
step "GCC for the Universal C Runtime" "20 s, later seconds" install_gcc
step "Public headers with that GCC" "5 s" headers
step "Code with that GCC" "1 min" code_with_gcc
step "Code with clang in Microsoft's mode" "1 min" code_with_clang
say "No warnings."
