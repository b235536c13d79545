#!/usr/bin/env python3
"""python_test.py LIBRARY [TEST...]: runs the tests in the folder python, with a library that records its
calls."""

import pathlib
import sys
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parents[1] / "bindings" / "python"), str(HERE / "python"), str(HERE)]
import support  # noqa: E402


if __name__ == "__main__":
    support.load(sys.argv.pop(1))
    every = sorted(path.stem for path in (HERE / "python").glob("*_test.py"))
    unittest.main(module=None, argv=[sys.argv[0], *(sys.argv[1:] or every)])
