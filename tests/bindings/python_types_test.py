#!/usr/bin/env python3
"""A type checker accepts the Python binding, and finds the faults of a host that uses it."""

import pathlib
import re
import sys
import tempfile
import textwrap
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
TREE = pathlib.Path(__file__).resolve().parents[2]
BINDING = TREE / "bindings" / "python"
sys.path.insert(0, str(TREE / "tests/bindings/python"))
from type_checks import HOST, expect_marked_lines, mypy  # noqa: E402


def complaints(*arguments):
    """The lines of mypy, for the oldest Python that it and the binding support."""
    for version in ("3.8", "3.9"):
        lines, errors = mypy("--python-version", version, *arguments, folder=BINDING, path=BINDING)
        if "not supported" not in errors:
            break
    assert errors == "", errors
    return lines


class TypesTest(unittest.TestCase):
    maxDiff = None

    def test_the_binding_has_no_errors(self):
        self.assertEqual(complaints("-p", "qxbridge"), [])

    def test_the_examples_of_the_page_have_no_errors(self):
        page = (BINDING / "README.md").read_text("utf-8")
        host, loop = re.findall(r"^```python\n(.*?)^```$", page, re.M | re.S)
        coroutine = "\n\nasync def read(bridge: Bridge) -> None:\n" + textwrap.indent(loop, "    ")
        with tempfile.TemporaryDirectory(prefix="examples.") as folder:
            path = pathlib.Path(folder, "examples.py")
            path.write_text(host + coroutine, "utf-8")
            self.assertEqual(complaints(path), [])

    def test_of_a_host_only_the_lines_that_are_wrong_are_refused(self):
        expect_marked_lines(self, complaints(HOST))


if __name__ == "__main__":
    unittest.main()
