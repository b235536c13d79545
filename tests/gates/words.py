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
    (r"anew|once more", "again"),
    (r"apart by", "separated by"),
    (r"at the end of which", "after which"),
    (r"beforehand", "in advance"),
    (r"becomes? of", "the result of"),
    (r"dealt with", "handled"),
    (r"for want of", "without"),
    (r"giv(es?|en|ing) back", "returns, frees"),
    (r"goes by", "follows"),
    (r"(is|are|was|were) handed", "receives"),
    (r"hand(s|ed|ing)? on", "passes"),
    (r"has told( so)?", "has reported, has fired"),
    (r"in (its|their) stead", "instead"),
    (r"in vain", "without effect"),
    # "Is no X" is bad; "there is no X", "is no longer" and "is no larger" are not.
    (r"(?!there\b)\w+ (is|are|was|were) no (?!longer|more|such|less|fewer|\w+er\b)\w+", "is not a"),
    (r"(is|are) to (be|have|know)", "must, will"),
    (r"(is|are|was|were|been|be) told(?! apart)", "is reported, is logged, is passed"),
    (r"kept waiting", "blocked"),
    (r"no other than", "only"),
    (r"of (his|ours|theirs)", "his, our, their"),
    (r"on its way", "queued, in progress"),
    (r"owing to", "because of"),
    (r"shall", "must, or the present tense"),
    (r"some(body|one)( else)?", "the process, the thread, the caller"),
    (r"stands? (behind|there|here|between|around|beside)", "follows, is"),
    (r"(there|here|where)(of|in|by|upon)|hitherto|henceforth", "a plain preposition"),
    (r"till", "until"),
    (r"(to|can|cannot) be had", "available"),
    (r"what stands", "the text, the bytes"),
    (r"which is why", "therefore"),
    (r"wish(es)?", "directive, request"),
    (r"with patience", "tolerates"),
    (r"without regard to", "regardless of"),
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
