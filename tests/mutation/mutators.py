"""The places of a source where a small change gives a different program, and those changes."""

import re
from dataclasses import dataclass

from cpp_tokens import Code

RELATIONS = {"<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
             "==": ["!="], "!=": ["=="]}
LOGIC = {"&&": ["||"], "||": ["&&"]}
SUMS = {"+": ["-"], "-": ["+"], "+=": ["-="], "-=": ["+="]}
STEPS = {"++": ["--"], "--": ["++"]}
BOOLS = {"true": ["false"], "false": ["true"]}
JUMPS = {"break": ["continue", ""], "continue": ["break", ""]}
ASSIGNMENTS = ("=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>=")
CASTS = ("static_cast", "reinterpret_cast")
KEYWORDS = ("return", "if", "else", "for", "while", "do", "switch", "case", "default", "break",
            "continue", "using", "const", "constexpr", "static", "auto", "throw", "goto", "try",
            "catch", "struct", "class", "typename", "template", "delete", "operator")

# Statements for the compiler only.
ATTRIBUTES = ("static_assert", "alignas", "XPRINTF_LIKE", "XTS_REQUIRES")


@dataclass(frozen=True)
class Place:
    """The characters from `start` to `end` and their replacements."""
    operator: str
    start: int
    end: int
    replacements: tuple


def places(text, parts=None):
    """All places, or those in the named classes and functions."""
    code = Code(text)
    ranges = [(0, len(code.tokens) - 1)] if parts is None else code.parts(parts)
    said = attribute_tokens(code)
    found = []
    for first, last in ranges:
        for index in range(first, last + 1):
            if index not in said:
                found += places_at(code, index)
    return sorted(set(found), key=lambda place: (place.start, place.end, place.operator))


def mutated(text, place, replacement):
    return text[:place.start] + replacement + text[place.end:]


def attribute_tokens(code):
    said = set()
    for index, token in enumerate(code.tokens):
        if token.text in ATTRIBUTES and code.is_(index + 1, "("):
            said.update(range(index, code.partner[index + 1] + 1))
    return said


def places_at(code, index):
    for operator, changes in MUTATORS.items():
        replacements = changes(code, index)
        if replacements:
            first, last, texts = replacements
            start, end = code.span(first, last)
            yield Place(operator, start, end, tuple(texts))


def swap_spaced(table):
    def changes(code, index):
        texts = table.get(code.tokens[index].text)
        if texts and code.kind(index) == "sign" and code.is_spaced(index):
            return index, index, texts
        return None
    return changes


def swap_words(table):
    def changes(code, index):
        texts = table.get(code.tokens[index].text)
        return (index, index, texts) if texts else None
    return changes


def negated_condition(code, index):
    if not code.is_(index, "if", "while") or not code.is_(index + 1, "("):
        return None
    first, last = index + 2, code.partner[index + 1] - 1
    declaration = code.find(";", first)
    if declaration is not None:
        first = declaration + 1
    signs = {token.text for at, token in enumerate(code.tokens[first:last + 1], first)
             if code.inner[at] == index + 1}
    # A declaration cannot be negated. For a single comparison, another operator creates its opposites.
    if "=" in signs or (signs & RELATIONS.keys() and not signs & LOGIC.keys()):
        return None
    start, end = code.span(first, last)
    return first, last, [f"!({code.text[start:end]})"]


def other_constant(code, index):
    match = re.fullmatch(r"(0[xX][\da-fA-F']+|[\d']+)([uUlL]*)", code.tokens[index].text)
    if code.kind(index) != "number" or match is None or is_no_value(code, index):
        return None
    is_hex = match[1][:2] in ("0x", "0X")
    value = int(match[1].replace("'", ""), 16 if is_hex else 10)
    values = {value + 1, max(value - 1, 0), 0} - {value}
    shown = (f"0x{one:X}" if is_hex else str(one) for one in sorted(values))
    return index, index, [one + match[2] for one in shown]


def is_no_value(code, index):
    """Whether a number is an array size, a template argument, or the "= 0" of a function."""
    if code.is_(index - 1, "[") and code.is_(index + 1, "]"):
        return code.kind(index - 3) == "name" and not code.is_(index - 3, *KEYWORDS)
    for bracket in (index - 1, index + 1):
        if code.is_(bracket, "<", ">") and not code.is_spaced(bracket):
            return True
    return code.is_(index - 1, "=") and code.is_(index - 2, ")", "const", "noexcept")


def other_result(code, index):
    if not code.is_(index, "return"):
        return None
    end = code.find(";", index)
    values = [token.text for token in code.tokens[index + 1:end]]
    if not values:
        return index, end, [";"]  # continues instead
    if len(values) > 1:
        return None if values == ["{", "}"] else (index, end, ["return {};"])
    if values[0].startswith("XERR_"):
        other = "XERR_FAILURE" if values[0] == "XERR_SUCCESS" else "XERR_SUCCESS"
        return index, end, [f"return {other};"]
    if values[0] in ("true", "false", "nullptr") or code.kind(index + 1) == "number":
        return None
    return index, end, ["return {};"]


def without_statement(code, index):
    if not begins_statement(code, index) or not is_call_or_assignment(code, index):
        return None
    return index, code.find(";", index), [";"]


def begins_statement(code, index):
    inner = code.inner[index]
    if inner is None or not code.holds_statements(inner):
        return False
    before = index - 1
    if code.is_(before, ")"):
        return code.is_(code.partner[before] - 1, "if", "for", "while")
    if code.is_(before, ":"):
        return is_label(code, before)
    return before == inner or code.is_(before, ";", "}", "else", "do")


def is_label(code, colon):
    at = colon - 1
    while code.kind(at) in ("name", "number", "char") or code.is_(at, "::"):
        if code.is_(at, "case", "default"):
            return True
        at -= 1
    return False


def is_call_or_assignment(code, at):
    """Whether a statement calls, assigns, increments or decrements something. A declaration has two names
    in a row instead."""
    while code.is_(at, "*", "++", "--", "::", "("):
        if code.is_(at, "++", "--"):
            return True
        at += 1
    if code.is_(at, *CASTS):
        return True
    while code.kind(at) == "name" and not code.is_(at, *KEYWORDS):
        at += 1
        while code.is_(at, "[", ")"):
            at = code.partner[at] + 1 if code.is_(at, "[") else at + 1
        if not code.is_(at, "::", ".", "->"):
            return code.is_(at, "(", "++", "--", *ASSIGNMENTS)
        at += 1
    return False


MUTATORS = {
    "relation": swap_spaced(RELATIONS),
    "condition": negated_condition,
    "logic": swap_spaced(LOGIC),
    "sum": swap_spaced(SUMS),
    "constant": other_constant,
    "bool": swap_words(BOOLS),
    "return": other_result,
    "statement": without_statement,
    "jump": swap_words(JUMPS),
    "step": swap_words(STEPS),
}
