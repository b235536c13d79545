"""The fixtures of the Python binding's tests: the stand-in of the library, and a Windows with its files in a
temporary folder."""

import asyncio
import ctypes
import pathlib
import sys
import tempfile
import threading
import unittest
from unittest import mock

import qxbridge
from qxbridge import _windows, life

TREE = pathlib.Path(__file__).resolve().parents[3]
HOOK = ctypes.CFUNCTYPE(None, ctypes.c_char_p)
PROCESS = 4711
MOST_TEXTS = 6  # parameters of an event
WINDOWS = ("registry_text", "own_local_machine", "is_folder", "exists", "read_file", "append_error",
           "create_error", "process_id", "pipe_server")
SLOTS = {name: slot for slot, name in enumerate(qxbridge.Callbacks._fields, 1)}


class Fake:
    """The stand-in of the library."""

    def __init__(self, path):
        self.path = path
        self.library = ctypes.CDLL(path)
        self.library.fakeCalls.restype = ctypes.c_char_p
        self.library.fakeClient.restype = ctypes.c_char_p
        self.library.fakeValue.argtypes = [ctypes.c_char_p, ctypes.c_char_p]
        self.library.fakeOnCall.argtypes = [ctypes.c_void_p]
        self.library.fakeEvent.argtypes = [ctypes.c_int, ctypes.POINTER(ctypes.c_char_p), ctypes.c_int,
                                           ctypes.c_double, ctypes.c_int]
        self._hook = None

    def reset(self):
        self.on_call(None)
        self.library.fakeReset()
        self.library.fakeAnswer(0)
        self.library.fakeForgetValues()

    def taken(self):
        """The calls since it was last called."""
        lines = self.library.fakeCalls().decode().splitlines()
        self.library.fakeReset()
        return lines

    def answer(self, code):
        self.library.fakeAnswer(code)

    def value(self, name, text):
        """Sets the result of reads of a key, or of a listing by its function's name."""
        self.library.fakeValue(name.encode(), text.encode())

    def on_call(self, function):
        """Calls function(line) inside each call, on its thread. The function may change the result."""
        self._hook = function and HOOK(lambda line: function(line.decode()))
        self.library.fakeOnCall(ctypes.cast(self._hook, ctypes.c_void_p) if function else None)

    def event(self, name, *texts, number=0, progress=0.0, flag=False):
        """Sends an event, and returns after its callback."""
        utf8 = [one.encode() for one in texts] + [b""] * (MOST_TEXTS - len(texts))
        self.library.fakeEvent(SLOTS[name], (ctypes.c_char_p * MOST_TEXTS)(*utf8), number, progress, flag)


class FakeWindows:
    """Replaces qxbridge._windows. "C:\\x" is the file C/x in a temporary folder."""

    def __init__(self, root):
        self.root = pathlib.Path(root)
        self.registry = {"UserDefinedDir": "C:\\Data", "InstallDir": "C:\\Programs\\",
                         "Version": qxbridge.generated.VERSION}
        self.server = PROCESS  # the process that serves the pipe, or None
        self.pipes = []  # with the time limit of the wait
        self.held = set()  # paths that another program has open without sharing
        self.closed = set()  # folders without the right to create files
        self.made = []  # folders in which a file was created as a test

    def path(self, text):
        return self.root / text.replace(":", "").replace("\\", "/")

    def registry_text(self, key, name):
        assert key == "SOFTWARE\\Vantrel_nvo"
        return self.registry.get(name)

    def own_local_machine(self, key, texts):
        assert key == "SOFTWARE\\Vantrel_nvo"
        self.registry = dict(texts)

    def is_folder(self, path):
        return self.path(path).is_dir()

    def exists(self, path):
        return self.path(path).exists()

    def read_file(self, path):
        return self.path(path).read_bytes() if self.path(path).is_file() else None

    def append_error(self, path):
        if self.is_folder(path):
            return 5
        return 32 if path in self.held else 0

    def create_error(self, folder):
        self.made.append(folder)
        return 5 if folder in self.closed else 0

    def process_id(self):
        return PROCESS

    def pipe_server(self, name, timeout):
        self.pipes.append((name, timeout))
        return self.server


def load(path):
    global fake
    fake = Fake(path)


fake = None


def run(coroutine):
    return asyncio.run(asyncio.wait_for(coroutine, 60))


def bad(*_):
    """A function of a host that raises."""
    raise RuntimeError("the host's own")


class Case(unittest.TestCase):
    """A bridge, as if in a new process."""

    maxDiff = None

    def setUp(self):
        fake.reset()
        folder = tempfile.TemporaryDirectory(prefix="qxbridge.")
        self.addCleanup(folder.cleanup)
        self.windows = FakeWindows(folder.name)
        for name in WINDOWS:
            self.patch(_windows, name, getattr(self.windows, name))
        self.windows.path("C:\\Data\\Logs").mkdir(parents=True)
        self.write()
        self.bridge = self.first()
        self.addCleanup(self.end)

    def patch(self, where, name, value):
        patched = mock.patch.object(where, name, value)
        patched.start()
        self.addCleanup(patched.stop)

    def first(self):
        self.patch(life, "_current", life.Life())
        return qxbridge.Bridge(fake.path)

    def end(self):
        self.bridge.fini()
        self.assertEqual(fake.library.fakeLiveTexts(), 0)

    def write(self, *lines, path="C:\\Data\\vantrel.conf"):
        """The configuration file."""
        self.windows.path(path).write_text("".join(one + "\n" for one in lines), "utf-8")

    def start(self, *lines, **options):
        """init() with this configuration file."""
        if lines:
            self.write(*lines)
        self.bridge.init(options.pop("client", "Helper"), **options)
        fake.taken()

    def listen(self, *lines):
        self.start(*lines)
        self.bridge.listen()
        fake.taken()

    def fails(self, operation, code, call, *values):
        with self.assertRaises(qxbridge.BridgeError) as caught:
            call(*values)
        self.assertEqual((caught.exception.operation, caught.exception.code), (operation, code))
        return caught.exception

    def refused(self, type_, message, call, *values):
        """The call raises this type with exactly this message."""
        with self.assertRaises(type_) as caught:
            call(*values)
        self.assertEqual(str(caught.exception), message)
        return caught.exception

    def key_error(self, message, call, *values):
        """The call raises a key error with this message, and does not reach the library."""
        fake.taken()
        error = self.refused(qxbridge.BridgeKeyError, message, call, *values)
        self.assertEqual(fake.taken(), [])
        return error

    def unraised(self):
        """A list that receives the messages of exceptions that callbacks raise."""
        raised = []
        self.patch(sys, "unraisablehook", lambda one: raised.append(str(one.exc_value)))
        return raised

    def in_thread(self, call):
        """Starts call(), and returns a function that waits for its result."""
        results = []
        thread = threading.Thread(target=lambda: results.append(call()), daemon=True)
        thread.start()

        def result():
            thread.join(30)
            self.assertEqual(len(results), 1, "the thread has no result")
            return results[0]

        return result


class AsyncCase(Case, unittest.IsolatedAsyncioTestCase):
    """A case whose tests may be coroutines."""
