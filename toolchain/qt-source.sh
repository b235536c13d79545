#!/usr/bin/env bash
# qt-source.sh [FOLDER]: makes a zip of the package's Qt as source, with the scripts that build it, in
# FOLDER (by default build/windows), and prints its path. Qt's licence requires that the zip accompanies
# the package.
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$tree/toolchain/sources.sh"

into=${1:-$tree/build/windows}
version=$(project_version)
source=$(<"$(qt_dir)/licences/source")
name="QX-Bridge-$version-qt-source"
folder="$into/package-source/$name"

rm -rf "$into/package-source" "$into/$name.zip"
mkdir -p "$folder/toolchain"
[ -f "$cache/sources/$source.dsc" ] || fetch_source qtbase-opensource-src
for file in $(sed -n '/^Checksums-Sha256:/,/^[A-Z].*:/s/^ [0-9a-f]* [0-9]* //p' "$cache/sources/$source.dsc"); do
    cp "$cache/sources/$file" "$folder"
done
cp "$cache/sources/$source.dsc" "$folder"
cp "$tree"/toolchain/{common,packages,qt,release,sources,windows}.sh "$tree/toolchain/packages.txt" "$folder/toolchain"
cat >"$folder/README.md" <<END
# The source of Qt as it is in QX-Bridge $version

\`$source\` is Debian's source package of Qt 5.15, whole: \`dpkg-source -x $source.dsc\` unpacks and
patches it. On Debian $(release_number), as root, these scripts build the two DLLs as they are in the package:

    bash toolchain/packages.sh build
    bash toolchain/windows.sh
    bash toolchain/qt.sh

They take six minutes on two cores, fetch what is not here from Debian, and end in \`~/.cache/qx-bridge/qt-*/bin\`.
A changed Qt takes effect when its \`Qt5Core.dll\` and \`Qt5Network.dll\` take the place of those beside
\`QX-Bridge.dll\`: the library is linked with them dynamically.
END
python3 "$tree/toolchain/zip.py" "$folder" "$into/$name.zip" "$(package_stamp)"
rm -rf "$into/package-source"
echo "$into/$name.zip"
