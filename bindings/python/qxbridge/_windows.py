"""The only module that calls Windows: the registry, files as the library opens them, and the server of
a pipe."""

import atexit
import ctypes
import ntpath
import os
import sys
import time
from ctypes import byref, c_uint32, c_void_p, c_wchar_p
from typing import Any, Dict, List, Optional

GENERIC_READ = 0x80000000
FILE_APPEND_DATA = 0x0004
DELETE = 0x00010000
SHARE_ALL = 0x0007  # read, write, delete
CREATE_NEW, OPEN_EXISTING = 1, 3
DELETE_ON_CLOSE = 0x04000000
IDENTIFY_ONLY = 0x00110000  # the server may identify this process, but not impersonate it
INVALID_HANDLE = c_void_p(-1).value

FILE_NOT_FOUND, ACCESS_DENIED, SHARING_VIOLATION, LOCK_VIOLATION, PIPE_BUSY = 2, 5, 32, 33, 231

_CHUNK = 1 << 16
_LONG_PATH = 248
_HELD_TRIES, _HELD_SECONDS = 10, 0.05  # retries while another program replaces a file
_PIPE_SECONDS = 0.01


def registry_text(key: str, name: str) -> Optional[str]:
    """A text in the 64-bit view of HKEY_LOCAL_MACHINE; None when it is missing or not a text."""
    if sys.platform != "win32":
        raise OSError("there is no registry on this system")
    import winreg
    try:
        access = winreg.KEY_QUERY_VALUE | winreg.KEY_WOW64_64KEY
        with winreg.OpenKey(winreg.HKEY_LOCAL_MACHINE, key, access=access) as opened:
            value, type_ = winreg.QueryValueEx(opened, name)
    except OSError:
        return None
    return value.rstrip("\0") if type_ == winreg.REG_SZ and isinstance(value, str) else None


def own_local_machine(key: str, texts: Dict[str, str]) -> None:
    """Gives this process its own HKEY_LOCAL_MACHINE, which contains only these texts under a key. They are
    in a volatile key, which is deleted when the interpreter exits, at the latest when the user logs off."""
    if sys.platform != "win32":
        raise OSError("there is no registry on this system")
    import winreg
    user, machine = winreg.HKEY_CURRENT_USER, f"Software\\QX-Bridge\\Development-{os.getpid()}"
    atexit.unregister(_end_own_local_machine)
    atexit.register(_end_own_local_machine, machine)
    _create_volatile_key(f"{machine}\\{key}")
    with winreg.OpenKey(user, f"{machine}\\{key}", access=winreg.KEY_SET_VALUE) as opened:
        for name, text in texts.items():
            winreg.SetValueEx(opened, name, 0, winreg.REG_SZ, text)
    with winreg.OpenKey(user, machine, access=winreg.KEY_ALL_ACCESS) as opened:
        # Windows keeps its own handle.
        error = _advapi32().RegOverridePredefKey(winreg.HKEY_LOCAL_MACHINE, int(opened))
    _require_success("RegOverridePredefKey", error)


def is_folder(path: str) -> bool:
    return os.path.isdir(_any_length(path))


def exists(path: str) -> bool:
    return os.path.exists(_any_length(path))


def read_file(path: str) -> Optional[bytes]:
    """The content; None when the file does not exist or cannot be read."""
    for _ in range(_HELD_TRIES):
        handle = _open(path, GENERIC_READ, OPEN_EXISTING)
        if handle is not None:
            return _read_whole(handle)
        if _last_error() not in (ACCESS_DENIED, SHARING_VIOLATION, LOCK_VIOLATION):
            return None
        time.sleep(_HELD_SECONDS)
    return None


def append_error(path: str) -> int:
    """The Windows error of opening an existing file as a log; 0 for none."""
    return _open_error(path, FILE_APPEND_DATA, OPEN_EXISTING, 0)


def create_error(folder: str) -> int:
    """The Windows error of creating a file in a folder; 0 for none. The file is deleted again."""
    path = f"{folder}\\qxbridge-{os.getpid()}-{time.monotonic_ns()}.tmp"
    return _open_error(path, FILE_APPEND_DATA | DELETE, CREATE_NEW, DELETE_ON_CLOSE)


def process_id() -> int:
    return os.getpid()


