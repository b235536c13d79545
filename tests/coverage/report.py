"""report.py TREE LCOV: compares the coverage of Source/ with the limits and reasons.txt.

Prints a line for each file without full coverage, the totals, and every line that no test reaches.
Such a line needs a reason in reasons.txt. The exit status is 1 if a reason is missing or superfluous,
if the data lack a file of Source/ that this build compiles, or if a total is below its limit.
"""

import pathlib
import sys

LINES_AT_LEAST = 95.0
BRANCHES_AT_LEAST = 90.0


class Reached:
    """The counts of one file, by line number and by (line, block, branch)."""

    def __init__(self):
        self.lines = {}
        self.branches = {}


def read_lcov(path):
    """The counts of each file."""
    files = {}
    with open(path, encoding="utf-8") as lcov:
        for text in lcov:
            kind, _, rest = text.strip().partition(":")
            if kind == "SF":
                reached = files.setdefault(pathlib.Path(rest).resolve(), Reached())
            elif kind == "DA":
                line, count = rest.split(",")[:2]
                reached.lines[int(line)] = reached.lines.get(int(line), 0) + int(count)
            elif kind == "BRDA":
                line, block, branch, count = rest.split(",")
                key = (int(line), block, branch)
                taken = 0 if count == "-" else int(count)
                reached.branches[key] = reached.branches.get(key, 0) + taken
    return files


def read_reasons(path):
    """The entries as lists: file, first line, last line, reason."""
    entries = []
    for text in path.read_text(encoding="utf-8").splitlines():
        if text and not text.startswith("#"):
            entries.append([field.strip() for field in text.split(" | ")])
            if len(entries[-1]) != 4:
                raise SystemExit(f"{path}: expected four fields: {text}")
    return entries


def excused_lines(source, file, reasons):
    """The line numbers of `file` that have a reason, with the index of its entry."""
    excused = {}
    for index, (name, first, last, _) in enumerate(reasons):
        if name != file:
            continue
        starts = [n for n, text in enumerate(source) if text.strip() == first]
        for start in starts:
            ends = [n for n in range(start, len(source)) if source[n].strip() == last]
            if ends:
                for line in range(start, ends[0] + 1):
                    excused[line + 1] = index
    return excused


def sources(root):
    """The files that the Windows build compiles: all but the siblings named *Posix."""
    return {path for path in root.rglob("*.cpp") if not path.stem.endswith("Posix")}


def percent(part, whole):
    """0 for data without lines or branches, which must not pass."""
    return 100.0 * part / whole if whole else 0.0


def count(branches_or_lines):
    return sum(1 for taken in branches_or_lines.values() if taken), len(branches_or_lines)


def main(tree, lcov):
    root = pathlib.Path(tree).resolve() / "Source"
    reasons = read_reasons(pathlib.Path(__file__).with_name("reasons.txt"))
    needed = set()
    totals = [0, 0, 0, 0]
    unexcused = []
    print(f"{'file':44} {'lines':>16} {'branches':>16}")
    files = read_lcov(lcov)
    known = {path for path, reached in files.items() if reached.lines}
    missing = sorted(path.relative_to(root).as_posix() for path in sources(root) - known)
    for path, reached in sorted(files.items()):
        if root not in path.parents:
            continue
        file = path.relative_to(root).as_posix()
        figures = [*count(reached.lines), *count(reached.branches)]
        totals = [total + figure for total, figure in zip(totals, figures)]
        lines, all_lines, branches, all_branches = figures
        if lines < all_lines or branches < all_branches:
            print(f"{file:44} {lines:6} of {all_lines:6} {branches:6} of {all_branches:6}")
        source = path.read_text(encoding="utf-8").splitlines()
        excused = excused_lines(source, file, reasons)
        for line, taken in sorted(reached.lines.items()):
            if not taken and line in excused:
                needed.add(excused[line])
            elif not taken:
                unexcused.append(f"{file}:{line}: {source[line - 1].strip()}")
    lines, branches = percent(*totals[:2]), percent(*totals[2:])
    print(f"{'total':44} {lines:15.2f}% {branches:15.2f}%")
    useless = [" | ".join(entry) for n, entry in enumerate(reasons) if n not in needed]
    for title, texts in (("not reached, without a reason", unexcused),
                         ("superfluous reasons", useless),
                         ("files without data", missing)):
        if texts:
            print(f"\n{title}:")
            print("\n".join(texts))
    enough = lines >= LINES_AT_LEAST and branches >= BRANCHES_AT_LEAST
    if not enough:
        print(f"\nbelow {LINES_AT_LEAST}% of the lines or {BRANCHES_AT_LEAST}% of the branches")
    return 0 if enough and not unexcused and not useless and not missing else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
