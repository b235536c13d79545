#!/usr/bin/env bash
# Prints the folders of tests/ that the uncommitted changes affect, one per line.
set -euo pipefail
cd "$(dirname "$0")/.."

# tests_of FILE: prints the folders with its tests.
tests_of() {
    case $1 in
    Source/conf/ConfCatalogueTable.cpp) printf '%s\n' conf gates bindings ;;
    Source/xpl/XerrTable.h) printf '%s\n' xpl gates bindings ;;
    Source/plr/* | Source/mim/*) echo ipc ;;
    Source/*/*) echo "$1" | cut -d/ -f2 ;;
    tests/support/*) echo xpl ;;
    tests/*/*) echo "$1" | cut -d/ -f2 ;;
    programs/*) echo programs ;;
    kit/* | docs/contributing/windows-kit.md) echo kit ;;
    bindings/* | examples/*) echo bindings ;;
    include/* | toolchain/bindings/*) printf '%s\n' gates bindings ;;
    *) echo gates ;;
    esac
}

{
    git diff --name-only HEAD
    git ls-files --others --exclude-standard
} | while IFS= read -r file; do tests_of "$file"; done | sort -u
