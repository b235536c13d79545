"""The generated module of the Python binding."""

import json
import textwrap
from typing import List

import header
from interface import MARK, Interface, event_name, is_record, snake

# A returned text is an address, which bridgeFreeMemory wants back.
WORDS = {"text": "c_char_p", "returned": "c_void_p", "memory": "c_void_p", "bool": "c_bool",
         "i32": "c_int32", "i64": "c_int64", "double": "c_double", "void": "None"}
VALUES = {"text": "str", "bool": "bool", "i32": "int", "double": "float"}
WIDTH = 100


def wrapped(text: str) -> List[str]:
    return textwrap.wrap(text, WIDTH, initial_indent=" " * 4, subsequent_indent=" " * 8,
                         break_long_words=False, break_on_hyphens=False)


def quoted(text: str) -> str:
    return json.dumps(text, ensure_ascii=False)


def parameters(signature: header.Signature) -> str:
    """A callback is named, since each gets its type from the binding."""
    return "dict(" + ", ".join(f"{one.name}={WORDS.get(one.type, quoted(one.type))}"
                               for one in signature.parameters) + ")"


def callbacks(interface: Interface) -> List[str]:
    lines = ["CALLBACKS: Dict[str, Dict[str, Any]] = {"]
    for name, signature in interface.callbacks.items():
        lines += wrapped(f"{quoted(name)}: {parameters(signature)},")
    return [*lines, "}", ""]


def functions(interface: Interface) -> List[str]:
    lines = ["# Result and parameters. A returned text is an address here, which bridgeFreeMemory wants back;",
             "# a name is that of a callback.",
             "FUNCTIONS: Dict[str, Tuple[Any, Dict[str, Any]]] = {"]
    for name, signature in interface.functions.items():
        lines += wrapped(f"{quoted(name)}: ({WORDS[signature.result]}, {parameters(signature)}),")
    return [*lines, "}", ""]


def record(interface: Interface, name: str) -> List[str]:
    members = [f"    {snake(one.name)}: {VALUES[one.type]}"
               for one in interface.callbacks[name].parameters]
    return ["", f"class {event_name(name)}(NamedTuple):", f'    """{interface.comments[name]}"""', "",
            *members, ""]


def slot(name: str, signature: header.Signature) -> str:
    arguments = ", ".join(VALUES[one.type] for one in signature.parameters)
    if is_record(signature):
        arguments = event_name(name)
    return f"    {snake(event_name(name))}: Optional[Callable[[{arguments}], Any]] = None"


def slots(interface: Interface) -> List[str]:
    return ["", "class Callbacks(NamedTuple):", '    """The host\'s functions; any may be None.', "",
            "    They run on the library's event thread, one after another. What one of them raises goes to",
            '    sys.unraisablehook. The names of the arguments are those of bridge.h.', '    """', "",
            *[slot(*one) for one in interface.callbacks.items()], ""]


def table(type_: str, members: List[str], name: str, rows: List[List[str]]) -> List[str]:
    return ["", f"class {type_}(NamedTuple):", *[f"    {member}" for member in members], "", "",
            f"{name} = (", *[f"    {type_}({', '.join(row)})," for row in rows], ")", ""]


def keys(interface: Interface) -> List[str]:
    rows = [[quoted(value) for value in one] for one in interface.keys]
    lines = table("Key", ["scope: str", "name: str", "type: str", "default: str"], "KEYS", rows)
    return lines[:2] + ['    """A property, with its default as the file has it."""', ""] + lines[2:]


def codes(interface: Interface) -> List[str]:
    rows = [[str(one.number), quoted(one.name), quoted(one.text)] for one in interface.codes]
    return table("Code", ["number: int", "name: str", "text: str"], "CODES", rows)


def public_names(interface: Interface) -> List[str]:
    """What the binding passes on to hosts."""
    records = [event_name(name) for name, one in interface.callbacks.items() if is_record(one)]
    return [*interface.results, *records, "Callbacks"]


def module(interface: Interface) -> str:
    records = {name: event_name(name) for name, one in interface.callbacks.items() if is_record(one)}
    lines = [f"# {line}" for line in MARK]
    lines += ["", "from ctypes import c_bool, c_char_p, c_double, c_int32, c_int64, c_void_p",
              "from typing import Any, Callable, Dict, NamedTuple, Optional, Tuple", "",
              "__all__ = [", *[f"    {quoted(name)}," for name in public_names(interface)], "]", "",
              f"VERSION = {quoted(interface.version)}", ""]
    lines += [f"{name} = {number}" for name, number in interface.results.items()] + [""]
    lines += callbacks(interface) + functions(interface)
    for name in records:
        lines += record(interface, name)
    lines += slots(interface) + ["", "# Events that arrive as a record.", "RECORDS: Dict[str, Any] = {",
                                 *[f"    {quoted(name)}: {type_}," for name, type_ in records.items()],
                                 "}", ""]
    lines += keys(interface) + codes(interface)
    return "\n".join(lines)
