#!/usr/bin/env python3
"""words.py TREE: comments, docstrings and documents avoid the phrases of TABLE. words.txt lists the
places where such a phrase is right."""

import os
import pathlib
import re
import sys
from typing import NamedTuple

sys.dont_write_bytecode = True  # leaves no files in the tree
import prose

# Phrase, as a regular expression in which a space matches line breaks too -> what to write instead.
TABLE = (
    (r"for want of", "without"),
    (r"has told( so)?", "has reported, has fired"),
    (r"in (its|their) stead", "instead"),
    (r"in vain", "without effect"),
    (r"owing to", "because of"),
    (r"shall", "must, or the present tense"),
    (r"till", "until"),
    (r"(there|here|where)(of|in|by|upon)|hitherto|henceforth", "a plain preposition"),
)
EXCEPTIONS = "tests/gates/words.txt"
NOT_OURS = {".git", "build", "corpus", "node_modules", "__pycache__"}


def search(table):
    """One expression for the whole table. A row's phrase is the group "row" with its number."""
    return re.compile("|".join(rf"\b(?P<row{row}>{phrase})\b".replace(" ", r"\s+")
                               for row, (phrase, _) in enumerate(table)), re.I)


class Hit(NamedTuple):
    name: str
    line: int
    phrase: str
    instead: str


def hits_in(name, text):
    text = prose.of(name, text) or ""
    for match in search(TABLE).finditer(text):
        phrase = " ".join(re.sub(r"[^\w',.:;-]", " ", match[0]).split())
        yield Hit(name, text.count("\n", 0, match.start()) + 1, phrase,
                  TABLE[int(match.lastgroup[len("row"):])][1])


def files(tree):
    for folder, folders, names in os.walk(tree):
        folders[:] = sorted(one for one in folders if one not in NOT_OURS)
        for name in sorted(names):
            path = pathlib.Path(folder, name)
            if prose.lexer_of(name):
                yield path.relative_to(tree).as_posix(), path.read_text("utf-8")


def exceptions(text):
    """Lines "FILE: PHRASE: REASON", as pairs of file and phrase."""
    rows = [line.split(": ", 2) for line in text.splitlines() if line and not line.startswith("#")]
    bad = [row for row in rows if len(row) != 3]
    if bad:
        raise ValueError(f"not \"FILE: PHRASE: REASON\": {bad[0]}")
    return {(name, phrase.lower()) for name, phrase, _ in rows}


def faults(tree):
    allowed = exceptions((tree / EXCEPTIONS).read_text("utf-8"))
    hits = [hit for name, text in files(tree) for hit in hits_in(name, text)]
    lines = [f'{hit.name}:{hit.line}: "{hit.phrase}"; write: {hit.instead}' for hit in hits
             if (hit.name, hit.phrase.lower()) not in allowed]
    unused = allowed - {(hit.name, hit.phrase.lower()) for hit in hits}
    return lines + [f'{EXCEPTIONS}: {name} does not contain "{phrase}"'
                    for name, phrase in sorted(unused)]


def main(tree):
    tree = pathlib.Path(tree)
    lines = faults(tree)
    for line in lines or [f"{sum(1 for _ in files(tree))} files"]:
        print(line)
    return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
