"""The generated files of the Node binding."""

import re
from typing import List

import header
import tables
from interface import (MARK, Interface, camel, event_name, first_sentence, pascal,
                       value_comment)

# koffi uses C declarations with its own type names.
KOFFI = {"text": "const char *", "returned": "BridgeText ", "memory": "void *", "bool": "bool ",
         "i32": "int32_t ", "i64": "int64_t ", "double": "double ", "void": "void "}
TYPESCRIPT = {"text": "string", "bool": "boolean", "i32": "number", "double": "number"}
KEY_TYPESCRIPT = {"bool": "boolean", "i32": "number", "i64": "bigint", "string": "string",
                  "multi-string": "string[]"}


def quoted(text: str) -> str:
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def mark() -> List[str]:
    return [f"// {line}" for line in MARK]


def declaration(name: str, signature: header.Signature) -> str:
    """koffi has registered the type of a callback under the callback's name."""
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


def listed(texts: List[str]) -> str:
    return "[" + ", ".join(quoted(one) for one in texts) + "]"


def keys(interface: Interface) -> List[str]:
    rows = [f"    {{ scope: {quoted(one.scope)}, name: {quoted(one.name)}, "
            f"type: {quoted(one.type)}, default: {quoted(one.default)}, "
            f"unit: {quoted(one.unit)}, allowed: {listed(one.allowed)} }}," for one in interface.keys]
    return ["// The properties, with their defaults in the form of the file.", "const KEYS = [", *rows, "];", ""]


def images(interface: Interface) -> List[str]:
    return ["// The name of an instance begins with one of these, up to the first \"_\".",
            f"const IMAGES = Object.freeze({listed(interface.images)});", ""]


def codes(interface: Interface) -> List[str]:
    rows = [f"    {{ number: {one.number}, name: {quoted(one.name)}, text: {quoted(one.text)} }},"
            for one in interface.codes]
    return ["const CODES = [", *rows, "];", ""]


def script(interface: Interface) -> str:
    lines = [*mark(), "'use strict';", "", f"const VERSION = {quoted(interface.version)};", ""]
    lines += declarations("CALLBACKS", interface.callbacks)
    lines += ["// BridgeText: a string that the library returned; copied and freed with bridgeFreeMemory."]
    lines += declarations("FUNCTIONS", interface.functions)
    lines += results(interface) + events(interface) + keys(interface) + images(interface)
    lines += codes(interface)
    lines += ["module.exports = { VERSION, CALLBACKS, FUNCTIONS, RESULT, EVENTS, KEYS, IMAGES, CODES };"]
    return "\n".join(lines) + "\n"


def event_type(interface: Interface, name: str) -> List[str]:
    members = []
    for one in interface.callbacks[name].parameters:
        members += [f"    /** {value_comment(interface, name, one)} */",
                    f"    {one.name}: {TYPESCRIPT[one.type]};"]
    comment = f"/** {first_sentence(interface.comments[name])} */"
    opening = f"export interface {event_name(name)} {{"
    return [comment, opening, *members, "}"] if members else [comment, f"{opening}}}"]


def member(key: tables.Key) -> str:
    """status.adb_port -> statusAdbPort"""
    first, *rest = re.split(r"[._]", key.name)
    return first + "".join(pascal(one) for one in rest)


def key_members(interface: Interface, scope: str) -> List[str]:
    """The constants of a scope. Raises an error for a duplicate name."""
    keys_ = [one for one in interface.keys if one.scope == scope]
    if len({member(one) for one in keys_}) != len(keys_):
        raise ValueError(f"two {scope} properties have one name in the binding")
    lines = []
    for one in keys_:
        unit = f", in {one.unit}" if one.unit else ""
        default = f"default {quoted(one.default)}" if one.default else "no default"
        lines += [f"    /** {one.type}{unit}; {default} */",
                  f"    readonly {member(one)}: Key<{KEY_TYPESCRIPT[one.type]}>;"]
    return lines


def key_types(interface: Interface) -> List[str]:
    lines = []
    for scope in ("global", "instance"):
        rows = [f"    '{one.name}': {KEY_TYPESCRIPT[one.type]};"
                for one in interface.keys if one.scope == scope]
        lines += [f"/** The types of the {scope} properties, by their names in the file. */",
                  f"export interface {pascal(scope)}Properties {{", *rows, "}", "",
                  f"/** The {scope} keys. keys.instance(name) returns the keys of an instance. */",
                  f"export interface {pascal(scope)}Keys {{", *key_members(interface, scope), "}", ""]
    return lines


def event_types(interface: Interface) -> List[str]:
    lines = []
    for name in interface.callbacks:
        lines += event_type(interface, name)
    lines += ["", "export interface BridgeEvents {"]
    lines += [f"    {camel(event_name(name))}: {event_name(name)};" for name in interface.callbacks]
    return lines + ["}", "", "/** Event names by the names of the callbacks of bridge.h. */",
                    "export const EVENTS: Readonly<Record<string, keyof BridgeEvents>>;"]


def types(interface: Interface) -> str:
    lines = [*mark(), "import { Key } from './keys';", ""]
    lines += ["/** Result codes that have a name; others are numbers of errno, or 100000 and a Windows"
              " error. */", "export const RESULT: {"]
    lines += [f"    readonly {name}: {number};" for name, number in interface.results.items()]
    lines += ["};", ""]
    lines += ["/** The images: an instance's name up to its first \"_\" is one of these. */",
              "export const IMAGES: readonly string[];", ""]
    lines += key_types(interface) + event_types(interface)
    return "\n".join(lines) + "\n"
