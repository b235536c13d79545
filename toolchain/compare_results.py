"""compare_results.py HERE THERE: compares two runs of the tests, each a folder with CTest's report
and one of each GoogleTest program. Prints what ended differently, and what failed in both. Fails
unless everything passed or was skipped there."""
import collections
import pathlib
import sys
import xml.etree.ElementTree as ElementTree

NOT_RUN = "not run"


def entry_outcome(case):
    if case.find("failure") is not None:
        return "failed"
    return {"run": "passed", "notrun": NOT_RUN}.get(case.get("status"), "skipped")


def test_outcome(case):
    if case.find("failure") is not None:
        return "failed"
    return {"completed": "passed"}.get(case.get("result"), case.get("result"))


def outcomes(folder):
    """Names to outcomes. A program's tests have their own names; its CTest entry is there as well,
    since a program that ends early reports no test."""
    found = {}
    for case in ElementTree.parse(folder / "ctest.junit").iter("testcase"):
        found[case.get("name")] = entry_outcome(case)
    for report in sorted(folder.glob("*.xml")):
        for case in ElementTree.parse(report).iter("testcase"):
            program = report.stem.split(".")[0]  # without the number of its part
            name = f"{program}: {case.get('classname')}.{case.get('name')}"
            found[name] = test_outcome(case)
    if not found:
        raise SystemExit(f"no test has run: {folder}")
    return found


def summary(name, found):
    counts = collections.Counter(found.values())
    return f"{name}: " + ", ".join(f"{counts[kind]} {kind}" for kind in ("passed", "failed", "skipped"))


def differences(here, there):
    for name in sorted(here.keys() | there.keys()):
        before, after = here.get(name, NOT_RUN), there.get(name, NOT_RUN)
        if before != after:
            yield f"{name}: {before} here, {after} there"
        elif before == "failed":
            yield f"{name}: failed in both"


def main(arguments):
    here, there = (outcomes(pathlib.Path(folder)) for folder in arguments)
    print(summary("here ", here))
    print(summary("there", there))
    different = list(differences(here, there))
    print("\n".join(different) or "every test ended alike")
    missing = here.keys() - there.keys()
    return 1 if missing or any(outcome not in ("passed", "skipped") for outcome in there.values()) else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
