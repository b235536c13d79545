#!/usr/bin/env python3
"""includes_test.py COMPILER: the gate includes reports each kind of fault, in a small tree that CMake
configures like the library's."""

import contextlib
import io
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # leaves no files in the tree
import includes

CMAKE_FOLDER = pathlib.Path(__file__).resolve().parents[2] / "cmake"

# The layers low, middle and high depend on each other in this order. No layer depends on the layer
# other. The program links middle only.
FILES = {
    "CMakeLists.txt": f"""
        cmake_minimum_required(VERSION 3.25)
        project(Small LANGUAGES CXX)
        list(APPEND CMAKE_MODULE_PATH "{CMAKE_FOLDER}")
        include(Platform)
        include(Warnings)
        include(Layer)
        include(TargetList)
        add_subdirectory(Source/low)
        add_subdirectory(Source/other)
        add_subdirectory(Source/middle/client)
        add_subdirectory(Source/high)
        add_subdirectory(programs)
        bridge_write_targets("${{PROJECT_BINARY_DIR}}/targets.txt")
        """,
    "Source/low/CMakeLists.txt": "bridge_layer(low SOURCES LowWinnt.cpp)",
    "Source/low/Low.h": "",
    "Source/low/LowWinnt.cpp": '#include "low/Low.h"\n',
    "Source/low/posix/LowPosix.cpp": '#include "low/Low.h"\n',
    "Source/other/CMakeLists.txt": "bridge_layer(other SOURCES Other.cpp)",
    "Source/other/Other.h": "",
    "Source/other/Other.cpp": '#include "other/Other.h"\n',
    "Source/middle/client/CMakeLists.txt": "bridge_layer(middle SOURCES Middle.cpp DEPENDS low)",
    "Source/middle/client/Middle.h": '#include "low/Low.h"\n',
    "Source/middle/client/Middle.cpp": '#include "middle/client/Middle.h"\n',
    "Source/high/CMakeLists.txt": "bridge_layer(high SOURCES High.cpp DEPENDS middle)",
    "Source/high/High.h": "",
    "Source/high/High.cpp":
        '#include "high/High.h"\n\n#include <vector>\n\n#include "low/Low.h"\n'
        '#include "middle/client/Middle.h"\n',
    "programs/CMakeLists.txt": """
        add_library(program_core STATIC Core.cpp)
        target_include_directories(program_core PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
        target_link_libraries(program_core PUBLIC middle PRIVATE other)
        set(sources main.cpp SystemWinnt.cpp)
        bridge_platform_sources(sources)
        add_executable(program ${sources})
        target_link_libraries(program PRIVATE program_core)
        """,
    "programs/Core.h": "",
    "programs/Core.cpp": '#include "Core.h"\n#include "other/Other.h"\n',
    "programs/SystemWinnt.cpp": "",
    "programs/posix/SystemPosix.cpp": "",
    "programs/main.cpp": '#include "Core.h"\n#include "low/Low.h"\n',
}


class IncludesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="includes.")
        cls.root = pathlib.Path(cls.folder.name).resolve()
        for name in FILES:
            cls.write(name, FILES[name])
        cls.configure()

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    @classmethod
    def write(cls, name, text):
        path = cls.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    @classmethod
    def configure(cls):
        done = subprocess.run(["cmake", "-G", "Ninja", "-S", cls.root, "-B", cls.root / "build"],
                              env={**os.environ, "CXX": cls.compiler}, capture_output=True, text=True)
        if done.returncode:
            raise AssertionError(done.stdout + done.stderr)

    def change(self, name, text):
        """Changes the file for the rest of the test."""
        self.write(name, text)
        self.addCleanup(self.restore, name)

    def restore(self, name):
        if name in FILES:
            self.write(name, FILES[name])
        else:
            (self.root / name).unlink()

    def faults(self):
        targets = includes.read_targets(self.root / "build" / "targets.txt")
        return includes.Gate(self.root, targets).check()

    def run_gate(self, *arguments):
        """The exit status and the output of the program."""
        with contextlib.redirect_stdout(io.StringIO()) as output:
            status = includes.main(*arguments)
        return status, output.getvalue()

    def test_declared_layers_and_their_public_dependencies(self):
        self.assertEqual(self.faults(), [])

    def test_an_undeclared_layer(self):
        self.change("Source/high/High.cpp", '#include "high/High.h"\n#include "other/Other.h"\n')
        self.assertEqual(self.faults(), [
            'Source/high/High.cpp:2: "other/Other.h": high declares no dependency on other'])

    def test_a_higher_layer(self):
        self.change("Source/low/Low.h", '#include "high/High.h"\n')
        self.assertEqual(self.faults(), [
            'Source/low/Low.h:1: "high/High.h": low declares no dependency on high'])

    def test_the_siblings_for_both_systems(self):
        for name, target in (("Source/low/LowWinnt.cpp", "low"), ("Source/low/posix/LowPosix.cpp", "low"),
                             ("programs/SystemWinnt.cpp", "program"),
                             ("programs/posix/SystemPosix.cpp", "program")):
            with self.subTest(name):
                self.change(name, '# include "high/High.h"\n')
                self.assertIn(f'{name}:1: "high/High.h": {target} declares no dependency on high',
                              self.faults())

    def test_brackets_and_relative_paths_do_not_hide_a_layer(self):
        for name, written in (("<other/Other.h>", "<other/Other.h>"),
                              ("../other/Other.h", '"../other/Other.h"')):
            with self.subTest(name):
                self.change("Source/high/High.cpp", f"#include {written}\n")
                self.assertEqual(self.faults(), [
                    f'Source/high/High.cpp:1: {written}: write "other/Other.h"',
                    f"Source/high/High.cpp:1: {written}: high declares no dependency on other"])

    def test_an_undeclared_layer_in_a_program(self):
        self.change("programs/main.cpp", '#include "Core.h"\n#include "high/High.h"\n')
        self.assertEqual(self.faults(), [
            'programs/main.cpp:2: "high/High.h": program declares no dependency on high'])

    def test_a_private_dependency_is_not_passed_on(self):
        self.change("programs/main.cpp", '#include "other/Other.h"\n')
        self.assertEqual(self.faults(), [
            'programs/main.cpp:1: "other/Other.h": program declares no dependency on other'])

    def test_a_shared_header_is_checked_for_each_program(self):
        self.change("programs/Core.h", '#include "other/Other.h"\n')
        self.assertEqual(self.faults(), [
            'programs/Core.h:1: "other/Other.h": program declares no dependency on other'])

    def test_a_path_that_does_not_exist(self):
        self.change("Source/high/High.cpp", '#include "middle/Middle.h"\n')
        self.assertEqual(self.faults(), ['Source/high/High.cpp:1: "middle/Middle.h": no such file'])

    def test_a_path_with_different_case(self):
        self.change("programs/main.cpp",
                    '#include "core.h"\n#include "Low/low.h"\n#include <Low/Low.h>\n')
        self.assertEqual(self.faults(), [
            'programs/main.cpp:1: "core.h": no such file; its name is programs/Core.h',
            'programs/main.cpp:2: "Low/low.h": no such file; its name is Source/low/Low.h',
            'programs/main.cpp:3: <Low/Low.h>: no such file; its name is Source/low/Low.h'])

    def test_a_header_of_the_same_folder_needs_its_path(self):
        self.change("Source/high/High.cpp", '#include "High.h"\n')
        self.assertEqual(self.faults(), ['Source/high/High.cpp:1: "High.h": write "high/High.h"'])

    def test_a_file_without_a_target(self):
        self.change("bench/Rows.cpp", '#include "low/Low.h"\n#include "low/Rows.h"\n')
        self.assertEqual(self.faults(), ['bench/Rows.cpp:2: "low/Rows.h": no such file'])

    def test_a_file_outside_the_layers(self):
        self.change("Source/middle/Middle.h", "")
        self.assertEqual(self.faults(), ["Source/middle/Middle.h: belongs to no layer"])

    def test_layers_that_depend_on_each_other(self):
        self.addCleanup(self.configure)  # runs after the file is restored
        self.change("Source/low/CMakeLists.txt", "bridge_layer(low SOURCES LowWinnt.cpp DEPENDS high)")
        self.configure()
        self.assertEqual(self.faults(), ["layers depend on each other: low -> high -> middle -> low"])

    def test_the_exit_status_reports_faults(self):
        targets = self.root / "build" / "targets.txt"
        self.assertEqual(self.run_gate(self.root, targets),
                         (0, "13 includes in 14 files, 4 layers, 8 targets\n"))
        self.change("Source/high/High.h", '#include "other/Other.h"\n')
        status, output = self.run_gate(self.root, targets)
        self.assertEqual(status, 1)
        self.assertIn('High.h:1: "other/Other.h": high declares no dependency on other', output)

    def test_an_empty_tree_fails(self):
        with tempfile.TemporaryDirectory() as empty:
            targets = pathlib.Path(empty) / "targets.txt"
            targets.write_text("", encoding="utf-8")
            status, output = self.run_gate(empty, targets)
        self.assertEqual(status, 1)
        self.assertIn("nothing to compare", output)


if __name__ == "__main__":
    IncludesTest.compiler = sys.argv.pop(1)
    unittest.main()
