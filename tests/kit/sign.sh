#!/usr/bin/env bash
# sign.sh TREE PROGRAM: toolchain/sign.sh with certificates made for this test.
set -euo pipefail
tree=$1 program=$2

fail() { echo "$*"; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/files/a folder"
cp "$program" "$work/files/a folder/program.exe"
cp "$program" "$work/files/library.dll"
echo text >"$work/files/text.txt"
cp -r "$work/files" "$work/unsigned"

# sign [VARIABLE=VALUE...]: runs sign.sh with its output in $said.
sign() { said=$(env "$@" bash "$tree/toolchain/sign.sh" "$work/files" 2>&1); }

# certificate NAME: NAME.pem, and NAME.p12 with the password "secret word".
printf 'secret word\n' >"$work/password"
certificate() {
    openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=$1" -addext extendedKeyUsage=codeSigning \
        -addext basicConstraints=critical,CA:FALSE -addext keyUsage=digitalSignature \
        -keyout "$work/$1.key" -out "$work/$1.pem" 2>/dev/null
    openssl pkcs12 -export -inkey "$work/$1.key" -in "$work/$1.pem" -out "$work/$1.p12" \
        -passout "file:$work/password"
}
certificate ours
certificate theirs

sign QX_SIGN_CERTIFICATE=
[[ $said == *"unsigned"*"4551"* ]] || fail "without a certificate: $said"
diff -r "$work/files" "$work/unsigned" || fail "files changed without a certificate"

ours=("QX_SIGN_CERTIFICATE=$work/ours.p12" "QX_SIGN_PASSWORD_FILE=$work/password")
sign "${ours[@]}" "QX_SIGN_CA=$work/ours.pem" || fail "signing: $said"
[ "$said" = "2 files signed." ] || fail "said: $said"
cmp "$work/files/text.txt" "$work/unsigned/text.txt"
for file in library.dll "a folder/program.exe"; do
    osslsigncode verify -CAfile "$work/ours.pem" -in "$work/files/$file" >"$work/log" ||
        fail "$file: $(<"$work/log")"
    printf 'x' | dd of="$work/files/$file" bs=1 seek=4096 conv=notrunc status=none
    if osslsigncode verify -CAfile "$work/ours.pem" -in "$work/files/$file" >"$work/log" 2>&1; then
        fail "$file was changed, and its signature is valid"
    fi
done

# A time-stamp service of this test.
openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=tsa -addext extendedKeyUsage=critical,timeStamping \
    -addext basicConstraints=critical,CA:FALSE -addext keyUsage=critical,digitalSignature \
    -keyout "$work/tsa.key" -out "$work/tsa.pem" 2>/dev/null
cat "$work/ours.pem" "$work/tsa.pem" >"$work/authorities.pem"
coproc SERVICE { exec python3 "$tree/tests/kit/time_stamps.py" "$work"; }
trap 'kill "$service" 2>/dev/null || true; rm -rf "$work"' EXIT
service=$SERVICE_PID
read -r -u "${SERVICE[0]}" address || fail "the time-stamp service does not start"
cp "$work/unsigned/library.dll" "$work/files/library.dll"
cp "$work/unsigned/a folder/program.exe" "$work/files/a folder/program.exe"
sign "${ours[@]}" "QX_SIGN_CA=$work/authorities.pem" "QX_SIGN_TIMESTAMP=$address" || fail "time stamp: $said"
[ "$said" = "2 files signed." ] || fail "said: $said"
for file in library.dll "a folder/program.exe"; do
    osslsigncode verify -CAfile "$work/authorities.pem" -TSA-CAfile "$work/tsa.pem" \
        -in "$work/files/$file" >"$work/log" || fail "$file: $(<"$work/log")"
    grep -q '^Timestamp Server Signature verification: ok' "$work/log" || fail "$file: $(<"$work/log")"
    grep -q 'Subject: /CN=tsa' "$work/log" || fail "$file: $(<"$work/log")"
done

# refused WORDS VARIABLE...: signing fails with a message that contains WORDS, and changes no file.
refused() {
    local words=$1
    shift
    rm -rf "$work/files"
    cp -r "$work/unsigned" "$work/files"
    if sign "$@"; then fail "not refused: $words"; fi
    [[ $said == *"$words"* ]] || fail "instead of \"$words\": $said"
    diff -r "$work/files" "$work/unsigned" || fail "files changed: $words"
}
printf 'wrong\n' >"$work/wrong"
refused "cannot sign" "QX_SIGN_CERTIFICATE=$work/ours.p12" "QX_SIGN_PASSWORD_FILE=$work/wrong"
refused "is not valid" "${ours[@]}" "QX_SIGN_CA=$work/theirs.pem"
refused "cannot read the certificate" "QX_SIGN_CERTIFICATE=$work/none.p12"
refused "has no valid time stamp" "${ours[@]}" "QX_SIGN_CA=$work/ours.pem" "QX_SIGN_TIMESTAMP=$address"
kill "$service"
wait "$service" 2>/dev/null || true
refused "cannot sign" "${ours[@]}" "QX_SIGN_CA=$work/authorities.pem" "QX_SIGN_TIMESTAMP=$address"
