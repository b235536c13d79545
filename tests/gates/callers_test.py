#!/usr/bin/env python3
"""The gate callers reports every missing call."""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # leaves no files in the tree
import callers

FILES = {
    "include/bridge/bridge.h": """
        BRIDGE_API bridge_i32 BRIDGE_CALL bridgeOpen(const char* name);
        BRIDGE_API void BRIDGE_CALL bridgeClose(void);
        """,
    "include/bridge/bridge.hpp": "inline void both() { bridgeOpen(nullptr); bridgeClose(); }",
    "bindings/node/bridge.js": "call.status('bridgeOpen', name);",
    "bindings/node/native.js": "functions.bridgeClose();",
    "bindings/node/bridge.generated.js": "'int32_t bridgeOpen(const char *name)'",
    "bindings/csharp/Session.cs": 'Require("bridgeOpen", Native.bridgeOpen(name)); Native.bridgeClose();',
    "bindings/python/qxbridge/bridge.py": 'calls.status("bridgeOpen", name)',
    "bindings/python/qxbridge/native.py": 'calls.value("bridgeClose")',
    "bindings/python/qxbridge/generated.py": '"bridgeOpen": (c_int32, dict(name=c_char_p))',
    "tests/bridge/OpenTest.cpp": "EXPECT_EQ(bridgeOpen(nullptr), 22);",
    "tests/hosts/plain_host.c": "bridgeClose();",
}


class CallersTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="callers.")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        for name, text in FILES.items():
            self.write(name, text)

    def write(self, name, text):
        (self.root / name).parent.mkdir(parents=True, exist_ok=True)
        (self.root / name).write_text(text, encoding="utf-8")

    def expect(self, status, *lines):
        with contextlib.redirect_stdout(io.StringIO()) as output:
            self.assertEqual(callers.main(self.root), status)
        self.assertEqual(output.getvalue().splitlines(), list(lines))

    def test_all_calls_exist(self):
        self.expect(0, "5 callers of every function")

    def test_each_missing_call(self):
        for name, place, function in (
                ("include/bridge/bridge.hpp", "bridge.hpp", "bridgeClose"),
                ("bindings/node/bridge.js", "the Node binding", "bridgeOpen"),
                ("bindings/node/native.js", "the Node binding", "bridgeClose"),
                ("bindings/csharp/Session.cs", "the C# binding", "bridgeClose"),
                ("bindings/python/qxbridge/bridge.py", "the Python binding", "bridgeOpen"),
                ("bindings/python/qxbridge/native.py", "the Python binding", "bridgeClose"),
                ("tests/bridge/OpenTest.cpp", "a test", "bridgeOpen"),
                ("tests/hosts/plain_host.c", "a test", "bridgeClose")):
            with self.subTest(name):
                self.write(name, FILES[name].replace(function, "bridgeOther"))
                self.expect(1, f"{place} does not call {function}")
                self.write(name, FILES[name])

    def test_a_comment_and_a_longer_name_are_not_calls(self):
        self.write("tests/bridge/OpenTest.cpp", "// bridgeOpen\n/* bridgeOpen */ bridgeOpenAgain();")
        self.expect(1, "a test does not call bridgeOpen")

    def test_a_header_that_declares_nothing(self):
        self.write("include/bridge/bridge.h", "")
        self.expect(1, "bridge.h declares nothing")


if __name__ == "__main__":
    unittest.main()
