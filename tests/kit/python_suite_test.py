"""Tests of kit/bindings/suite.py: python_suite_test.py TREE LIBRARY. The library records its calls."""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

SUITE = pathlib.Path(__file__).resolve().parents[2] / "kit/bindings/suite.py"
TESTS = """import unittest

class Some(unittest.TestCase):
    def test_a_passes(self):
        pass

    def test_b_fails(self):
        self.assertEqual(1, 2)

    def test_c_fails_in_a_part(self):
        for number in (1, 2):
            with self.subTest(number):
                self.assertEqual(number, 1)

    @unittest.skip("needs a reason")
    def test_d_is_skipped(self):
        pass
"""


def run(kit, library):
    result = subprocess.run([sys.executable, SUITE, kit, library, "--gtest_filter=*"], check=False, text=True,
                            stdout=subprocess.PIPE, timeout=100)
    return result.returncode, result.stdout.splitlines()


def ends(lines, sign):
    """The names of the tests that ended with this sign."""
    return [line[len(sign):].rsplit(" (", 1)[0] for line in lines if line.startswith(sign)]


def without_most_tests(_, names):
    """The files to leave out: all tests but some short ones."""
    return [name for name in names if name.endswith("_test.py") and name != "keys_test.py"]


class PythonSuiteTest(unittest.TestCase):
    def kit(self, tests):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        python = pathlib.Path(folder.name, "tests/bindings/python")
        python.mkdir(parents=True)
        (python / "support.py").write_text("def load(path):\n    assert path == 'library'\n")
        (python / "some_test.py").write_text(tests)
        return folder.name

    def test_each_test_is_reported_with_its_end(self):
        status, lines = run(self.kit(TESTS), "library")
        self.assertEqual(status, 1)
        self.assertEqual(ends(lines, "[       OK ] "), ["some_test.Some.test_a_passes"])
        self.assertEqual(ends(lines, "[  FAILED  ] "),
                         ["some_test.Some.test_b_fails", "some_test.Some.test_c_fails_in_a_part"])
        self.assertEqual(ends(lines, "[  SKIPPED ] "), ["some_test.Some.test_d_is_skipped"])
        self.assertIn("AssertionError: 2 != 1", lines)
        self.assertIn("needs a reason", lines)

    def test_no_test_or_a_file_that_cannot_be_loaded_is_a_failure(self):
        self.assertEqual(run(self.kit(""), "library")[0], 1)
        status, lines = run(self.kit("import missing_module"), "library")
        self.assertEqual((status, len(ends(lines, "[  FAILED  ] "))), (1, 1))

    def test_the_bindings_own_tests_can_be_run(self):
        tree, library = arguments
        kit = self.kit("")
        shutil.copytree(pathlib.Path(tree, "bindings/python"), pathlib.Path(kit, "bindings/python"))
        shutil.copytree(pathlib.Path(tree, "tests/bindings"), pathlib.Path(kit, "tests/bindings"),
                        ignore=without_most_tests, dirs_exist_ok=True)
        status, lines = run(kit, library)
        self.assertEqual(status, 0, "\n".join(lines))
        self.assertGreater(len(ends(lines, "[       OK ] keys_test.")), 3)


arguments = sys.argv[1:]
if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
