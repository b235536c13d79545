#!/usr/bin/env python3
"""What a type checker says about the Python binding, and about a host that uses it."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import textwrap
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
TREE = pathlib.Path(__file__).resolve().parents[2]
BINDING = TREE / "bindings" / "python"
HOST = TREE / "tests/bindings/python/types/host.py"


def complaints(*arguments):
    """The lines of mypy, for Windows and the oldest Python that it and the binding know."""
    for version in ("3.8", "3.9"):
        result = subprocess.run(
            ["mypy", "--strict", "--platform", "win32", "--python-version", version, "--no-error-summary",
             "--cache-dir", os.devnull, *map(str, arguments)],
            capture_output=True, text=True, timeout=150, check=False, cwd=BINDING,
            env={**os.environ, "MYPYPATH": str(BINDING)})
        if "not supported" not in result.stderr:
            break
    assert result.stderr == "" and result.returncode in (0, 1), result.stderr
    return result.stdout.splitlines()


class TypesTest(unittest.TestCase):
    maxDiff = None

    def test_the_binding_has_no_fault(self):
        self.assertEqual(complaints("-p", "qxbridge"), [])

    def test_the_examples_of_the_page_have_no_fault(self):
        page = (BINDING / "README.md").read_text("utf-8")
        host, loop = re.findall(r"^```python\n(.*?)^```$", page, re.M | re.S)
        coroutine = "\n\nasync def read(bridge: Bridge) -> None:\n" + textwrap.indent(loop, "    ")
        with tempfile.TemporaryDirectory(prefix="examples.") as folder:
            path = pathlib.Path(folder, "examples.py")
            path.write_text(host + coroutine, "utf-8")
            self.assertEqual(complaints(path), [])

    def test_of_a_host_only_the_lines_that_are_wrong_are_refused(self):
        lines = HOST.read_text("utf-8").splitlines()
        wrong = [number for number, line in enumerate(lines, 1) if line.endswith("# wrong")]
        self.assertGreater(len(wrong), 10)
        found = {int(re.match(r".*host\.py:(\d+): error: ", one)[1]) for one in complaints(HOST)
                 if ": note: " not in one}
        self.assertEqual(sorted(found), wrong)


if __name__ == "__main__":
    unittest.main()
