#!/usr/bin/env bash
# kit.sh TREE WORK: makes the Windows kit and runs a few of its checks under Wine, in a prefix of its
# own, from a path with a blank and letters outside ASCII.
set -euo pipefail
tree=$1 work=$2
. "$tree/toolchain/common.sh"

fail() { echo "$*"; exit 1; }

rm -rf "$work"
mkdir -p "$work/made"
openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=kit -addext extendedKeyUsage=codeSigning \
    -keyout "$work/key.pem" -out "$work/certificate.pem" 2>/dev/null
openssl pkcs12 -export -inkey "$work/key.pem" -in "$work/certificate.pem" -out "$work/key.p12" -passout pass:
zip=$(QX_SIGN_CERTIFICATE="$work/key.p12" QX_SIGN_CA="$work/certificate.pem" \
    bash "$tree/toolchain/kit.sh" "$work/made")
rm -rf "$work/made/kit-package"
kit="$work/Prüfung ж 日本"
mkdir "$kit"
python3 -m zipfile -e "$zip" "$kit"
mv "$kit"/*/* "$kit"
osslsigncode verify -CAfile "$work/certificate.pem" -in "$kit/kit/run_checks.exe" >"$work/verified" ||
    fail "the kit is not signed: $(<"$work/verified")"

unset QX_QT  # which names a Qt for Microsoft's compiler there
prefix=$(mktemp -d)
export WINEPREFIX="$prefix/prefix" LC_ALL=C.UTF-8
trap 'bash "$tree/toolchain/prefix.sh" down; rm -rf "$prefix"' EXIT
bash "$tree/toolchain/prefix.sh" up
wine() { timeout 250 "$tree/toolchain/wine.sh" "$@"; }

# run STATUS ARGUMENT...: sets $output to the printed text and $results to the folder of results.
run() {
    local expected=$1 status=0
    shift
    rm -rf "$kit/results"
    wine "$kit/kit/run_checks.exe" --no-questions "$@" >"$work/output" 2>&1 </dev/null || status=$?
    output=$(tr -d '\r' <"$work/output")
    [ "$status" = "$expected" ] || fail "status $status instead of $expected: $output"
    results=$(echo "$kit"/results/*/)
}
says() { grep -qF -- "$1" <<<"$output" || fail "not said: $1; but: $output"; }

# The kit refuses to start where the product is installed.
key='HKLM\SOFTWARE\Vantrel_nvo'
wine reg add "$key" /v UserDefinedDir /d 'C:\Data' /f >/dev/null
run 3
says 'the product is installed here'
[ ! -e "$kit/results" ] || fail "the guard left results"
wine reg query "$key" /v UserDefinedDir >/dev/null || fail "the guard lost the product's key"
wine reg delete "$key" /f >/dev/null

# Checks that Wine can run pass, and leave nothing on the machine. Uses the build machine's Node and .NET for
# Windows. The compiler is a stand-in that copies a host, and fails where none is named.
compiler="$tree/build/windows/tests/compiler"
runtimes="Z:$(bash "$tree/toolchain/node.sh" --dir)/node/bin;Z:$(bash "$tree/toolchain/dotnet.sh" --dir)"
checks=node,log-threads,load-qt-beside-the-library,icon-moves,standins,elevation-declined,python
checks+=,dotnet-tests,examples-node,examples-dotnet,microsoft-compiler,microsoft-runtimes,microsoft-preset
WINEPATH="$runtimes;Z:$compiler" QX_FAKE_HOST="Z:$compiler/runtime_host.exe" run 0 --only "$checks"
says '  files: passed'
says '  log-threads: needs Windows (this is Wine)'
says '  load-qt-beside-the-library: passed'
says '  icon-moves: passed'
says '  node: passed'
says '  standins: passed'
says '  elevation-declined: needs Windows (this is Wine)'
says '  dotnet-tests: passed'
says '  examples-node: passed'
says '  examples-dotnet: passed'
says '  microsoft-compiler: passed'
says '  microsoft-runtimes: passed'
says '  microsoft-preset: skipped'
says '  python: skipped (needs python.exe in PATH)'
says '  restored: passed'
[ -z "$(find "$WINEPREFIX/drive_c" -name 'QXBridgeKit-*' -o -name 'qxb-*')" ] || fail "folders stay"
python3 - "$results" "${results%/}.zip" <<'END'
import json, pathlib, sys, zipfile
results, archive = pathlib.Path(sys.argv[1]), zipfile.ZipFile(sys.argv[2])
assert archive.testzip() is None
names = {path.relative_to(results.parent).as_posix() for path in results.rglob("*") if path.is_file()}
assert set(archive.namelist()) == names, (archive.namelist(), names)
for name in names:
    assert archive.read(name) == (results.parent / name).read_bytes(), name
