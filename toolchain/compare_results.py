"""compare_results.py HERE THERE: compares the results of the Windows tests on two systems.
Each folder contains the system's name, CTest's list of tests and report, and a report of each
GoogleTest program. Prints the tests that did not run, the test cases with different results or with
a skip, and a table of counts. Fails unless every case passed or was skipped on both systems
alike."""
import collections
import json
import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

NATIVE = "native"
GOOD = ("passed", "skipped")
OUTCOMES = ("passed", "failed", "not run", "skipped")

# A top-level result of a Node test, in the Test Anything Protocol.
TAP_LINE = re.compile(r"^(not ok|ok) \d+ - (.*?)(?: # (SKIP|TODO) ?(.*))?$", re.MULTILINE)

Result = collections.namedtuple("Result", "outcome reason", defaults=("",))
Run = collections.namedtuple("Run", "system entries cases")

MISSING = Result("not run")


def labels(test):
    for prop in test.get("properties", []):
        if prop["name"] == "LABELS":
            return prop["value"]
    return []


def entries_of(folder):
    """The labels of all CTest entries by name, including entries that did not run."""
    listed = json.loads((folder / "entries.json").read_text())["tests"]
    return {test["name"]: labels(test) for test in listed}


def entry_result(case):
    if case.find("failure") is not None:
        return Result("failed")
    if case.get("status") == "run":
        return Result("passed")
    skipped = case.find("skipped")
    message = "" if skipped is None else skipped.get("message", "")
    return Result("skipped" if message.startswith("SKIP_") else "not run", message)


def google_result(case):
    if case.find("failure") is not None:
        return Result("failed")
    skipped = case.find("skipped")
    if skipped is not None:  # the first line of the message is the source location
        return Result("skipped", " ".join(skipped.get("message", "").splitlines()[1:]).strip())
    return Result("passed" if case.get("result") == "completed" else "not run")


def google_cases(report):
    return {f"{case.get('classname')}.{case.get('name')}": google_result(case)
            for case in ElementTree.parse(report).iter("testcase")}


def tap_cases(output):
    found = {}
    for verdict, name, directive, reason in TAP_LINE.findall(output):
        if directive == "SKIP":
            found[name] = Result("skipped", reason)
        else:
            found[name] = Result("passed" if verdict == "ok" else "failed")
    return found


def cases_of(folder, entry):
    """The results of an entry's test cases; empty if it reports none or ended early."""
    report = folder / (entry.get("name") + ".xml")
    if report.exists():
        return google_cases(report)
    return tap_cases(entry.findtext("system-out") or "")


def read_run(folder):
    entries = entries_of(folder)
    cases = {}
    for entry in ElementTree.parse(folder / "ctest.junit").iter("testcase"):
        name = entry.get("name")
        if NATIVE in entries[name]:
            continue
        inside = cases_of(folder, entry)
        cases.update({f"{name}: {case}": result for case, result in inside.items()})
        whole = entry_result(entry)
        if not inside or (whole.outcome == "failed" and
                          all(result.outcome in GOOD for result in inside.values())):
            cases[name] = whole
    if not cases:
        raise SystemExit(f"no test has run: {folder}")
    return Run((folder / "system").read_text().split()[0], entries, cases)


def left_out(run):
    """The entries that do not depend on Wine, and those that did not run although they depend on it."""
    native = sorted(name for name, marks in run.entries.items() if NATIVE in marks)
    played = {program_of(name) for name in run.cases}
    absent = sorted(run.entries.keys() - played - set(native))
    return native, absent


def program_of(name):
    return name.split(": ")[0]


def said(result):
    return f"{result.outcome} ({result.reason})" if result.reason else result.outcome


def lost_cases(run, other):
    """The cases of the other run without a result in this one, because the program ended early."""
    return {name for name in other.cases.keys() - run.cases.keys()
            if program_of(name) in run.cases}


def differences(here, there):
    lost = {run.system: lost_cases(run, other) for run, other in ((here, there), (there, here))}
    for system, names in lost.items():
        programs = collections.Counter(map(program_of, names))
        for program, count in sorted(programs.items()):
            yield f"{program}: ended early under {system}; {count} cases have no result"
    for name in sorted((here.cases.keys() | there.cases.keys()).difference(*lost.values())):
        before, after = here.cases.get(name, MISSING), there.cases.get(name, MISSING)
        if before != after:
            yield f"{name}: {said(before)} under {here.system}, {said(after)} under {there.system}"
        elif before.outcome not in GOOD:
            yield f"{name}: {said(before)} under both"


def skipped_alike(here, there):
    return [f"{name}: {result.reason}" for name, result in sorted(here.cases.items())
            if result.outcome == "skipped" and there.cases.get(name) == result]


def counts(run, other):
    """The number of cases by result and by reason of a skip."""
    found = collections.Counter(result.outcome for result in run.cases.values())
    found["not run"] += len(other.cases.keys() - run.cases.keys())
    reasons = collections.Counter("  " + result.reason for result in run.cases.values()
                                  if result.outcome == "skipped")
    return found, reasons


def table(here, there):
    (found, why), (other, other_why) = counts(here, there), counts(there, here)
    rows = [(kind, found[kind], other[kind]) for kind in OUTCOMES]
    rows += [(reason, why[reason], other_why[reason])
             for reason in sorted(why.keys() | other_why.keys())]
    width = max(len(row[0]) for row in rows)
    yield f"{'test cases':{width}}  {here.system:>10}  {there.system:>10}"
    for row in rows:
        yield f"{row[0]:{width}}  {row[1]:10}  {row[2]:10}"


def show(title, lines):
    print(f"\n{title}")
    for line in lines:
        print(f"  {line}")


def compare(here, there):
    native, absent = left_out(here)
    absent += [name for name in left_out(there)[1] if name not in absent]
    different = list(differences(here, there))
    show("Excluded, because they run programs of the build machine (label native):",
         [", ".join(native) or "none"])
    if absent:
        show("Did not run although expected:", absent)
    show("Different results and failures:", different or ["none"])
    show("Skipped under both:", skipped_alike(here, there) or ["none"])
    show("Counts:", table(here, there))
    bad = [result for run in (here, there) for result in run.cases.values()
           if result.outcome not in GOOD]
    return 1 if bad or absent or here.cases.keys() != there.cases.keys() else 0


def main(arguments):
    here, there = (read_run(pathlib.Path(folder)) for folder in arguments)
    return compare(here, there)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