def pipe_server(name: str, timeout: float) -> Optional[int]:
    """Waits for the process that serves a pipe; None after the timeout. PermissionError when another
    user serves it."""
    path, end = "\\\\.\\pipe\\" + name, time.monotonic() + timeout
    while True:
        handle = _open(path, GENERIC_READ, OPEN_EXISTING, IDENTIFY_ONLY, share=0)
        if handle is not None:
            return _server_of(handle)
        error = _last_error()
        if error == ACCESS_DENIED:
            raise PermissionError(f"this user must not open {path}")
        if error not in (FILE_NOT_FOUND, PIPE_BUSY) or time.monotonic() >= end:
            return None
        time.sleep(_PIPE_SECONDS)


def _kernel32() -> Any:
    """Functions of kernel32 with their argument types."""
    if sys.platform != "win32":
        raise OSError("the library needs Windows")
    library = ctypes.WinDLL("kernel32", use_last_error=True)
    library.CreateFileW.restype = c_void_p
    library.CreateFileW.argtypes = [c_wchar_p, c_uint32, c_uint32, c_void_p, c_uint32, c_uint32, c_void_p]
    library.ReadFile.argtypes = [c_void_p, c_void_p, c_uint32, c_void_p, c_void_p]
    library.GetNamedPipeServerProcessId.argtypes = [c_void_p, c_void_p]
    library.CloseHandle.argtypes = [c_void_p]
    return library


def _advapi32() -> Any:
    if sys.platform != "win32":
        raise OSError("there is no registry on this system")
    library = ctypes.WinDLL("advapi32")
    library.RegCreateKeyExW.argtypes = [c_void_p, c_wchar_p, c_uint32, c_wchar_p, c_uint32, c_uint32,
                                        c_void_p, c_void_p, c_void_p]
    library.RegOverridePredefKey.argtypes = [c_void_p, c_void_p]
    library.RegDeleteTreeW.argtypes = [c_void_p, c_wchar_p]
    library.RegCloseKey.argtypes = [c_void_p]
    return library


def _require_success(operation: str, error: int) -> None:
    if error != 0:
        raise OSError(f"{operation} failed (Windows error {error})")


def _create_volatile_key(path: str) -> None:
    """Creates missing parents too. winreg cannot create volatile keys."""
    if sys.platform != "win32":
        raise OSError("there is no registry on this system")
    import winreg
    key, advapi32 = c_void_p(), _advapi32()
    error = advapi32.RegCreateKeyExW(winreg.HKEY_CURRENT_USER, path, 0, None, winreg.REG_OPTION_VOLATILE,
                                     winreg.KEY_ALL_ACCESS, None, byref(key), None)
    _require_success("RegCreateKeyExW", error)
    advapi32.RegCloseKey(key)


def _end_own_local_machine(machine: str) -> None:
    if sys.platform != "win32":
        return
    import winreg
    advapi32 = _advapi32()
    advapi32.RegOverridePredefKey(winreg.HKEY_LOCAL_MACHINE, None)
    advapi32.RegDeleteTreeW(winreg.HKEY_CURRENT_USER, machine)


def _last_error() -> int:
    if sys.platform == "win32":
        return ctypes.get_last_error()
    return 0


def _any_length(path: str) -> str:
    """The path; a long one in the form without a length limit, as the library uses it."""
    full = ntpath.abspath(path)
    if len(full) < _LONG_PATH or full.startswith(("\\\\?\\", "\\\\.\\")):
        return path
    return "\\\\?\\UNC" + full[1:] if full.startswith("\\\\") else "\\\\?\\" + full


def _open(path: str, access: int, disposition: int, flags: int = 0,
          share: int = SHARE_ALL) -> Optional[int]:
    handle = _kernel32().CreateFileW(_any_length(path), access, share, None, disposition, flags, None)
    return None if handle == INVALID_HANDLE else handle


def _open_error(path: str, access: int, disposition: int, flags: int) -> int:
    handle = _open(path, access, disposition, flags)
    if handle is None:
        return _last_error()
    _kernel32().CloseHandle(handle)
    return 0


def _read_whole(handle: int) -> Optional[bytes]:
    buffer, done = ctypes.create_string_buffer(_CHUNK), c_uint32()
    parts: List[bytes] = []
    kernel32 = _kernel32()
    try:
        while kernel32.ReadFile(handle, buffer, _CHUNK, byref(done), None):
            if done.value == 0:
                return b"".join(parts)
            parts.append(buffer.raw[:done.value])
        return None
    finally:
        kernel32.CloseHandle(handle)


def _server_of(pipe: int) -> Optional[int]:
    process, kernel32 = c_uint32(), _kernel32()
    try:
        return process.value if kernel32.GetNamedPipeServerProcessId(pipe, byref(process)) else None
    finally:
        kernel32.CloseHandle(pipe)
