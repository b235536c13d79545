#!/usr/bin/env bash
# lint.sh BUILD: checks the spelling and the wording of the tree, then runs clang-tidy over the library.
# It checks the files of Source/ as the Windows build compiles them, and the siblings of the Windows
# files as the native build does. A finding is an error, and so is a file that neither build compiles.
# programs/ is left out: clang-tidy needs more than a minute for each file there, because of the header
# that parses the command line. ./run sets QX_TOOLCHAIN.
set -euo pipefail
. "$(dirname "$0")/common.sh"
build=$1
native="$tree/build/native"

# sources_of BUILD: prints the files of Source/ in its compile database.
sources_of() {
    python3 - "$tree" "$1/compile_commands.json" <<'END'
import json
import sys

tree, database = sys.argv[1:]
files = {command["file"] for command in json.load(open(database, encoding="utf-8"))}
for file in sorted(files):
    if file.startswith(f"{tree}/Source/"):
        print(file)
END
}

# Configuring is enough to write the native compile commands.
find_sources() {
    export CC="$llvm/clang" CXX="$llvm/clang++"
    (cd "$tree" && cmake --preset native)
    sources_of "$build" >"$build/lint.windows"
    sources_of "$native" | grep -vxFf "$build/lint.windows" >"$build/lint.native"
    find "$tree/Source" -name '*.c' -o -name '*.cpp' | sort |
        diff - <(sort "$build/lint.windows" "$build/lint.native") ||
        die "neither build compiles the files marked \"<\""
}

# Each disabled check has a reason, each reason is about a disabled check, and this clang-tidy has each of
# them and would run it.
compare_reasons() {
    local off reasons others
    off=$(sed -n 's/^  -\([a-z][^ ,]*\),\{0,1\}$/\1/p' "$tree/.clang-tidy" | sort)
    reasons=$(sed -n 's/^#   \([a-z][^ ]*\) .*/\1/p' "$tree/.clang-tidy" | sort)
    diff <(printf '%s\n' "$off") <(printf '%s\n' "$reasons") ||
        die ".clang-tidy: disabled checks (<) and reasons (>) differ"
    others=$(sed -n 's/^  \([a-z][^ ,]*\),\{0,1\}$/\1/p' "$tree/.clang-tidy" | paste -sd,)
    diff <(printf '%s\n' "$off") \
        <("clang-tidy-$llvm_version" --list-checks -checks="-*,$others" | tr -d ' ' | sort |
            grep -xF -f <(printf '%s\n' "$off")) ||
        die ".clang-tidy: disabled, but not enabled by any pattern (<)"
}

find_what_to_do() {
    compare_reasons
    find_sources
}

# tidy BUILD LIST OPTION...
tidy() {
    local build=$1 list=$2
    shift 2
    sed 's/[.+]/\\&/g; s/.*/^&$/' "$list" |
        xargs -d '\n' "run-clang-tidy-$llvm_version" -j "$jobs" -p "$build" -quiet "$@"
}

bash "$tree/toolchain/packages.sh" test "clang-tidy-$llvm_version"
# The Windows build compiles through a wrapper. clang-tidy does not see the options that it adds.
options=()
for option in --target=x86_64-w64-windows-gnu "--sysroot=$QX_TOOLCHAIN" \
    -resource-dir="$QX_TOOLCHAIN/lib/clang/$llvm_version" -stdlib=libc++; do
    options+=("-extra-arg-before=$option")
done

steps_total=5
step "Spelling" "1 s" bash "$tree/tests/gates/spelling.sh" codespell "$tree"
step "Wording" "2 s" python3 "$tree/tests/gates/words.py" "$tree"
step "Files and checks" "10 s" find_what_to_do
step "clang-tidy over $(wc -l <"$build/lint.windows") files of the Windows build" "5 min" \
    tidy "$build" "$build/lint.windows" "${options[@]}"
step "clang-tidy over $(wc -l <"$build/lint.native") siblings of this system" "30 s" \
    tidy "$native" "$build/lint.native"
say "No findings."
