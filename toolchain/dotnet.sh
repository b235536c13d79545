#!/usr/bin/env bash
# .NET for Windows from npm, for the tests of the C# binding.
#   dotnet.sh          fetches it when it is missing
#   dotnet.sh --dir    says where it is: dotnet.exe, and the assemblies in
#                      shared/Microsoft.NETCore.App/2.0.0
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$tree/toolchain/npm.sh"

cached_build "$cache/dotnet-$(digest "$tree"/toolchain/{npm,dotnet}.sh)" ".NET" "$@"

packages="
dotnet-2.0.0-win 1.0.5 8ab4690ff829bcbbaf962febf6ef50b1bfb719b40a06bb9b2cb3ac3882d05d36 .
"
fetch_from_npm "Runtime of .NET" "5 s" "$packages" dotnet.exe \
    shared/Microsoft.NETCore.App/2.0.0/System.Private.CoreLib.dll