lines = [json.loads(line) for line in (results / "records.jsonl").read_text("utf-8").splitlines()]
checks = {line["check"]: line for line in lines if "test" not in line}
assert checks["log-threads"]["result"] == "needs Windows"
assert checks["icon-moves"]["sentence"].startswith("A name that leads to a folder")
tests = [line for line in lines if line.get("test", "").startswith("AppcEditTest.")]
assert len(tests) == 2 and all(line["result"] == "passed" for line in tests), tests
facts = json.loads((results / "machine.json").read_text("utf-8"))
assert facts["Wine"] != "no" and facts["build"].startswith("10.0."), facts
page = (results / "summary.html").read_text("utf-8")
assert "<script" not in page and page.count("<table") == 2, "markup"
END

WINEPATH="Z:$compiler" run 1 --only microsoft-runtimes
says '  microsoft-runtimes: failed'

# One file is missing and two are changed, as by a scanner. Checks leave files and keys.
rm "$kit/tests/standin_core_test.exe"
: >"$kit/tests/conf_test.exe"
cat >>"$kit/checks.txt" <<'END'

[leaves-files]
decides = Whether what a check leaves behind is noticed
run = kit/kit_loader.exe locale C before {kit}\bin\QX-Bridge.dll C:\users\Public\qxb-left

[leaves-a-key]
decides = Whether the tests' keys are removed
run = {system}/reg.exe add HKCU\Software\QXBridgeTests\left /v x /d y /f

[leaves-folders-for-development]
decides = Whether the bindings' keys are removed
run = {system}/reg.exe add HKCU\Software\QX-Bridge\Development-1 /v x /d y /f

[names-no-test]
decides = Whether a filter without tests is a failure
run = tests/xpl_test.exe --gtest_filter=No.Such
END
sed -i "s,{system}/reg.exe,C:/windows/system32/reg.exe," "$kit/checks.txt"
run 1 --only standins,conf,leaves-files,leaves-a-key,leaves-folders-for-development,names-no-test,microsoft-runtimes
says '  files: failed'
says 'tests/standin_core_test.exe: missing'
says 'tests/conf_test.exe: changed'
says 'checks.txt: changed'
says '  standins: skipped (tests/standin_core_test.exe is missing or changed)'
says '  conf: skipped (tests/conf_test.exe is missing or changed)'
says '  leaves-files: passed'
says '  leaves-a-key: passed'
says '  leaves-folders-for-development: passed'
says '  names-no-test: failed (no test ran)'
says '  microsoft-runtimes: skipped'
says '  restored: failed (+ C:\users\Public\qxb-left'
for key in QXBridgeTests QX-Bridge; do
    ! wine reg query "HKCU\\Software\\$key" >/dev/null 2>&1 || fail "the key $key stays"
done

# A damaged table and an unknown argument are reported.
echo 'colour = red' >>"$kit/checks.txt"
run 2
says 'colour = red'
run 2 --colour
says 'usage: run.cmd'

# run.cmd passes arguments to the runner, and returns its status.
status=0
(cd "$kit" && wine cmd /c run.cmd --colour >"$work/output" 2>/dev/null </dev/null) || status=$?
[ "$status" = 2 ] && grep -q 'usage: run.cmd' "$work/output" || fail "run.cmd: status $status, $(<"$work/output")"

echo "$(stat -c %s "$zip") bytes"
