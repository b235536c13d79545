#!/usr/bin/env bash
# package.sh TREE READOBJ WORK: makes the package twice, unpacks it into an empty folder and prefix,
# and uses it as somebody does who has nothing else: checksums, DLLs, and a project of their own.
set -euo pipefail
tree=$1 readobj=$2 work=$3
. "$tree/toolchain/common.sh"

fail() { echo "$*"; exit 1; }

rm -rf "$work"
mkdir -p "$work/made" "$work/again" "$work/unpacked" "$work/data/Logs"
zip=$(bash "$tree/toolchain/package.sh" "$work/made")
again=$(bash "$tree/toolchain/package.sh" "$work/again")
cmp "$zip" "$again" || fail "the same build gives another package"
rm -rf "$work/made/package" "$work/again"

python3 -m zipfile -e "$zip" "$work/unpacked"
root=$(echo "$work"/unpacked/*)
cd "$root"

sha256sum --quiet -c SHA256SUMS
diff <(find . -type f ! -name SHA256SUMS -printf '%P\n' | LC_ALL=C sort) \
    <(sed 's/^[0-9a-f]*  //' SHA256SUMS) || fail "a file without a checksum"
for file in README.md bin/{QX-Bridge.dll,QX-Bridge.pdb,Qt5Core.dll,Qt5Network.dll,bridgectl.exe,QX-Player.exe} \
    bin/QX-MultiInstanceManager.exe include/bridge/bridge.{h,hpp} lib/QX-Bridge.lib \
    lib/QX-Bridge.dll.a lib/cmake/QXBridge/QXBridgeConfig{,Version}.cmake \
    share/doc/{getting-started,configuration-keys,codes,security}.md share/doc/reference/index.html \
    share/licences/{README.md,Qt.txt,Qt-LGPL-3.txt,Qt-GPL-3.txt,LLVM-runtimes.txt,Apache-2.0.txt} \
    share/licences/{mingw-w64-runtime,CLI11,nlohmann-json,Unicode}.txt \
    share/bindings/{node/index.js,csharp/QXBridge.cs,python/qxbridge.py} \
    share/examples/{vantrel.conf,c/main.c,cpp/main.cpp,qt/main.cpp,node/main.js,csharp/Program.cs}; do
    [ -s "$file" ] || fail "missing: $file"
done
# The source of the Qt in it goes with it, whole.
source_zip=$(bash "$tree/toolchain/qt-source.sh" "$work/made")
python3 -m zipfile -e "$source_zip" "$work/source"
(
    cd "$work"/source/*
    files=$(sed -n '/^Checksums-Sha256:/,/^[A-Z].*:/s/^ \([0-9a-f]*\) [0-9]* /\1  /p' ./*.dsc)
    [ "$(wc -l <<<"$files")" -ge 2 ] || fail "the description of Qt's source names no files"
    sha256sum --quiet -c <<<"$files"
)

grep -q 'GNU LESSER GENERAL PUBLIC LICENSE' share/licences/Qt-LGPL-3.txt
grep -qi 'LLVM Exceptions' share/licences/LLVM-runtimes.txt
# Debug data has them where the linker, and names of lambdas, leave no choice.
if grep -rlF -e "$tree" -e "$cache" --exclude='*.pdb' .; then
    fail "a path of the build machine is published"
fi
for program in bin/*.dll bin/*.exe; do
    if "$readobj" --sections "$program" | grep -q '\.debug_'; then
        fail "$program carries debug data"
    fi
done
grep -q 'bridge_8h.html' share/doc/reference/index.html
grep -q 'bridgeConfGetInstances' share/doc/reference/bridge_8h.html

# Whatever a program loads is in bin/, or is the system's.
system='^(kernel32|advapi32|shell32|psapi|user32|ole32|version|ws2_32|mpr|netapi32|userenv|winmm|dnsapi|iphlpapi|crypt32)\.dll$|^api-ms-win-crt-.*\.dll$'
for program in bin/*.dll bin/*.exe; do
    while read -r dll; do
        [ -f "bin/$dll" ] || grep -qiE "$system" <<<"$dll" || fail "$program needs $dll"
    done < <("$readobj" --coff-imports "$program" | sed -n 's/^  Name: \(..*\)$/\1/p')
done

# The document's hosts are the ones that are built here, of ten lines at most.
consumer="$tree/tests/package/consumer"
page=$(<share/doc/getting-started.md)
for host in host.c host.cpp host.js host.cs host.py; do
    [[ $page == *"$(sed 's/^/    /; s/ *$//' "$consumer/$host")"* ]] || fail "$host is not the document's"
    [ "$(grep -c . "$consumer/$host")" -le 10 ] || fail "$host has more than ten lines"
done

# The project, with the C compiler of another runtime and with this one's for C and C++.
cmake -S "$consumer" -B "$work/gcc" -G Ninja -DCMAKE_SYSTEM_NAME=Windows -DCONSUMER_CXX=OFF \
    -DCMAKE_C_COMPILER="$triple-gcc" -DCMAKE_PREFIX_PATH="$root" \
    -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=NEVER
cmake --build "$work/gcc"
compiler="$(toolchain_dir)/bin/$triple-clang"
cmake -S "$consumer" -B "$work/clang" -G Ninja -DCMAKE_SYSTEM_NAME=Windows \
    -DCMAKE_C_COMPILER="$compiler" -DCMAKE_CXX_COMPILER="$compiler++" -DCMAKE_PREFIX_PATH="$root" \
    -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=NEVER
cmake --build "$work/clang"

# The import library for Microsoft's linker, with the linker that there is.
"$compiler" -Iinclude "$consumer/host.c" lib/QX-Bridge.lib -o "$work/clang/host_lib.exe"

mcs -warnaserror -langversion:5 -platform:x64 "-out:$work/host_cs.exe" "$consumer/host.cs" \
    share/bindings/csharp/QXBridge.cs
# There is no Python for Windows here: its host is compiled only.
PYTHONPYCACHEPREFIX="$work/pycache" python3 -m py_compile "$consumer/host.py" \
    share/bindings/python/qxbridge.py

export WINEPREFIX="$work/prefix"
trap 'bash "$tree/toolchain/prefix.sh" down' EXIT
bash "$tree/toolchain/prefix.sh" up
wine() { timeout 60 "$tree/toolchain/wine.sh" "$@"; }

printf 'vtr.instance.Nougat64.display_name="Jeux"\n' >"$work/data/vantrel.conf"
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
key='HKLM\SOFTWARE\Vantrel_nvo'
wine reg add "$key" /v UserDefinedDir /d "$(windows_path "$work/data")" /f
wine reg add "$key" /v InstallDir /d "$(windows_path "$root/bin")\\" /f

listing=$(wine bin/bridgectl.exe instances --json)
grep -q '"displayName": "Jeux"' <<<"$listing" || fail "bridgectl lists: $listing"
for host in "$work/gcc/host_c.exe" "$work/clang/host_c.exe" "$work/clang/host_cxx.exe" \
    "$work/clang/host_lib.exe"; do
    got=$(wine "$host" | tr -d '\r')  # printed in text mode
    [ "$got" = "$listing" ] || fail "$host lists: $got"
done
dotnet=$(bash "$tree/toolchain/dotnet.sh" --dir)
cp "$tree/tests/bindings/csharp/runtimeconfig.json" "$work/host_cs.runtimeconfig.json"
got=$(wine "$dotnet/dotnet.exe" "$(windows_path "$work/host_cs.exe")" \
    "$(windows_path "$root/bin/QX-Bridge.dll")" | tr -d '\r')
[ "$got" = "$listing" ] || fail "host.cs lists: $got"
# Node, with the packages where npm puts them; under Wine it cannot write to this system's pipes.
node=$(bash "$tree/toolchain/node.sh" --dir)
mkdir -p "$work/npm/node_modules"
cp -r "$root/share/bindings/node" "$work/npm/node_modules/qx-bridge"
ln -s "$node/node_modules/koffi" "$work/npm/node_modules/koffi"
cp "$consumer/host.js" "$work/npm"
wine "$node/node/bin/node.exe" "$(windows_path "$work/npm/host.js")" \
    "$(windows_path "$root/bin/QX-Bridge.dll")" >"$work/node.txt" 2>&1
[ "$(tr -d '\r' <"$work/node.txt")" = "Nougat64 Jeux" ] || fail "host.js lists: $(<"$work/node.txt")"

QX_STANDIN_OUTPUT="$(windows_path "$work/standins.txt")" QX_STANDIN_SECONDS=1 QX_STANDIN_CLIENTS=none \
    wine bin/bridgectl.exe launch Nougat64 com.example.app
for ((i = 0; i < 100; i++)); do
    grep -q '^serving: ' "$work/standins.txt" 2>/dev/null && break
    sleep 0.1
done
grep -q '"launchApp" "--package" "com.example.app"' "$work/standins.txt" || fail "no player was started"
echo "$(wc -l <SHA256SUMS) files, $(stat -c %s "$zip") bytes"
