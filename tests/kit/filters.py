#!/usr/bin/env python3
"""filters.py TREE TESTS: each pattern of kit/checks.txt matches a test of its program in the folder
TESTS, and each test program of the tree is in a check."""
import os
import pathlib
import re
import subprocess
import sys

sys.dont_write_bytecode = True
TREE, TESTS = map(pathlib.Path, sys.argv[1:3])
sys.path.insert(0, str(TREE / "toolchain"))
import kit_table  # noqa: E402

FILTER = "--gtest_filter="
BUILT_FOR_THE_KIT = {"tests/bench.exe"}  # by ./run kit, not for the tests


def windows(path):
    return "Z:" + str(path).replace("/", "\\")


def variables(check):
    """The environment of a check. Test files have the same paths in the kit and in the tree."""
    words = check.get("set", "").replace("{kit}", windows(TREE)).replace("{tool}", "tool").split()
    return dict(word.split("=", 1) for word in words)


def matches(program, pattern, environment):
    listing = subprocess.run(
        [TREE / "toolchain/wine.sh", program, "--gtest_list_tests", FILTER + pattern], check=True, text=True,
        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
        env={**os.environ, **environment}).stdout
    return any(line.startswith("  ") for line in listing.splitlines())


def faults(check):
    program, *words = check["run"].split()
    if not program.startswith("tests/"):
        return []
    file = TESTS / program.removeprefix("tests/")
    if not file.exists() and program in BUILT_FOR_THE_KIT:
        return []
    if not file.exists():
        return [f"{check['id']}: no program {program}"]
    patterns = [one for word in words if word.startswith(FILTER)
                for one in word.removeprefix(FILTER).removeprefix("-").split(":")]
    return [f"{check['id']}: no test of {program} matches {one}"
            for one in patterns if not matches(file, one, variables(check))]


def programs():
    """The test programs of the tree, from its CMake files."""
    files = sorted(TREE.glob("tests/*/CMakeLists.txt"))
    return [f"tests/{name}.exe" for file in files
            for name in re.findall(r"^bridge_test\((\w+)", file.read_text("utf-8"), re.M)]


checks = kit_table.read_checks((TREE / "kit/checks.txt").read_text("utf-8"))
run = [check["run"].split()[0] for check in checks]
found = [fault for check in checks for fault in faults(check)]
found += [f"no check runs {program}" for program in programs() if program not in run]
for fault in found or [f"{len(checks)} checks, {len(programs())} programs"]:
    print(fault)
sys.exit(1 if found or len(programs()) < 20 else 0)
