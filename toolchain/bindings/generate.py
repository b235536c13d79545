#!/usr/bin/env python3
"""generate.py [TREE]: writes the files of the bindings and headers that follow from bridge.h and the
tables in Source/ and programs/. tests/gates/generated.py calls differences()."""

import pathlib
import sys
from typing import Dict, List

sys.dont_write_bytecode = True  # leaves no files in the tree
import cpp
import csharp
import interface
import node
import python

TREE = pathlib.Path(__file__).resolve().parents[2]


def files(tree: pathlib.Path) -> Dict[str, str]:
    """The contents of the generated files, by path in the tree."""
    read = interface.read(tree)
    return {"bindings/node/bridge.generated.js": node.script(read),
            "bindings/node/bridge.generated.d.ts": node.types(read),
            "bindings/csharp/QXBridge.generated.cs": csharp.source(read),
            "bindings/python/qxbridge/generated.py": python.module(read),
            "include/bridge/keys.hpp": cpp.keys(read),
            "include/bridge/codes.hpp": cpp.codes(read)}


def found(tree: pathlib.Path, name: str) -> str:
    path = tree / name
    return path.read_bytes().decode("utf-8") if path.exists() else ""


def marked(tree: pathlib.Path) -> List[str]:
    """The files that are marked as generated."""
    paths = (path for folder in ("bindings", "include") for path in (tree / folder).rglob("*")
             if path.is_file())
    return sorted(str(path.relative_to(tree)) for path in paths
                  if interface.MARK[0].encode() in path.read_bytes())


def differences(tree: pathlib.Path) -> List[str]:
    """The differences from the output of this program, one line each."""
    wanted = files(tree)
    lines = [f"{name} is not what ./run generate writes" for name, text in wanted.items()
             if found(tree, name) != text]
    lines += [f"{name} is marked as generated, and ./run generate does not write it"
              for name in marked(tree) if name not in wanted]
    return lines


def main(tree: pathlib.Path) -> None:
    for name, text in files(tree).items():
        if found(tree, name) != text:
            (tree / name).write_bytes(text.encode("utf-8"))
            print(name)


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else TREE)
