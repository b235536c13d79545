#!/usr/bin/env bash
# package-npm.sh FOLDER PACKAGE INTO: makes the npm package in INTO from the unpacked zip PACKAGE. Works in
# FOLDER/npm. With --version VERSION it only prints npm's form of that version.
set -euo pipefail
. "$(dirname "$0")/common.sh"

# npm's versions have three numbers; a fourth after "-" would be a pre-release. The last two of four numbers are
# combined, which keeps the order of versions: 5.2.0.1052 is 5.2.1052, and 5.2.1.7 is 5.2.100007.
npm_version() {
    local major minor patch build
    IFS=. read -r major minor patch build <<<"$1"
    [[ $1 =~ ^[0-9]+(\.[0-9]+){3}$ ]] || die "$1 does not have four numbers"
    [ "$build" -lt 100000 ] || die "$1: npm's version has room for five digits of the last number"
    echo "$major.$minor.$((patch * 100000 + build))"
}

if [ "$1" = --version ]; then
    npm_version "$2"
    exit
fi

work="$1/npm" package=$2 into=$3
version=$(npm_version "$(project_version)")
content="$work/package"

rm -rf "$work"
mkdir -p "$content"/{bin,licences} "$into"
cp "$package"/share/bindings/node/{*.js,*.mjs,*.ts,*.mts,README.md,package.json} "$content"
cp "$package/CHANGELOG.md" "$content"
cp "$package"/bin/{QX-Bridge,Qt5Core,Qt5Network}.dll "$content/bin"
# Without licences that apply to the programs only.
cp "$package"/share/licences/{README.md,*.txt} "$content/licences"
rm "$content"/licences/{CLI11,nlohmann-json,Unicode}.txt
sed -i -e '/bridgectl/d' -e 's/inside the programs and every DLL/inside every DLL/' "$content/licences/README.md"

python3 - "$content/package.json" "$version" <<'END'
import json
import pathlib
import sys

file = pathlib.Path(sys.argv[1])
package = json.loads(file.read_text("utf-8"))
del package["private"]
package.update(version=sys.argv[2], license="SEE LICENSE IN licences/README.md")
file.write_text(json.dumps(package, indent=2) + "\n", "utf-8")
END

find "$content" -type d -exec chmod 755 {} +
find "$content" -type f -exec chmod 644 {} +
# The layout of `npm pack`, with the time of the newest commit, so that the same files give the same bytes.
tar --create --directory "$work" --sort=name --format=ustar --mtime="@$(package_stamp)" --owner=0 --group=0 \
    --numeric-owner package | gzip -9n >"$into/qx-bridge-$version.tgz"
