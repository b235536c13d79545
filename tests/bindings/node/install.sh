#!/usr/bin/env bash
# install.sh NODE-FOLDER BUILD-FOLDER: installs the package and the examples with the commands of the documents,
# in folders outside the tree, and runs hosts there. The registry runs on this machine. Exit status 77: no npm.
set -euo pipefail
tools=$1 build=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tree=$(cd "$here/../../.." && pwd)

fail() { echo "$*"; exit 1; }
command -v npm >/dev/null || { echo "skipped: there is no npm"; exit 77; }

folder=$(mktemp -d)
registry='' server=''
trap 'for one in $registry $server; do kill "$one" || true; done; rm -rf "$folder"' EXIT

# The layout of the package.
mkdir -p "$folder/package/share" "$folder/data"
cp -r "$tree/bindings" "$tree/examples" "$folder/package/share"
find "$folder/package" -name node_modules -prune -exec rm -rf {} +

. "$here/npm_here.sh"

# line_of DOCUMENT PATTERN: the only such command between backquotes.
line_of() {
    local lines
    lines=$(grep -oE "\`$2[^\`]*\`" "$tree/$1" | tr -d '`' | sort -u)
    [ "$(wc -l <<<"$lines")" = 1 ] && [ -n "$lines" ] || fail "$1 has not one line $2: $lines"
    echo "$lines"
}

# run_host FOLDER SCRIPT EXPECTED: runs a script with sandbox.js, which uses the packages of FOLDER too.
run_host() {
    local status=0
    cp "$here/registry.js" "$here/sandbox.js" "$1"
    (cd "$1" && QX_TEST_DATA="Z:$folder/data" timeout 60 "$tree/toolchain/wine.sh" "$tools/node/bin/node.exe" \
        -r ./sandbox.js "$2" "Z:$build/bin/QX-Bridge.dll") >"$folder/output" 2>&1 </dev/null || status=$?
    [ "$status" = 0 ] && [ "$(tr -d '\r' <"$folder/output")" = "$3" ] || fail "$1/$2: $status $(<"$folder/output")"
}

# install FOLDER COMMAND
install() {
    (cd "$1" && bash -c "$2") >"$folder/npm" 2>&1 </dev/null || fail "$2: $(<"$folder/npm")"
}

mkdir "$folder/data/Logs"
printf 'vtr.locale="fr-FR"\nvtr.instance.Nougat64.display_name="Größe"\n' >"$folder/data/vantrel.conf"

example="$folder/package/share/examples/node"
install "$example" "$(line_of examples/README.md 'npm install')"
run_host "$example" main.js $'instance Nougat64 Größe\nlocale fr-FR\nlistening\nfinished'

# The launcher gets its folders as arguments and serves until it is killed.
launcher="$folder/package/share/examples/launcher"
install "$launcher" "$(line_of examples/README.md 'npm install')"
"$tree/toolchain/wine.sh" "$tools/node/bin/node.exe" "Z:$launcher/server.js" "Z:$build/bin/QX-Bridge.dll" \
    "Z:$folder/data" "Z:$build/standins" >"$folder/served" 2>&1 </dev/null &
server=$!
for ((i = 0; i < 600; i++)); do
    address=$(tr -d '\r' <"$folder/served" | grep '^http://') && break
    kill -0 "$server" 2>/dev/null || fail "launcher: $(<"$folder/served")"
    sleep 0.1
done
shown=$(python3 -c '
import json, sys, urllib.request
state = json.load(urllib.request.urlopen(sys.argv[1] + "state", timeout=60))
print(*(one["name"] + " " + one["displayName"] for one in state["instances"]))' "$address")
[ "$shown" = 'Nougat64 Größe' ] || fail "launcher: $shown"

# The command of getting-started.md, in the unpacked folder and in another project.
line=$(line_of docs/getting-started.md 'npm install --install-links')
install "$folder/package" "$line"
cp "$tree/tests/package/consumer/host.js" "$folder/package"
run_host "$folder/package" host.js 'Nougat64 Größe'
mkdir "$folder/host"
install "$folder/host" "${line/.\/share/$folder\/package\/share}"
cp "$tree/tests/package/consumer/host.js" "$folder/host"
run_host "$folder/host" host.js 'Nougat64 Größe'

# The command of the binding's README.md, in the parent folder of the binding.
mkdir "$folder/beside"
cp -r "$folder/package/share/bindings" "$folder/beside"
install "$folder/beside" "$(line_of bindings/node/README.md 'npm install --install-links')"
cp "$tree/tests/package/consumer/host.js" "$folder/beside"
run_host "$folder/beside" host.js 'Nougat64 Größe'
echo "5 installations"
