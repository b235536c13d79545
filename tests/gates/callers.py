#!/usr/bin/env python3
"""callers.py TREE: the C++ wrapper, each binding and a test call every function of bridge.h. The test is
in tests/bridge or tests/hosts."""

import pathlib
import re
import sys

sys.dont_write_bytecode = True  # leaves no files in the tree
TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "toolchain" / "bindings"))
import header

# The callers that each function must have, and their files. Generated files contain no calls.
PLACES = {"bridge.hpp": ["include/bridge/*.hpp"],
          "the Node binding": ["bindings/node/bridge.js", "bindings/node/calls.js",
                               "bindings/node/configuration.js", "bindings/node/native.js"],
          "the C# binding": ["bindings/csharp/[!Q]*.cs"],
          "the Python binding": ["bindings/python/qxbridge/bridge.py",
                                 "bindings/python/qxbridge/configuration.py",
                                 "bindings/python/qxbridge/native.py"],
          "a test": ["tests/bridge/*.cpp", "tests/hosts/*.c", "tests/hosts/*.cpp"]}


def words_of(tree, patterns):
    """The identifiers outside comments. In Node and Python the name of a function can be in a string."""
    files = [path for pattern in patterns for path in sorted(tree.glob(pattern))]
    words = set()
    for path in files:
        words.update(re.findall(r"\w+", header.without_comments(path.read_text("utf-8"))))
    return words


def faults(tree):
    names = header.functions((tree / "include/bridge/bridge.h").read_text("utf-8"))
    lines = []
    for place, patterns in PLACES.items():
        words = words_of(tree, patterns)
        lines += [f"{place} does not call {name}" for name in names if name not in words]
    return lines if names else ["bridge.h declares nothing"]


def main(tree):
    lines = faults(pathlib.Path(tree))
    for line in lines or [f"{len(PLACES)} callers of every function"]:
        print(line)
    return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
