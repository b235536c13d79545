#!/usr/bin/env python3
"""kit_table.py TREE [--write]: compares the table in docs/contributing/windows-kit.md with kit/checks.txt, and
checks that each page contains the sentences that the checks verify. --write updates the table."""

import os
import pathlib
import re
import sys

PAGE = pathlib.PurePosixPath("docs/contributing/windows-kit.md")
HEADER = "| check | what it decides | the sentence that it decides | needs |\n|---|---|---|---|\n"
BEGIN, END = "<!-- checks -->\n", "<!-- end of checks -->\n"
NEEDS = {"windows": "Windows", "elevated": "elevation", "plain": "no elevation",
         "prompt": "an answer"}


def read_checks(text):
    """The checks as dictionaries, in the order of the file."""
    checks = []
    for line in text.splitlines():
        if re.fullmatch(r"\[.*\]", line):
            checks.append({"id": line[1:-1]})
        elif line and not line.startswith("#"):
            name, _, value = line.partition("=")
            checks[-1][name.strip()] = value.strip()
    return checks


def row(check):
    page = pathlib.PurePosixPath(check["page"])
    link = os.path.relpath(page, PAGE.parent)
    needs = [NEEDS[need] for need in check.get("needs", "").split()]
    program = check["run"].split()[0]
    tool = check.get("tool") or ("" if "/" in program else program)
    if tool:
        needs.append(f"`{tool}` in PATH")
    sentence = check["sentence"].replace("|", "\\|")
    return f"| `{check['id']}` | {check['decides']} | [{page.name}]({link}): {sentence} | {', '.join(needs)} |\n"


def table(checks):
    return HEADER + "".join(map(row, checks))


def claim_faults(checks, read):
    """Sentences that their pages do not contain. `read` returns the text of a page."""
    faults = []
    for check in checks:
        words = " ".join(read(check["page"]).split())
        if check["sentence"] not in words:
            faults.append(f"{check['id']}: {check['page']} does not say: {check['sentence']}")
    return faults


def with_table(page, checks):
    before, rest = page.split(BEGIN)
    return before + BEGIN + table(checks) + END + rest.split(END)[1]


def main(tree, *options):
    tree = pathlib.Path(tree)
    checks = read_checks((tree / "kit/checks.txt").read_text("utf-8"))
    faults = claim_faults(checks, lambda page: (tree / page).read_text("utf-8"))
    page = tree / PAGE
    old = page.read_text("utf-8")
    new = with_table(old, checks)
    if "--write" in options:
        page.write_text(new, "utf-8")
    elif new != old:
        faults.append(f"{PAGE} has another table: toolchain/kit_table.py . --write")
    for line in faults or [f"{len(checks)} checks"]:
        print(line)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
