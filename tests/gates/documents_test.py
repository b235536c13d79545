#!/usr/bin/env python3
"""What documents.py finds in pages and pictures."""

import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
import documents

CMAKE = """install(DIRECTORY docs/ DESTINATION share/doc FILES_MATCHING PATTERN "*.md" PATTERN "*.svg"
    PATTERN contributing EXCLUDE PATTERN "performance*" EXCLUDE)
install(FILES other.md)
"""
DOT = 'digraph {\n // label="a comment"\n a [label="one\\ntwo & \\\\three"]\n' \
      ' b [label=<<table><tr><td>four<br/>five &amp; six</td></tr></table>>]\n}\n'
SVG = "".join(f'<text x="1">{text}</text>\n'
              for text in ("one", "two &amp; \\three", "four", "five&#160;&amp;&#160;six"))


class Documents(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name)
        self.rules = documents.patterns(CMAKE)

    def write(self, name, text):
        path = self.tree / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, "utf-8")

    def link_faults(self, page, text):
        self.write(page, text)
        return documents.link_faults(self.tree, [pathlib.Path(page)], self.rules)[0]

    def test_links_to_files_and_headings_that_exist_are_right(self):
        self.write("docs/other.md", "# What is `new` in 5.2?\n")
        self.assertEqual(self.link_faults("docs/page.md", "[a](other.md#what-is-new-in-52), [b](#here), "
                                          "[c](https://example.com/)\n## Here\n"), [])

    def test_a_missing_file_is_found(self):
        self.assertEqual(self.link_faults("docs/page.md", "![a](none.svg)"), ["docs/page.md: no none.svg"])

    def test_a_missing_heading_is_found(self):
        self.assertEqual(self.link_faults("docs/page.md", "[a](#nowhere)"),
                         ["docs/page.md: no heading for #nowhere"])

    def test_a_page_of_the_package_links_only_to_what_the_package_has(self):
        for name in ("docs/contributing/a.md", "docs/performance.svg", "Source/a.h", "bindings/a.md"):
            self.write(name, "")
        text = "[a](contributing/a.md) [b](performance.svg) [c](../Source/a.h) [d](../bindings/a.md)"
        self.assertEqual(self.link_faults("docs/page.md", text),
                         [f"docs/page.md is in the package, and {link} is not"
                          for link in ("contributing/a.md", "performance.svg", "../Source/a.h")])
        self.write("docs/page.md", "")
        self.assertEqual(self.link_faults("docs/contributing/a.md", "[a](../page.md) [b](../../Source/a.h)"), [])

    def test_a_picture_with_the_labels_of_its_source_is_right(self):
        self.write("docs/pictures/a.dot", DOT)
        self.write("docs/pictures/a.svg", SVG)
        self.assertEqual(documents.picture_faults(self.tree), ([], 4))

    def test_a_picture_that_was_not_drawn_again_is_found(self):
        self.write("docs/pictures/a.dot", DOT)
        self.write("docs/pictures/a.svg", SVG.replace("four", "4"))
        self.assertEqual(documents.picture_faults(self.tree)[0],
                         ["docs/pictures/a.svg lacks: four (toolchain/pictures.sh draws it)",
                          "docs/pictures/a.svg has an old text: 4"])

    def test_a_missing_picture_is_found(self):
        self.write("docs/pictures/a.dot", DOT)
        self.assertEqual(len(documents.picture_faults(self.tree)[0]), 4)


if __name__ == "__main__":
    unittest.main()
