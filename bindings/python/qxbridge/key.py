"""A key of the configuration with the type of its values. The keys there are: keys.GLOBAL and
keys.instance(name)."""

from dataclasses import dataclass
from typing import Generic, Tuple, TypeVar

T = TypeVar("T")


@dataclass(frozen=True)
class Key(Generic[T]):
    text: str  # the full key
    type: str  # "bool", "i32", "string" or "multi-string"
    default: str  # as the file has it; may be empty
    unit: str = ""  # what a number counts; empty where it is not known
    allowed: Tuple[str, ...] = ()  # what an element of a list can be; empty: anything
