#!/usr/bin/env python3
"""The bindings declare what bridge.h declares: names, parameters and their order, types, results and
constants. bridge.h is the only truth; each binding is read from its source. The second half of this
test changes the header in memory and sees to it that each change is found in each binding."""

import ctypes
import pathlib
import re
import sys
import unittest

sys.dont_write_bytecode = True
TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "bindings" / "python"))

# Every reader below answers {name: (result, [(type, parameter), ...])} in these words:
#     text      a text that the host passes, or that a callback gets
#     returned  a text that the host gives back to bridgeFreeMemory
#     memory, bool, i32, i64, double, void, and the name of a callback


def header_text():
    return (TREE / "include/bridge/bridge.h").read_text("utf-8")


def node_text(name="native.js"):
    return (TREE / "bindings/node" / name).read_text("utf-8")


def csharp_text():
    return (TREE / "bindings/csharp/QXBridge.cs").read_text("utf-8")


def without_comments(text):
    return re.sub(r"/\*.*?\*/|//[^\n]*", " ", text, flags=re.S)


def parameters_of(text, words):
    """The parameters of a list like "T a, U b". Types that words lacks fail the test."""
    text = " ".join(text.split())
    if text in ("", "void"):
        return []
    parameters = []
    for one in text.split(","):
        match = re.fullmatch(r"\s*(.*?)\s*(\w+)\s*", one)
        parameters.append((words[match[1].replace(" *", "*")], match[2]))
    return parameters


def callback_names(header):
    return re.findall(r"typedef void\(BRIDGE_CALL\* (\w+)\)", header)


def read_header(header):
    text = without_comments(header)
    words = {"const char*": "text", "char*": "returned", "bridge_bool": "bool", "bridge_i32": "i32",
             "bridge_i64": "i64", "double": "double", "void*": "memory", "void": "void"}
    words.update({name: name for name in callback_names(text)})
    found = {}
    for name, list_ in re.findall(r"typedef void\(BRIDGE_CALL\* (\w+)\)\((.*?)\);", text, re.S):
        found[name] = ("void", parameters_of(list_, words))
    pattern = r"BRIDGE_API ([\w ]+?\*?) ?BRIDGE_CALL\s+(\w+)\((.*?)\);"
    for result, name, list_ in re.findall(pattern, text, re.S):
        found[name] = (words[result], parameters_of(list_, words))
    return found


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
        # An address is a text whose memory the host keeps, or what bridgeFreeMemory takes.
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
    import qxbridge
    return read_python(qxbridge._CALLBACKS, qxbridge._CALLBACK_TYPES, qxbridge._FUNCTIONS)


BINDINGS = {
    "Node": lambda: read_node(node_text()),
    "C#": lambda: read_csharp(csharp_text()),
    "Python": python_binding,
}


def result_codes(header):
    codes = dict(re.findall(r"^#define BRIDGE_([A-Z_]+) \(?(-?\d+)\)?(?: |$)", header, re.M))
    return {name: int(code) for name, code in codes.items() if not name.startswith("VERSION")}


def differences(header, binding):
    """What of a binding is not as the header has it, one line each."""
    lines = [f"{name} is missing" for name in header.keys() - binding.keys()]
    lines += [f"{name} does not exist" for name in binding.keys() - header.keys()]
    for name in header.keys() & binding.keys():
        if header[name] != binding[name]:
            lines.append(f"{name}: the header has {header[name]}, the binding {binding[name]}")
    return sorted(lines)


class SignaturesTest(unittest.TestCase):
    def test_the_header_is_read_whole(self):
        found = read_header(header_text())
        self.assertEqual(len(callback_names(header_text())), 9)
        self.assertEqual(len(found), 28 + 9)
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
        pairs = re.findall(r"(\w+): (-?\d+)", re.search(r"RESULT = .*\n", node_text("index.js"))[0])
        self.assertEqual({name: int(code) for name, code in pairs}, codes)
        pairs = re.findall(r"readonly ([A-Z_]+): (-?\d+);", node_text("index.d.ts"))
        self.assertEqual({name: int(code) for name, code in pairs}, codes)
        pairs = re.findall(r"public const int (\w+) = (-?\d+);", csharp_text())
        self.assertEqual({name: int(code) for name, code in pairs},
                         {name.title().replace("_", ""): code for name, code in codes.items()})

    def test_the_version_of_the_package(self):
        version = ".".join(re.findall(r"#define BRIDGE_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)", header_text()))
        self.assertIn(f'"version": "{version}"', node_text("package.json"))

    def test_the_types_of_nodes_events(self):
        types = {"text": "string", "i32": "number", "double": "number", "bool": "boolean"}
        text = without_comments(node_text("index.d.ts"))
        events = dict(re.findall(r"(bridge\w+): '(\w+)'", node_text("index.js")))
        declared = dict(re.findall(r"^    (\w+): (\w+);$", re.search(r"interface BridgeEvents \{(.*?)\n\}", text, re.S)[1], re.M))
        header = read_header(header_text())
        self.assertEqual(list(events), callback_names(header_text()))
        self.assertEqual(list(declared), list(events.values()))

        def members(interface):
            base, body = re.search(rf"interface {interface} (?:extends (\w+) )?\{{(.*?)\}}", text, re.S).groups()
            found = dict(re.findall(r"(\w+): (\w+);", body))
            return {**(members(base) if base else {}), **found}

        for callback, event in events.items():
            expected = {one: types[type_] for type_, one in header[callback][1]}
            self.assertEqual(members(declared[event]), expected, event)

    def test_the_python_callbacks_are_in_the_headers_order(self):
        import qxbridge
        names = [re.sub(r"^bridge(On)?", "", name) for name in callback_names(header_text())]
        snake = [re.sub(r"(?<!^)([A-Z])", r"_\1", name).lower() for name in names]
        self.assertEqual(list(qxbridge.Callbacks._fields), snake)
        self.assertEqual(list(qxbridge._CALLBACKS), callback_names(header_text()))


# Changes of the header that a binding would have to follow: what, by what, and which name differs.
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


def mutations(header):
    yield from MUTATIONS
    # Each callback: one parameter more.
    for name in callback_names(header):
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
        self.assertEqual(count, (len(MUTATIONS) + 9) * len(BINDINGS))

    def test_of_a_single_parameter_in_a_binding(self):
        header = read_header(header_text())
        changed = node_text().replace("(const char *instance, bool flag)", "(const char *instance, int32_t flag)")
        self.assertRegex(differences(header, read_node(changed))[0], "^bridgePlrShutdown: ")
        changed = csharp_text().replace("bridgePlrShutdown(byte[] instance, byte flag)", "bridgePlrShutdown(byte[] instance, int flag)")
        self.assertRegex(differences(header, read_csharp(changed))[0], "^bridgePlrShutdown: ")


if __name__ == "__main__":
    unittest.main()
