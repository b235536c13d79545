#!/usr/bin/env python3
"""The keys and codes of the bindings are those of the listing that is kept with the tests, and of the
page of codes."""

import ast
import pathlib
import re
import sys
import unittest

sys.dont_write_bytecode = True
TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(TREE / "bindings" / "python"), str(TREE / "toolchain" / "bindings")]
import tables  # noqa: E402
from qxbridge import generated as python  # noqa: E402


def listed_keys():
    """The listing has each registration; the last one of a name counts."""
    keys = {}
    for line in (TREE / "tests/conf/catalogue.tsv").read_text("utf-8").splitlines():
        if line and not line.startswith("#"):
            scope, name, type_, default = line.split("\t")[:4]
            keys[scope, name] = (scope, name, type_, default)
    return [keys[one] for one in sorted(keys)]


def listed_codes():
    page = (TREE / "docs/reference/codes.md").read_text("utf-8")
    rows = re.findall(r"^\| (-?\d+) \| `(XERR_\w+)` \| (.*?) \|", page, re.M)
    return [(int(number), name, text) for number, name, text in rows]


def records(text, opening, members):
    """The records of a generated file, whose texts are written as Python's are."""
    pattern = opening + r" \{ " + ", ".join(rf"{one}(?: =|:) (?P<{one}>.*?)" for one in members) + r" \},"
    return [tuple(ast.literal_eval(one[member]) for member in members)
            for one in re.finditer(pattern, text)]


KEY = ("scope", "name", "type", "default")
CODE = ("number", "name", "text")


# What the bindings add to a key.
DETAILS = ("unit", "allowed")


def read_node(members):
    text = (TREE / "bindings/node/bridge.generated.js").read_text("utf-8")
    return records(text, "   ", members)


# What C#'s records have beside.
EXTRA = {"Key": ["Unit", "Allowed"], "Code": []}


def read_csharp(type_, members):
    text = (TREE / "bindings/csharp/QXBridge.generated.cs").read_text("utf-8")
    found = records(text, f"new {type_}", [one.title() for one in members] + EXTRA[type_])
    return [one[:len(members)] for one in found]


class TablesTest(unittest.TestCase):
    maxDiff = None

    def test_keys(self):
        expected = listed_keys()
        self.assertIn(("global", "key_controls_overlay_opacity", "i32", "80"), expected)
        self.assertEqual([tuple(one[:4]) for one in python.KEYS], expected)
        self.assertEqual([one[:4] for one in read_node(KEY + DETAILS)], expected)
        self.assertEqual(read_csharp("Key", KEY), expected)

    def test_the_details_of_nodes_keys(self):
        found = {one[:2]: one[4:] for one in read_node(KEY + DETAILS)}
        self.assertEqual(found["instance", "ram"], ("MiB", []))
        self.assertEqual(found["instance", "abi_list"], ("", ["x86", "x64", "arm", "arm64"]))
        self.assertEqual(found["global", "locale"], ("", []))
        units = {scope_and_name[1]: unit for scope_and_name, (unit, _) in found.items() if unit}
        self.assertEqual(units, tables.UNITS)

    def test_what_python_knows_besides(self):
        found = {(one.scope, one.name): (one.unit, one.allowed) for one in python.KEYS}
        self.assertEqual(found["instance", "dpi"], ("dots per inch", ()))
        self.assertEqual(found["global", "mim.max_fps"], ("frames per second", ()))
        self.assertEqual(found["instance", "abi_list"], ("", ("x86", "x64", "arm", "arm64")))
        self.assertEqual(found["global", "locale"], ("", ()))
        source = (TREE / "Source/utl/UtlImages.cpp").read_text("utf-8")
        self.assertEqual(python.IMAGES, tuple(re.findall(r'^    \{"(\w+)", (?:true|false)', source, re.M)))

    def test_codes(self):
        expected = listed_codes()
        self.assertIn((98, "XERR_ADDRINUSE", "the name or address is in use"), expected)
        self.assertEqual([tuple(one) for one in python.CODES], expected)
        self.assertEqual(read_node(CODE), expected)
        self.assertEqual(read_csharp("Code", CODE), expected)


if __name__ == "__main__":
    unittest.main()
