#!/usr/bin/env bash
# nuget.sh TREE WORK: checks the package for .NET that package.sh made, unpacks it into an empty folder, and
# runs a host with it: with the DLLs in the folder of packages, and in the host's folder.
set -euo pipefail
tree=$1 work=$2
. "$tree/toolchain/common.sh"

root=$(echo "$work"/unpacked/*)
version=$(project_version)
nupkg="$work/made/QXBridge.$version.nupkg"
source="$tree/tests/package/nuget"
dotnet=$(bash "$tree/toolchain/dotnet.sh" --dir)
runtime="$dotnet/shared/Microsoft.NETCore.App/2.0.0"

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# The same package results in another folder.
mkdir "$folder/again"
bash "$tree/toolchain/package-nuget.sh" "$folder/again" "$root" "$folder/again"
cmp "$nupkg" "$folder/again/QXBridge.$version.nupkg" || die "the same build gives another package"
(cd "$work/made" && sha256sum --quiet -c <(grep "  ${nupkg##*/}\$" SHA256SUMS)) || die "its checksum is another"
python3 "$tree/tests/package/nuget_test.py" "$nupkg" "$root" "$version" "$tree" "$cache" "$folder"

packages="$folder/packages"
unpacked="$packages/qxbridge/$version"
mkdir -p "$unpacked" "$folder/sources" "$folder/host" "$folder/beside" "$folder/data/Logs"
python3 -m zipfile -e "$nupkg" "$unpacked"
assembly="$unpacked/lib/netstandard2.0/QXBridge.dll"

mcs -warnaserror -langversion:5 "-r:$(echo /usr/lib/mono/gac/Mono.Cecil/0.11.*/Mono.Cecil.dll)" \
    "-out:$folder/look.exe" "$source/Look.cs"
diff - <(mono "$folder/look.exe" "$assembly" "$folder/sources") <<END
refers to netstandard, Version=2.0.0.0, Culture=neutral, PublicKeyToken=cc7b13ffcd2ddd51
is QXBridge, Version=$version, Culture=neutral, PublicKeyToken=null for .NETStandard,Version=v2.0
runs on I386 ILOnly
variables: waited
variables: handle error mayCome
END
for file in "$root"/share/bindings/csharp/*.cs; do
    cmp "$file" "$folder/sources/${file##*/}" || die "the PDB has not ${file##*/}"
done

mcs -warnaserror -langversion:5 -nostdlib -noconfig -nowarn:1702 "-lib:$runtime" -r:System.Private.CoreLib.dll \
    -r:System.Runtime.dll -r:System.Runtime.Extensions.dll -r:System.Console.dll -r:netstandard.dll \
    "-r:$assembly" "-out:$folder/host/host.dll" "$source/Host.cs"
cp "$tree/tests/bindings/csharp/runtimeconfig.json" "$folder/host/host.runtimeconfig.json"
cp "$folder"/host/* "$assembly" "$unpacked"/runtimes/win-x64/native/*.dll "$folder/beside"
sed "s/@VERSION@/$version/" "$source/host.deps.json" >"$folder/host/host.deps.json"

windows_path() { printf 'Z:%s' "${1//\//\\}"; }
printf 'vtr.instance.Nougat64.display_name="Jeux"\n' >"$folder/data/vantrel.conf"

# run_host FOLDER OPTION...: prints the output of the host in the folder.
run_host() {
    local host
    host=$(windows_path "$1/host.dll")
    shift
    timeout 60 "$tree/toolchain/wine.sh" "$dotnet/dotnet.exe" exec "$@" "$host" \
        "$(windows_path "$folder/data")" | tr -d '\r'
}

expected='Nougat64 Jeux
C:\None\QX-Player.exe'
line=$(grep -n 'throw new BridgeException(operation, code, file, Places.LogPath);' \
    "$root/share/bindings/csharp/Session.cs" | cut -d : -f 1)
run_host "$folder/host" --additionalprobingpath "$(windows_path "$packages")" >"$folder/packages.txt"
run_host "$folder/beside" >"$folder/beside.txt"
for way in packages beside; do
    [ "$(head -n 2 "$folder/$way.txt")" = "$expected" ] || die "$way: $(<"$folder/$way.txt")"
done
# Only the folder of packages has the PDB beside the assembly.
grep -q "Session.Require(.* in /_/bindings/csharp/Session.cs:line $line\$" "$folder/packages.txt" ||
    die "the trace has no line $line: $(<"$folder/packages.txt")"
