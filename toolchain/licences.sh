#!/usr/bin/env bash
# licences.sh FOLDER: copies the licences of the package's contents from Debian's packages.
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$tree/toolchain/sources.sh"

into=$1
mkdir -p "$into"

# The names in Debian's copyright files.
archive=$(source_file 'qtbase-opensource-src_*.debian.tar.xz' 2>/dev/null) || {
    fetch_source qtbase-opensource-src
    archive=$(source_file 'qtbase-opensource-src_*.debian.tar.xz')
}
tar -xOf "$archive" debian/copyright >"$into/Qt.txt"
cp "/usr/share/doc/llvm-$llvm_version/copyright" "$into/LLVM-runtimes.txt"
cp /usr/share/doc/mingw-w64-x86-64-dev/copyright "$into/mingw-w64-runtime.txt"
cp "$(qt_dir)/licences/LICENSE.LGPL3" "$into/Qt-LGPL-3.txt"
cp "$(qt_dir)/licences/LICENSE.GPL3" "$into/Qt-GPL-3.txt"
cp /usr/share/common-licenses/Apache-2.0 "$into/Apache-2.0.txt"
cp /usr/share/doc/libcli11-dev/copyright "$into/CLI11.txt"
cp /usr/share/doc/nlohmann-json3-dev/copyright "$into/nlohmann-json.txt"
cp /usr/share/doc/unicode-data/copyright "$into/Unicode.txt"

qt_source=$(<"$(qt_dir)/licences/source")
cat >"$into/README.md" <<END
# Licences of what is in this package

| what | where | licence |
|---|---|---|
| Qt 5.15, Core and Network, with what Qt contains | \`bin/Qt5Core.dll\`, \`bin/Qt5Network.dll\` | LGPL 3 (\`Qt-LGPL-3.txt\`, with \`Qt-GPL-3.txt\`, to which it refers); the parts inside: \`Qt.txt\` |
| libc++, libc++abi, libunwind, compiler-rt of LLVM $llvm_version | inside the programs and every DLL | Apache 2.0 with LLVM's exceptions (\`LLVM-runtimes.txt\`, \`Apache-2.0.txt\`) |
| the start-up code of mingw-w64 | inside the programs and every DLL | \`mingw-w64-runtime.txt\` |
| CLI11 | inside \`bin/bridgectl.exe\` | \`CLI11.txt\` |
| JSON for Modern C++ | inside \`bin/bridgectl.exe\` and the stand-ins | \`nlohmann-json.txt\` |
| widths of characters from the Unicode Character Database | inside \`bin/bridgectl.exe\` | \`Unicode.txt\` |

Qt is linked dynamically and can be replaced by another build of Qt 5.15 for the same C++ runtime. It
was built from Debian's source package \`$qt_source\`, patched by Debian only and configured as
\`toolchain/qt.sh\` of the library's source says.
END
