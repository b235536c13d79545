"""The generated module of the Python binding."""

import json
import keyword
import textwrap
from typing import List

import header
import tables
from interface import MARK, Interface, event_name, first_sentence, is_record, snake

# The type of a returned string is an address, because bridgeFreeMemory needs it.
WORDS = {"text": "c_char_p", "returned": "c_void_p", "memory": "c_void_p", "bool": "c_bool",
         "i32": "c_int32", "i64": "c_int64", "double": "c_double", "void": "None"}
VALUES = {"text": "str", "bool": "bool", "i32": "int", "double": "float"}
KEY_TYPES = {"bool": "bool", "i32": "int", "i64": "int", "string": "str", "multi-string": "List[str]"}
WIDTH = 100


def wrapped(text: str) -> List[str]:
    return textwrap.wrap(text, WIDTH, initial_indent=" " * 4, subsequent_indent=" " * 8,
                         break_long_words=False, break_on_hyphens=False)


def wrapped_list(opening: str, items: List[str], closing: str) -> List[str]:
    return textwrap.wrap(opening + ", ".join(items) + closing, WIDTH, subsequent_indent=" " * 4,
                         break_long_words=False, break_on_hyphens=False)


def quoted(text: str) -> str:
    return json.dumps(text, ensure_ascii=False)


def parameters(signature: header.Signature) -> str:
    """The name of a callback, whose type the binding defines."""
    return "dict(" + ", ".join(f"{one.name}={WORDS.get(one.type, quoted(one.type))}"
                               for one in signature.parameters) + ")"


def callbacks(interface: Interface) -> List[str]:
    lines = ["CALLBACKS: Dict[str, Dict[str, Any]] = {"]
    for name, signature in interface.callbacks.items():
        lines += wrapped(f"{quoted(name)}: {parameters(signature)},")
    return [*lines, "}", ""]


def functions(interface: Interface) -> List[str]:
    lines = ["# Result and parameters. A returned string is an address, because bridgeFreeMemory needs it. A name",
             "# is the name of a callback.",
             "FUNCTIONS: Dict[str, Tuple[Any, Dict[str, Any]]] = {"]
    for name, signature in interface.functions.items():
        lines += wrapped(f"{quoted(name)}: ({WORDS[signature.result]}, {parameters(signature)}),")
    return [*lines, "}", ""]


def summary(comment: str) -> str:
    """The first clause. The rest of the comment describes the C functions."""
    return first_sentence(comment).split(";")[0].rstrip(".") + "."


def event(interface: Interface, name: str) -> List[str]:
    members = [f"    {snake(one.name)}: {VALUES[one.type]}"
               for one in interface.callbacks[name].parameters]
    own = quoted(snake(event_name(name)))
    return ["", f"class {event_name(name)}(NamedTuple):",
            f'    """{summary(interface.comments[name])}"""', "",
            *members, *([""] if members else []), "    @property",
            f"    def event(self) -> Literal[{own}]:", f"        return {own}", ""]


def events(interface: Interface) -> List[str]:
    """The classes of the events, their names, and the union of them."""
    names = list(interface.callbacks)
    classes = [event_name(name) for name in names]
    lines = [line for name in names for line in event(interface, name)]
    lines += ["", *wrapped_list("Event = Union[", classes, "]"),
              *wrapped_list("EventName = Literal[", [quoted(snake(one)) for one in classes], "]"), ""]
    lines += ["EVENTS: Dict[str, Any] = {",
              *[f"    {quoted(name)}: {one}," for name, one in zip(names, classes)], "}", "",
              "EVENT_TYPES: Dict[str, Any] = {",
              *[f"    {quoted(snake(one))}: {one}," for one in classes], "}", ""]
    records = [name for name in names if is_record(interface.callbacks[name])]
    return lines + ["# Events that are passed as a record.", "RECORDS: Dict[str, Any] = {",
                    *[f"    {quoted(name)}: {event_name(name)}," for name in records], "}", ""]


def slot(name: str, signature: header.Signature) -> str:
    arguments = ", ".join(VALUES[one.type] for one in signature.parameters)
    if is_record(signature):
        arguments = event_name(name)
    return f"    {snake(event_name(name))}: Optional[Callable[[{arguments}], Any]] = None"


