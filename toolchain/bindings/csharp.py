"""The generated file of the C# binding."""

import textwrap
from typing import List

import header
import tables
from interface import (MARK, Interface, camel, event_name, first_sentence, pascal,
                       value_comment)

# The marshaller must not own a string that a callback receives, that the library returns or, like the
# client id, that the library keeps. Their type is an address.
WORDS = {"text": "byte[]", "returned": "IntPtr", "memory": "IntPtr", "bool": "byte", "i32": "int",
         "i64": "long", "double": "double", "void": "void"}
CALLBACK_WORDS = {**WORDS, "text": "IntPtr"}
VALUES = {"text": "string", "bool": "bool", "i32": "int", "double": "double"}
READ = {"text": "Utf8.Text({})", "bool": "{} != 0", "i32": "{}", "double": "{}"}
KEY_TYPES = {"bool": "bool", "i32": "int", "i64": "long", "string": "string",
             "multi-string": "string[]"}
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
    lines = ["    /// <summary>The C interface. String arguments are bytes with a NUL at the end.</summary>",
             "    internal static partial class Native", "    {",
             '        private const string Dll = "QX-Bridge.dll";',
             "        private const CallingConvention Convention = CallingConvention.Cdecl;", ""]
    for one in interface.callbacks.items():
        lines += delegate(*one)
    lines += [""]
    for one in interface.functions.items():
        lines += function(*one)
    return [*lines, "    }", ""]


def summary(text: str, indent: str) -> List[str]:
    text = text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
    return textwrap.wrap(f"<summary>{text}</summary>", WIDTH - len(indent), break_long_words=False,
                         initial_indent=indent + "/// ", subsequent_indent=indent + "/// ")


def sentence(text: str) -> str:
    return pascal(text) + "."


def results(interface: Interface) -> List[str]:
    rows = []
    texts = {one.number: one.text for one in interface.codes}
    for name, number in interface.results.items():
        rows += summary(sentence(texts.get(number, f"code {number}")), " " * 8)
        rows.append(f"        public const int {name.title().replace('_', '')} = {number};")
    return ["    /// <summary>The result codes with names. Other codes are errno values, or 100000 plus a "
            "Windows", "    /// error.</summary>", "    public static class Result", "    {", *rows,
            "    }", ""]


def kinds(interface: Interface) -> List[str]:
    rows = []
    for name in interface.callbacks:
        rows += [*summary(first_sentence(interface.comments[name]), " " * 8),
                 f"        {event_name(name)},"]
    return ["    /// <summary>The kinds of events.</summary>", "    public enum EventKind", "    {", *rows,
            "    }", ""]


def event(interface: Interface, name: str) -> List[str]:
    """The class of an event, for streams and for handlers with many values."""
    rows = []
    parameters = interface.callbacks[name].parameters
    for one in parameters:
        rows += summary(sentence(value_comment(interface, name, one)), " " * 8)
        rows.append(f"        public {VALUES[one.type]} {pascal(one.name)} {{ get; internal set; }}")
    listed = textwrap.wrap("return new object[] { " + ", ".join(pascal(one.name) for one in parameters)
                           + " };", WIDTH - 20, subsequent_indent="    ")
    rows += ["        /// <summary>EventKind." + event_name(name) + ".</summary>",
             f"        public override EventKind Kind {{ get {{ return EventKind.{event_name(name)}; }} }}",
             "        /// <summary>The values in the order of the properties above.</summary>",
             "        public override object[] Values", "        {", "            get", "            {",
             *[" " * 16 + line for line in listed], "            }", "        }"]
    return [*summary(interface.comments[name], " " * 4),
            f"    public sealed class {event_name(name)} : BridgeEvent", "    {", *rows, "    }", ""]


def callback(name: str, signature: header.Signature) -> List[str]:
    """The delegate of one callback, which creates the event from its arguments."""
    names = ", ".join(one.name for one in signature.parameters)
    lines = textwrap.wrap(f"Native.{name} {camel(event_name(name))} = ({names}) =>", WIDTH,
                          initial_indent=" " * 12, subsequent_indent=" " * 16)
    lines.append(f"                arrived(new {event_name(name)}")
    if not signature.parameters:
        lines[-1] += "());"
        return lines
    rows = [f"                    {pascal(one.name)} = {READ[one.type].format(one.name)},"
            for one in signature.parameters]
    return [*lines, "                {", *rows, "                });"]


