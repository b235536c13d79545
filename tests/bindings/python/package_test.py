"""The package: its names, the library that it finds, and the Pythons that it supports."""

import ast
import pathlib
import shutil
import tempfile
import unittest
from unittest import mock

import qxbridge
import support
from qxbridge import native
from support import TREE

PACKAGE = TREE / "bindings/python/qxbridge"
TEXTS = {path.name: path.read_text("utf-8") for path in sorted(PACKAGE.glob("*.py"))}


def walk(text, *types):
    """The nodes of these types."""
    return [one for one in ast.walk(ast.parse(text)) if isinstance(one, types)]


# The names of the earlier single module.
EARLIER_NAMES = ("Bridge", "BridgeError", "Configuration", "Callbacks", "AppInstalled", "CLIENTS",
                 "CALLBACKS", "FUNCTIONS", "RECORDS", "SUCCESS", "FAILURE", "NO_ENTRY", "TOO_BIG",
                 "ACCESS", "INVALID_ARGUMENT")


class PackageTest(unittest.TestCase):
    def test_every_module_is_of_python_3_8(self):
        self.assertGreater(len(TEXTS), 15)
        for name, text in TEXTS.items():
            ast.parse(text, name, feature_version=(3, 8))

    def test_earlier_names(self):
        for name in EARLIER_NAMES:
            self.assertTrue(hasattr(qxbridge, name), name)
            self.assertIn(name, qxbridge.__all__)

    def test_all_names_are_there_once(self):
        self.assertEqual(len(set(qxbridge.__all__)), len(qxbridge.__all__))
        for name in qxbridge.__all__:
            self.assertTrue(hasattr(qxbridge, name), name)

    def test_the_package_announces_its_types(self):
        self.assertTrue((PACKAGE / "py.typed").exists())

    def test_only_one_module_reaches_windows(self):
        reaching = {"winreg", "msvcrt", "_winapi", "subprocess", "WinDLL", "windll"}
        for path, text in TEXTS.items():
            names = {one.id for one in walk(text, ast.Name)}
            if path != "_windows.py":
                self.assertFalse((names | {one.attr for one in walk(text, ast.Attribute)}) & reaching, path)
                self.assertNotIn("open", names, path)

    def test_every_import_is_used(self):
        for path, text in TEXTS.items():
            if path in ("__init__.py", "keys.py"):
                continue
            imported = {(one.asname or one.name).split(".")[0]
                        for node in walk(text, ast.Import, ast.ImportFrom) for one in node.names}
            used = {one.id for one in walk(text, ast.Name)}
            # A quoted annotation uses its names, too.
            unused = [name for name in imported - used if f'"{name}.' not in text and f'{name}[' not in text]
            self.assertEqual(unused, [], path)


class LibraryTest(unittest.TestCase):
    """The library of a bridge without a path."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qxbridge.")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        patched = mock.patch.object(native, "__file__", str(self.folder / "native.py"))
        patched.start()
        self.addCleanup(patched.stop)

    def test_a_library_beside_the_modules_is_taken(self):
        beside = shutil.copy(support.fake.path, self.folder / "QX-Bridge.dll")
        self.assertEqual(native.library_path(), str(beside))
        loaded = qxbridge.Bridge()._calls._library
        self.assertEqual(loaded._name, str(beside))
        self.assertNotEqual(loaded._handle, support.fake.library._handle)

    def test_without_one_there_windows_searches_for_it(self):
        self.assertEqual(native.library_path(), "QX-Bridge.dll")

    def test_a_path_takes_precedence_over_a_library_beside_the_modules(self):
        shutil.copy(support.fake.path, self.folder / "QX-Bridge.dll")
        self.assertEqual(qxbridge.Bridge(support.fake.path)._calls._library._name, support.fake.path)
