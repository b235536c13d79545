"""suite.py KIT LIBRARY: runs the tests of the Python binding with the recording library, and reports
them in the format of GoogleTest."""
import pathlib
import sys
import time
import unittest

sys.dont_write_bytecode = True
KIT, LIBRARY = map(pathlib.Path, sys.argv[1:3])
TESTS = KIT / "tests/bindings"
sys.path[:0] = [str(KIT / "bindings/python"), str(TESTS / "python"), str(TESTS)]
import support  # noqa: E402


class Report(unittest.TestResult):
    """Prints how each test began and ended."""

    def startTest(self, test):
        super().startTest(test)
        self.begin = time.monotonic()
        self.failed_before = self.failed()
        self.end = "[       OK ]"
        print(f"[ RUN      ] {test.id()}", flush=True)

    def failed(self):
        return len(self.failures) + len(self.errors) + len(self.unexpectedSuccesses)

    def addSkip(self, test, reason):
        super().addSkip(test, reason)
        self.end = "[  SKIPPED ]"
        print(reason)

    def stopTest(self, test):
        for _, text in (self.failures + self.errors)[self.failed_before:]:
            print(text)
        if self.failed() > self.failed_before:
            self.end = "[  FAILED  ]"
        print(f"{self.end} {test.id()} ({int((time.monotonic() - self.begin) * 1000)} ms)", flush=True)
        super().stopTest(test)


support.load(str(LIBRARY))
report = Report()
unittest.defaultTestLoader.loadTestsFromNames(
    sorted(path.stem for path in (TESTS / "python").glob("*_test.py"))).run(report)
sys.exit(0 if report.testsRun and report.wasSuccessful() else 1)
