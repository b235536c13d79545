#!/usr/bin/env python3
"""The comparison of two runs of the tests under different Wines lists the test cases with different
results, the skips and their reasons, the tests that did not run, and the counts."""

import contextlib
import io
import json
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # leaves no files in the tree
sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "toolchain"))
import compare_results

PASSED = ("run", "")
FAILED = ("fail", '<failure message="Failed"/>')
MISSING_PROGRAM = ("notrun", '<skipped message="Unable to find executable"/>')


def google(result):
    """A case of a GoogleTest report: "passed", "failed", or the reason of a skip."""
    if result == "passed":
        return 'status="run" result="completed"', ""
    if result == "failed":
        return 'status="run" result="completed"', '<failure message="a.cpp:1&#x0A;b"/>'
    return ('status="run" result="skipped"',
            f'<skipped message="tests\\a.cpp:12&#x0A;{result}&#x0A;"/>')


class RunsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_of(self, system, entries, reports=None, outputs=None, native=("gate",)):
        """A folder with a run: CTest's entries with their ends, and GoogleTest's reports of some."""
        folder = self.folder / system
        folder.mkdir()
        (folder / "system").write_text(f"{system} (Debian)\n")
        tests = [{"name": name} for name in entries]
        tests += [{"name": name, "properties": [{"name": "LABELS", "value": ["native"]}]}
                  for name in native]
        (folder / "entries.json").write_text(json.dumps({"tests": tests}))
        lines = [f'<testcase name="{name}" status="{end[0]}">{end[1]}'
                 f"<system-out>{(outputs or {}).get(name, '')}</system-out></testcase>"
                 for name, end in entries.items() if end is not None]
        (folder / "ctest.junit").write_text(f"<testsuite>{''.join(lines)}</testsuite>")
        for name, cases in (reports or {}).items():
            parts = [f'<testcase name="{case}" classname="S" {google(result)[0]}>'
                     f"{google(result)[1]}</testcase>" for case, result in cases.items()]
            (folder / f"{name}.xml").write_text(
                f"<testsuites><testsuite>{''.join(parts)}</testsuite></testsuites>")
        return str(folder)

    def compared(self, here, there):
        """The status, and the sections by their titles' first words."""
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = compare_results.main([here, there])
        sections = {}
        for part in output.getvalue().strip().split("\n\n"):
            title, *lines = part.splitlines()
            sections[title.split(",")[0].rstrip(":")] = [line.strip() for line in lines]
        return status, sections

    def test_runs_with_the_same_results(self):
        runs = [self.run_of(system, {"a": PASSED}, {"a": {"One": "passed", "Two": "needs X"}})
                for system in ("wine-8", "wine-10")]
        status, said = self.compared(*runs)
        self.assertEqual(status, 0)
        self.assertEqual(said["Different results and failures"], ["none"])
        self.assertEqual(said["Skipped under both"], ["a: S.Two: needs X"])
        self.assertEqual(said["Excluded"], ["gate"])
        self.assertEqual([line.split() for line in said["Counts"]],
                         [["test", "cases", "wine-8", "wine-10"], ["passed", "1", "1"],
                          ["failed", "0", "0"], ["not", "run", "0", "0"], ["skipped", "1", "1"],
                          ["needs", "X", "1", "1"]])

    def test_cases_with_different_results_are_listed_with_their_reasons(self):
        here = self.run_of("wine-8", {"a": PASSED}, {"a": {"One": "needs X", "Two": "passed"}})
        there = self.run_of("wine-10", {"a": PASSED}, {"a": {"One": "passed", "Two": "needs Y"}})
        status, said = self.compared(here, there)
        self.assertEqual(status, 0, "a skip is no failure")
        self.assertEqual(said["Different results and failures"],
                         ["a: S.One: skipped (needs X) under wine-8, passed under wine-10",
                          "a: S.Two: passed under wine-8, skipped (needs Y) under wine-10"])
        self.assertEqual(said["Skipped under both"], ["none"])

    def test_a_failure_on_either_side_fails(self):
        good = {"a": {"One": "passed"}}
        bad = {"a": {"One": "failed"}}
        for number, (mine, other) in enumerate([(good, bad), (bad, good), (bad, bad)]):
            here = self.run_of(f"h{number}", {"a": FAILED if mine is bad else PASSED}, mine)
            there = self.run_of(f"t{number}", {"a": FAILED if other is bad else PASSED}, other)
            status, said = self.compared(here, there)
            self.assertEqual(status, 1)
            self.assertEqual(len(said["Different results and failures"]), 1, said)

    def test_a_program_that_ends_early_fails_and_its_cases_are_missing(self):
        here = self.run_of("wine-8", {"a": PASSED}, {"a": {"One": "passed"}})
        there = self.run_of("wine-10", {"a": FAILED})
        status, said = self.compared(here, there)
        self.assertEqual(status, 1)
        self.assertEqual(said["Different results and failures"],
                         ["a: ended early under wine-10; 1 cases have no result",
                          "a: not run under wine-8, failed under wine-10"])
        self.assertEqual(said["Counts"][1].split(), ["passed", "1", "0"])
        self.assertEqual(said["Counts"][3].split(), ["not", "run", "1", "1"])

    def test_a_case_that_only_one_run_has_fails(self):
        here = self.run_of("wine-8", {"a": PASSED}, {"a": {"One": "passed", "Two": "passed"}})
        there = self.run_of("wine-10", {"a": PASSED}, {"a": {"One": "passed"}})
        status, said = self.compared(here, there)
        self.assertEqual(status, 1)
        self.assertEqual(said["Different results and failures"],
                         ["a: S.Two: passed under wine-8, not run under wine-10"])

    def test_a_failed_entry_fails_even_if_all_its_cases_passed(self):
        runs = [self.run_of(system, {"a": end}, {"a": {"One": "passed"}})
                for system, end in (("wine-8", PASSED), ("wine-10", FAILED))]
        status, said = self.compared(*runs)
        self.assertEqual(status, 1)
        self.assertEqual(said["Different results and failures"],
                         ["a: not run under wine-8, failed under wine-10"])

    def test_an_entry_that_did_not_run_is_listed_and_fails(self):
        here = self.run_of("wine-8", {"a": PASSED, "b": PASSED})
        there = self.run_of("wine-10", {"a": PASSED, "b": None})
        status, said = self.compared(here, there)
        self.assertEqual(status, 1)
        self.assertEqual(said["Did not run although expected"], ["b"])

    def test_a_missing_program_counts_as_not_run(self):
        here = self.run_of("wine-8", {"a": PASSED})
        there = self.run_of("wine-10", {"a": MISSING_PROGRAM})
        status, said = self.compared(here, there)
        self.assertEqual(status, 1)
        self.assertEqual(said["Different results and failures"],
                         ["a: passed under wine-8, not run (Unable to find executable) under "
                          "wine-10"])

    def test_native_entries_are_excluded(self):
        here = self.run_of("wine-8", {"a": PASSED, "gate": PASSED})
        there = self.run_of("wine-10", {"a": PASSED})
        status, said = self.compared(here, there)
        self.assertEqual(status, 0)
        self.assertEqual(said["Counts"][1].split(), ["passed", "1", "1"])

    def test_tests_of_node_count_as_cases(self):
        tap = "TAP version 13\nok 1 - one\n    ok 1 - inside\nok 2 - two # SKIP needs X\n"
        here = self.run_of("wine-8", {"node": PASSED}, outputs={"node": tap})
        there = self.run_of("wine-10", {"node": FAILED},
                            outputs={"node": tap.replace("ok 1 - one", "not ok 1 - one")})
        status, said = self.compared(here, there)
        self.assertEqual(status, 1)
        self.assertEqual(said["Different results and failures"],
                         ["node: one: passed under wine-8, failed under wine-10"])
        self.assertEqual(said["Skipped under both"], ["node: two: needs X"])

    def test_runs_without_tests_are_rejected(self):
        here = self.run_of("wine-8", {})
        with self.assertRaises(SystemExit):
            self.compared(here, here)


if __name__ == "__main__":
    unittest.main()
