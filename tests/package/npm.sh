#!/usr/bin/env bash
# npm.sh TREE WORK: makes the package for npm from the files that package.sh unpacked, installs it into projects
# outside the tree, and runs hosts there: CommonJS, ES modules and TypeScript. The registry runs on this machine.
# Exit status 77: there is no npm.
set -euo pipefail
tree=$1 work=$2
. "$tree/toolchain/common.sh"

command -v npm >/dev/null || { echo "skipped: there is no npm"; exit 77; }

tools=$(bash "$tree/toolchain/node.sh" --dir)
hosts="$tree/tests/package/npm"
folder=$(mktemp -d)
registry=
trap '[ -z "$registry" ] || kill "$registry"; rm -rf "$folder"' EXIT

# npm orders versions as the library does.
versions='5.2.0.999 5.2.0.1052 5.2.0.10000 5.2.1.0 5.2.1.7 5.2.10.3 5.3.0.1 6.0.0.0'
for one in $versions; do bash "$tree/toolchain/package-npm.sh" --version "$one"; done >"$folder/versions"
sort -c -V -u "$folder/versions" || die "npm orders them otherwise: $(<"$folder/versions")"
[ "$(sed -n 2p "$folder/versions")" = 5.2.1052 ] || die "5.2.0.1052 is $(sed -n 2p "$folder/versions")"
for one in 5.2.0 5.2.0.100000 5.2.0.1-2; do
    if bash "$tree/toolchain/package-npm.sh" --version "$one" 2>/dev/null; then die "$one is taken"; fi
done

root=$(echo "$work"/unpacked/*)
version=$(bash "$tree/toolchain/package-npm.sh" --version "$(project_version)")
name="qx-bridge-$version.tgz"
# The same files give the package of package.sh, whatever the user's mask for new files is.
umask 077
bash "$tree/toolchain/package-npm.sh" "$folder/made" "$root" "$folder"
umask 022
cmp "$folder/$name" "$work/made/$name" || die "./run package makes another one"

. "$tree/tests/bindings/node/npm_here.sh"

mkdir -p "$folder/data/Logs"
printf 'vtr.instance.Nougat64.display_name="Größe"\n' >"$folder/data/vantrel.conf"

# run_host FOLDER SCRIPT EXPECTED
run_host() {
    local status=0
    (cd "$1" && timeout 60 "$tree/toolchain/wine.sh" "$tools/node/bin/node.exe" "$2" "Z:$folder/data") \
        >"$folder/output" 2>&1 </dev/null || status=$?
    [ "$status" = 0 ] && [ "$(tr -d '\r' <"$folder/output")" = "$3" ] || die "$1/$2: $status $(<"$folder/output")"
}

# The command of the page, in an empty project.
line=$(grep -oE '`npm install [^`]*\.tgz`' "$tree/bindings/node/README.md" | tr -d '`')
[ "$(wc -l <<<"$line")" = 1 ] && [ -n "$line" ] || die "the page has not one line for the package: $line"
project="$folder/project"
mkdir "$project"
echo '{ "private": true }' >"$project/package.json"
line=${line/PATH/$folder} line=${line/VERSION/$version}
(cd "$project" && bash -c "$line") >"$folder/npm" 2>&1 </dev/null || die "$line: $(<"$folder/npm")"
cp "$hosts"/* "$tree/tests/bindings/node/types/events.d.ts" "$project"
cp "$project/use.ts" "$project/use.cts"

package="$project/node_modules/qx-bridge"
python3 - "$package" "$version" "$root" <<'END'
import json
import pathlib
import sys

folder = pathlib.Path(sys.argv[1])
package = json.loads((folder / "package.json").read_text("utf-8"))
wanted = {"version": sys.argv[2], "os": ["win32"], "cpu": ["x64"], "license": "SEE LICENSE IN licences/README.md"}
assert {key: package[key] for key in wanted} == wanted, package
assert "private" not in package
packed = {file.relative_to(folder).parts[0] for file in folder.rglob("*")}
assert packed - {"package.json"} == set(package["files"]), packed ^ set(package["files"])
for name in ("QX-Bridge.dll", "Qt5Core.dll", "Qt5Network.dll"):
    assert (folder / "bin" / name).stat().st_size > 10000, name
assert (folder / "CHANGELOG.md").read_bytes() == (pathlib.Path(sys.argv[3]) / "CHANGELOG.md").read_bytes()
texts = {file.name for file in (folder / "licences").glob("*.txt")}
told = (folder / "licences" / "README.md").read_text("utf-8")
assert texts and all(f"`{name}`" in told for name in texts), texts
END

run_host "$project" require.js 'Nougat64 Größe'
run_host "$project" import.mjs $'Nougat64 Größe\none library'

# TypeScript compiles the hosts, with each way to find packages.
tsc=(node "$tools/node_modules/typescript/bin/tsc" --strict --target ES2022 --outDir compiled)
(
    cd "$project"
    "${tsc[@]}" --module node16 --moduleResolution node16 use.mts use.cts wrong.mts events.d.ts
    "${tsc[@]}" --module commonjs --moduleResolution node use.ts events.d.ts
    [ ! -e node_modules/@types ] # its names would hide missing declarations
)
for script in compiled/use.mjs compiled/use.cjs compiled/use.js; do run_host "$project" "$script" 'Nougat64 Größe'; done

# Electron's layout: the DLLs are beside the archive, which is a folder here.
inside="$folder/electron/app.asar" outside="$folder/electron/app.asar.unpacked/node_modules/qx-bridge"
mkdir -p "$inside" "$outside"
cp -r "$project/node_modules" "$inside"
mv "$inside/node_modules/qx-bridge/bin" "$outside"
cp "$hosts/require.js" "$inside"
run_host "$inside" require.js 'Nougat64 Größe'
echo "$name: $(stat -c %s "$folder/$name") bytes"
