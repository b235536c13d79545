#!/usr/bin/env python3
"""The wheel, installed as its users do: wheel_test.py TREE WHEEL PACKAGE FAKE [TEST...]. PACKAGE is the
unpacked package of the same build, FAKE the stand-in of the library for this machine."""

import base64
import csv
import functools
import hashlib
import importlib.metadata
import importlib.util
import io
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "bindings/python"))
import type_checks  # noqa: E402

DLLS = ("QX-Bridge.dll", "Qt5Core.dll", "Qt5Network.dll")
TAG = "py3-none-win_amd64"
PIP_INSTALL = (sys.executable, "-m", "pip", "--isolated", "--disable-pip-version-check", "install", "--quiet",
               "--root-user-action=ignore", "--no-deps", "--no-index")

# A host of the installed package with the stand-in, which prints the library's calls.
HOST = r"""
import ctypes, pathlib, sys
sys.path.insert(0, sys.argv[1])
import qxbridge
beside = str(pathlib.Path(qxbridge.__file__).parent / "QX-Bridge.dll")
qxbridge._windows.registry_text = lambda *_: None  # there is none here
with qxbridge.Bridge() as bridge:
    bridge.init("Helper", no_conf_file=True, log_file="")
    print(bridge.instances_json())
library = ctypes.CDLL(beside)
library.fakeCalls.restype = ctypes.c_char_p
print(beside, library.fakeCalls().decode(), sep="\n", end="")
"""


def run(*command, **more):
    return subprocess.run([str(one) for one in command], text=True, timeout=150, check=True,
                          stdout=subprocess.PIPE, **more).stdout


def digest(content):
    return hashlib.sha256(content).digest()


def has_pip():
    return importlib.util.find_spec("pip") is not None


@functools.lru_cache(maxsize=None)
def installed():
    """A folder with the installed wheel, which no test changes."""
    folder = tempfile.TemporaryDirectory(prefix="wheel.")
    unittest.addModuleCleanup(folder.cleanup)
    install(folder.name)
    return folder.name


def install(folder):
    """Installs for Windows, from the file alone; without pip it unpacks the file as pip would."""
    if not has_pip():
        with zipfile.ZipFile(wheel) as archive:
            archive.extractall(folder)
        return
    run(*PIP_INSTALL, "--no-compile", "--only-binary=:all:", "--platform", "win_amd64", "--target", folder,
        wheel)


class FolderTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="wheel.")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)


class WheelTest(FolderTest):
    def setUp(self):
        super().setUp()
        self.archive = zipfile.ZipFile(wheel)
        self.addCleanup(self.archive.close)
        project = (tree / "CMakeLists.txt").read_text("utf-8")
        self.version = re.search(r"^project\(QXBridge VERSION ([\d.]+)", project, re.M)[1]
        self.info = f"qxbridge-{self.version}.dist-info/"

    def text(self, name):
        return self.archive.read(self.info + name).decode()

    def test_its_name_has_the_version_and_the_system(self):
        self.assertEqual(wheel.name, f"qxbridge-{self.version}-{TAG}.whl")
        self.assertEqual(self.text("WHEEL").splitlines(), [
            "Wheel-Version: 1.0", f"Generator: qx-bridge ({self.version})", "Root-Is-Purelib: false",
            f"Tag: {TAG}"])

    def test_its_metadata(self):
        head, _, page = self.text("METADATA").partition("\n\n")
        said = dict(re.findall(r"^([\w-]+): (.*)$", head, re.M))
        self.assertEqual((said["Name"], said["Version"], said["Requires-Python"]),
                         ("qxbridge", self.version, ">=3.8"))
        self.assertEqual(page, (tree / "bindings/python/README.md").read_text("utf-8"))

    def test_the_record_has_every_file_with_its_digest(self):
        rows = list(csv.reader(io.StringIO(self.text("RECORD"))))
        self.assertEqual([one[0] for one in rows], self.archive.namelist())
        self.assertEqual(rows[-1], [self.info + "RECORD", "", ""])
        for name, listed, size in rows[:-1]:
            content = self.archive.read(name)
            method, _, encoded = listed.partition("=")
            self.assertEqual((method, base64.urlsafe_b64decode(encoded + "=")),
                             ("sha256", digest(content)), name)
            self.assertNotIn("=", encoded)
            self.assertEqual(int(size), len(content), name)

    def test_it_has_the_modules_and_the_librarys_three_files(self):
        package = {name: digest(self.archive.read(name)) for name in self.archive.namelist()
                   if not name.startswith(self.info)}
        binding = tree / "bindings/python/qxbridge"
        modules = [*binding.glob("*.py"), binding / "py.typed"]
        expected = [*modules, *(unpacked / "bin" / one for one in DLLS)]
        self.assertEqual(package, {f"qxbridge/{one.name}": digest(one.read_bytes()) for one in expected})

    def test_it_has_the_changelog(self):
        self.assertEqual(self.text("CHANGELOG.md"), (unpacked / "CHANGELOG.md").read_text("utf-8"))

    def test_it_has_the_licences_of_what_is_in_it(self):
        page = self.text("licenses/README.md")
        self.assertNotIn("bridgectl", page)
        self.assertNotIn("`bin/", page)
        for name in DLLS[1:]:
            self.assertIn(f"`qxbridge/{name}`", page)
        there = {one[len(self.info) + 9:] for one in self.archive.namelist() if "/licenses/" in one}
        named = set(re.findall(r"`([\w.-]+\.txt)`", page))
        self.assertIn("Qt-LGPL-3.txt", named)
        self.assertEqual(there, named | {"README.md"})

    def test_the_same_build_gives_the_same_bytes(self):
        run("bash", tree / "toolchain/package-wheel.sh", self.folder / "work", unpacked, self.folder)
        self.assertEqual((self.folder / wheel.name).read_bytes(), wheel.read_bytes())

    def test_the_list_of_digests_beside_it_has_it(self):
        lines = (wheel.parent / "SHA256SUMS").read_text("utf-8").splitlines()
        self.assertIn(f"{digest(wheel.read_bytes()).hex()}  {wheel.name}", lines)


