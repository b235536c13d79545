"""Tests of cmake/QXBridgeCopyRuntime.cmake: copy_runtime_test.py CMAKE SCRIPT."""
import fcntl
import pathlib
import subprocess
import sys
import tempfile
import unittest


class CopyRuntimeTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "bin").mkdir()
        self.dlls = [self.folder / "a b.dll", self.folder / "c.dll"]
        for dll in self.dlls:
            dll.write_text(dll.name)
        self.lock = self.folder / "lock"

    def start(self):
        dlls = ";".join(str(dll) for dll in self.dlls)
        cmake, script = arguments
        return subprocess.Popen([cmake, f"-DDLLS={dlls}", f"-DFOLDER={self.folder}/bin", f"-DLOCK={self.lock}",
                                 "-P", script], stderr=subprocess.DEVNULL)

    def copied(self):
        return sorted(file.read_text() for file in (self.folder / "bin").iterdir())

    def test_it_copies_the_files(self):
        self.assertEqual(self.start().wait(30), 0)
        self.assertEqual(self.copied(), ["a b.dll", "c.dll"])

    def test_a_missing_file_fails(self):
        self.dlls[1].unlink()
        self.assertNotEqual(self.start().wait(30), 0)

    def test_it_waits_for_another_copy(self):
        with self.lock.open("w", encoding="utf-8") as lock:
            fcntl.lockf(lock, fcntl.LOCK_EX)
            copy = self.start()
            with self.assertRaises(subprocess.TimeoutExpired):
                copy.wait(0.5)
            self.assertEqual(self.copied(), [])
        self.assertEqual(copy.wait(30), 0)
        self.assertEqual(self.copied(), ["a b.dll", "c.dll"])


arguments = sys.argv[1:]
if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
