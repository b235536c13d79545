"""Parses bridge.h: functions, callbacks, result codes and the version, with their comments."""

import re
from typing import Dict, List, NamedTuple

RESULTS = {"char*": "returned"}
TYPES = {"const char*": "text", "bridge_bool": "bool", "bridge_i32": "i32", "bridge_i64": "i64",
         "double": "double", "void*": "memory", "void": "void"}


class Parameter(NamedTuple):
    type: str
    name: str


class Signature(NamedTuple):
    """The types are
        text      a string that the host passes or that a callback receives
        returned  a string that the host frees with bridgeFreeMemory
        memory, bool, i32, i64, double, void, and the names of the callbacks
    """

    result: str
    parameters: List[Parameter]


Signatures = Dict[str, Signature]


def without_comments(text: str) -> str:
    return re.sub(r"/\*.*?\*/|//[^\n]*", " ", text, flags=re.S)


def parameters_of(text: str, words: Dict[str, str]) -> List[Parameter]:
    """The parameters of a list such as "T a, U b". Raises KeyError for a type that `words` lacks."""
    text = " ".join(text.split())
    if text in ("", "void"):
        return []
    parameters = []
    for one in text.split(","):
        match = re.fullmatch(r"\s*(.*?)\s*(\w+)\s*", one)
        parameters.append(Parameter(words[match[1].replace(" *", "*")], match[2]))
    return parameters


def callback_names(header: str) -> List[str]:
    return re.findall(r"typedef void\(BRIDGE_CALL\* (\w+)\)", header)


def callbacks(header: str) -> Signatures:
    found = {}
    pattern = r"typedef void\(BRIDGE_CALL\* (\w+)\)\((.*?)\);"
    for name, list_ in re.findall(pattern, without_comments(header), re.S):
        found[name] = Signature("void", parameters_of(list_, TYPES))
    return found


def functions(header: str) -> Signatures:
    words = {**TYPES, **{name: name for name in callback_names(header)}}
    found = {}
    pattern = r"BRIDGE_API ([\w ]+?\*?) ?BRIDGE_CALL\s+(\w+)\((.*?)\);"
    for result, name, list_ in re.findall(pattern, without_comments(header), re.S):
        found[name] = Signature({**TYPES, **RESULTS}[result], parameters_of(list_, words))
    return found


def declarations(header: str) -> int:
    """The number of callbacks and functions. Each contains the calling convention once."""
    return sum(line.count("BRIDGE_CALL") for line in without_comments(header).splitlines()
               if not line.startswith("#"))


def section(header: str, title: str) -> str:
    """The text from `@name title` to the end of the group."""
    return re.search(rf"@name {title}\n(.*?)/\*\*@\}}\*/", header, re.S)[1]


def result_codes(header: str) -> Dict[str, int]:
    codes = dict(re.findall(r"^#define BRIDGE_([A-Z_]+) \(?(-?\d+)\)?(?: |$)", header, re.M))
    return {name: int(code) for name, code in codes.items() if not name.startswith("VERSION")}


def version(header: str) -> str:
    return re.search(r'^#define BRIDGE_VERSION_TEXT "(.*)"$', header, re.M)[1]


def comment_block(header: str, name: str) -> str:
    """The comment of a callback or function as one line."""
    block = re.search(rf"/\*\*((?:(?!\*/).)*)\*/\s*(?:typedef|BRIDGE_API)[^;(]*(?:\(BRIDGE_CALL\* )?"
                      rf"\b{name}\b", header, re.S)[1]
    lines = [line.strip(" *") for line in block.splitlines()]
    return " ".join(" ".join(lines).split())


def comment_of(header: str, name: str) -> str:
    """The comment without its tags."""
    return comment_block(header, name).split("@")[0].strip()


def parameter_comments(header: str, name: str) -> Dict[str, str]:
    return dict(re.findall(r"@param (\w+) ([^@]*?)(?= @|$)", comment_block(header, name)))
