#!/usr/bin/env python3
"""The bindings have the keys of tests/conf/catalogue.tsv and the codes of docs/reference/codes.md."""

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
    """The listing has every registration; the last one of a name counts."""
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
    """The records of a generated file. Their texts are also Python's."""
    pattern = opening + r" \{ " + ", ".join(rf"{one}(?: =|:) (?P<{one}>.*?)" for one in members) + r" \},"
    return [tuple(ast.literal_eval(one[member]) for member in members)
            for one in re.finditer(pattern, text)]


KEY = ("scope", "name", "type", "default")
DETAILS = ("unit", "allowed")  # which the bindings add to a key
CODE = ("number", "name", "text")


def read_node(members):
    text = (TREE / "bindings/node/bridge.generated.js").read_text("utf-8")
    return records(text, "   ", members)


def read_csharp(type_, members):
    text = (TREE / "bindings/csharp/QXBridge.generated.cs").read_text("utf-8")
    return records(text, f"new {type_}", [one.title() for one in members])


class TablesTest(unittest.TestCase):
    maxDiff = None

    def test_keys(self):
        expected = listed_keys()
        self.assertIn(("global", "key_controls_overlay_opacity", "i32", "80"), expected)
        self.assertEqual([tuple(one[:4]) for one in python.KEYS], expected)
        self.assertEqual([one[:4] for one in read_node(KEY + DETAILS)], expected)
        self.assertEqual([one[:4] for one in read_csharp("Key", KEY + DETAILS)], expected)

    def details(self, keys):
        """The units and allowed values of keys."""
        found = {(one[0], one[1]): (one[4], tuple(one[5])) for one in keys}
        self.assertEqual(found["instance", "ram"], ("MiB", ()))
        self.assertEqual(found["instance", "dpi"], ("dots per inch", ()))
        self.assertEqual(found["global", "mim.max_fps"], ("frames per second", ()))
        self.assertEqual(found["instance", "abi_list"], ("", ("x86", "x64", "arm", "arm64")))
        self.assertEqual(found["global", "locale"], ("", ()))
        self.assertEqual({name: unit for (_, name), (unit, _) in found.items() if unit}, tables.UNITS)

    def test_the_details_of_nodes_keys(self):
        self.details(read_node(KEY + DETAILS))

    def test_the_details_and_images_of_python(self):
        self.details(python.KEYS)
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
