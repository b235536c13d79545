#!/usr/bin/env python3
"""The bindings declare what bridge.h declares: names, parameters and their order, types, results and
constants. bridge.h is authoritative; each binding is read from its generated file. The second half of this
test changes the header in memory and expects that each change is reported for each binding."""

import ctypes
import pathlib
import re
import sys
import unittest

sys.dont_write_bytecode = True
TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(TREE / "bindings" / "python"), str(TREE / "toolchain" / "bindings")]
import header  # noqa: E402
from header import callback_names, parameters_of, result_codes, without_comments  # noqa: E402

# Each reader returns {name: (result, [(type, parameter), ...])}, with the types of header.Signature.


def header_text():
    return (TREE / "include/bridge/bridge.h").read_text("utf-8")


def node_text(name="bridge.generated.js"):
    return (TREE / "bindings/node" / name).read_text("utf-8")


def csharp_text():
    return (TREE / "bindings/csharp/QXBridge.generated.cs").read_text("utf-8")


def read_header(text):
    return {**header.callbacks(text), **header.functions(text)}


def read_node(text):
    words = {"const char*": "text", "BridgeText": "returned", "bool": "bool", "int32_t": "i32",
             "int64_t": "i64", "double": "double", "void*": "memory", "void": "void"}
    words.update({name + "*": name for name in re.findall(r"'void (bridge(?:On|Install)\w+)\(", text)})
    found = {}
    for result, name, list_ in re.findall(r"^    '(\w+) (bridge\w+)\((.*)\)',$", text, re.M):
        found[name] = (words[result], parameters_of(list_, words))
    return found


def read_csharp(text):
    text = without_comments(text)
    attribute = r"\[UnmanagedFunctionPointer\(Convention\)\]\s*internal delegate"
    import_ = r"\[DllImport\(Dll, CallingConvention = Convention\)\]\s*internal static extern"
    words = {"byte[]": "text", "byte": "bool", "int": "i32", "long": "i64", "double": "double",
             "void": "void"}
    found = {}
    delegates = re.findall(attribute + r" (\w+) (\w+)\((.*?)\);", text, re.S)
    for result, name, list_ in delegates:
        found[name] = (words[result], parameters_of(list_, {**words, "IntPtr": "text"}))
    words.update({name: name for _, name, _ in delegates})
    for result, name, list_ in re.findall(import_ + r" (\S+) (bridge\w+)\((.*?)\);", text, re.S):
        # An address is the memory that bridgeFreeMemory frees, otherwise a text that must outlive the call.
        into = "memory" if name == "bridgeFreeMemory" else "text"
        found[name] = ({**words, "IntPtr": "returned"}[result],
                       parameters_of(list_, {**words, "IntPtr": into}))
    return found


def read_python(callbacks, callback_types, functions):
    words = {ctypes.c_char_p: "text", ctypes.c_bool: "bool", ctypes.c_int32: "i32",
             ctypes.c_int64: "i64", ctypes.c_double: "double", ctypes.c_void_p: "memory", None: "void"}
    words.update({type_: name for name, type_ in callback_types.items()})
    found = {}
    for name, parameters in callbacks.items():
        assert callback_types[name]._argtypes_ == tuple(parameters.values()), name
        assert callback_types[name]._restype_ is None, name
        found[name] = ("void", [(words[type_], one) for one, type_ in parameters.items()])
    results = {**words, ctypes.c_void_p: "returned"}
    for name, (result, parameters) in functions.items():
        found[name] = (results[result], [(words[type_], one) for one, type_ in parameters.items()])
    return found


def python_binding():
    from qxbridge import CALLBACKS, native
    return read_python(CALLBACKS, native.CALLBACK_TYPES, native.SIGNATURES)


BINDINGS = {
    "Node": lambda: read_node(node_text()),
    "C#": lambda: read_csharp(csharp_text()),
    "Python": python_binding,
}


def differences(declared, binding):
    """The differences between a binding and the header, one line each."""
    lines = [f"{name} is missing" for name in declared.keys() - binding.keys()]
    lines += [f"{name} does not exist" for name in binding.keys() - declared.keys()]
    for name in declared.keys() & binding.keys():
        if declared[name] != binding[name]:
            lines.append(f"{name}: the header has {declared[name]}, the binding {binding[name]}")
    return sorted(lines)


