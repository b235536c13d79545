"""QX-Bridge.dll for Python: configuration, instances, apps, programs and events.

    with Bridge(r"C:\\path\\to\\bin\\QX-Bridge.dll") as bridge:
        bridge.init("Helper")
        print(bridge.instances())

bridge.h has the conventions. A configuration key that does not exist, or one of another type than
the function's, ends the process: that is the library's way.
"""

import atexit
import ctypes
import json
import threading
from ctypes import CFUNCTYPE
from typing import Any, Callable, Dict, Iterable, List, Optional, Union

from qxbridge_generated import *
from qxbridge_generated import CALLBACKS, FAILURE, FUNCTIONS, RECORDS, SUCCESS, Callbacks

CLIENTS = ("Launcher", "Installer", "LogCollector", "Helper", "Uninstaller")


def _callback_type(name: str, parameters: Dict[str, Any]) -> Any:
    """A type of its own for each: CFUNCTYPE gives equal signatures one type."""
    plain = CFUNCTYPE(None, *parameters.values())
    members = dict(_flags_=plain._flags_, _argtypes_=plain._argtypes_, _restype_=plain._restype_)
    return type(name, (ctypes._CFuncPtr,), members)


_CALLBACK_TYPES = {name: _callback_type(name, one) for name, one in CALLBACKS.items()}
_FUNCTIONS = {
    name: (result, {one: _CALLBACK_TYPES.get(type_, type_) for one, type_ in parameters.items()})
    for name, (result, parameters) in FUNCTIONS.items()}


class BridgeError(Exception):
    """A function of the library answered with a code other than 0, or without its text."""

    def __init__(self, operation: str, code: int) -> None:
        super().__init__(f"{operation} failed with {code}; the log has the cause")
        self.operation = operation
        self.code = code


class _Life:
    """The library's life in this process: it starts once, and one Bridge has it."""

    def __init__(self) -> None:
        self._lock = threading.Lock()
        self._owner: Any = None
        self._ended = False

    def start(self, owner: Any, start: Callable[[], None]) -> None:
        """Calls start() and remembers the owner, unless that raises."""
        with self._lock:
            if self._ended:
                raise RuntimeError("the library has ended: it starts once per process")
            if self._owner not in (None, owner):
                raise RuntimeError("another Bridge has started the library")
            start()
            self._owner = owner

    def end(self, owner: Any) -> bool:
        """Whether there is something to stop: the first time, for the owner."""
        with self._lock:
            if self._owner is not owner:
                return False
            if getattr(_this_thread, "is_event_thread", False):
                raise RuntimeError("fini() must not be called inside a callback")
            self._owner, self._ended = None, True
            return True

    def require(self, owner: Any) -> None:
        """Before its start, and after its end, the library would end the process."""
        if self._owner is not owner:
            raise RuntimeError("the library has ended" if self._ended
                               else "the library is not started: call init() first")


_life = _Life()
_this_thread = threading.local()

# What the library keeps pointers to. Never freed: events can come until the process ends.
_kept_texts: Dict[str, Any] = {}
_kept_callbacks: List[Any] = []


def _utf8(text: str, name: str = "text") -> bytes:
    if not isinstance(text, str):
        raise TypeError(f"{name} must be str, not {type(text).__name__}")
    if "\0" in text:
        raise ValueError(f"{name} must not contain NUL")
    return text.encode("utf-8")


def _text(utf8: bytes) -> str:
    """What the file or an event's sender wrote is passed on as it is: it need not be UTF-8."""
    return utf8.decode("utf-8", errors="replace")


def _kept_text(text: str) -> Any:
    if text not in _kept_texts:
        _kept_texts[text] = ctypes.create_string_buffer(_utf8(text, "client_id"))
    return _kept_texts[text]


def _integer(value: int, bits: int) -> int:
    if not isinstance(value, int) or isinstance(value, bool):
        raise TypeError(f"value must be int, not {type(value).__name__}")
    if not -(1 << bits - 1) <= value < 1 << bits - 1:
        raise OverflowError(f"{value} has more than {bits} bits")
    return value


def _boolean(value: bool) -> bool:
    if not isinstance(value, bool):
        raise TypeError(f"value must be bool, not {type(value).__name__}")
    return value


