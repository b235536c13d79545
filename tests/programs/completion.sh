#!/usr/bin/env bash
# The script that bridgectl makes for bash completes commands, options and names in a real bash. The
# one for PowerShell has the same words; it is compared with the first.
set -euo pipefail
wine=$1 program=$2

script=$("$wine" "$program" completion bash)
powershell=$("$wine" "$program" completion powershell)
# shellcheck disable=SC1090
. /dev/stdin <<<"$script"

# completes WORD...: what bash would offer for the last of them, in one line.
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
expect "get list set --help" conf ""
expect "install-apk install-image instances" ins
expect "--markdown" catalogue --m
expect "--json" conf get vtr.locale --j
expect "--global" conf list --g
expect "app-installed app-uninstalled app-displayed" wait-for app-
expect "bash" completion b
expect "" --client Hel
expect "wait-for" --client conf wai
complete -p bridgectl >/dev/null

# Every list of words of the one script stands in the other.
lists=0
while read -r path words; do
    quoted=$(sed "s/[^ ]*/'&'/g; s/' '/', '/g" <<<"$words")
    grep -qF "'$path' = @($quoted)" <<<"$powershell" || { echo "not for PowerShell: $path"; exit 1; }
    lists=$((lists + 1))
done < <(sed -n 's/^        "\([a-z-]*\)") words="\(.*\)" ;;$/\1 \2/p' <<<"$script" | grep '^[a-z]')
[ "$lists" -gt 15 ] || { echo "only $lists lists of words"; exit 1; }
echo "$lists lists of words"
