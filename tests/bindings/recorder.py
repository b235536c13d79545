#!/usr/bin/env python3
"""recorder.py HEADER OUTPUT: writes a C file in which each function of bridge.h records its name and
arguments. It leaves out the functions that fake_bridge.c defines."""

import pathlib
import re
import sys

sys.dont_write_bytecode = True
TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "toolchain" / "bindings"))
import header  # noqa: E402

C = {"text": "const char*", "returned": "char*", "memory": "void*", "bool": "bridge_bool",
     "i32": "bridge_i32", "i64": "bridge_i64", "double": "double", "void": "void"}
SHOWN = {"text": ("%s", "shown({})"), "bool": ("%d", "{}"), "i32": ("%d", "{}"),
         "i64": ("%lld", "{}"), "double": ("%g", "{}")}
BODIES = {"void": "{note};", "i32": "return {note};", "bool": "{note};\n    return 1;",
          "i64": "{note};\n    return 1;", "double": "{note};\n    return 1;",
          "returned": "{note};\n    return textFor({key}, \"[]\");"}


def definition(name, signature):
    """The line leaves out functions and memory."""
    parameters = [f"{C.get(one.type, one.type)} {one.name}" for one in signature.parameters]
    shown = [one for one in signature.parameters if one.type in SHOWN]
    line = " ".join([name, *[SHOWN[one.type][0] for one in shown]])
    values = [SHOWN[one.type][1].format(one.name) for one in shown]
    key = next((one.name for one in shown if one.type == "text"), "NULL")
    body = BODIES[signature.result].format(note=f"note({', '.join([chr(34) + line + chr(34), *values])})",
                                           key=key)
    unused = "".join(f"    (void){one.name};\n" for one in signature.parameters if one not in shown)
    return (f"{C[signature.result]} {name}({', '.join(parameters) or 'void'}) {{\n"
            f"{unused}    {body}\n}}\n")


def main(source, output):
    functions = header.functions(pathlib.Path(source).read_text("utf-8"))
    other = set(re.findall(r"^[a-z]\S* (bridge\w+)\(", (TREE / "tests/bindings/fake_bridge.c").read_text("utf-8"), re.M))
    definitions = [definition(name, one) for name, one in functions.items() if name not in other]
    pathlib.Path(output).write_text(
        '#include <stddef.h>\n\n#include "fake_bridge.h"\n\n' + "\n".join(definitions), "utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
