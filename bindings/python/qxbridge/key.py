"""A key of the configuration with the type of its values. keys.GLOBAL and keys.instance(name) have all keys."""

from dataclasses import dataclass
from typing import Generic, Tuple, TypeVar

T = TypeVar("T")


@dataclass(frozen=True)
class Key(Generic[T]):
    text: str  # the full key
    type: str  # "bool", "i32", "string" or "multi-string"
    default: str  # in its stored form; empty when there is none
    unit: str = ""  # of a number; empty when it is not known
    allowed: Tuple[str, ...] = ()  # elements of a list; empty when any is allowed