class InstalledTest(FolderTest):
    def test_it_is_installed_with_its_version(self):
        [found] = importlib.metadata.distributions(path=[installed()])
        self.assertEqual(f"qxbridge-{found.version}-{TAG}.whl", wheel.name)
        for one in found.files:
            self.assertTrue(one.locate().exists(), one)

    @unittest.skipUnless(has_pip(), "there is no pip here")
    def test_it_is_refused_for_another_system(self):
        result = subprocess.run(
            [*PIP_INSTALL, "--target", self.folder, wheel],
            capture_output=True, text=True, timeout=150, check=False)
        self.assertIn("is not a supported wheel on this platform", result.stderr)
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_it_loads_the_library_beside_it(self):
        shutil.copytree(installed(), self.folder, dirs_exist_ok=True)
        beside = self.folder / "qxbridge/QX-Bridge.dll"
        shutil.copy(fake, beside)
        lines = run(sys.executable, "-I", "-c", HOST, self.folder, cwd="/").splitlines()
        self.assertEqual(lines[1:], [str(beside), "bridgeApiInitEx Helper 1 0 ", "bridgeConfGetInstances",
                                     "bridgeApiFini"])


class TypesTest(FolderTest):
    """A type checker finds the types of an installed package by its mark, py.typed."""

    def setUp(self):
        super().setUp()
        run(sys.executable, "-m", "venv", "--without-pip", self.folder / "python")
        self.python = self.folder / "python/bin/python"
        self.packages = run(self.python, "-c", "import sysconfig; print(sysconfig.get_path('purelib'))").strip()
        shutil.copytree(installed(), self.packages, dirs_exist_ok=True)

    def complaints(self):
        host = shutil.copy(type_checks.HOST, self.folder)
        lines, errors = type_checks.mypy("--python-executable", self.python, host, folder=self.folder)
        self.assertEqual(errors, "")
        return lines

    def test_of_a_host_only_the_lines_that_are_wrong_are_refused(self):
        type_checks.expect_marked_lines(self, self.complaints())

    def test_without_the_mark_there_would_be_no_types(self):
        pathlib.Path(self.packages, "qxbridge/py.typed").unlink()
        self.assertIn("py.typed marker", self.complaints()[0])


if __name__ == "__main__":
    tree, wheel, unpacked, fake = [pathlib.Path(one).resolve() for one in sys.argv[1:5]]
    print("installed with pip" if has_pip() else "there is no pip: unpacked with zipfile", file=sys.stderr)
    unittest.main(argv=[sys.argv[0], *sys.argv[5:]])