def _function_pointer(name: str, function: Optional[Callable[..., Any]]) -> Any:
    if function is None:
        return _CALLBACK_TYPES[name](0)

    def call(*values: Any) -> None:
        _this_thread.is_event_thread = True
        # The bytes live as long as the call.
        plain = [_text(one) if isinstance(one, bytes) else one for one in values]
        if name in RECORDS:
            function(RECORDS[name](*plain))
        else:
            function(*plain)

    return _CALLBACK_TYPES[name](call)


class _Calls:
    """The functions of the library, with what they answer turned into values and errors."""

    def __init__(self, library: Any) -> None:
        for name, (result, parameters) in _FUNCTIONS.items():
            function = getattr(library, name)
            function.restype = result
            function.argtypes = list(parameters.values())
        self._library = library

    def start(self, operation: str, *values: Any) -> None:
        def call() -> None:
            code = self._raw(operation, *values)
            if code != SUCCESS:
                raise BridgeError(operation, code)

        _life.start(self, call)

    def end(self) -> None:
        if _life.end(self):
            self._raw("bridgeApiFini")

    def require_ready(self) -> None:
        _life.require(self)

    def value(self, operation: str, *values: Any) -> Any:
        self.require_ready()
        return self._raw(operation, *values)

    def _raw(self, operation: str, *values: Any) -> Any:
        return getattr(self._library, operation)(*values)

    def status(self, operation: str, *values: Any) -> None:
        code = self.value(operation, *values)
        if code != SUCCESS:
            raise BridgeError(operation, code)

    def text(self, operation: str, *values: Any) -> str:
        address = self.value(operation, *values)
        if address is None:
            raise BridgeError(operation, FAILURE)
        try:
            return _text(ctypes.string_at(address))
        finally:
            self._library.bridgeFreeMemory(address)


class Configuration:
    """Typed access by full key: "vtr.<name>" or "vtr.instance.<instance>.<name>".

    Setters stage a change; the file has it after commit().
    """

    def __init__(self, calls: _Calls) -> None:
        self._calls = calls

    def get_bool(self, key: str) -> bool:
        return self._calls.value("bridgeConfGetBool", _utf8(key, "key"))

    def get_i32(self, key: str) -> int:
        return self._calls.value("bridgeConfGetI32", _utf8(key, "key"))

    def get_i64(self, key: str) -> int:
        return self._calls.value("bridgeConfGetI64", _utf8(key, "key"))

    def get_string(self, key: str) -> str:
        return self._calls.text("bridgeConfGetString", _utf8(key, "key"))

    def get_multi_string(self, key: str) -> List[str]:
        stored = self._calls.text("bridgeConfGetMultiString", _utf8(key, "key"))
        return stored.split(",") if stored else []

    def set_bool(self, key: str, value: bool) -> None:
        self._calls.status("bridgeConfSetBool", _utf8(key, "key"), _boolean(value))

    def set_i32(self, key: str, value: int) -> None:
        self._calls.status("bridgeConfSetI32", _utf8(key, "key"), _integer(value, 32))

    def set_i64(self, key: str, value: int) -> None:
        self._calls.status("bridgeConfSetI64", _utf8(key, "key"), _integer(value, 64))

    def set_string(self, key: str, value: str) -> None:
        self._calls.status("bridgeConfSetString", _utf8(key, "key"), _utf8(value, "value"))

    def set_multi_string(self, key: str, value: Union[str, Iterable[str]]) -> None:
        """Takes the elements, or their stored form: joined by ","."""
        if not isinstance(value, str):
            value = list(value)
            for element in value:
                if "," in element:
                    raise ValueError('an element must not contain ","')
            value = ",".join(value)
        self._calls.status("bridgeConfSetMultiString", _utf8(key, "key"), _utf8(value, "value"))

    def commit(self) -> None:
        self._calls.status("bridgeConfCommit")

    def commit_to_file(self, path: str) -> None:
        """Writes the whole configuration with the staged changes into another file.

        Afterwards nothing is staged: a later commit() does not bring these changes to the product's
        file.
        """
        self._calls.status("bridgeConfCommitToFile", _utf8(path, "path"))


