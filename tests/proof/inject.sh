#!/usr/bin/env bash
# inject.sh BUILD: commits in which a system call on the configuration file or its temporary file
# fails, or is the process's last. strace injects the faults under Wine, so the program is unchanged.
# (Wine's server makes the move; proof_test makes that one fail.)
set -euo pipefail
build=$1
tree=$(cd "$(dirname "$0")/../.." && pwd)
. "$tree/toolchain/common.sh"

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
conf="$folder/vantrel.conf"

command -v strace >/dev/null || die "strace is not installed: toolchain/packages.sh installs it"

subprocess() { "$tree/toolchain/wine.sh" "$build/tests/proof_test.exe" --subprocess "$1" "Z:$conf"; }

# expect_whole WHERE STATUS: checks the files after a commit with that status. A commit that succeeded is in
# the file. A failed one is not, and a killed one may be. At most a temporary file is left, and the next
# process can commit.
expect_whole() {
    case $2 in
        0) cmp -s "$conf" "$folder/after" || die "$1: the commit succeeded and is not in the file" ;;
        1 | 2) cmp -s "$conf" "$folder/before" || die "$1: the commit failed and changed the file" ;;
        137) cmp -s "$conf" "$folder/before" || cmp -s "$conf" "$folder/after" ||
            die "$1: the file is neither the old one nor the new one" ;;
        *) die "$1: the commit ended with $2" ;;
    esac
    [ -z "$(find "$folder" -name 'vantrel*' ! -name vantrel.conf ! -name vantrel.conf-temp)" ] ||
        die "$1: $(ls "$folder")"
    subprocess commits || die "$1: the next commit failed with $?"
    cmp -s "$conf" "$folder/after" || die "$1: the next commit is not in the file"
    [ ! -e "$conf-temp" ] || die "$1: a temporary file is left"
}

# commit_with FAULT CALL N: commits with FAULT in the Nth CALL. Returns the commit's status.
commit_with() (
    strace -f -o "$folder/trace" -P "$conf" -P "$conf-temp" -e "trace=$2" \
        -e "inject=$2:$1:when=$3" \
        "$tree/toolchain/wine.sh" "$build/tests/proof_test.exe" --subprocess commits "Z:$conf"
    exit $?  # lets this shell, whose output is discarded, report a kill
) >/dev/null 2>&1

# sweep FAULT CALL...: commits once for each occurrence of each of these calls, with FAULT there.
sweep() {
    local fault=$1 call n status
    shift
    for call in "$@"; do
        for ((n = 1; ; ++n)); do
            cp "$folder/before" "$conf"
            status=0
            commit_with "$fault" "$call" "$n" || status=$?
            grep -qE 'INJECTED|killed by SIGKILL' "$folder/trace" || break
            expect_whole "$fault at $call $n" "$status"
            points=$((points + 1))
        done
        [ "$status" = 0 ] || die "$fault at $call: status $status without a fault"
        printf '%-16s %-12s %3d points\n' "$fault" "$call" $((n - 1))
    done
}

points=0
subprocess fills
cp "$conf" "$folder/before"
subprocess commits
cp "$conf" "$folder/after"
if cmp -s "$folder/before" "$folder/after"; then die "the commit changes nothing"; fi
sweep signal=SIGKILL read write fsync close fcntl newfstatat fgetxattr
sweep error=EIO read write fsync close fcntl newfstatat
sweep error=ENOSPC write
printf 'in all %d points: the old file or the new one, and the next commit succeeds\n' "$points"
[ "$points" -gt 0 ] || die "strace injects nothing here"
# Two loads and one commit: 2 reads, 2 writes, a flush, and a constant number of calls that Wine adds.
[ "$points" = 41 ] || die "$points points instead of 41"
