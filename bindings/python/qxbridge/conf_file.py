"""Reads the text of a configuration file as the library does: lines key="value", without comments, blank
lines or escapes."""

from typing import Iterator, NamedTuple, Optional, Tuple

# The longest line that can be read, without its line feed.
LINE_SIZE = 4096

INSTANCE_PREFIX = "vtr.instance."
GLOBAL_PREFIX = "vtr."


class KeyParts(NamedTuple):
    scope: str  # "global", "instance" or ""
    instance: str
    name: str  # of the property; the whole key when it names none

    @property
    def has_property(self) -> bool:
        return not self.name.startswith(GLOBAL_PREFIX)


def split_key(key: str) -> KeyParts:
    """The library's grammar: the instance ends at the next "."."""
    if key.startswith(INSTANCE_PREFIX):
        instance, dot, name = key[len(INSTANCE_PREFIX):].partition(".")
        return KeyParts("instance", instance, name if dot else key)
    if key.startswith(GLOBAL_PREFIX):
        return KeyParts("global", "", key[len(GLOBAL_PREFIX):])
    return KeyParts("", "", key)


def _entry(line: bytes) -> Optional[Tuple[str, str]]:
    """Key and value; None for a line at which a load stops."""
    key, equals, rest = line.partition(b"=")
    if not equals or not rest or len(line) > LINE_SIZE:
        return None
    # Any two characters may enclose the value. A NUL ends it.
    value = rest[1:-1].partition(b"\0")[0]
    return key.decode("utf-8", "replace"), value.decode("utf-8", "replace")


def entries(content: bytes) -> Iterator[Optional[Tuple[str, str]]]:
    """Each line's key and value, None for a line that cannot be read."""
    lines = content.split(b"\n")
    if not lines[-1]:
        lines.pop()
    for line in lines:
        yield _entry(line)
