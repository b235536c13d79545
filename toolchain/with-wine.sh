#!/usr/bin/env bash
# with-wine.sh COMMAND...: runs a command while the Wine servers of the build tree's prefixes run.
set -euo pipefail
. "$(dirname "$0")/common.sh"

bash "$tree/toolchain/prefix.sh" up-both
trap 'bash "$tree/toolchain/prefix.sh" down' EXIT
"$@"
