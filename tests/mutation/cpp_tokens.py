"""A minimal C++ lexer for changing code that clang-format has formatted: tokens without comments and
directives, matching brackets, and the braces that contain statements."""

import re
from dataclasses import dataclass

TOKEN = re.compile(
    r"""(?P<directive>^[ \t]*\#(?:[^\n\\]|\\.)*)
    |(?P<space>[ \t\r\n]|\\\n)
    |(?P<comment>//[^\n]*|/\*.*?\*/)
    |(?P<string>(?:u8|[LuU])?(?:R"(?P<mark>[^(\n]*)\(.*?\)(?P=mark)"|"(?:[^"\\\n]|\\.)*"))
    |(?P<char>(?:u8|[LuU])?'(?:[^'\\\n]|\\.)*')
    |(?P<number>\.?\d(?:[eEpP][+-]|'?[\w.])*)
    |(?P<name>[A-Za-z_]\w*)
    |(?P<sign><<=|>>=|\.\.\.|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|::|[-+*/%&|^~!<>=?:;,.()\[\]{}])
    """, re.X | re.S | re.M)

CLOSING = {"(": ")", "[": "]", "{": "}"}
NO_CODE = ("space", "comment", "directive")


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


def all_tokens(text):
    at = 0
    while at < len(text):
        match = TOKEN.match(text, at)
        if match is None:
            raise ValueError(f"no token at {text[at:at + 20]!r}")
        at = match.end()
        yield Token(match.lastgroup if match["mark"] is None else "string",
                    match[0], match.start(), match.end())


def compiled_tokens(text):
    """The code without #else and #elif branches, which are for other compilers."""
    inside = []  # for each open #if: whether its #else has been seen
    for token in all_tokens(text):
        if token.kind == "directive":
            word = token.text.strip().lstrip("# \t")
            if word.startswith("if"):
                inside.append(False)
            elif word.startswith("el"):
                inside[-1] = True
            elif word.startswith("endif"):
                inside.pop()
        elif token.kind not in NO_CODE and not any(inside):
            yield token


class Code:
    """The tokens of a text by index. `partner` maps a bracket to the matching one. `inner` maps a token to
    the innermost bracket around it, or to None."""

    def __init__(self, text):
        self.text = text
        self.tokens = list(compiled_tokens(text))
        self.partner = {}
        self.inner = []
        open_ = []
        for index, token in enumerate(self.tokens):
            if token.text in CLOSING.values() and token.kind == "sign":
                opening = open_.pop()
                if CLOSING[self.tokens[opening].text] != token.text:
                    raise ValueError(f"brackets do not match in line {self.line(index)}")
                self.partner[opening], self.partner[index] = index, opening
            self.inner.append(open_[-1] if open_ else None)
            if token.text in CLOSING and token.kind == "sign":
                open_.append(index)
        if open_:
            raise ValueError("a bracket is never closed")

    def line(self, index):
        return self.text.count("\n", 0, self.tokens[index].start) + 1

    def is_(self, index, *texts):
        """Whether the token is one of these. No token matches beyond the ends."""
        return 0 <= index < len(self.tokens) and self.tokens[index].text in texts

    def kind(self, index):
        return self.tokens[index].kind if 0 <= index < len(self.tokens) else ""

    def is_spaced(self, index):
        """Binary operators have spaces on both sides, brackets of templates have none."""
        token = self.tokens[index]
        return self.text[token.start - 1].isspace() and self.text[token.end:token.end + 1].isspace()

    def span(self, first, last):
        return self.tokens[first].start, self.tokens[last].end

    def find(self, wanted, start):
        """The next such token in the same bracket as `start`."""
        inner = self.inner[start]
        for index in range(start, len(self.tokens)):
            if self.inner[index] == inner and self.is_(index, wanted):
                return index
            if inner is not None and index == self.partner[inner]:
                return None
        return None

    def holds_statements(self, brace):
        """Whether a "{" opens a function body or a block, not a class, namespace, enumeration or list."""
        if not self.is_(brace, "{"):
            return False
        if self.is_(brace - 1, ")", "]", "else", "do", "try", "const", "noexcept", "override"):
            return True
        return self.is_(brace - 1, ";", "{", "}", ":") and self.inner[brace] is not None and \
            self.holds_statements(self.inner[brace])

    def parts(self, names):
        """The token ranges of the classes and function bodies with these names, which must exist."""
        ranges = []
        for name in names:
            found = [self._body(index) for index, token in enumerate(self.tokens)
                     if token.text == name and self.kind(index) == "name"]
            found = [one for one in found if one is not None]
            if not found:
                raise ValueError(f"no class or function {name}")
            ranges += found
        return ranges

    def _body(self, index):
        """The range from the name of a definition to the end of its body; None for a use of the name."""
        at = index + 1
        if self.is_(index - 1, "class", "struct"):
            return (at, self.partner[at]) if self.is_(at, "{") else None
        if not self.is_(at, "("):
            return None
        while self.is_(at, "(", "const", "noexcept") or self.kind(at) == "name":
            at = self.partner[at] + 1 if self.is_(at, "(") else at + 1
        return (index + 1, self.partner[at]) if self.is_(at, "{") else None
