#!/usr/bin/env python3
"""The gate words reports the phrases of its table in prose of each language, and only there."""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest
import unittest.mock

sys.dont_write_bytecode = True  # leaves no files in the tree
import prose
import words

TABLE = ((r"anew|once more", "again"), (r"some(body|one)", "the caller"))
BAD = '"anew"; write: again'

# File -> one with the phrase on line 2, and one without the phrase in prose.
LANGUAGES = {
    "a.cpp": ("int a;\nint b;  // Reads it anew.\n",
              'const char* a = "anew";\nauto b = R"x(// anew)x" + \'"\' + 1\'000;\nint anew;\n'),
    "a.h": ("/**\n * Reads it anew.\n */\n", '/* Logs "anew". */\nint a = anew / 2 / 3;\n'),
    "a.c": ("int a; /* It is read\nanew. */\n", '"\\"/* anew */"\n'),
    "a.cs": ("\n/// <summary>Reads it anew.</summary>\n", 'string a = @"\\"; string b = "// anew";\n'),
    "a.js": ("\n// Reads it anew.\n", "const a = `\n// anew`, b = '// anew', c = x(/[/'] anew/);\n"),
    "a.d.ts": ("\n/** Reads it anew. */\n", "type A = '/* anew */';\n"),
    "a.py": ('def a():\n    """Reads it anew."""\n', 'a = f("anew", """\n# anew\n""")\nanew = {\n    "anew"}\n'),
    "b.py": ("\na = 1  # read anew\n", '"""Logs `anew`."""\n'),
    "a.sh": ("\na=${b#c}  # reads it anew\n", "echo '\n# anew' \"# anew\"\ncat <<'END'\ndon't\n  # anew\nEND\necho a#anew\n"),
    "run": ("#!/bin/sh\n# Reads it anew.\n", "echo anew\n"),
    "CMakeLists.txt": ("\n# Reads it anew.\n", 'set(a "# anew" [[\n# anew]])\n'),
    "a.cmake.in": ("\nset(a b)  # reads it anew\n", "set(a anew)\n"),
    "a.md": ("\n- It is read anew.\n",
             "Text\n\n    anew\n\n```\n\nanew\n```\n\n[a](anew.md), `anew`, \"anew\"\n"),
}


class WordsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="words.")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.write(words.EXCEPTIONS, "# none\n")
        table = unittest.mock.patch.object(words, "TABLE", TABLE)
        table.start()
        self.addCleanup(table.stop)

    def write(self, name, text):
        (self.root / name).parent.mkdir(parents=True, exist_ok=True)
        (self.root / name).write_text(text, encoding="utf-8")

    def expect(self, status, *lines):
        with contextlib.redirect_stdout(io.StringIO()) as output:
            self.assertEqual(words.main(self.root), status)
        self.assertEqual(output.getvalue().splitlines(), list(lines))

    def test_a_phrase_in_prose(self):
        for name, (bad, _) in LANGUAGES.items():
            with self.subTest(name):
                self.write(name, bad)
                self.expect(1, f"{name}:2: {BAD}")
                (self.root / name).unlink()

    def test_a_phrase_in_code_and_in_quotes(self):
        for name, (_, good) in LANGUAGES.items():
            with self.subTest(name):
                self.write(name, good)
                self.expect(0, "1 files")
                (self.root / name).unlink()

    def test_a_phrase_across_a_line_break(self):
        for name, text in (("a.cpp", "// Reads it once\n// more.\n"),
                           ("a.h", "/* Reads it once\n * more. */\n"),
                           ("a.md", "Reads it once\nmore.\n")):
            with self.subTest(name):
                self.write(name, text)
                self.expect(1, f'{name}:1: "once more"; write: again')
                (self.root / name).unlink()

    def test_code_divides_a_phrase(self):
        self.write("a.cpp", "int a;  // once\nint more;\nint b;  // more\n")
        self.expect(0, "1 files")

    def test_a_capital_letter_and_a_longer_word(self):
        self.write("a.md", "Anew, it is read.\nA canewort.\n")
        self.expect(1, 'a.md:1: "Anew"; write: again')

    def test_each_row_of_the_table(self):
        self.write("a.md", "Someone reads it anew,\nand somebody once more.\n")
        self.expect(1, 'a.md:1: "Someone"; write: the caller', f"a.md:1: {BAD}",
                    'a.md:2: "somebody"; write: the caller', 'a.md:2: "once more"; write: again')

    def test_other_kinds_of_files_and_foreign_folders_are_ignored(self):
        self.write("a.json", '{"a": "anew"}')
        for folder in words.NOT_OURS:
            self.write(f"b/{folder}/a.md", "anew")
        self.expect(0, "0 files")

    def test_an_exception(self):
        self.write("a.md", "It is read anew.\n")
        self.write("b.md", "It is read anew.\n")
        self.write(words.EXCEPTIONS, "# Comment\n\na.md: anew: the name of a command\n")
        self.expect(1, f"b.md:1: {BAD}")

    def test_an_exception_without_its_phrase(self):
        self.write(words.EXCEPTIONS, "a.md: anew: the name of a command\n")
        self.expect(1, f'{words.EXCEPTIONS}: a.md does not contain "anew"')

    def test_an_exception_without_a_reason(self):
        self.write(words.EXCEPTIONS, "a.md: anew\n")
        self.assertRaises(ValueError, words.main, self.root)

    def test_prose_keeps_its_offsets(self):
        for name, texts in LANGUAGES.items():
            for text in texts:
                self.assertEqual(len(prose.of(name, text)), len(text), name)


if __name__ == "__main__":
    unittest.main()
