"""The keys of the configuration: keys.GLOBAL.enable_adb_access, keys.instance("Nougat64").dpi."""

from .generated import GlobalKeys, InstanceKeys
from .key import Key

__all__ = ["GLOBAL", "GlobalKeys", "InstanceKeys", "Key", "instance"]

GLOBAL = GlobalKeys()


def instance(name: str) -> InstanceKeys:
    """The keys of an instance. The functions that use a key check that the instance exists."""
    return InstanceKeys(name)
