"""Properties: read, set, commit."""

from typing import Any, Iterable, List, Optional, TypeVar, Union, cast

from .background import Background
from .key import Key
from .known import Known
from .native import Calls, boolean, integer, utf8
from .product import Places

T = TypeVar("T")


def _joined(value: Union[str, Iterable[str]]) -> str:
    if isinstance(value, str):
        return value
    elements = list(value)
    for element in elements:
        if "," in element:
            raise ValueError('an element must not contain ","')
    return ",".join(elements)


class Configuration:
    """Access by typed key (get, set), or by full key and type: "vtr.<name>",
    "vtr.instance.<instance>.<name>".

    Setters stage a change; commit() writes it to the file. BridgeKeyError is raised for a key or instance
    that does not exist, for another type than the key's, and before a read of a value with which the
    library would end the process.
    """

    def __init__(self, calls: Calls, known: Known, background: Background) -> None:
        self._calls = calls
        self._known = known
        self._background = background
        self._places = Places("", "", "", "")

    def use(self, places: Places) -> None:
        """Called at the initialisation."""
        self._places = places

    def get(self, key: Key[T]) -> T:
        readers = {"bool": self.get_bool, "i32": self.get_i32, "i64": self.get_i64,
                   "string": self.get_string, "multi-string": self.get_multi_string}
        return cast(T, cast(Any, readers[key.type])(key.text))

    def set(self, key: Key[T], value: T) -> None:
        writers = {"bool": self.set_bool, "i32": self.set_i32, "i64": self.set_i64,
                   "string": self.set_string, "multi-string": self.set_multi_string}
        cast(Any, writers[key.type])(key.text, value)

    def get_bool(self, key: str) -> bool:
        return cast(bool, self._calls.value("bridgeConfGetBool", self._to_read(key, "bool")))

    def get_i32(self, key: str) -> int:
        return cast(int, self._calls.value("bridgeConfGetI32", self._to_read(key, "i32")))

    def get_i64(self, key: str) -> int:
        """The catalogue has no key of this type: BridgeKeyError for each."""
        return cast(int, self._calls.value("bridgeConfGetI64", self._to_read(key, "i64")))

    def get_string(self, key: str) -> str:
        return self._calls.text("bridgeConfGetString", self._to_read(key, "string"))

    def get_multi_string(self, key: str) -> List[str]:
        stored = self._calls.text("bridgeConfGetMultiString", self._to_read(key, "multi-string"))
        return stored.split(",") if stored else []

    def set_bool(self, key: str, value: bool) -> None:
        self._set("bridgeConfSetBool", key, "bool", boolean(value), "1" if value else "0")

    def set_i32(self, key: str, value: int) -> None:
        self._set("bridgeConfSetI32", key, "i32", integer(value, 32), str(value))

    def set_i64(self, key: str, value: int) -> None:
        """The catalogue has no key of this type: BridgeKeyError for each."""
        self._set("bridgeConfSetI64", key, "i64", integer(value, 64), str(value))

    def set_string(self, key: str, value: str) -> None:
        self._set("bridgeConfSetString", key, "string", utf8(value, "value"), value)

    def set_multi_string(self, key: str, value: Union[str, Iterable[str]]) -> None:
        """Accepts the elements, or their stored form: joined by ","."""
        stored = _joined(value)
        self._set("bridgeConfSetMultiString", key, "multi-string", utf8(stored, "value"), stored)

    def add_instance(self, name: str) -> None:
        """Makes the keys of a new instance settable."""
        utf8(name, "name")
        self._known.add_instance(name)

    def commit(self) -> None:
        self._known.commit(
            lambda: self._calls.status("bridgeConfCommit", file=self._places.conf_file), always=False)

    def commit_to_file(self, path: str) -> None:
        """Writes the whole configuration with the staged changes to another file.

        Afterwards nothing is staged: a later commit() does not write these changes to the product's file.
        """
        name = utf8(path, "path")
        self._known.commit(
            lambda: self._calls.status("bridgeConfCommitToFile", name, file=path), always=True)

    async def commit_async(self, timeout: Optional[float] = None) -> None:
        """commit() on a thread. Raises TimeoutError after `timeout` seconds; the commit goes on."""
        self._calls.require_ready()
        await self._background.run(self.commit, timeout)

    async def commit_to_file_async(self, path: str, timeout: Optional[float] = None) -> None:
        """commit_to_file() on a thread, like commit_async()."""
        self._calls.require_ready()
        await self._background.run(lambda: self.commit_to_file(path), timeout)

    def _to_read(self, key: str, type_: str) -> bytes:
        """The key's bytes. Raises BridgeKeyError when its value cannot be read."""
        name = utf8(key, "key")
        self._calls.require_ready()
        instance, found = self._known.find(key, type_)
        if instance:
            self._known.require_loaded(instance, self._has_value)
        self._known.require_value(key, found)
        return name

    def _has_value(self, key: str, type_: str) -> bool:
        if type_ == "i32":
            return bool(self._calls.value("bridgeConfGetI32", utf8(key)))
        return self._calls.text("bridgeConfGetString", utf8(key)) != ""

    def _set(self, operation: str, key: str, type_: str, value: Any, stored: str) -> None:
        name = utf8(key, "key")
        self._calls.require_ready()
        instance, found = self._known.find(key, type_)
        self._calls.status(operation, name, value)
        self._known.note_set(key, instance, found, stored)
