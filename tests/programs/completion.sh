#!/usr/bin/env bash
# Tests the completion script of bridgectl in a real bash.
set -euo pipefail
wine=$1 program=$2

# The completion script calls this.
bridgectl() { "$wine" "$program" "$@"; }

script=$(bridgectl completion bash)
# shellcheck disable=SC1090
. /dev/stdin <<<"$script"

# completes WORD...: prints the completions of the last word in one line.
completes() {
    COMP_WORDS=(bridgectl "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _bridgectl
    echo "${COMPREPLY[*]}"
}

expect() {
    local wanted=$1 got
    shift
    got=$(completes "$@")
    [ "$got" = "$wanted" ] || { echo "bridgectl $*: \"$got\" and not \"$wanted\""; exit 1; }
}

expect "conf" con
expect "--help --json --quiet --timing" conf get --
expect "--markdown" catalogue --m
expect "app-installed app-uninstalled app-displayed" wait-for app-
expect "bash" completion b
expect "Helper" --client Hel
expect "wait-for" --client conf wai
expect "vtr.locale" conf get vtr.loc
complete -p bridgectl >/dev/null
echo "completed"
