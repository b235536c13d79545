"""Runs mypy on hosts of the Python binding."""

import os
import pathlib
import re
import subprocess

HOST = pathlib.Path(__file__).resolve().parent / "types/host.py"


def mypy(*arguments, folder, path=""):
    """The output as lines, and the error output. The path is MYPYPATH."""
    result = subprocess.run(
        ["mypy", "--strict", "--platform", "win32", "--no-error-summary", "--cache-dir", os.devnull,
         *map(str, arguments)],
        capture_output=True, text=True, timeout=150, check=False, cwd=folder,
        env={**os.environ, "MYPYPATH": str(path)})
    return result.stdout.splitlines(), result.stderr


def expect_marked_lines(test, lines):
    """The errors are in the lines of host.py that end with "# wrong", and in no other."""
    host = HOST.read_text("utf-8").splitlines()
    wrong = [number for number, line in enumerate(host, 1) if line.endswith("# wrong")]
    found = {int(re.match(r".*host\.py:(\d+): error: ", one)[1]) for one in lines if ": note: " not in one}
    test.assertGreater(len(wrong), 10)
    test.assertEqual(sorted(found), wrong)
