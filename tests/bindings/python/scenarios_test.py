"""The scenarios of the bindings in Python, over the stand-in of the library and what
fake_product.py makes of it."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import support

HERE = pathlib.Path(__file__).resolve().parent


class Scenario:
    def __init__(self, name):
        self.name, self.conf, self.steps, self.says = name, [], [], []


def read(path):
    """The scenarios of a file: blocks of lines that begin with scenario, conf, do or says."""
    scenarios = []
    for line in path.read_text("utf-8").splitlines():
        word, _, rest = line.partition(" ")
        if word == "scenario":
            scenarios.append(Scenario(rest))
        elif word:
            {"conf": scenarios[-1].conf, "do": scenarios[-1].steps, "says": scenarios[-1].says}[word].append(rest)
    return scenarios


class ScenariosTest(unittest.TestCase):
    maxDiff = None

    def play(self, scenario):
        with tempfile.TemporaryDirectory(prefix="scenario.") as root:
            folder = pathlib.Path(root, "C", "Data")
            (folder / "Logs").mkdir(parents=True)
            (folder / "vantrel.conf").write_text("".join(one + "\n" for one in scenario.conf), "utf-8")
            result = subprocess.run(
                [sys.executable, "-B", "-X", "dev", HERE.parent / "scenario.py", support.fake.path, "C:\\Data",
                 "C:\\Programs\\", *scenario.steps],
                capture_output=True, encoding="utf-8", timeout=60, check=False,
                env={**os.environ, "QX_FAKE_ROOT": root})
        return result.stderr.splitlines(), result.stdout.splitlines()

    def test_each_scenario(self):
        scenarios = read(HERE / "scenarios.txt")
        self.assertGreater(len(scenarios), 5)
        for one in scenarios:
            with self.subTest(one.name):
                self.assertEqual(self.play(one), ([], [*one.says, "finished"]))
