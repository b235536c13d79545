#!/usr/bin/env bash
# package-nuget.sh FOLDER PACKAGE INTO: makes the NuGet package in INTO from the unpacked zip PACKAGE. Works in
# FOLDER/nuget.
set -euo pipefail
. "$(dirname "$0")/common.sh"

work="$1/nuget" package=$2 into=$3
version=$(project_version)
nupkg="$into/QXBridge.$version.nupkg"
content="$work/content"
lib="$content/lib/netstandard2.0"
native="$content/runtimes/win-x64/native"

bash "$tree/toolchain/dotnet.sh" >&2
runtime="$(bash "$tree/toolchain/dotnet.sh" --dir)/shared/Microsoft.NETCore.App/2.0.0"
cecil=$(echo /usr/lib/mono/gac/Mono.Cecil/0.11.*/Mono.Cecil.dll)
[ -f "$cecil" ] || die "the package for .NET needs Debian's package libmono-cecil-private-cil"

rm -rf "$work"
mkdir -p "$lib" "$native" "$content"/{build,buildTransitive,licences} "$work/compiled"

cat >"$work/AssemblyInfo.cs" <<END
[assembly: System.Reflection.AssemblyTitle("QXBridge")]
[assembly: System.Reflection.AssemblyVersion("$version")]
[assembly: System.Reflection.AssemblyFileVersion("$version")]
[assembly: System.Reflection.AssemblyInformationalVersion("$version")]
[assembly: System.Runtime.Versioning.TargetFramework(".NETStandard,Version=v2.0")]
END
mcs -warnaserror -warn:4 -langversion:5 -optimize+ -debug -target:library "-doc:$lib/QXBridge.xml" \
    "-out:$work/compiled/QXBridge.dll" "$package"/share/bindings/csharp/*.cs "$work/AssemblyInfo.cs"
mcs -warnaserror -langversion:5 "-r:$cecil" -r:Mono.CompilerServices.SymbolWriter.dll \
    "-out:$work/finish.exe" "$tree/toolchain/nuget/Finish.cs"
mono "$work/finish.exe" "$work/compiled/QXBridge.dll" "$package/share/bindings/csharp" "$runtime" "$lib/QXBridge.dll"
[ -z "${QX_SIGN_CERTIFICATE:-}" ] || bash "$tree/toolchain/sign.sh" "$lib"

cp "$package"/bin/{QX-Bridge,Qt5Core,Qt5Network}.dll "$native"
# Without licences that apply to the programs only.
cp "$package"/share/licences/*.txt "$content/licences"
rm "$content"/licences/{CLI11,nlohmann-json,Unicode}.txt
sed -e '/bridgectl/d' -e 's/inside the programs and every DLL/inside the Qt DLLs and `QX-Bridge.dll`/' \
    -e 's|`bin/|`runtimes/win-x64/native/|g' "$package/share/licences/README.md" >"$content/licences/README.md"
cp "$tree/toolchain/nuget/QXBridge.targets" "$content/build"
cp "$tree/toolchain/nuget/QXBridge.transitive.targets" "$content/buildTransitive/QXBridge.targets"
cp "$tree/toolchain/nuget/README.md" "$package/CHANGELOG.md" "$content"
sed "s/@VERSION@/$version/" "$tree/toolchain/nuget/QXBridge.nuspec" >"$content/QXBridge.nuspec"

python3 "$tree/toolchain/nuget/pack.py" "$content" "$nupkg" "$(package_stamp)"
