"""The generated files of the Node binding."""

import re
from typing import List

import header
from interface import MARK, Interface, camel, event_name, first_sentence

# koffi's declarations are C's, with names of its own for types.
KOFFI = {"text": "const char *", "returned": "BridgeText ", "memory": "void *", "bool": "bool ",
         "i32": "int32_t ", "i64": "int64_t ", "double": "double ", "void": "void "}
TYPESCRIPT = {"text": "string", "bool": "boolean", "i32": "number", "double": "number"}


def quoted(text: str) -> str:
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def mark() -> List[str]:
    return [f"// {line}" for line in MARK]


def declaration(name: str, signature: header.Signature) -> str:
    """A callback's name stands for the function type that it was given to koffi as."""
    parameters = ", ".join(KOFFI.get(one.type, f"{one.type} *") + one.name
                           for one in signature.parameters)
    return f"{KOFFI[signature.result]}{name}({parameters})"


def declarations(name: str, signatures: header.Signatures) -> List[str]:
    rows = [f"    {quoted(declaration(*one))}," for one in signatures.items()]
    return [f"const {name} = [", *rows, "];", ""]


def results(interface: Interface) -> List[str]:
    rows = [f"    {name}: {number}," for name, number in interface.results.items()]
    return ["const RESULT = Object.freeze({", *rows, "});", ""]


def events(interface: Interface) -> List[str]:
    rows = [f"    {name}: {quoted(camel(event_name(name)))}," for name in interface.callbacks]
    return ["const EVENTS = Object.freeze({", *rows, "});", ""]


def keys(interface: Interface) -> List[str]:
    rows = [f"    {{ scope: {quoted(one.scope)}, name: {quoted(one.name)}, "
            f"type: {quoted(one.type)}, default: {quoted(one.default)} }}," for one in interface.keys]
    return ["// Properties, with the default as the file has it.", "const KEYS = [", *rows, "];", ""]


def codes(interface: Interface) -> List[str]:
    rows = [f"    {{ number: {one.number}, name: {quoted(one.name)}, text: {quoted(one.text)} }},"
            for one in interface.codes]
    return ["const CODES = [", *rows, "];", ""]


def script(interface: Interface) -> str:
    lines = [*mark(), "'use strict';", "", f"const VERSION = {quoted(interface.version)};", ""]
    lines += declarations("CALLBACKS", interface.callbacks)
    lines += ["// BridgeText: a text of the library's, copied and given back to bridgeFreeMemory."]
    lines += declarations("FUNCTIONS", interface.functions)
    lines += results(interface) + events(interface) + keys(interface) + codes(interface)
    lines += ["module.exports = { VERSION, CALLBACKS, FUNCTIONS, RESULT, EVENTS, KEYS, CODES };"]
    return "\n".join(lines) + "\n"


def value_comment(interface: Interface, name: str, one: header.Parameter) -> str:
    """A boolean is 1 or 0 in C."""
    comment = interface.values[name][one.name]
    return re.sub("^1 when", "true when", comment) if one.type == "bool" else comment


def event_type(interface: Interface, name: str) -> List[str]:
    members = []
    for one in interface.callbacks[name].parameters:
        members += [f"    /** {value_comment(interface, name, one)} */",
                    f"    {one.name}: {TYPESCRIPT[one.type]};"]
    comment = f"/** {first_sentence(interface.comments[name])} */"
    opening = f"export interface {event_name(name)} {{"
    return [comment, opening, *members, "}"] if members else [comment, f"{opening}}}"]


def types(interface: Interface) -> str:
    lines = [*mark(), ""]
    lines += ["/** Result codes that have a name; others are numbers of errno, or 100000 and a Windows"
              " error. */", "export const RESULT: {"]
    lines += [f"    readonly {name}: {number};" for name, number in interface.results.items()]
    lines += ["};", ""]
    for name in interface.callbacks:
        lines += event_type(interface, name)
    lines += ["", "export interface BridgeEvents {"]
    lines += [f"    {camel(event_name(name))}: {event_name(name)};" for name in interface.callbacks]
    lines += ["}", "", "/** Event names by the names of the callbacks of bridge.h. */",
              "export const EVENTS: Readonly<Record<string, keyof BridgeEvents>>;"]
    return "\n".join(lines) + "\n"
