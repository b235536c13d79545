#!/usr/bin/env bash
# package.sh [FOLDER]: makes the zip from build/windows, and the packages for npm, NuGet and pip, in FOLDER
# (default: build/windows). Prints the path of the zip.
set -euo pipefail
. "$(dirname "$0")/common.sh"

build="$tree/build/windows"
into=${1:-$build}
version=$(project_version)
name="QX-Bridge-$version"
folder="$into/package/$name"

rm -rf "$into/package"
mkdir -p "$folder"
cmake --install "$build" --prefix "$folder" >"$into/package/install.log"
bash "$tree/toolchain/licences.sh" "$folder/share/licences"

# The reference from the headers. A wrong comment, or one without a parameter, is an error.
(
    cat "$tree/docs/Doxyfile"
    echo "PROJECT_NUMBER = $version"
    echo "OUTPUT_DIRECTORY = $folder/share/doc"
    echo "STRIP_FROM_PATH = $tree/include $tree"
    echo "STRIP_FROM_INC_PATH = $tree/include"
    echo "INPUT = $tree/docs/api.dox $tree/include/bridge"
) | doxygen - >"$into/package/doxygen.log"

bash "$tree/toolchain/sign.sh" "$folder"

(
    cd "$folder"
    find . -type f ! -name SHA256SUMS -printf '%P\n' | LC_ALL=C sort | xargs -d '\n' sha256sum >SHA256SUMS
)
rm -f "$into/$name.zip" "$into"/{qxbridge-*.whl,QXBridge.*.nupkg,qx-bridge-*.tgz}
python3 "$tree/toolchain/zip.py" "$folder" "$into/$name.zip" "$(package_stamp)"
bash "$tree/toolchain/package-wheel.sh" "$into/package" "$folder" "$into"
bash "$tree/toolchain/package-nuget.sh" "$into/package" "$folder" "$into"
bash "$tree/toolchain/package-npm.sh" "$into/package" "$folder" "$into"
(cd "$into" && sha256sum "$name.zip" "qxbridge-$version"-*.whl "QXBridge.$version.nupkg" qx-bridge-*.tgz) >"$into/SHA256SUMS"
echo "$into/$name.zip"