def callbacks(interface: Interface) -> List[str]:
    registration = interface.functions["bridgeRegisterCallbacks"].parameters
    names = [camel(event_name(one.type)) for one in registration]
    lines = []
    for one in interface.callbacks.items():
        lines += callback(*one)
    joined = textwrap.wrap(", ".join(names) + ");", WIDTH - 16)
    return ["    /// <summary>The library's callbacks as events.</summary>",
            "    internal static class EventCallbacks", "    {",
            "        /// <summary>Registers all callbacks. The library keeps pointers to the returned objects,",
            "        /// so the caller must keep them.</summary>",
            "        internal static Delegate[] Register(Action<BridgeEvent> arrived)", "        {", *lines,
            "            Native.bridgeRegisterCallbacks(", *[" " * 16 + line for line in joined],
            "            return new Delegate[]", "            {",
            *[" " * 16 + line for line in textwrap.wrap(", ".join(names) + ",", WIDTH - 16)],
            "            };", "        }", "    }", ""]


def key_comment(key: tables.Key) -> str:
    default = f'default "{key.default}"' if key.default else "no default"
    unit = f" ({key.unit})" if key.unit else ""
    allowed = f"; elements: {', '.join(key.allowed)}" if key.allowed else ""
    return f"{key.name}: {key.type}{unit}, {default}{allowed}."


def key_name(name: str) -> str:
    return "".join(pascal(part) for part in name.replace(".", "_").split("_") if part)


def key_set(interface: Interface, scope: str) -> List[str]:
    rows = []
    for one in (one for one in interface.keys if one.scope == scope):
        type_ = f"Key<{KEY_TYPES[one.type]}>"
        rows += [*summary(key_comment(one), " " * 8), f"        public {type_} {key_name(one.name)}",
                 "        {", f"            get {{ return new {type_}(prefix + {quoted(one.name)}); }}",
                 "        }"]
    of = "The properties of the product." if scope == "global" else "The properties of one instance."
    return [f"    /// <summary>{of}</summary>", f"    public sealed class {pascal(scope)}Keys", "    {",
            "        private readonly string prefix;", "",
            f"        internal {pascal(scope)}Keys(string prefix)", "        {",
            "            this.prefix = prefix;", "        }", "", *rows, "    }", ""]


def table(type_: str, members: List[str], name: str, rows: List[str]) -> List[str]:
    fields = [f"            internal {member};" for member in members]
    return [f"        internal struct {type_}", "        {", *fields, "        }", "",
            f"        internal static readonly {type_}[] {name} =", "        {",
            *[f"            new {type_} {{ {row} }}," for row in rows], "        };"]


def keys(interface: Interface) -> List[str]:
    rows = [f"Scope = {quoted(one.scope)}, Name = {quoted(one.name)}, Type = {quoted(one.type)}, "
            f"Default = {quoted(one.default)}, Unit = {quoted(one.unit)}, "
            f"Allowed = {quoted(','.join(one.allowed))}" for one in interface.keys]
    return table("Key", ["string Scope, Name, Type, Default, Unit, Allowed"], "Keys", rows)


def codes(interface: Interface) -> List[str]:
    rows = [f"Number = {one.number}, Name = {quoted(one.name)}, Text = {quoted(one.text)}"
            for one in interface.codes]
    return table("Code", ["int Number", "string Name, Text"], "Codes", rows)


def rows_of_tables(interface: Interface) -> List[str]:
    images = ", ".join(quoted(one) for one in interface.images)
    return ["    /// <summary>The properties, with their defaults in the form of the file, the result codes, the "
            "images", "    /// and the version of the library.</summary>",
            "    internal static class Tables", "    {",
            f"        internal const string Version = {quoted(interface.version)};", "",
            f"        internal static readonly string[] Images = {{ {images} }};", "",
            *keys(interface), "", *codes(interface), "    }"]


def source(interface: Interface) -> str:
    lines = [f"// {line}" for line in MARK]
    lines += ["", "using System;", "using System.Runtime.InteropServices;", "", "namespace QXBridge",
              "{"] + results(interface) + kinds(interface)
    for name in interface.callbacks:
        lines += event(interface, name)
    for scope in ("global", "instance"):
        lines += key_set(interface, scope)
    lines += native(interface) + callbacks(interface) + rows_of_tables(interface)
    return "\n".join([*lines, "}"]) + "\n"
