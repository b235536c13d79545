#!/usr/bin/env bash
# with-wine.sh COMMAND...: runs a command while the Wine server of the build tree's prefix runs.
set -euo pipefail
. "$(dirname "$0")/common.sh"

bash "$tree/toolchain/prefix.sh" up
trap 'bash "$tree/toolchain/prefix.sh" down' EXIT
"$@"
