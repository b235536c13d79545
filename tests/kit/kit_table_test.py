"""Tests of toolchain/kit_table.py."""
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "toolchain"))
import kit_table

CHECKS = """# A comment.
[log]
decides = Whether lines stay whole
page = docs/reference/limits.md
sentence = lines of several | threads
run = tests/x.exe --gtest_filter=A.*
needs = windows prompt

[node]
decides = Whether Node works
page = docs/reference/limits.md
sentence = Nobody tried
run = node x.js
"""
PAGE = "# Limits\n\nlines of\nseveral |   threads. Nobody tried it.\n"


class KitTable(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name)
        for name, text in (("kit/checks.txt", CHECKS), ("docs/reference/limits.md", PAGE),
                           ("docs/contributing/windows-kit.md", "before\n<!-- checks -->\n<!-- end of checks -->\nafter\n")):
            (self.tree / name).parent.mkdir(parents=True, exist_ok=True)
            (self.tree / name).write_text(text, "utf-8")

    def page(self):
        return (self.tree / "docs/contributing/windows-kit.md").read_text("utf-8")

    def test_another_table_is_a_failure_until_it_is_written(self):
        self.assertEqual(kit_table.main(self.tree), 1)
        self.assertEqual(kit_table.main(self.tree, "--write"), 0)
        self.assertEqual(kit_table.main(self.tree), 0)
        self.assertEqual(self.page(), "before\n<!-- checks -->\n" + kit_table.HEADER +
                         "| `log` | Whether lines stay whole | [limits.md](../reference/limits.md): lines of several \\| threads"
                         " | Windows, an answer |\n"
                         "| `node` | Whether Node works | [limits.md](../reference/limits.md): Nobody tried"
                         " | `node` in PATH |\n<!-- end of checks -->\nafter\n")

    def test_a_sentence_that_its_page_lacks_is_a_failure(self):
        kit_table.main(self.tree, "--write")
        (self.tree / "docs/reference/limits.md").write_text(PAGE.replace("Nobody", "Somebody"), "utf-8")
        self.assertEqual(kit_table.main(self.tree), 1)
        self.assertEqual(
            kit_table.claim_faults(kit_table.read_checks(CHECKS), lambda page: "Nobody tried"),
            ["log: docs/reference/limits.md does not say: lines of several | threads"])


if __name__ == "__main__":
    unittest.main()
