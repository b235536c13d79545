#!/usr/bin/env bash
# try-kit.sh ZIP WORK [ARGUMENT...]: unpacks the Windows kit into a folder whose name has a blank and
# letters outside ASCII, and runs it under Wine, in its own prefix, with these arguments. The
# results are in WORK. If the cache has Node and .NET for Windows, they are in PATH.
set -euo pipefail
. "$(dirname "$0")/common.sh"

zip=$1 work=$2
shift 2
rm -rf "$work"
mkdir -p "$work"
prefix=$(mktemp -d)
export WINEPREFIX="$prefix/prefix" LC_ALL=C.UTF-8
trap 'bash "$tree/toolchain/prefix.sh" down; rm -rf "$prefix"' EXIT
bash "$tree/toolchain/prefix.sh" up

kit="$work/Prüfung ж 日本"
mkdir "$kit"
python3 -m zipfile -e "$zip" "$kit"
mv "$kit"/*/* "$kit"
export WINEPATH
WINEPATH="Z:$(bash "$tree/toolchain/node.sh" --dir)/node/bin;Z:$(bash "$tree/toolchain/dotnet.sh" --dir)"
unset QX_QT  # which names a Qt for Microsoft's compiler there
status=0
"$tree/toolchain/wine.sh" "$kit/kit/run_checks.exe" --no-questions "$@" </dev/null || status=$?
cp -r "$kit/results" "$work/results"
exit "$status"
