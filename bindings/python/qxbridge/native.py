"""The functions of the DLL, with checked arguments and with failing results turned into exceptions."""

import ctypes
import os
from ctypes import CFUNCTYPE
from typing import Any, Callable, Dict, List

from . import _windows, life
from .errors import BridgeError
from .generated import CALLBACKS, FAILURE, FUNCTIONS, SUCCESS


LIBRARY = "QX-Bridge.dll"


def library_path() -> str:
    """The library beside this module, as in an installed package; else its name, which Windows searches."""
    beside = os.path.join(os.path.dirname(os.path.abspath(__file__)), LIBRARY)
    return beside if _windows.exists(beside) else LIBRARY


def _callback_type(name: str, parameters: Dict[str, Any]) -> Any:
    """A separate type for each callback: CFUNCTYPE returns the same type for equal signatures."""
    plain: Any = CFUNCTYPE(None, *parameters.values())
    members = dict(_flags_=plain._flags_, _argtypes_=plain._argtypes_, _restype_=plain._restype_)
    return type(name, (getattr(ctypes, "_CFuncPtr"),), members)


CALLBACK_TYPES = {name: _callback_type(name, one) for name, one in CALLBACKS.items()}
SIGNATURES = {
    name: (result, {one: CALLBACK_TYPES.get(type_, type_) for one, type_ in parameters.items()})
    for name, (result, parameters) in FUNCTIONS.items()}

# The library keeps pointers to these. Never freed, because events can arrive until the process ends.
_kept_texts: Dict[str, Any] = {}
_kept_callbacks: List[Any] = []


def utf8(text: str, name: str = "text") -> bytes:
    if not isinstance(text, str):
        raise TypeError(f"{name} must be str, not {type(text).__name__}")
    if "\0" in text:
        raise ValueError(f"{name} must not contain NUL")
    return text.encode("utf-8")


def text_of(utf8_bytes: bytes) -> str:
    """A text from the file or from an event's sender, which may not be valid UTF-8."""
    return utf8_bytes.decode("utf-8", errors="replace")


def kept_text(text: str) -> Any:
    if text not in _kept_texts:
        _kept_texts[text] = ctypes.create_string_buffer(utf8(text, "client_id"))
    return _kept_texts[text]


def integer(value: int, bits: int) -> int:
    if not isinstance(value, int) or isinstance(value, bool):
        raise TypeError(f"value must be int, not {type(value).__name__}")
    if not -(1 << bits - 1) <= value < 1 << bits - 1:
        raise OverflowError(f"{value} has more than {bits} bits")
    return value


def boolean(value: bool) -> bool:
    if not isinstance(value, bool):
        raise TypeError(f"value must be bool, not {type(value).__name__}")
    return value


def callback_pointers(receive: Callable[..., None]) -> List[Any]:
    """Functions for the library that call receive(name, *values). They are never freed."""
    def pointer(name: str) -> Any:
        def call(*values: Any) -> None:
            # The bytes are valid only during the call.
            receive(name, *[text_of(one) if isinstance(one, bytes) else one for one in values])

        return CALLBACK_TYPES[name](call)

    pointers = [pointer(name) for name in CALLBACKS]
    _kept_callbacks.append(pointers)
    return pointers


class Calls:
    """Calls the functions of the library when its state allows it."""

    def __init__(self, library: Any) -> None:
        for name, (result, parameters) in SIGNATURES.items():
            function = getattr(library, name)
            function.restype = result
            function.argtypes = list(parameters.values())
        self._library = library
        self.log = ""  # path of the library's log

    def start(self, operation: str, *values: Any) -> None:
        life.current().start(self, lambda: self.check(operation, self._raw(operation, *values)))

    def end(self) -> None:
        if life.current().end(self):
            self._raw("bridgeApiFini")

    def require_ready(self) -> None:
        life.current().require(self)

    def value(self, operation: str, *values: Any) -> Any:
        self.require_ready()
        return self._raw(operation, *values)

    def _raw(self, operation: str, *values: Any) -> Any:
        return getattr(self._library, operation)(*values)

    def check(self, operation: str, code: int, file: str = "") -> None:
        if code != SUCCESS:
            raise BridgeError(operation, code, file, self.log)

    def status(self, operation: str, *values: Any, file: str = "") -> None:
        self.check(operation, self.value(operation, *values), file)

    def text(self, operation: str, *values: Any) -> str:
        address = self.value(operation, *values)
        if address is None:
            raise BridgeError(operation, FAILURE, log=self.log)
        try:
            return text_of(ctypes.string_at(address))
        finally:
            self._library.bridgeFreeMemory(address)
