#!/usr/bin/env python3
"""The gate generated reports each kind of fault, in a copy of the generated files and their sources."""

import contextlib
import io
import pathlib
import shutil
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # leaves no files in the tree
import generated
from generated import generate

NODE = "bindings/node/bridge.generated.js"
TYPES = "bindings/node/bridge.generated.d.ts"
CSHARP = "bindings/csharp/QXBridge.generated.cs"
PYTHON = "bindings/python/qxbridge/generated.py"
CPP_KEYS = "include/bridge/keys.hpp"
CPP_CODES = "include/bridge/codes.hpp"
HEADER, CATALOGUE, CODES, WORDS, IMAGES = generate.interface.SOURCES


def fault(name):
    return f"{name} is not what ./run generate writes"


class GeneratedTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="generated.")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        for name in (*generate.interface.SOURCES, NODE, TYPES, CSHARP, PYTHON, CPP_KEYS,
                     CPP_CODES):
            (self.root / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(generated.TREE / name, self.root / name)

    def change(self, name, old, new):
        path = self.root / name
        text = path.read_text("utf-8")
        self.assertEqual(text.count(old), 1, old)
        path.write_text(text.replace(old, new), encoding="utf-8")

    def run_gate(self):
        """The exit status and the output lines of the program."""
        with contextlib.redirect_stdout(io.StringIO()) as output:
            status = generated.main(self.root)
        return status, output.getvalue().splitlines()

    def expect(self, *lines):
        self.assertEqual(self.run_gate(), (1, list(lines)))

    def generate(self):
        with contextlib.redirect_stdout(io.StringIO()) as output:
            generate.main(self.root)
        return output.getvalue().splitlines()

    def test_the_unchanged_tree_passes(self):
        self.assertEqual(self.run_gate(), (0, ["6 files"]))

    def test_an_edited_generated_file(self):
        for name, old, new in ((NODE, "SUCCESS: 0", "SUCCESS: 1"), (TYPES, "isUpdate: boolean", "isUpdate: number"),
                               (CSHARP, "TooBig = 7", "TooBig = 8"), (PYTHON, "ACCESS = 13\n", ""),
                               (CPP_KEYS, "> status_adb_port;", "> adb_port;"),
                               (CPP_CODES, "{13, ", "{14, ")):
            with self.subTest(name):
                self.change(name, old, new)
                self.expect(fault(name))
                self.assertEqual(self.generate(), [name])

    def test_a_generated_file_with_different_line_ends(self):
        text = (self.root / CSHARP).read_bytes()
        (self.root / CSHARP).write_bytes(text.replace(b"\n", b"\r\n"))
        self.expect(fault(CSHARP))

    def test_a_missing_generated_file(self):
        (self.root / PYTHON).unlink()
        self.expect(fault(PYTHON))
        self.assertEqual(self.generate(), [PYTHON])

    def test_an_added_function(self):
        self.change(HEADER, "/** Asks the multi-instance manager and then",
                    "/** Another. */\nBRIDGE_API bridge_i32 BRIDGE_CALL bridgeAnother(void* one);\n\n"
                    "/** Asks the multi-instance manager and then")
        self.expect(fault(NODE), fault(CSHARP), fault(PYTHON))
        self.assertEqual(self.generate(), [NODE, CSHARP, PYTHON])
        self.assertEqual(self.run_gate(), (0, ["6 files"]))
        for name, text in ((NODE, "int32_t bridgeAnother(void *one)"),
                           (CSHARP, "internal static extern int bridgeAnother(IntPtr one);"),
                           (PYTHON, '"bridgeAnother": (c_int32, dict(one=c_void_p)),')):
            self.assertIn(text, (self.root / name).read_text("utf-8"))

    def test_an_added_event_value(self):
        self.change(HEADER, " * @param action   the sender's action number\n",
                    " * @param action   the sender's action number\n * @param at when\n")
        self.change(HEADER, "bridge_i32 action);", "bridge_i32 action, double at);")
        self.expect(fault(NODE), fault(TYPES), fault(CSHARP), fault(PYTHON))
        self.generate()
        self.assertIn("    /** when */\n    at: number;\n", (self.root / TYPES).read_text("utf-8"))
        for name, text in ((CSHARP, "public double At { get; internal set; }\n"),
                           (PYTHON, '    "bridgeOnAccountListUpdated": AccountListUpdated,\n}\n\n\nclass Callbacks')):
            self.assertIn(text, (self.root / name).read_text("utf-8"), "four values are a record")

    def test_a_changed_result_code_and_version(self):
        self.change(HEADER, "#define BRIDGE_ACCESS 13 ", "#define BRIDGE_ACCESS 14 ")
        self.expect(fault(NODE), fault(TYPES), fault(CSHARP), fault(PYTHON))
        self.generate()
        self.change(HEADER, 'BRIDGE_VERSION_TEXT "', 'BRIDGE_VERSION_TEXT "1')
        self.expect(fault(NODE), fault(CSHARP), fault(PYTHON))

    def test_a_changed_property(self):
        for old, new in (('{"country", ConfType::String, ""', '{"country", ConfType::Bool, ""'),
                         ('"Ctrl + Shift + L"', '"Ctrl + Shift + R"'),
                         ('{"dpi", ', '{"dots", '),
                         ('    {"ram", ConfType::I32, "", kDumped},\n', "")):
            with self.subTest(old):
                self.change(CATALOGUE, old, new)
                self.expect(fault(NODE), fault(TYPES), fault(CSHARP), fault(PYTHON), fault(CPP_KEYS))
                self.generate()

    def test_a_changed_image_in_the_node_binding(self):
        self.change(IMAGES, '{"Nougat32", ', '{"Nougat31", ')
        self.assertIn(fault(NODE), self.run_gate()[1])

    def test_two_properties_with_the_same_name_in_a_binding(self):
        self.change(CATALOGUE, '{"dpi", ', '{"status_adb_port", ')
        self.assertRaises(ValueError, generated.main, self.root)

    def test_a_changed_code_and_a_changed_description(self):
        self.change(CODES, "X(7, 2BIG) ", "X(9999, 2BIG) ")
        self.expect(fault(NODE), fault(CSHARP), fault(PYTHON), fault(CPP_CODES))
        self.generate()
        self.change(WORDS, '"too long"', '"too big"')
        self.expect(fault(NODE), fault(CSHARP), fault(PYTHON), fault(CPP_CODES))

    def test_a_changed_image_in_the_headers(self):
        self.change(IMAGES, '{"Nougat32", false', '{"Nougat", false')
        self.assertIn(fault(CPP_KEYS), self.run_gate()[1])
        self.generate()
        self.assertIn('kImages[] = {"Nougat", "Nougat64"}', (self.root / CPP_KEYS).read_text("utf-8"))

    def test_a_marked_file_that_nothing_writes(self):
        old = "bindings/node/old.generated.js"
        shutil.copy(self.root / NODE, self.root / old)
        self.expect(f"{old} is marked as generated, and ./run generate does not write it")
        old_header = "include/bridge/old.hpp"
        shutil.copy(self.root / CPP_KEYS, self.root / old_header)
        self.expect(*[f"{one} is marked as generated, and ./run generate does not write it"
                      for one in (old, old_header)])

    def test_a_declaration_or_row_that_cannot_be_parsed(self):
        for name, old, new in (
                (HEADER, "BRIDGE_API void BRIDGE_CALL bridgeShutdown(void);",
                 "BRIDGE_API unsigned bridge_i32 * BRIDGE_CALL bridgeShutdown(void);"),
                (HEADER, "BRIDGE_CALL bridgeFreeMemory(void* memory)",
                 "BRIDGE_CALL bridgeFreeMemory(const void* memory)"),
                (CATALOGUE, '{"dpi", ConfType::I32, "240", kDumped}', '{"dpi", ConfType::I32, kDpi, kDumped}'),
                (CATALOGUE, "kInstanceRows[] = {", "kRows[] = {"),
                (WORDS, "case XErrCode::XERR_PERM:", "case XErrCode::XERR_OTHER:"),
                # Names that are invalid in Python's class of keys, or that it has already.
                (CATALOGUE, '{"country", ConfType::String', '{"import", ConfType::String'),
                (CATALOGUE, '{"country", ConfType::String', '{"mim_max_fps", ConfType::String'),
                (IMAGES, '{"Nougat32", false', "{kName, false"),
                (IMAGES, "kImages[] = {", "kRows[] = {")):
            with self.subTest(old):
                self.change(name, old, new)
                self.assertRaises((KeyError, ValueError), generated.main, self.root)
                shutil.copy(generated.TREE / name, self.root / name)


if __name__ == "__main__":
    unittest.main()
