"""The scenarios of all languages, in Python, with the stand-in of the library and fake_product.py."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import qxbridge
import support

HERE = pathlib.Path(__file__).resolve().parent
KINDS = ("language", "given", "conf", "do", "says")
CLIENT, DATA = "Helper", "C:\\Data"
FILLED = {"{client}": CLIENT, "{data}": DATA, "{version}": qxbridge.generated.VERSION, "{line feed}": "\n"}


def read(path):
    """The scenarios of a file: name -> kind -> lines."""
    scenarios = {}
    for line in path.read_text("utf-8").splitlines():
        word, _, rest = line.partition(" ")
        if word == "scenario":
            lines = scenarios[rest] = {kind: [] for kind in KINDS}
        elif word and not word.startswith("#"):
            step, arrow, outcome = rest.partition(" -> ")
            lines[word].append(step)
            if arrow:
                lines["says"].append(outcome)
    return scenarios


def filled(text):
    for name, value in FILLED.items():
        text = text.replace(name, value)
    return text


def prepare(folder, scenario):
    """The data folder."""
    given = scenario["given"]
    folder.mkdir(parents=True)
    if "no Logs" not in given:
        (folder / "Logs").mkdir()
    if "a folder in place of the log" in given:
        (folder / "Logs/Player.log").mkdir()
    if "no configuration file" not in given:
        mark = "\ufeff" if "a byte order mark" in given else ""
        (folder / "vantrel.conf").write_text(mark + "".join(one + "\n" for one in scenario["conf"]), "utf-8")


def play(scenario):
    """The lines of the host's standard error and output."""
    given = scenario["given"]
    data = "" if "no registry value" in given else DATA
    with tempfile.TemporaryDirectory(prefix="scenario.") as root:
        prepare(pathlib.Path(root, "C", "Data"), scenario)
        result = subprocess.run(
            [sys.executable, "-B", "-W", "always", HERE.parent / "scenario.py", support.fake.path,
             data + "\\missing" if "no data folder" in given else data, "C:\\Programs\\",
             *map(filled, scenario["do"])],
            capture_output=True, encoding="utf-8", timeout=100, check=False,
            env={**os.environ, "QX_FAKE_ROOT": root, "QX_FAKE_GIVEN": json.dumps(given)})
    return result.stderr.splitlines(), result.stdout.splitlines()


class ScenariosTest(unittest.TestCase):
    maxDiff = None

    def test_scenarios(self):
        scenarios = {name: one for name, one in read(HERE.parent / "scenarios.txt").items()
                     if not one["language"] or "python" in one["language"]}
        self.assertGreaterEqual(len(scenarios), 25)
        for name, one in scenarios.items():
            with self.subTest(name):
                self.assertEqual(play(one), ([], [*map(filled, one["says"]), "finished"]))
