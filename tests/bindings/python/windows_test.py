"""The binding's calls of Windows, with functions that record them."""

import ctypes
import functools
import os
import sys
import types
import unittest
from unittest import mock

from qxbridge import _windows

INVALID = ctypes.c_void_p(-1).value
MACHINE = f"Software\\QX-Bridge\\Development-{os.getpid()}"


class Kernel32:
    """Opens return these handles; a negative number is an error."""

    def __init__(self, *opens, content=(), server=0):
        self.opens = list(opens)
        self.content = list(content)  # the result of each read; None: it fails
        self.server = server
        self.calls = []
        self.error = 0

    def CreateFileW(self, *values):
        self.calls.append(("open", *values))
        result = self.opens.pop(0)
        self.error = -result if result < 0 else 0
        return result if result >= 0 else INVALID

    def ReadFile(self, handle, buffer, size, done, _):
        chunk = self.content.pop(0)
        if chunk is None:
            return 0
        assert len(chunk) <= size
        ctypes.memmove(buffer, chunk, len(chunk))
        done._obj.value = len(chunk)
        return 1

    def GetNamedPipeServerProcessId(self, handle, process):
        self.calls.append(("server", handle))
        process._obj.value = self.server
        return int(self.server != 0)

    def CloseHandle(self, handle):
        self.calls.append(("close", handle))
        return 1


class Registry:
    """Functions of advapi32 and a winreg. They record their calls, and return these errors."""

    def __init__(self, create=0, override=0):
        self.errors = {"create": create, "override": override}
        self.values = {}
        self.missing = None  # a key
        self.calls = []
        self.at_exit = []

    def RegCreateKeyExW(self, *values):
        values[7]._obj.value = 7
        self.calls.append(("create", *values[:7], values[8]))
        return self.errors["create"]

    def RegOverridePredefKey(self, root, key):
        self.calls.append(("override", root, key))
        return self.errors["override"]

    def RegDeleteTreeW(self, root, path):
        self.calls.append(("delete", root, path))
        return 0

    def RegCloseKey(self, key):
        self.calls.append(("close", key.value))
        return 0

    def register(self, function, *values):
        self.at_exit.append(functools.partial(function, *values))

    def unregister(self, function):
        self.at_exit = [one for one in self.at_exit if one.func is not function]

    def winreg(self):
        def open_key(*place, access):
            self.calls.append(("open", *place, access))
            if place[1] == self.missing:
                raise FileNotFoundError
            key = mock.MagicMock()  # int() of it is 1
            key.__enter__.return_value = key
            key.__exit__.side_effect = lambda *_: self.calls.append(("closed",))
            return key

        def query(_, name):
            if name not in self.values:
                raise FileNotFoundError
            return self.values[name]

        return types.SimpleNamespace(
            HKEY_LOCAL_MACHINE="HKLM", HKEY_CURRENT_USER="HKCU", KEY_QUERY_VALUE=1, KEY_SET_VALUE=2,
            KEY_WOW64_64KEY=0x100, KEY_ALL_ACCESS=0xF003F, REG_SZ=1, REG_OPTION_VOLATILE=1,
            OpenKey=open_key, QueryValueEx=query,
            SetValueEx=lambda _, *values: self.calls.append(("set", *values)))


