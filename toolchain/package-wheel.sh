#!/usr/bin/env bash
# package-wheel.sh FOLDER PACKAGE INTO: makes the wheel of the Python binding, with the library in it, in INTO from
# the unpacked zip PACKAGE. Works in FOLDER/wheel.
set -euo pipefail
. "$(dirname "$0")/common.sh"

package=$2 into=$3
version=$(project_version)
root="$1/wheel"
info="$root/qxbridge-$version.dist-info"
tag=py3-none-win_amd64

rm -rf "$root"
mkdir -p "$root/qxbridge" "$info"
cp "$package"/share/bindings/python/qxbridge/{*.py,py.typed} "$root/qxbridge"
cp "$package"/bin/{QX-Bridge,Qt5Core,Qt5Network}.dll "$root/qxbridge"

# Without licences that apply to the programs only.
cp -r "$package/share/licences" "$info/licenses"
rm "$info"/licenses/{CLI11,nlohmann-json,Unicode}.txt
sed -i '/`bin\/bridgectl/d; s#`bin/#`qxbridge/#g' "$info/licenses/README.md"

cp "$package/CHANGELOG.md" "$info"

cat >"$info/WHEEL" <<END
Wheel-Version: 1.0
Generator: qx-bridge ($version)
Root-Is-Purelib: false
Tag: $tag
END
{
    cat <<END
Metadata-Version: 2.1
Name: qxbridge
Version: $version
Summary: QX-Bridge.dll for Python: configuration, instances, apps, programs and events
Classifier: Operating System :: Microsoft :: Windows
Classifier: Typing :: Typed
Requires-Python: >=3.8
Description-Content-Type: text/markdown

END
    cat "$package/share/bindings/python/README.md"
} >"$info/METADATA"

mkdir -p "$into"
wheel="$into/qxbridge-$version-$tag.whl"
rm -f "$wheel"
python3 "$tree/toolchain/wheel.py" "$root" "$wheel" "$(package_stamp)"
