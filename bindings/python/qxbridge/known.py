"""A copy of the library's configuration, for deciding whether a call would be fatal: the instances, and the
values that were loaded or set."""

import re
import threading
from typing import Callable, Dict, Iterable, Set, Tuple

from . import catalogue
from .conf_file import INSTANCE_PREFIX, entries, split_key
from .errors import BridgeKeyError
from .generated import Property

# At least one of these is not 0 or "" for a loaded instance: each has such a default.
_PROBES = ("dpi", "max_fps", "eco_mode_max_fps", "gl_win_height", "display_name")

# The library's conversion stops at the first other character, and rejects a text only if it then yields 0.
_NUMBER = re.compile(r"[ \t\n\v\f\r]*[+-]?([0-9]+)")


def is_number(text: str) -> bool:
    """Whether the library can read a stored number; the empty text is 0."""
    match = _NUMBER.match(text)
    if match is None:
        return text == ""
    return int(match[1]) != 0 or match.end() == len(text)


def is_readable(type_: str, text: str) -> bool:
    if type_ == "bool":
        return text in ("0", "1")
    return is_number(text) if type_ == "i32" else True


def _instances_in(content: bytes) -> Set[str]:
    """All instances, also after a line at which a load stops."""
    keys = [split_key(one[0]) for one in entries(content) if one is not None]
    return {one.instance for one in keys if one.scope == "instance" and one.has_property}


def _values_in(content: bytes) -> Dict[str, str]:
    """The values up to the line at which a load stops."""
    values: Dict[str, str] = {}
    for one in entries(content):
        if one is None or not catalogue.is_declared(one[0]):
            break
        values[one[0]] = one[1]
    return values


class Known:
    """Loads the file whenever the library does. Its methods may be called from any thread."""

    def __init__(self, read: Callable[[], bytes]) -> None:
        self._read = read  # returns the file's content; empty when there is none
        self._lock = threading.RLock()
        self._instances: Set[str] = set()  # in the file when it was last read
        self._listed: Set[str] = set()  # possibly in a listing
        self._added: Set[str] = set()  # by this process
        self._ready: Set[str] = set()  # loaded by the library
        self._committed: Dict[str, str] = {}
        self._staged: Dict[str, str] = {}

    def start(self) -> None:
        """Called at the initialisation, which resets the global properties to their defaults."""
        with self._lock:
            self._committed = {key: value for key, value in self._committed.items()
                               if key.startswith(INSTANCE_PREFIX)}
            self.load()

    def load(self) -> None:
        """Called when the library loads the file. A value that the file lacks is kept."""
        content = self._read()
        with self._lock:
            self._instances = _instances_in(content)
            self._listed = set(self._instances)
            self._committed.update(_values_in(content))

    def commit(self, call: Callable[[], None], always: bool) -> None:
        """Makes a commit by call(), in which the library loads the file unless there is nothing to write."""
        content = self._read()
        call()
        with self._lock:
            self._instances = _instances_in(content)
            if not always and not self._staged:
                return
            self._listed |= self._instances
            self._committed.update(_values_in(content))
            self._committed.update(self._staged)
            self._staged.clear()

    def add_instance(self, name: str) -> None:
        if not name or set(name) & set(".=\n"):
            raise BridgeKeyError(f'"{name}" cannot be the name of an instance', name)
        catalogue.require_image(name)
        with self._lock:
            self._added.add(name)

    def require_listable(self) -> None:
        """Called before a listing, which ends the process for an instance of an unknown image or a number
        that cannot be read."""
        with self._lock:
            names = sorted(self._listed)
        for name in names:
            catalogue.require_image(name)
            for number in ("ram", "cpus"):
                key = f"{INSTANCE_PREFIX}{name}.{number}"
                self.require_value(key, catalogue.find(key)[1])

    def find(self, key: str, type_: str) -> Tuple[str, Property]:
        """The key's instance, empty for a global key, and its property. Raises BridgeKeyError for a key that
        a call must not use."""
        parts, found = catalogue.find(key)
        catalogue.require_type(key, found, type_)
        if parts.scope == "instance":
            self._require_instance(parts.instance)
        return parts.instance, found

    def note_set(self, key: str, instance: str, found: Property, value: str) -> None:
        """Called after a set, which stages a different value and creates the instance."""
        with self._lock:
            if instance:
                self._listed.add(instance)
            if self._committed.get(key, found.default) == value:
                self._staged.pop(key, None)
            else:
                self._staged[key] = value

    def require_value(self, key: str, found: Property) -> None:
        """Called before a get: the library ends the process for a value that it cannot read."""
        with self._lock:
            committed = self._committed.get(key, found.default)
            value = self._staged.get(key, committed)
        if found.type == "bool" and value == found.default == "":
            raise BridgeKeyError(f'"{key}" has no value and no default', key)
        if not is_readable(found.type, value):
            raise BridgeKeyError(f'"{key}" has a value that cannot be read: "{value}"', key)

    def require_loaded(self, instance: str, has_value: Callable[[str, str], bool]) -> None:
        """Called before a get of an instance's key: the library must have loaded the instance.

        has_value(key, type) reads a value that was checked, so it never ends the process.
        """
        if instance in self._ready:
            return
        for name in _PROBES:
            key = f"{INSTANCE_PREFIX}{instance}.{name}"
            found = catalogue.find(key)[1]
            if self._can_be_read(key, found) and has_value(key, found.type):
                self._ready.add(instance)
                return
        raise BridgeKeyError(f'instance "{instance}" is not loaded yet: commit, '
                             "or wait for instanceListUpdated", instance)

    def _can_be_read(self, key: str, found: Property) -> bool:
        with self._lock:
            value = self._staged.get(key, self._committed.get(key, found.default))
        return is_readable(found.type, value)

    def _require_instance(self, name: str) -> None:
        if self._is_known(name):
            return
        content = self._read()
        with self._lock:
            self._instances = _instances_in(content)
        if self._is_known(name):
            return
        suggestion = catalogue.nearest(name, self._names())
        raise BridgeKeyError(f'there is no instance "{name}"' + catalogue.hint(suggestion),
                             name, suggestion)

    def _is_known(self, name: str) -> bool:
        with self._lock:
            return name in self._instances or name in self._added

    def _names(self) -> Iterable[str]:
        with self._lock:
            return self._instances | self._added
