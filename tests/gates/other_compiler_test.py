#!/usr/bin/env python3
"""The results of ./run compilers, in small trees."""

import contextlib
import io
import json
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # leaves no files in the tree
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "toolchain"))
import other_compiler

UNUSED = "inline int f(int a) { return 1; }\n"


class OtherCompilerTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name).resolve()
        self.build = self.tree / "build"
        for name in ("Source", "programs", "build/programs"):
            (self.tree / name).mkdir(parents=True)
        self.entries = []

    def write(self, name, text):
        (self.tree / name).write_text(text, encoding="utf-8")

    def compile_in_build(self, name, options=""):
        """An entry of the compile commands, with options that other compilers do not support."""
        command = f"clang++ -gcodeview -Wno-such {options} -std=c++17 -o x.obj -c {self.tree / name}"
        self.entries.append({"file": str(self.tree / name), "command": command})

    def add(self, name, text, options=""):
        self.write(name, text)
        self.compile_in_build(name, options)

    def run_compiler(self):
        """The exit status and the last line of the output."""
        (self.build / "compile_commands.json").write_text(json.dumps(self.entries), encoding="utf-8")
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = other_compiler.main(
                [str(self.tree), str(self.build), "gcc", "-Wall", "-Wextra"])
        return status, output.getvalue().splitlines()[-1]

    def test_code_without_a_warning_passes(self):
        self.add("Source/A.cpp", "int a() { return 1; }\n")
        self.add("programs/B.cpp", "int b() { return 1; }\n")
        self.assertEqual(self.run_compiler(), (0, "2 files: no warnings"))

    def test_a_warning_fails(self):
        self.add("Source/A.cpp", "int a(int unused) { return 1; }\n")
        self.assertEqual(self.run_compiler(), (1, "1 files: 1 -Wunused-parameter"))

    def test_a_warning_in_a_header_is_counted_once(self):
        self.write("Source/H.h", UNUSED)
        for name in ("A", "B"):
            self.add(f"Source/{name}.cpp", '#include "H.h"\n')
        self.assertEqual(self.run_compiler(), (1, "2 files: 1 -Wunused-parameter"))

    def test_a_warning_in_a_system_header_is_ignored(self):
        self.write("build/H.h", UNUSED)
        self.add("Source/A.cpp", "#include <H.h>\n", f"-isystem {self.build}")
        self.assertEqual(self.run_compiler(), (0, "1 files: no warnings"))

    def test_warnings_are_counted_by_kind(self):
        self.add("Source/A.cpp", "int a(int b, int c) { int d; return 1; }\n")
        self.assertEqual(self.run_compiler(),
                         (1, "1 files: 2 -Wunused-parameter, 1 -Wunused-variable"))

    def test_a_compile_error_fails(self):
        self.add("Source/A.cpp", "int a( { return 1; }\n")
        status, line = self.run_compiler()
        self.assertEqual(status, 1)
        self.assertRegex(line, r"^1 files: \d+ error$")

    def test_definitions_and_include_folders_come_from_the_build(self):
        self.write("build/H.h", "inline int f() { return ANSWER; }\n")
        self.add("Source/A.cpp", "#include <H.h>\n", f"-DANSWER=42 -I{self.build}")
        self.assertEqual(self.run_compiler(), (0, "1 files: no warnings"))

    def test_a_file_outside_the_build_fails(self):
        self.add("Source/A.cpp", "int a() { return 1; }\n")
        self.write("programs/B.cpp", "int b() { return 1; }\n")
        self.assertEqual(self.run_compiler(), (1, "1 files: no warnings"))

    def test_siblings_for_another_system_are_ignored(self):
        self.add("Source/AWinnt.cpp", "int a() { return 1; }\n")
        self.write("Source/APosix.cpp", "no C++\n")
        self.assertEqual(self.run_compiler(), (0, "1 files: no warnings"))

    def test_files_generated_by_cmake_are_compiled_and_tests_are_not(self):
        self.add("build/programs/Table.cpp", "int a(int unused) { return 1; }\n")
        (self.tree / "tests").mkdir()
        self.add("tests/T.cpp", "no C++\n")
        self.assertEqual(self.run_compiler(), (1, "1 files: 1 -Wunused-parameter"))

    def test_a_build_without_files_fails(self):
        self.assertEqual(self.run_compiler(), (1, "0 files: no warnings"))


if __name__ == "__main__":
    unittest.main()
