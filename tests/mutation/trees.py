"""Copies of the working tree, each with its own build, which try the mutants."""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import time
from dataclasses import dataclass

import cores

ROOT = pathlib.Path(__file__).resolve().parents[2]
MUTATION = ROOT / "build" / "mutation"

# Warnings are not errors here, because the tests must detect such mutants. Limits on memory, file size
# and time stop runaway mutants.
CONFIGURE = ["cmake", "--preset", "native", "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS=-w",
             "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld"]
LIMITS = ["prlimit", f"--as={8 << 30}", f"--fsize={1 << 30}", "--core=0", "--"]
BUILD_SECONDS = 600
LEAST_SECONDS = 15
TIMES_OF_BASELINE = 8


@dataclass
class Run:
    """The result of a test program: its duration, the number of tests, and the first failure if there is
    one."""
    seconds: float
    tests: int
    failure: str


def copied_files():
    """The current files of the working tree, including uncommitted ones, without ignored ones."""
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                            cwd=ROOT, check=True, capture_output=True).stdout.decode()
    return {name for name in listed.split("\0") if name and (ROOT / name).is_file()}


class Tree:
    def __init__(self, number, tests):
        self.root = MUTATION / f"tree-{number}"
        self.build = self.root / "build" / "native"
        self.tests = tests  # the required programs
        self.baseline = {}

    def refresh(self):
        """Copies the files. Unchanged files keep their times, so they are not compiled again."""
        wanted = copied_files()
        for name in wanted:
            source, target = ROOT / name, self.root / name
            if not target.is_file() or target.read_bytes() != source.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(source, target)
        for folder in ("Source", "tests"):
            for target in (self.root / folder).rglob("*"):
                if target.is_file() and str(target.relative_to(self.root)) not in wanted:
                    target.unlink()

    def prepare(self):
        """Builds the unchanged tree, in which every test must pass twice."""
        self.refresh()
        log = MUTATION / f"{self.root.name}.log"
        with log.open("w") as output:
            for command in (CONFIGURE, ["ninja", "-j1", "-C", str(self.build), *self.tests]):
                if subprocess.run(command, cwd=self.root, stdout=output, stderr=output).returncode:
                    raise SystemExit(f"error: the unchanged tree does not build; see {log}")
        for name in self.tests * 2:
            run = self.run(name, 300)
            if run.failure:
                raise SystemExit(f"error: {name} fails without any change: {run.failure}")
            self.baseline[name] = run

    def compiles(self, name):
        command = ["ninja", "-j1", "-C", str(self.build), name]
        try:
            return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                  timeout=BUILD_SECONDS).returncode == 0
        except subprocess.TimeoutExpired:
            return False

    def run(self, name, limit):
        with tempfile.TemporaryDirectory(prefix="mutant.", ignore_cleanup_errors=True) as folder:
            command = [*LIMITS, str(self.build / "tests" / name), "--gtest_brief=1",
                       "--gtest_fail_fast", "--gtest_filter=-" + ":".join(cores.NOT_ASKED)]
            started = time.monotonic()
            output, code = run_group(command, limit, {**os.environ, "TMPDIR": folder})
            return Run(time.monotonic() - started, *judged(output, code))

    def try_mutant(self, path, text):
        """The pair of "does not compile", "killed", "timeout" or "survived", and the test."""
        (self.root / path).write_text(text)
        for name in cores.tests_of(path):
            if not self.compiles(name):
                return "does not compile", name
            before = self.baseline[name]
            run = self.run(name, max(LEAST_SECONDS, TIMES_OF_BASELINE * before.seconds))
            if run.failure == "timeout":
                return "timeout", name
            if run.failure or run.tests != before.tests:
                return "killed", f"{name} {run.failure or 'other tests'}"
        return "survived", ""

    def restore(self, path):
        shutil.copyfile(ROOT / path, self.root / path)


def run_group(command, limit, environment):
    """The output and the exit status, None after a timeout. Remaining children end too."""
    process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, text=True,
                               errors="replace", stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                               start_new_session=True)
    try:
        output, _ = process.communicate(timeout=limit)
        return output, process.returncode
    except subprocess.TimeoutExpired:
        return "", None
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.communicate()


def judged(output, code):
    """The number of tests and the failure, which is empty only if the program ran to its end."""
    ended = re.search(r"^\[==========\] (\d+) tests? from .* ran\.", output, re.M)
    count = int(ended[1]) if ended else 0
    failed = re.search(r"^\[  FAILED  \] ([\w./]+)", output, re.M)
    if code is None:
        return count, "timeout"
    if failed:
        return count, failed[1]
    return (count, "") if code == 0 and ended else (count, f"ended with {code}")
