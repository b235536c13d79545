#!/usr/bin/env bash
# kit.sh [FOLDER]: makes the Windows kit from build/windows, as a zip in FOLDER (default: build/windows), and
# prints its path.
set -euo pipefail
. "$(dirname "$0")/common.sh"

build="$tree/build/windows"
into=${1:-$build}
name="QX-Bridge-$(project_version)-windows-kit"
folder="$into/kit-package/$name"

rm -rf "$into/kit-package"
mkdir -p "$folder"/{bin,tests/bindings,standins,kit,docs,include,lib,bindings/node_modules}

# The programs, without debug data.
cp "$build"/bin/*.{dll,exe} "$folder/bin"
cp "$build"/standins/*.{dll,exe} "$folder/standins"
cp "$build"/kit/*.exe "$folder/kit"
cp "$build"/tests/*.exe "$build"/tests/{QX-Bridge,Qt5Core,Qt5Network,late_plugin}.dll "$folder/tests"
cp "$build"/tests/bindings/{dotnet_host,dotnet_scenario,listing_csharp}.{dll,runtimeconfig.json} \
    "$build"/tests/example_csharp.{dll,runtimeconfig.json} "$folder/tests"
cp -r "$build/tests/recording" "$folder/tests"
# tests/bindings/scenario.py would take a DLL for the real library.
cp "$folder/tests/recording/QX-Bridge".{dll,pyd}

# The tests of the bindings and the examples, at their places in the tree.
cp -r "$tree/examples" "$folder"
cp -r "$tree"/tests/bindings/{node,python,scenario.py,scenarios.txt} "$folder/tests/bindings"

# The files that Microsoft's compiler and the languages' runtimes need.
cp -r "$tree/include/bridge" "$folder/include"
cp "$build/lib/QX-Bridge.lib" "$folder/lib"
cp "$tree/tests/package/consumer"/host.{c,cpp} "$tree"/kit/bindings/{*.js,*.py,runtime_host.c} "$folder/bindings"
cp -r "$tree/bindings/python" "$folder/bindings"
cp -r "$tree/bindings/node" "$folder/bindings/node_modules/qx-bridge"
mkdir -p "$folder"/{source,headers/include}
cp -r "$tree"/{CMakeLists.txt,CMakePresets.json,cmake,include,programs,Source} "$folder/source"
cp -r /usr/include/{CLI,nlohmann} "$folder/headers/include"
koffi="$(bash "$tree/toolchain/node.sh" --dir)/node_modules/koffi"
native=build/koffi/win32_x64
mkdir -p "$folder/bindings/node_modules/koffi/$native"
cp "$koffi"/{package.json,LICENSE.txt,*.js} "$folder/bindings/node_modules/koffi"
if [ -d "$koffi/lib" ]; then cp -r "$koffi/lib" "$folder/bindings/node_modules/koffi"; fi
cp "$koffi/$native"/* "$folder/bindings/node_modules/koffi/$native"

find "$folder" -name __pycache__ -prune -exec rm -rf {} +

bash "$tree/toolchain/licences.sh" "$folder/licences"
cp "$tree/kit/checks.txt" "$folder"
(cd "$tree" && find docs \( -name '*.md' -o -name '*.png' -o -name '*.svg' \) -exec cp --parents {} "$folder" \;)
sed 's/$/\r/' "$tree/kit/run.cmd" >"$folder/run.cmd"
bash "$tree/toolchain/sign.sh" "$folder"

(
    cd "$folder"
    find . -type f ! -name SHA256SUMS -printf '%P\n' | LC_ALL=C sort | xargs -d '\n' sha256sum >SHA256SUMS
)
rm -f "$into/$name.zip"
python3 "$tree/toolchain/zip.py" "$folder" "$into/$name.zip" "$(package_stamp)"
echo "$into/$name.zip"
