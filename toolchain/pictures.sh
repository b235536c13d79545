#!/usr/bin/env bash
# Draws docs/pictures/*.svg from the .dot files beside them. Needs Graphviz, which it installs.
set -euo pipefail
. "$(dirname "$0")/common.sh"

bash "$tree/toolchain/packages.sh" graphviz
for picture in "$tree"/docs/pictures/*.dot; do
    dot -Tsvg "$picture" -o "${picture%.dot}.svg"
    say "${picture#"$tree"/}"
done
