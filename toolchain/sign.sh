#!/usr/bin/env bash
# sign.sh FOLDER: signs the DLLs and programs below FOLDER, and verifies each signature and time stamp,
# if the environment names a certificate:
#   QX_SIGN_CERTIFICATE    file with certificate and key (PKCS #12)
#   QX_SIGN_PASSWORD_FILE  file with its password, on one line; default: no password
#   QX_SIGN_TIMESTAMP      address of a time-stamp service (RFC 3161); without it a signature expires
#                          with its certificate
#   QX_SIGN_CA             authorities of signatures and time stamps (PEM); default: the system's
# Standard error says how many files were signed.
set -euo pipefail
. "$(dirname "$0")/common.sh"

folder=$1
certificate=${QX_SIGN_CERTIFICATE:-}
if [ -z "$certificate" ]; then
    say "The files are unsigned: where a code integrity policy is on, Windows refuses them with error 4551 (docs/how-to/ship-and-sign.md)." >&2
    exit 0
fi
command -v osslsigncode >/dev/null || die "signing needs Debian's package osslsigncode"
[ -r "$certificate" ] || die "cannot read the certificate $certificate"

options=(-pkcs12 "$certificate" -h sha256 -n QX-Bridge)
[ -z "${QX_SIGN_PASSWORD_FILE:-}" ] || options+=(-readpass "$QX_SIGN_PASSWORD_FILE")
[ -z "${QX_SIGN_TIMESTAMP:-}" ] || options+=(-ts "$QX_SIGN_TIMESTAMP")
authorities=${QX_SIGN_CA:-/etc/ssl/certs/ca-certificates.crt}

log=$(mktemp)
signed="$log.signed"
trap 'rm -f "$log" "$signed"' EXIT

# quietly COMMAND...: runs it with its output in the log, which is shown if it fails.
quietly() { "$@" >"$log" 2>&1 || { cat "$log" >&2; return 1; }; }

# An untrusted time stamp does not change the status of osslsigncode.
has_time_stamp() { grep -q '^Timestamp Server Signature verification: ok' "$log"; }

count=0
while IFS= read -r -d '' file; do
    rm -f "$signed"
    quietly osslsigncode sign "${options[@]}" -in "$file" -out "$signed" || die "cannot sign $file"
    quietly osslsigncode verify -CAfile "$authorities" -TSA-CAfile "$authorities" -in "$signed" ||
        die "the signature of $file is not valid"
    [ -z "${QX_SIGN_TIMESTAMP:-}" ] || has_time_stamp || die "the signature of $file has no valid time stamp"
    cat "$signed" >"$file"
    count=$((count + 1))
done < <(find "$folder" \( -name '*.dll' -o -name '*.exe' -o -name '*.node' -o -name '*.pyd' \) -print0 | LC_ALL=C sort -z)
say "$count files signed." >&2
