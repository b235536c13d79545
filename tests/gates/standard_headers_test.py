#!/usr/bin/env python3
"""The gate standard_headers reports exactly the names whose header is missing."""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # leaves no files in the tree
import standard_headers


class StandardHeadersTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="standard-headers.")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def faults(self, text, name="Source/low/Low.h"):
        """The faults of a tree with this file added."""
        self.write(name, text)
        return list(standard_headers.Gate(self.root).check())

    def test_a_name_without_its_header(self):
        self.assertEqual(self.faults("\nstd::string f();\n"),
                         ["Source/low/Low.h:2: std::string needs <string>"])

    def test_a_name_with_its_header(self):
        self.assertEqual(self.faults("#include <string>\nstd::string f();\n"), [])

    def test_each_name_is_reported_once_at_its_first_use(self):
        self.assertEqual(self.faults("std::move(a);\nstd::vector<T> b;\nstd::move(std::move(c));\n"), [
            "Source/low/Low.h:1: std::move needs <utility>",
            "Source/low/Low.h:2: std::vector needs <vector>"])

    def test_one_of_several_headers_suffices(self):
        self.assertEqual(self.faults("#include <cstring>\nstd::size_t f();\n"), [])

    def test_a_header_that_another_one_includes_by_the_standard(self):
        self.assertEqual(self.faults("#include <iostream>\nstd::ostream& f();\n"), [])

    def test_a_namespace_inside_std(self):
        self.assertEqual(self.faults("std::chrono::seconds f();\n"),
                         ["Source/low/Low.h:1: std::chrono needs <chrono>"])

    def test_a_source_inherits_the_includes_of_its_own_header(self):
        self.write("Source/low/Low.h", "#include <string>\n")
        for name in ("Low", "LowWinnt", "LowPosix"):
            with self.subTest(name):
                self.assertEqual(self.faults('#include "low/Low.h"\nstd::string f();\n',
                                             f"Source/low/{name}.cpp"), [])

    def test_the_own_header_is_in_the_same_folder(self):
        self.write("programs/a/Low.h", "#include <string>\n")
        self.write("programs/b/Low.h", "#include <vector>\n")
        self.assertEqual(self.faults('#include "Low.h"\nstd::string f(std::vector<int>);\n',
                                     "programs/b/Low.cpp"),
                         ["programs/b/Low.cpp:2: std::string needs <string>"])

    def test_a_source_does_not_inherit_from_other_headers(self):
        self.write("Source/low/Low.h", "#include <string>\n")
        self.assertEqual(self.faults('#include "low/Low.h"\nstd::string f();\n', "tests/LowTest.cpp"),
                         ["tests/LowTest.cpp:2: std::string needs <string>"])

    def test_tests_inherit_the_includes_of_the_shared_headers(self):
        self.write("tests/support/TestHeaders.h", "#include <string>\n")
        self.write("tests/low/Fixture.h", '#include "support/TestHeaders.h"\n')
        for header in ("support/TestHeaders.h", "Fixture.h"):
            with self.subTest(header):
                self.assertEqual(self.faults(f'#include "{header}"\nstd::string a; std::vector<int> b;\n',
                                             "tests/low/LowTest.cpp"),
                                 ["tests/low/LowTest.cpp:2: std::vector needs <vector>"])

    def test_tests_without_the_shared_headers_do_not_inherit_their_includes(self):
        self.write("tests/support/TestHeaders.h", "#include <string>\n")
        self.write("tests/low/Fixture.h", "")
        self.assertEqual(self.faults('#include "Fixture.h"\nstd::string f();\n', "tests/low/LowTest.cpp"),
                         ["tests/low/LowTest.cpp:2: std::string needs <string>"])

    def test_only_tests_inherit_from_the_shared_headers(self):
        self.write("tests/support/TestHeaders.h", "#include <string>\n")
        self.assertEqual(self.faults('#include "support/TestHeaders.h"\nstd::string f();\n'),
                         ["Source/low/Low.h:2: std::string needs <string>"])

    def test_a_source_does_not_inherit_from_an_own_header_that_it_does_not_include(self):
        self.write("Source/low/Low.h", "#include <string>\n")
        self.assertEqual(self.faults("std::string f();\n", "Source/low/Low.cpp"),
                         ["Source/low/Low.cpp:1: std::string needs <string>"])

    def test_comments_and_strings_are_ignored(self):
        self.assertEqual(self.faults(
            "// std::string\n/* std::string\n */ auto a = \"std::string \\\" std::move\" 'a';\n"
            'auto b = R"(std::string "\n)";\nint c = 1\'000; // std::vector\n'), [])

    def test_line_numbers_after_comments_and_strings(self):
        self.assertEqual(self.faults('/* a\n b */ auto a = R"x(\n")x";\nstd::string f();\n'),
                         ["Source/low/Low.h:4: std::string needs <string>"])

    def test_macros(self):
        self.assertEqual(self.faults("#define F(a) std::forward<A>(a)\nint a = INT32_MAX;\n"), [
            "Source/low/Low.h:1: std::forward needs <utility>",
            "Source/low/Low.h:2: INT32_MAX needs <cstdint> or <stdint.h>"])

    def test_members_are_not_functions_of_c(self):
        self.assertEqual(self.faults("void f() { side.time(1); free(a); remove(b); }\n"), [])

    def test_c(self):
        self.assertEqual(self.faults(
            "#include <string.h>\nsize_t f(void) { return strlen(\"a\") + INT_MAX; }\n"
            "int time;\nvoid g(uint8_t* p) { free(p); }\n", "tests/support/f.c"), [
            "tests/support/f.c:2: INT_MAX needs <limits.h>",
            "tests/support/f.c:4: uint8_t needs <stdint.h>",
            "tests/support/f.c:4: free needs <stdlib.h>"])

    def test_an_unknown_name(self):
        self.assertEqual(self.faults("std::unheard_of f();\n"), [
            "Source/low/Low.h:1: std::unheard_of is not in the tables of "
            "tests/gates/standard_headers.py"])

    def run_gate(self):
        """The exit status and the output of the program."""
        with contextlib.redirect_stdout(io.StringIO()) as output:
            status = standard_headers.main(self.root)
        return status, output.getvalue()

    def test_the_exit_status_reports_faults(self):
        self.write("Source/low/Low.h", "#include <string>\nstd::string f();\n")
        self.assertEqual(self.run_gate(), (0, "1 names in 1 files\n"))
        self.write("fuzz/a.cpp", "std::string f();\n")
        self.assertEqual(self.run_gate(), (
            1, "fuzz/a.cpp:1: std::string needs <string>\n2 names in 2 files\n"))

    def test_an_empty_tree_fails(self):
        self.assertEqual(self.run_gate(), (1, "0 names in 0 files\nnothing to compare\n"))


if __name__ == "__main__":
    unittest.main()