def slots(interface: Interface) -> List[str]:
    return ["", "class Callbacks(NamedTuple):", '    """The host\'s functions. Each may be None.', "",
            "    They run one at a time on the library's event thread. Their exceptions go to sys.unraisablehook.",
            '    The arguments have the same names as in bridge.h.', '    """', "",
            *[slot(*one) for one in interface.callbacks.items()], ""]


def table(type_: str, members: List[str], name: str, rows: List[List[str]]) -> List[str]:
    return ["", f"class {type_}(NamedTuple):", *[f"    {member}" for member in members], "", "",
            f"{name} = (", *[f"    {type_}({', '.join(row)})," for row in rows], ")", ""]


def properties(interface: Interface) -> List[str]:
    rows = [[*[quoted(value) for value in one], quoted(one.unit), words(one.allowed)]
            for one in interface.keys]
    members = ["scope: str", "name: str", "type: str", "default: str", "unit: str",
               "allowed: Tuple[str, ...]"]
    lines = table("Property", members, "KEYS", rows)
    return lines[:2] + ['    """A property, with its default in the form of the file."""', ""] + lines[2:]


def words(texts: List[str]) -> str:
    """A tuple of strings."""
    return "(" + ", ".join(map(quoted, texts)) + ("," if len(texts) == 1 else "") + ")"


def key_name(key: tables.Key) -> str:
    """status.adb_port -> status_adb_port"""
    name = key.name.replace(".", "_")
    if not name.isidentifier() or keyword.iskeyword(name):
        raise ValueError(f"{key.name} gives no name for Python")
    return name


def keys_of(interface: Interface, scope: str) -> List[str]:
    """The lines of a constructor whose variable p is the prefix of the keys."""
    rows = [one for one in interface.keys if one.scope == scope]
    if len({key_name(one) for one in rows}) != len(rows):
        raise ValueError(f"two {scope} properties have one name in Python")
    lines = []
    for one in rows:
        start = f"        self.{key_name(one)}: Final[Key[{KEY_TYPES[one.type]}]] = Key("
        values = key_values(one)
        line = f"{start}{values})"
        lines += [line] if len(line) <= WIDTH else [start, f"            {values})"]
    return lines


def key_values(key: tables.Key) -> str:
    """The arguments without those at the end that equal Key's defaults."""
    values = [f"p + {quoted(key.name)}", quoted(key.type), quoted(key.default)]
    if key.unit or key.allowed:
        values.append(quoted(key.unit))
    return ", ".join(values + ([words(key.allowed)] if key.allowed else []))


def keys(interface: Interface) -> List[str]:
    return ["", "class GlobalKeys:", '    """The global keys of the product."""', "",
            "    def __init__(self) -> None:", '        p = "vtr."',
            *keys_of(interface, "global"), "", "", "class InstanceKeys:",
            '    """The keys of one instance."""', "",
            "    def __init__(self, instance: str) -> None:",
            '        p = f"vtr.instance.{instance}."',
            *keys_of(interface, "instance"), ""]


def codes(interface: Interface) -> List[str]:
    rows = [[str(one.number), quoted(one.name), quoted(one.text)] for one in interface.codes]
    return table("Code", ["number: int", "name: str", "text: str"], "CODES", rows)


def images(interface: Interface) -> List[str]:
    return ["", "# The name of an instance begins with one of these, up to the first \"_\".",
            f"IMAGES = {words(interface.images)}", ""]


def public_names(interface: Interface) -> List[str]:
    """The names that the binding exports to hosts."""
    return [*interface.results, *map(event_name, interface.callbacks), "Callbacks", "Event",
            "EventName"]


def module(interface: Interface) -> str:
    lines = [f"# {line}" for line in MARK]
    lines += ["", "from ctypes import c_bool, c_char_p, c_double, c_int32, c_int64, c_void_p",
              "from typing import (Any, Callable, Dict, Final, List, Literal, NamedTuple, Optional, Tuple,",
              "                    Union)", "", "from .key import Key", "",
              "__all__ = [", *[f"    {quoted(name)}," for name in public_names(interface)], "]", "",
              f"VERSION = {quoted(interface.version)}", ""]
    lines += [f"{name} = {number}" for name, number in interface.results.items()] + [""]
    lines += callbacks(interface) + functions(interface) + events(interface) + slots(interface)
    lines += properties(interface) + keys(interface) + codes(interface) + images(interface)
    return "\n".join(lines)
