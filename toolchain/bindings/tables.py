"""Parses the tables of properties, images and result codes in Source/ and programs/."""

import re
from typing import Dict, List, NamedTuple

# The type names that `bridgectl catalogue` prints.
TYPES = {"I32": "i32", "I64": "i64", "MultiString": "multi-string", "Bool": "bool",
         "String": "string"}

LITERAL = r'"((?:[^"\\]|\\.)*)"'


# The units of numbers by property name. The other units are unknown.
UNITS = {"ram": "MiB", "cpus": "processors", "dpi": "dots per inch", "max_fps": "frames per second",
         "eco_mode_max_fps": "frames per second", "mim.max_fps": "frames per second",
         "fb_width": "pixels", "fb_height": "pixels", "gl_win_height": "pixels", "gl_win_x": "pixels",
         "gl_win_y": "pixels", "adb_port": "TCP port", "status.adb_port": "TCP port"}

# The allowed elements of lists.
ALLOWED = {"abi_list": ["x86", "x64", "arm", "arm64"]}


class Key(NamedTuple):
    scope: str
    name: str
    type: str
    default: str

    @property
    def unit(self) -> str:
        return UNITS.get(self.name, "")

    @property
    def allowed(self) -> List[str]:
        return ALLOWED.get(self.name, [])


class Code(NamedTuple):
    number: int
    name: str
    text: str


def rows_of(table: str, scope: str) -> List[Key]:
    """The rows, sorted by bytes. A second registration of a name replaces the first."""
    pattern = rf"\{{{LITERAL},\s*ConfType::(\w+),\s*{LITERAL},\s*(?:kDumped|kExcluded)\}}"
    rows = re.findall(pattern, table)
    if len(rows) != table.count("ConfType::") or any("\\" in "".join(row) for row in rows):
        raise ValueError(f"a row of the {scope} properties cannot be read")
    keys = {name: Key(scope, name, TYPES[type_], default) for name, type_, default in rows}
    return [keys[name] for name in sorted(keys)]


def keys(catalogue: str) -> List[Key]:
    """Parses ConfCatalogueTable.cpp."""
    found = []
    for scope, variable in (("global", "kGlobalRows"), ("instance", "kInstanceRows")):
        table = re.search(rf"\b{variable}\[\] = \{{(.*?)\n\}};", catalogue, re.S)
        if table is None:
            raise ValueError(f"there is no table {variable}")
        found += rows_of(table[1], scope)
    return found


def images(table: str) -> List[str]:
    """Parses UtlImages.cpp. An instance's name up to the first "_" is the name of an image."""
    rows = re.search(r"\bkImages\[\] = \{(.*?)\n\};", table, re.S)
    if rows is None:
        raise ValueError("there is no table kImages")
    found = re.findall(rf"^    \{{{LITERAL},", rows[1], re.M)
    if len(found) != rows[1].count("{") or not found:
        raise ValueError("a row of kImages cannot be read")
    return found


def meanings(words: str) -> Dict[str, str]:
    return dict(re.findall(rf'case XErrCode::(\w+):\s*return {LITERAL};', words))


def codes(table: str, words: str) -> List[Code]:
    """Parses XerrTable.h and ResultCodes.cpp. Raises KeyError for a code without a description."""
    macro = re.search(r"#define XERR_CODES\(X\)(.*?[^\\])\n", table, re.S)[1]
    texts = meanings(words)
    found = [Code(int(number), f"XERR_{name}", texts[f"XERR_{name}"])
             for number, name in re.findall(r"X\((-?\d+), (\w+)\)", macro)]
    if len(found) != macro.count("X("):
        raise ValueError("a row of XERR_CODES cannot be read")
    return found