class WindowsTest(unittest.TestCase):
    def setUp(self):
        self.clock = 0.0
        for name, value in (("sleep", self.sleep), ("monotonic", lambda: self.clock)):
            self.patch(_windows.time, name, value)

    def patch(self, where, name, value, **options):
        patched = mock.patch.object(where, name, value, **options)
        patched.start()
        self.addCleanup(patched.stop)

    def sleep(self, seconds):
        self.clock += seconds

    def kernel32(self, *opens, **more):
        kernel32 = Kernel32(*opens, **more)
        self.patch(_windows, "_kernel32", lambda: kernel32)
        self.patch(_windows, "_last_error", lambda: kernel32.error)
        return kernel32

    def test_a_file_is_read_whole_and_leaves_others_all_rights(self):
        kernel32 = self.kernel32(5, content=[b"a\r\n", b"b", b""])
        self.assertEqual(_windows.read_file("C:\\ü"), b"a\r\nb")
        self.assertEqual(kernel32.calls, [("open", "C:\\ü", 0x80000000, 7, None, 3, 0, None), ("close", 5)])

    def test_long_paths_are_in_the_form_that_has_no_limit(self):
        name = "\\x" * 123
        for path, opened in (("C:" + name, "\\\\?\\C:" + name), ("C:/x" + name, "\\\\?\\C:\\x" + name),
                             ("\\\\server\\share" + name, "\\\\?\\UNC\\server\\share" + name),
                             ("\\\\?\\C:" + name, "\\\\?\\C:" + name),
                             ("C:" + name[2:] + "x", "C:" + name[2:] + "x")):
            kernel32, asked = self.kernel32(-2), []
            self.patch(_windows.os.path, "isdir", asked.append)
            self.patch(_windows.os.path, "exists", asked.append)
            _windows.read_file(path)
            _windows.is_folder(path)
            _windows.exists(path)
            self.assertEqual((kernel32.calls[0][1], asked), (opened, [opened, opened]))

    def test_a_file_that_is_not_there(self):
        self.kernel32(-2)
        self.assertIsNone(_windows.read_file("C:\\x"))

    def test_a_file_that_is_being_replaced_is_tried_again(self):
        self.kernel32(-5, -32, -33, 5, content=[b""])
        self.assertEqual(_windows.read_file("C:\\x"), b"")
        self.assertAlmostEqual(self.clock, 0.15)

    def test_a_file_that_stays_held_is_given_up(self):
        kernel32 = self.kernel32(*[-32] * 10)
        self.assertIsNone(_windows.read_file("C:\\x"))
        self.assertEqual(len(kernel32.calls), 10)

    def test_a_read_that_fails(self):
        kernel32 = self.kernel32(5, content=[b"a", None])
        self.assertIsNone(_windows.read_file("C:\\x"))
        self.assertEqual(kernel32.calls[-1], ("close", 5))

    def test_a_log_is_opened_as_the_library_does_and_not_made(self):
        kernel32 = self.kernel32(5)
        self.assertEqual(_windows.append_error("C:\\l"), 0)
        self.assertEqual(kernel32.calls, [("open", "C:\\l", 4, 7, None, 3, 0, None), ("close", 5)])

    def test_a_log_that_cannot_be_opened(self):
        self.kernel32(-32)
        self.assertEqual(_windows.append_error("C:\\l"), 32)

    def test_a_file_made_for_a_trial_goes_with_its_handle(self):
        kernel32 = self.kernel32(5)
        self.assertEqual(_windows.create_error("C:\\Logs"), 0)
        (_, path, access, share, _, disposition, flags, _), closed = kernel32.calls
        self.assertTrue(path.startswith(f"C:\\Logs\\qxbridge-{os.getpid()}-"), path)
        self.assertEqual((access, share, disposition, flags), (0x00010004, 7, 1, 0x04000000))
        self.assertEqual(closed, ("close", 5))

    def test_a_folder_in_which_nothing_can_be_created(self):
        self.kernel32(-5)
        self.assertEqual(_windows.create_error("C:\\Logs"), 5)

    def test_who_serves_a_pipe(self):
        kernel32 = self.kernel32(5, server=1234)
        self.assertEqual(_windows.pipe_server("vtr_Helper_bridge_nvo", 10), 1234)
        self.assertEqual(kernel32.calls, [
            ("open", "\\\\.\\pipe\\vtr_Helper_bridge_nvo", 0x80000000, 0, None, 3, 0x00110000, None),
            ("server", 5), ("close", 5)])

    def test_a_pipe_is_waited_for(self):
        self.kernel32(-2, -231, -2, 5, server=1234)
        self.assertEqual(_windows.pipe_server("p", 10), 1234)
        self.assertAlmostEqual(self.clock, 0.03)

    def test_a_pipe_that_does_not_come(self):
        self.kernel32(*[-2] * 200)
        self.assertIsNone(_windows.pipe_server("p", 0.5))
        self.assertAlmostEqual(self.clock, 0.5)

    def test_a_pipe_is_looked_for_once_without_time(self):
        kernel32 = self.kernel32(-2)
        self.assertIsNone(_windows.pipe_server("p", 0))
        self.assertEqual(len(kernel32.calls), 1)

    def test_a_pipe_that_another_user_serves(self):
        kernel32 = self.kernel32(-5)
        self.assertRaises(PermissionError, _windows.pipe_server, "p", 10)
        self.assertEqual(len(kernel32.calls), 1)

    def test_a_pipe_that_cannot_be_opened_for_another_reason(self):
        kernel32 = self.kernel32(-87)
        self.assertIsNone(_windows.pipe_server("p", 10))
        self.assertEqual(len(kernel32.calls), 1)

    def test_a_pipe_whose_server_is_not_known(self):
        kernel32 = self.kernel32(5)
        self.assertIsNone(_windows.pipe_server("p", 10))
        self.assertEqual(kernel32.calls[-1], ("close", 5))

    def test_a_text_of_the_registry(self):
        registry = self.registry()
        registry.values = {"Text": ("C:\\Data\0", 1), "Number": (5, 4), "Expanded": ("%A%", 2)}
        self.assertEqual([_windows.registry_text("SOFTWARE\\X", name)
                          for name in ("Text", "Number", "Expanded", "Missing")],
                         ["C:\\Data", None, None, None])
        self.assertEqual(registry.calls[:2], [("open", "HKLM", "SOFTWARE\\X", 0x101), ("closed",)])
        registry.missing = "SOFTWARE\\Y"
        self.assertIsNone(_windows.registry_text("SOFTWARE\\Y", "Text"))

    def test_a_local_machine_of_the_processs_own(self):
        registry = self.registry()
        _windows.own_local_machine("SOFTWARE\\X", {"A": "1", "B": "ü"})
        self.assertEqual(registry.calls, [
            ("create", "HKCU", MACHINE + "\\SOFTWARE\\X", 0, None, 1, 0xF003F, None, None), ("close", 7),
            ("open", "HKCU", MACHINE + "\\SOFTWARE\\X", 2), ("set", "A", 0, 1, "1"), ("set", "B", 0, 1, "ü"),
            ("closed",), ("open", "HKCU", MACHINE, 0xF003F), ("override", "HKLM", 1), ("closed",)])

    def test_a_local_machine_of_its_own_ends_with_the_interpreter(self):
        registry = self.registry()
        for _ in range(2):
            _windows.own_local_machine("SOFTWARE\\X", {})
        registry.calls.clear()
        self.assertEqual(len(registry.at_exit), 1)
        registry.at_exit[0]()
        self.assertEqual(registry.calls, [("override", "HKLM", None), ("delete", "HKCU", MACHINE)])

    def test_a_key_that_cannot_be_made_leaves_the_local_machine(self):
        registry = self.registry(create=5)
        self.refuses("RegCreateKeyExW failed (Windows error 5)")
        self.assertEqual([one[0] for one in registry.calls], ["create"])

    def test_a_local_machine_that_cannot_be_replaced(self):
        registry = self.registry(override=6)
        self.refuses("RegOverridePredefKey failed (Windows error 6)")
        self.assertEqual(registry.calls[-1], ("closed",))
        self.assertEqual(len(registry.at_exit), 1)

    def refuses(self, message):
        with self.assertRaises(OSError) as caught:
            _windows.own_local_machine("SOFTWARE\\X", {"A": "1"})
        self.assertEqual(str(caught.exception), message)

    def registry(self, **errors):
        registry = Registry(**errors)
        self.patch(sys, "platform", "win32")
        self.patch(_windows, "_advapi32", lambda: registry)
        self.patch(_windows.atexit, "register", registry.register)
        self.patch(_windows.atexit, "unregister", registry.unregister)
        modules = mock.patch.dict(sys.modules, winreg=registry.winreg())
        modules.start()
        self.addCleanup(modules.stop)
        return registry

    def declared(self, load, counts, *names, **options):
        """Loads a library, and checks its arguments and the number of parameters of each function."""
        library = mock.MagicMock()
        self.patch(sys, "platform", "win32")
        self.patch(_windows.ctypes, "WinDLL", mock.MagicMock(return_value=library), create=True)
        self.assertIs(load(), library)
        _windows.ctypes.WinDLL.assert_called_once_with(*names, **options)
        self.assertEqual({name: len(getattr(library, name).argtypes) for name in counts}, counts)
        return library

    def test_the_types_of_what_is_passed(self):
        counts = {"CreateFileW": 7, "ReadFile": 5, "GetNamedPipeServerProcessId": 2, "CloseHandle": 1}
        library = self.declared(_windows._kernel32, counts, "kernel32", use_last_error=True)
        self.assertIs(library.CreateFileW.restype, ctypes.c_void_p)

    def test_the_types_of_what_is_passed_to_the_registry(self):
        counts = {"RegCreateKeyExW": 9, "RegOverridePredefKey": 2, "RegDeleteTreeW": 2, "RegCloseKey": 1}
        self.declared(_windows._advapi32, counts, "advapi32")

    def test_the_last_error_is_the_threads_own(self):
        self.patch(sys, "platform", "win32")
        self.patch(_windows.ctypes, "get_last_error", lambda: 231, create=True)
        self.assertEqual(_windows._last_error(), 231)

    @unittest.skipIf(sys.platform == "win32", "this is Windows")
    def test_other_systems_raise_an_error(self):
        for call in (lambda: _windows.registry_text("k", "v"), _windows._kernel32, _windows._advapi32,
                     lambda: _windows.own_local_machine("k", {})):
            self.assertRaises(OSError, call)

    def test_folders_and_files(self):
        self.assertTrue(_windows.is_folder(os.path.dirname(__file__)))
        self.assertFalse(_windows.is_folder(__file__))
        self.assertTrue(_windows.exists(__file__))
        self.assertFalse(_windows.exists(__file__ + ".x"))
        self.assertEqual(_windows.process_id(), os.getpid())
