#!/usr/bin/env bash
# package.sh TREE READOBJ WORK: makes the package twice, unpacks it into an empty folder, checks its files, and
# builds a user's project with it. hosts.sh runs the programs.
set -euo pipefail
tree=$1 readobj=$2 work=$3
. "$tree/toolchain/common.sh"

rm -rf "$work"
mkdir -p "$work/made" "$work/again" "$work/unpacked"
zip=$(bash "$tree/toolchain/package.sh" "$work/made")
again=$(bash "$tree/toolchain/package.sh" "$work/again")
cmp "$zip" "$again" || die "the same build gives another package"
rm -rf "$work/made/package" "$work/again"

python3 -m zipfile -e "$zip" "$work/unpacked"
root=$(echo "$work"/unpacked/*)
cd "$root"

sha256sum --quiet -c SHA256SUMS
diff <(find . -type f ! -name SHA256SUMS -printf '%P\n' | LC_ALL=C sort) \
    <(sed 's/^[0-9a-f]*  //' SHA256SUMS) || die "a file without a checksum"
for file in README.md CHANGELOG.md bin/{QX-Bridge.dll,QX-Bridge.pdb,Qt5Core.dll,Qt5Network.dll,bridgectl.exe} \
    tools/{QX-Player,QX-MultiInstanceManager}.exe lib/pkgconfig/qx-bridge.pc include/bridge/bridge.{h,hpp} lib/QX-Bridge.lib \
    lib/QX-Bridge.dll.a lib/cmake/QXBridge/QXBridge{Config,ConfigVersion,CopyRuntime}.cmake \
    share/doc/{getting-started,reference/{configuration-keys,codes},explanation/trust}.md share/doc/api/index.html \
    share/licences/{README.md,Qt.txt,Qt-LGPL-3.txt,Qt-GPL-3.txt,LLVM-runtimes.txt,Apache-2.0.txt} \
    share/licences/{mingw-w64-runtime,CLI11,nlohmann-json,Unicode}.txt \
    share/bindings/{node/{index,native,bridge.generated}.js,csharp/{Session,QXBridge.generated}.cs} \
    share/bindings/python/qxbridge/{__init__,bridge,generated}.py \
    share/examples/{vantrel.conf,c/main.c,cpp/main.cpp,qt/main.cpp,node/main.js,csharp/Program.cs}; do
    [ -s "$file" ] || die "missing: $file"
done
for header in "$tree"/include/bridge/*; do
    cmp "$header" "include/bridge/${header##*/}" || die "missing: ${header##*/}"
done
# The changelog begins with the version of this package.
newest=$(sed -n 's/^## //p' CHANGELOG.md | head -n 1)
[ "$newest" = "$(project_version)" ] || die "the changelog begins with \"$newest\", not $(project_version)"

for document in share/doc/{getting-started,how-to/test-without-the-product}.md; do
    grep -qF "/v Version /d $(project_version)" "$document" || die "$document sets another version"
done
# The documents lead to what is in the package.
while IFS=: read -r document link; do
    [ -e "${document%/*}/$link" ] || die "$document: no $link"
done < <(grep -roE --include='*.md' '\]\([^)#: ]+' . | sed 's/\](//')

# The complete source of its Qt is published with it.
source_zip=$(bash "$tree/toolchain/qt-source.sh" "$work/made")
python3 -m zipfile -e "$source_zip" "$work/source"
(
    cd "$work"/source/*
    files=$(sed -n '/^Checksums-Sha256:/,/^[A-Z].*:/s/^ \([0-9a-f]*\) [0-9]* /\1  /p' ./*.dsc)
    [ "$(wc -l <<<"$files")" -ge 2 ] || die "the description of Qt's source names no files"
    sha256sum --quiet -c <<<"$files"
)

grep -q 'GNU LESSER GENERAL PUBLIC LICENSE' share/licences/Qt-LGPL-3.txt
grep -qi 'LLVM Exceptions' share/licences/LLVM-runtimes.txt
# Only debug data may contain paths, where the linker and names of lambdas need them.
if grep -rlF -e "$tree" -e "$cache" --exclude='*.pdb' .; then
    die "a path of the build machine is published"
fi
for program in bin/*.dll bin/*.exe tools/*.exe; do
    if "$readobj" --sections "$program" | grep -q '\.debug_'; then
        die "$program carries debug data"
    fi
done
grep -q 'bridge_8h.html' share/doc/api/index.html
grep -q 'bridgeConfGetInstances' share/doc/api/bridge_8h.html

# Each DLL that a program loads is beside it or the system's.
system='^(kernel32|advapi32|shell32|psapi|user32|ole32|version|ws2_32|mpr|netapi32|userenv|winmm|dnsapi|iphlpapi|crypt32)\.dll$|^api-ms-win-crt-.*\.dll$'
for program in bin/*.dll bin/*.exe tools/*.exe; do
    while read -r dll; do
        [ -f "${program%/*}/$dll" ] || grep -qiE "$system" <<<"$dll" || die "$program needs $dll"
    done < <("$readobj" --coff-imports "$program" | sed -n 's/^  Name: \(..*\)$/\1/p')
done

# The document's programs are the ones that are built here. The hosts have ten lines at most.
consumer="$tree/tests/package/consumer"
page=$(<share/doc/getting-started.md)
for language in c cpp js cs py; do
    for program in "host.$language" "event.$language"; do
        [[ $page == *"$(sed 's/^/    /; s/ *$//' "$consumer/$program")"* ]] || die "$program is not the document's"
    done
    [ "$(grep -c . "$consumer/host.$language")" -le 10 ] || die "host.$language has more than ten lines"
done
[[ $(<"$tree/README.md") == *"$(sed 's/^/    /; s/ *$//' "$consumer/host.c")"* ]] || die "host.c is not the README's"

tour=$(sed '1,/^void tour/d; /^}$/d' "$consumer/tour.cpp")
[[ $page == *"$tour"* ]] || die "tour.cpp is not the document's"

# The project, with a C compiler for another runtime, and with the library's compiler.
cmake -S "$consumer" -B "$work/gcc" -G Ninja -DCMAKE_SYSTEM_NAME=Windows -DCONSUMER_CXX=OFF \
    -DCMAKE_C_COMPILER="$triple-gcc" -DCMAKE_PREFIX_PATH="$root" \
    -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=NEVER
cmake --build "$work/gcc"
compiler="$(toolchain_dir)/bin/$triple-clang"
cmake -S "$consumer" -B "$work/clang" -G Ninja -DCMAKE_SYSTEM_NAME=Windows \
    -DCMAKE_C_COMPILER="$compiler" -DCMAKE_CXX_COMPILER="$compiler++" -DCMAKE_PREFIX_PATH="$root" \
    -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=NEVER
cmake --build "$work/clang"

# The project in the document.
mkdir -p "$work/pasted"
sed -n '/^    cmake_minimum_required/,/^$/s/^    //p' share/doc/getting-started.md >"$work/pasted/CMakeLists.txt"
cp "$consumer"/{host,event}.c "$work/pasted"
cmake -S "$work/pasted" -B "$work/pasted/build" -G Ninja -DCMAKE_SYSTEM_NAME=Windows \
    -DCMAKE_C_COMPILER="$compiler" -DCMAKE_CXX_COMPILER="$compiler++" -DCMAKE_PREFIX_PATH="$root" \
    -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=NEVER
cmake --build "$work/pasted/build"

# The flags for a makefile.
flags=$(PKG_CONFIG_LIBDIR="$root/lib/pkgconfig" pkg-config --cflags --libs qx-bridge)
# shellcheck disable=SC2086  # they are several words
"$triple-gcc" "$consumer/host.c" $flags -o "$work/gcc/host_pc.exe"

# The files as the port for vcpkg installs them.
cmake "-DPORT_FOLDER=$root/share/vcpkg/qx-bridge" "-DINTO=$work/vcpkg" -P "$tree/tests/package/vcpkg.cmake"
cmake -S "$consumer" -B "$work/port" -G Ninja -DCMAKE_SYSTEM_NAME=Windows \
    -DCMAKE_C_COMPILER="$compiler" -DCMAKE_CXX_COMPILER="$compiler++" -DCMAKE_PREFIX_PATH="$work/vcpkg" \
    -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=NEVER
cmake --build "$work/port" --target host_c host_cxx  # host_c copies the DLLs

# The import library for Microsoft's linker, with clang's.
"$compiler" -Iinclude "$consumer/host.c" lib/QX-Bridge.lib -o "$work/clang/host_lib.exe"

# Hosts in languages without a Windows runtime here are only compiled.
for program in host event; do
    mcs -warnaserror -langversion:5 -platform:x64 "-out:$work/${program}_cs.exe" "$consumer/$program.cs" \
        share/bindings/csharp/*.cs
done
# For .NET Core, which has the classes of events in other assemblies. Warning 1702: these assemblies refer to
# other versions of each other.
runtime="$(bash "$tree/toolchain/dotnet.sh" --dir)/shared/Microsoft.NETCore.App/2.0.0"
references=()
for assembly in Microsoft.Win32.Primitives Microsoft.Win32.Registry System.Collections System.Console \
    System.IO.FileSystem System.Linq System.Private.CoreLib System.Runtime System.Runtime.Extensions \
    System.Security.AccessControl System.Threading.Thread; do
    references+=("-r:$assembly.dll")
done
mcs -warnaserror -langversion:5 -platform:x64 -nostdlib -noconfig -nowarn:1702 "-lib:$runtime" "${references[@]}" \
    "-out:$work/event_cs.exe" "$consumer/event.cs" share/bindings/csharp/*.cs
PYTHONPYCACHEPREFIX="$work/pycache" python3 -m py_compile "$consumer"/{host,event}.py \
    share/bindings/python/qxbridge/*.py
[ -e share/bindings/python/qxbridge/py.typed ] || die "Python's types are not announced"

# Node's host, with the packages in npm's layout.
node=$(bash "$tree/toolchain/node.sh" --dir)
mkdir -p "$work/npm/node_modules"
cp -r "$root/share/bindings/node" "$work/npm/node_modules/qx-bridge"
ln -s "$node/node_modules/koffi" "$work/npm/node_modules/koffi"
cp "$consumer"/{host,event}.js "$work/npm"

echo "$(wc -l <SHA256SUMS) files, $(stat -c %s "$zip") bytes"
