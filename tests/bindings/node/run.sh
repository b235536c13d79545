#!/usr/bin/env bash
# Runs a script in Node for Windows under Wine: run.sh NODE-FOLDER BUILD-FOLDER SCRIPT ARGUMENT...
# The output goes into a file, because Node cannot write to this system's pipes under Wine. A test file passes
# only if its output says so, because a killed process can have the status 0.
set -u
tools=$1 build=$2
shift 2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tree=$(cd "$here/../../.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

mkdir "$folder/data"
export NODE_PATH="Z:$build/node_modules"
export QX_TEST_DATA="Z:$folder/data" QX_TEST_BUILD="Z:$build"
"$tree/toolchain/wine.sh" "$tools/node/bin/node.exe" "$@" >"$folder/output" 2>&1 </dev/null
status=$?
cat "$folder/output"
if [ $status = 0 ] && [[ "$*" = *.test.js ]] && ! grep -q '^# fail 0' "$folder/output"; then
    echo "the tests did not finish"
    exit 1
fi
exit $status
