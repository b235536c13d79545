#!/usr/bin/env bash
# setup.sh TREE: the error messages of ./run when the set-up fails. Each case runs in its own namespaces,
# so this machine does not change. Without the right to create namespaces the test is skipped.
set -euo pipefail
tree=$1
unshare -mn true 2>/dev/null || { echo "skipped: needs the right to create namespaces"; exit 77; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/cache"
failed=0

# expect NAME LINE COMMAND: the shell command must fail with LINE as the last line of its output. "*" in
# LINE matches any text.
expect() {
    local name=$1 line=$2 last
    if QX_BRIDGE_CACHE="$work/cache" unshare -mn bash -c "cd '$tree'; $3" >"$work/out" 2>&1 </dev/null; then
        echo "$name: did not fail"
        failed=1
        return
    fi
    last=$(tail -n 1 "$work/out")
    # shellcheck disable=SC2053
    if [[ $last != $line ]]; then
        printf '%s:\n  expected: %s\n' "$name" "$line"
        sed 's/^/  output:   /' "$work/out"
        failed=1
    fi
}

expect "another system" \
    "error: this system is neither Debian 12 nor Debian 13.*" \
    "echo 'ID=other' >'$work/os'; mount --bind '$work/os' /etc/os-release; ./run build"

expect "a cache that is read-only" \
    "error: cannot write to the cache $work/cache; QX_BRIDGE_CACHE names another folder" \
    "mount -t tmpfs -o ro none '$work/cache'; ./run build"

expect "a disk with too little space for the set-up" \
    "error: the set-up needs * MB in $work/cache, and 1 MB are free; QX_BRIDGE_CACHE names another folder" \
    "mount -t tmpfs -o size=1m none '$work/cache'; ./run build"

expect "no root" \
    "error: installing packages needs root; missing: no-such-package" \
    "chmod 777 '$work' '$work/cache'; setpriv --reuid=65534 --clear-groups bash toolchain/packages.sh no-such-package"

expect "no network" \
    "error: Toolchain sources: the package archive cannot be reached; check the network and /etc/apt (log: *)" \
    "bash toolchain/windows.sh"

expect "a disk that becomes full" \
    "error: Toolchain sources: the disk is full (*) (log: *)" \
    "mount -t tmpfs -o size=1m none '$work/cache'; PATH='$work/full':\$PATH; mkdir -p '$work/full'
     printf '#!/bin/sh\nhead -c 2000000 /dev/zero >\"%s/file\"\n' '$work/cache' >'$work/full/apt-get'
     chmod +x '$work/full/apt-get'; bash toolchain/windows.sh"

expect "packages that another program is installing" \
    "error: Packages: another program is installing packages; try again when it has finished (log: *)" \
    "cp -a /var/lib/dpkg '$work/dpkg'; mount --bind '$work/dpkg' /var/lib/dpkg
     mkdir -p '$work/bin'; printf '#!/bin/sh\n[ \"\$1\" = update ] || exec /usr/bin/apt-get \"\$@\"\n' >'$work/bin/apt-get'
     chmod +x '$work/bin/apt-get'; PATH='$work/bin':\$PATH; export PATH QX_APT_WAIT=0
     python3 -c 'import fcntl, time; lock = open(\"/var/lib/dpkg/lock-frontend\", \"w\"); fcntl.lockf(lock, fcntl.LOCK_EX); print(\"held\", flush=True); time.sleep(30)' >'$work/held' &
     for i in \$(seq 200); do [ -s '$work/held' ] && break; sleep 0.05; done
     bash toolchain/packages.sh cowsay; status=\$?; kill \$!; exit \$status"

exit "$failed"
