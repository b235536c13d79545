#!/usr/bin/env bash
# with-wine.sh COMMAND...: runs a command with the Wine servers of the build tree's prefixes.
set -euo pipefail
. "$(dirname "$0")/common.sh"

bash "$tree/toolchain/prefix.sh" up-both
trap 'bash "$tree/toolchain/prefix.sh" down' EXIT
"$@"