class Bridge:
    """The library; one per process can be started. After init() every method may be called from any thread,
    except fini(), during which no other call may run."""

    def __init__(self, path: str = "QX-Bridge.dll") -> None:
        """Loads the library; an absolute path also finds the Qt DLLs beside it."""
        self._calls = _Calls(ctypes.CDLL(path))
        self.conf = Configuration(self._calls)

    def __enter__(self) -> "Bridge":
        return self

    def __exit__(self, *_: Any) -> None:
        self.fini()

    def init(self, client_id: str, *, no_conf_file: bool = False,
             log_file: Optional[str] = None) -> None:
        """Starts the library: 22 for a client id not in CLIENTS; -1 for a version mismatch, or a
        configuration file that is missing or malformed. RuntimeError while another Bridge has it
        started, and after its end."""
        client = _kept_text(client_id)
        operation, more = "bridgeApiInit", ()
        if no_conf_file or log_file is not None:
            log = None if log_file is None else _utf8(log_file, "log_file")
            operation, more = "bridgeApiInitEx", (_boolean(no_conf_file), 0, log)
        self._calls.start(operation, client, *more)
        # The event thread must not call into an interpreter that is gone.
        atexit.unregister(self.fini)
        atexit.register(self.fini)

    def fini(self) -> None:
        """Stops the library, once and for all, and waits for a callback that runs. Inside a
        callback it stops nothing and raises RuntimeError."""
        self._calls.end()
        atexit.unregister(self.fini)

    def register(self, callbacks: Callbacks) -> None:
        """Starts the event server, the first time, and replaces all functions."""
        self._calls.require_ready()
        functions = callbacks
        if functions.apk_install_completed is None and functions.instance_list_updated is not None:
            # The library calls the function for the instance list only with the one for APK files.
            functions = functions._replace(apk_install_completed=lambda *_: None)
        pointers = [_function_pointer(name, function)
                    for name, function in zip(CALLBACKS, functions)]
        _kept_callbacks.append(pointers)
        self._calls.value("bridgeRegisterCallbacks", *pointers)

    def instances(self) -> List[Dict[str, Any]]:
        """The instances, with the members that bridge.h names."""
        return json.loads(self._calls.text("bridgeConfGetInstances"))

    def apps(self, instance: str) -> List[Dict[str, Any]]:
        """The apps of an instance, with the members that bridge.h names."""
        return json.loads(self._calls.text("bridgeGetInstalledApps", _utf8(instance, "instance")))

    def launch_app(self, instance: str, package: str) -> None:
        self._calls.status("bridgeLaunchApp", _utf8(instance), _utf8(package))

    def launch_app_store(self, instance: str, store: str, package: str) -> None:
        self._calls.status("bridgeLaunchAppStore", _utf8(instance), _utf8(store), _utf8(package))

    def launch_url(self, instance: str, url: str) -> None:
        self._calls.status("bridgeLaunchUrl", _utf8(instance), _utf8(url))

    def install_apk(self, instance: str, apk_file_path: str) -> None:
        self._calls.status("bridgeInstallApk", _utf8(instance), _utf8(apk_file_path))

    def uninstall_app(self, instance: str, package: str) -> None:
        self._calls.status("bridgeUninstallApp", _utf8(instance), _utf8(package))

    def install_image(self, image_name: str) -> None:
        self._calls.status("bridgeInstallImage", _utf8(image_name))

    def create_fresh_instance(self, image_name: str, cpu: int, ram: int, graphic_engine: str,
                              graphic_renderer: str, device_profile: str) -> None:
        """ram in MiB"""
        self._calls.status("bridgeCreateFreshInstance", _utf8(image_name), b"%d" % cpu, b"%d" % ram,
                           _utf8(graphic_engine), _utf8(graphic_renderer), _utf8(device_profile))

    def shutdown_player(self, instance: str, flag: bool = False) -> None:
        self._calls.status("bridgePlrShutdown", _utf8(instance), _boolean(flag))

    def shutdown(self) -> None:
        """Asks the multi-instance manager and every player to shut down."""
        self._calls.value("bridgeShutdown")
