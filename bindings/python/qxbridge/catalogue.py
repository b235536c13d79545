"""The catalogue of properties, and suggestions for unknown ones."""

from typing import Dict, Iterable, Tuple

from .conf_file import GLOBAL_PREFIX, INSTANCE_PREFIX, KeyParts, split_key
from .errors import BridgeKeyError
from .generated import IMAGES, KEYS, Property

_PROPERTIES: Dict[Tuple[str, str], Property] = {(one.scope, one.name): one for one in KEYS}
_ARTICLES = {"i32": "an", "i64": "an"}

# Names of at least this length may differ in more letters.
_LONG_NAME = 8


def distance(one: str, other: str) -> int:
    """The Levenshtein distance: the number of letters to insert, remove or replace."""
    row = list(range(len(other) + 1))
    for i, letter in enumerate(one, 1):
        above, row = row, [i]
        for j, wanted in enumerate(other, 1):
            row.append(min(above[j] + 1, row[-1] + 1, above[j - 1] + (letter != wanted)))
    return row[-1]


def nearest(name: str, names: Iterable[str]) -> str:
    """The nearest name, the first of several; empty when none is near."""
    limit = 3 if len(name) >= _LONG_NAME else 2
    near = [(distance(name, one), one) for one in sorted(names)]
    near = [one for one in near if one[0] <= limit]
    return min(near)[1] if near else ""


def hint(suggestion: str) -> str:
    return f'; did you mean "{suggestion}"?' if suggestion else ""


def _suggestion(key: str, parts: KeyParts) -> str:
    """The full key of the nearest property in the key's scope."""
    if parts.scope == "":
        return nearest(key, [GLOBAL_PREFIX + name for scope, name in _PROPERTIES if scope == "global"])
    near = nearest(parts.name, [name for scope, name in _PROPERTIES if scope == parts.scope])
    if not near:
        return ""
    return GLOBAL_PREFIX + near if parts.scope == "global" else f"{INSTANCE_PREFIX}{parts.instance}.{near}"


def find(key: str) -> Tuple[KeyParts, Property]:
    """A key's parts and its property. Raises BridgeKeyError for an unknown key."""
    parts = split_key(key)
    found = _PROPERTIES.get((parts.scope, parts.name))
    if found is None:
        suggestion = _suggestion(key, parts)
        raise BridgeKeyError(f'there is no key "{key}"' + hint(suggestion), key, suggestion)
    return parts, found


def is_declared(key: str) -> bool:
    parts = split_key(key)
    return (parts.scope, parts.name) in _PROPERTIES


def with_article(type_: str) -> str:
    return f"{_ARTICLES.get(type_, 'a')} {type_}"


def require_type(key: str, found: Property, type_: str) -> None:
    if found.type != type_:
        raise BridgeKeyError(f'"{key}" is {with_article(found.type)}, not {with_article(type_)}', key)


def require_image(instance: str) -> None:
    """The library ends the process when it lists an instance of an unknown image."""
    image = instance.partition("_")[0]
    if image not in IMAGES:
        raise BridgeKeyError(f'"{image}" is not an image; there are {", ".join(IMAGES)}', instance)
