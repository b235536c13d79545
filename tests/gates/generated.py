#!/usr/bin/env python3
"""generated.py TREE: the generated files have the content that ./run generate writes, and it writes every
file that is marked as generated."""

import pathlib
import sys

sys.dont_write_bytecode = True  # leaves no files in the tree
TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "toolchain" / "bindings"))
import generate


def main(tree):
    lines = generate.differences(pathlib.Path(tree))
    for line in lines:
        print(line)
    if not lines:
        print(f"{len(generate.files(pathlib.Path(tree)))} files")
    return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
