#!/usr/bin/env python3
"""program_functions.py HEADER OUTPUT: writes a C header that lists the functions of bridge.h that start a
program: those of its section "Programs" that take texts alone and return a code. The tests of what they
have in common then try a new one too."""

import pathlib
import sys

sys.dont_write_bytecode = True
TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "toolchain" / "bindings"))
import header  # noqa: E402

TEXT = """\
#ifndef TESTS_PROGRAMFUNCTIONS_H
#define TESTS_PROGRAMFUNCTIONS_H

/* Written by program_functions.py from bridge.h. */

/* Texts for any of the functions, and how many these are. */
#define PROGRAM_SAMPLES {samples}
#define PROGRAM_TEXTS {most}

/* X(function, number of its texts, (texts[0], texts[1], ...)) */
#define PROGRAM_FUNCTIONS(X) \\
{rows}

#endif
"""


def is_program(signature):
    return signature.result == "i32" and {one.type for one in signature.parameters} == {"text"}


def row(name, signature):
    count = len(signature.parameters)
    return f"    X({name}, {count}, ({', '.join(f'texts[{i}]' for i in range(count))}))"


def header_for(functions):
    most = max(len(one.parameters) for one in functions.values())
    samples = ['"Nougat64"', *['"1"'] * (most - 1)]
    return TEXT.format(samples=", ".join(samples), most=most,
                       rows=" \\\n".join(row(*one) for one in functions.items()))


def main(source, output):
    """Leaves a file as it is that has the text already, so that nothing is compiled again."""
    section = header.section(pathlib.Path(source).read_text("utf-8"), "Programs")
    functions = {name: one for name, one in header.functions(section).items() if is_program(one)}
    text, path = header_for(functions), pathlib.Path(output)
    if not path.exists() or path.read_text("utf-8") != text:
        path.write_text(text, "utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
