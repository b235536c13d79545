"""The generated file of the C# binding."""

import textwrap
from typing import List

import header
from interface import MARK, Interface, event_name, is_record, pascal

# An address is memory whose owner is not the marshaller: a text that a callback gets or that comes
# from the library, and the client id, which the library keeps.
WORDS = {"text": "byte[]", "returned": "IntPtr", "memory": "IntPtr", "bool": "byte", "i32": "int",
         "i64": "long", "double": "double", "void": "void"}
CALLBACK_WORDS = {**WORDS, "text": "IntPtr"}
VALUES = {"text": "string", "bool": "bool", "i32": "int", "double": "double"}
KEPT = "clientId"
WIDTH = 110
NO_BREAK = "\xa0"


def quoted(text: str) -> str:
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def declared(attribute: str, kind: str, name: str, parameters: List[str], result: str) -> List[str]:
    joined = ", ".join(one.replace(" ", NO_BREAK) for one in parameters)
    lines = textwrap.wrap(f"internal {kind} {result} {name}({joined});", WIDTH,
                          initial_indent=" " * 8, subsequent_indent=" " * 12, break_long_words=False)
    return [f"        [{attribute}]", *[line.replace(NO_BREAK, " ") for line in lines]]


def delegate(name: str, signature: header.Signature) -> List[str]:
    parameters = [f"{CALLBACK_WORDS[one.type]} {one.name}" for one in signature.parameters]
    return declared("UnmanagedFunctionPointer(Convention)", "delegate", name, parameters,
                    WORDS[signature.result])


def argument(one: header.Parameter) -> str:
    type_ = "IntPtr" if one.name == KEPT else WORDS.get(one.type, one.type)
    return f"{type_} {one.name}"


def function(name: str, signature: header.Signature) -> List[str]:
    parameters = [argument(one) for one in signature.parameters]
    return declared("DllImport(Dll, CallingConvention = Convention)", "static extern", name,
                    parameters, WORDS[signature.result])


def native(interface: Interface) -> List[str]:
    lines = ["    /// <summary>The C interface. Texts go in as bytes with a NUL at their end.</summary>",
             "    internal static partial class Native", "    {",
             '        private const string Dll = "QX-Bridge.dll";',
             "        private const CallingConvention Convention = CallingConvention.Cdecl;", ""]
    for one in interface.callbacks.items():
        lines += delegate(*one)
    lines += [""]
    for one in interface.functions.items():
        lines += function(*one)
    return [*lines, "    }", ""]


def results(interface: Interface) -> List[str]:
    rows = [f"        public const int {name.title().replace('_', '')} = {number};"
            for name, number in interface.results.items()]
    return ["    /// <summary>Result codes that have a name; others are numbers of errno, or 100000 and a "
            "Windows", "    /// error.</summary>", "    public static class Result", "    {", *rows,
            "    }", ""]


def record(interface: Interface, name: str) -> List[str]:
    rows = [f"        public {VALUES[one.type]} {pascal(one.name)} {{ get; internal set; }}"
            for one in interface.callbacks[name].parameters]
    return [f"    /// <summary>{interface.comments[name]}</summary>",
            f"    public sealed class {event_name(name)}", "    {", *rows, "    }", ""]


def table(type_: str, members: List[str], name: str, rows: List[str]) -> List[str]:
    fields = [f"            internal {member};" for member in members]
    return [f"        internal struct {type_}", "        {", *fields, "        }", "",
            f"        internal static readonly {type_}[] {name} =", "        {",
            *[f"            new {type_} {{ {row} }}," for row in rows], "        };"]


def keys(interface: Interface) -> List[str]:
    rows = [f"Scope = {quoted(one.scope)}, Name = {quoted(one.name)}, Type = {quoted(one.type)}, "
            f"Default = {quoted(one.default)}" for one in interface.keys]
    return table("Key", ["string Scope, Name, Type, Default"], "Keys", rows)


def codes(interface: Interface) -> List[str]:
    rows = [f"Number = {one.number}, Name = {quoted(one.name)}, Text = {quoted(one.text)}"
            for one in interface.codes]
    return table("Code", ["int Number", "string Name, Text"], "Codes", rows)


def tables(interface: Interface) -> List[str]:
    return ["    /// <summary>The properties, with the default as the file has it, and the result codes."
            "</summary>", "    internal static class Tables", "    {", *keys(interface), "",
            *codes(interface), "    }"]


def source(interface: Interface) -> str:
    lines = [f"// {line}" for line in MARK]
    lines += ["", "using System;", "using System.Runtime.InteropServices;", "", "namespace QXBridge",
              "{"] + results(interface)
    for name, signature in interface.callbacks.items():
        if is_record(signature):
            lines += record(interface, name)
    lines += native(interface) + tables(interface)
    return "\n".join([*lines, "}"]) + "\n"
