#!/usr/bin/env bash
# kit-screenshot.sh RESULTS FILE: saves a picture of the top of a kit's summary page, as PNG. RESULTS is the
# folder `results` of a run.
set -euo pipefail
. "$(dirname "$0")/common.sh"

bash "$tree/toolchain/packages.sh" chromium
page=$(find "$1" -name summary.html | sort | tail -n 1)
[ -n "$page" ] || die "no summary.html in $1: ./run kit --try makes one"
into=$(realpath -m "$2")
# Chromium's own sandbox does not work for root.
chromium --headless=new --no-sandbox --hide-scrollbars --window-size=1300,900 "--screenshot=$into" \
    "file://$(realpath "$page")" >/dev/null 2>&1
[ -s "$into" ] || die "chromium saved no picture"
say "$into"