class SignaturesTest(unittest.TestCase):
    def test_the_header_is_read_whole(self):
        found = read_header(header_text())
        self.assertEqual(len(found), header.declarations(header_text()))
        exports = (TREE / "Source/bridge/QX-Bridge.def").read_text().split("EXPORTS")[1].split()
        self.assertEqual(sorted(found.keys() - set(callback_names(header_text()))), sorted(exports))

    def test_each_binding_is_as_the_header(self):
        for name, read in BINDINGS.items():
            with self.subTest(name):
                self.assertEqual(differences(read_header(header_text()), read()), [])

    def test_result_codes(self):
        import qxbridge
        codes = result_codes(header_text())
        self.assertEqual(len(codes), 6)
        self.assertEqual({name: getattr(qxbridge, name) for name in codes}, codes)
        pairs = re.findall(r"(\w+): (-?\d+)", re.search(r"RESULT = .*?;", node_text(), re.S)[0])
        self.assertEqual({name: int(code) for name, code in pairs}, codes)
        pairs = re.findall(r"readonly ([A-Z_]+): (-?\d+);", node_text("bridge.generated.d.ts"))
        self.assertEqual({name: int(code) for name, code in pairs}, codes)
        pairs = re.findall(r"public const int (\w+) = (-?\d+);", csharp_text())
        self.assertEqual({name: int(code) for name, code in pairs},
                         {name.title().replace("_", ""): code for name, code in codes.items()})

    def test_the_version_of_the_package(self):
        version = ".".join(re.findall(r"#define BRIDGE_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)", header_text()))
        self.assertIn(f'"version": "{version}"', node_text("package.json"))

    def test_the_types_of_nodes_events(self):
        types = {"text": "string", "i32": "number", "double": "number", "bool": "boolean"}
        text = without_comments(node_text("bridge.generated.d.ts"))
        events = dict(re.findall(r"(bridge\w+): '(\w+)'", node_text()))
        declared = dict(re.findall(r"^    (\w+): (\w+);$", re.search(r"interface BridgeEvents \{(.*?)\n\}", text, re.S)[1], re.M))
        declarations = read_header(header_text())
        self.assertEqual(list(events), callback_names(header_text()))
        self.assertEqual(list(declared), list(events.values()))

        def members(interface):
            body = re.search(rf"interface {interface} \{{(.*?)\}}", text, re.S)[1]
            return dict(re.findall(r"(\w+): (\w+);", body))

        for callback, event in events.items():
            expected = {one: types[type_] for type_, one in declarations[callback][1]}
            self.assertEqual(members(declared[event]), expected, event)

    def test_the_python_callbacks_are_in_the_headers_order(self):
        import qxbridge
        names = [re.sub(r"^bridge(On)?", "", name) for name in callback_names(header_text())]
        snake = [re.sub(r"(?<!^)([A-Z])", r"_\1", name).lower() for name in names]
        self.assertEqual(list(qxbridge.Callbacks._fields), snake)
        self.assertEqual(list(qxbridge.CALLBACKS), callback_names(header_text()))


# Changes of the header that a binding would have to follow: pattern, replacement, and the name that differs.
MUTATIONS = [
    (r"bridgeConfSetI32\(const char\* key, bridge_i32 value\)", "bridgeConfSetI32(const char* key, bridge_i64 value)", "bridgeConfSetI32"),
    (r"bridge_i32 BRIDGE_CALL bridgeConfCommit\(void\)", "void BRIDGE_CALL bridgeConfCommit(void)", "bridgeConfCommit"),
    (r"bridge_bool BRIDGE_CALL bridgeConfGetBool", "bridge_i32 BRIDGE_CALL bridgeConfGetBool", "bridgeConfGetBool"),
    (r"char\* BRIDGE_CALL bridgeConfGetString", "const char* BRIDGE_CALL bridgeConfGetString", "bridgeConfGetString"),
    (r"bridgeLaunchUrl\(const char\* instance, const char\* url\)", "bridgeLaunchUrl(const char* instance)", "bridgeLaunchUrl"),
    (r"bridgeLaunchApp\(const char\* instance, const char\* package\)", "bridgeLaunchApp(const char* package, const char* instance)", "bridgeLaunchApp"),
    (r"bridgeShutdown\(void\)", "bridgeShutdown(bridge_i32 seconds)", "bridgeShutdown"),
    (r"bridgeFreeMemory\(void\* memory\)", "bridgeRelease(void* memory)", "bridgeFreeMemory"),
    (r"bridgeOnAppDisplayed onAppDisplayed, bridgeOnAccountListUpdated onAccountListUpdated", "bridgeOnAccountListUpdated onAccountListUpdated, bridgeOnAppDisplayed onAppDisplayed", "bridgeRegisterCallbacks"),
]


def mutations(text):
    yield from MUTATIONS
    # One more parameter for each callback.
    for name in callback_names(text):
        yield rf"\(BRIDGE_CALL\* {name}\)\((void\)|)", rf"(BRIDGE_CALL* {name})(bridge_i64 more, \1", name


class DriftIsFoundTest(unittest.TestCase):
    def test_in_each_binding(self):
        count = 0
        for pattern, replacement, name in mutations(header_text()):
            changed, hits = re.subn(pattern, replacement, header_text(), count=1)
            self.assertEqual(hits, 1, pattern)
            changed = changed.replace("more, void)", "more)")
            for binding, read in BINDINGS.items():
                with self.subTest(name, binding=binding):
                    lines = differences(read_header(changed), read())
                    self.assertTrue(any(line.startswith(name) for line in lines), lines)
                    count += 1
        self.assertEqual(count, (len(MUTATIONS) + len(callback_names(header_text()))) * len(BINDINGS))

    def test_of_a_single_parameter_in_a_binding(self):
        declarations = read_header(header_text())
        changed = node_text().replace("(const char *instance, bool flag)", "(const char *instance, int32_t flag)")
        self.assertRegex(differences(declarations, read_node(changed))[0], "^bridgePlrShutdown: ")
        changed = csharp_text().replace("bridgePlrShutdown(byte[] instance, byte flag)", "bridgePlrShutdown(byte[] instance, int flag)")
        self.assertRegex(differences(declarations, read_csharp(changed))[0], "^bridgePlrShutdown: ")


if __name__ == "__main__":
    unittest.main()
