"""The prose in a file: comments, docstrings and the paragraphs of a document."""

import io
import re
import tokenize

# Stands for every character that is not prose. No pattern matches across it.
BLANK = "\0"

COMMENT = r"(?P<prose>//[^\n]*|/\*.*?\*/)"
STRING = r'"(?:\\.|[^"\\\n])*"'
CHARACTERS = r"'(?:\\.|[^'\\\n])*'"

C_LIKE = re.compile(rf"""{COMMENT} | \b\d(?:'?\w)* | R"(?P<mark>[^(\n]*)\(.*?\)(?P=mark)"
                         | {STRING} | {CHARACTERS}""", re.S | re.X)
CSHARP = re.compile(rf'{COMMENT} | @"(?:""|[^"])*" | {STRING} | {CHARACTERS}', re.S | re.X)
# A slash after one of these signs begins a regular expression.
SCRIPT = re.compile(rf"""{COMMENT} | `(?:\\.|[^`\\])*` | {STRING} | {CHARACTERS}
                         | (?<=[(,=:\[!&|?{{}};])\s*/(?:\\.|\[(?:\\.|[^\]\\\n])*\]|[^/\\\n\[])+/""",
                    re.S | re.X)
SHELL = re.compile(r"""(?:^|(?<=\s))(?P<prose>\#[^\n]*) | \\.
                       | <<-?\s*(?P<quote>['"]?)(?P<end>\w+)(?P=quote)[^\n]*\n.*?^\s*(?P=end)$
                       | "(?:\\.|[^"\\])*" | '[^']*'""", re.S | re.M | re.X)
CMAKE = re.compile(r'(?P<prose>\#[^\n]*) | "(?:\\.|[^"\\])*" | \[\[.*?\]\]', re.S | re.X)

DOCUMENT, PYTHON = "document", "python"

KINDS = {C_LIKE: ("c", "cpp", "dox", "h", "hpp"), CSHARP: ("cs",),
         SCRIPT: ("js", "mjs", "mts", "ts"), SHELL: ("sh", "supp"), CMAKE: ("cmake", "cmake.in"),
         DOCUMENT: ("md",), PYTHON: ("py",)}
LEXERS = {suffix: lexer for lexer, suffixes in KINDS.items() for suffix in suffixes}
NAMES = {"CMakeLists.txt": CMAKE, "run": SHELL}

QUOTED = re.compile(r'`[^`\n]*`|"[^"\n]*"')  # not the author's prose
# In a document: fenced and indented code, and the targets of links.
NOT_PROSE = re.compile(r"^```.*?^```$|(?:(?<=\n\n)|\A)(?: {4}[^\n]*\n+)+|(?<=\])\([^)\s]*\)",
                       re.S | re.M)


def blank(text):
    return re.sub(r"[^\n]", BLANK, text)


def only(text, spans):
    """The text with everything outside the spans blanked."""
    parts, at = [], 0
    for start, end in spans:
        parts += [blank(text[at:start]), text[start:end]]
        at = end
    return "".join(parts) + blank(text[at:])


def python_spans(text):
    """Comments, and the insides of strings that are whole statements."""
    lines = [0]  # the offset of each
    for line in text.splitlines(keepends=True):
        lines.append(lines[-1] + len(line))
    begins = True  # a statement
    for token in tokenize.generate_tokens(io.StringIO(text).readline):
        start, end = (lines[row - 1] + column for row, column in (token.start, token.end))
        if token.type == tokenize.COMMENT:
            yield start, end
            continue
        if token.type == tokenize.STRING and begins:
            marks = re.match("""[rRuU]*(\"{3}|'{3}|"|')""", token.string)
            yield start + marks.end(), end - len(marks[1])
        if token.type != tokenize.NL:
            begins = token.type in (tokenize.NEWLINE, tokenize.INDENT, tokenize.DEDENT)


def without_marks(prose):
    """Prose without the marks at the start of a comment's lines."""
    return re.sub(r"^(\0*[ \t]*)(/\*\*?|//+|\*+|\#+)",
                  lambda match: match[1] + " " * len(match[2]), prose, flags=re.M)


def lexer_of(name):
    """The lexer for a file of this name, DOCUMENT or PYTHON. None for a file without prose."""
    base = name.rsplit("/", 1)[-1]
    return NAMES.get(base) or next(
        (lexer for suffix, lexer in LEXERS.items() if base.endswith("." + suffix)), None)


def marked_prose(lexer, text):
    """The text with everything blanked that is not prose."""
    if lexer is DOCUMENT:
        return NOT_PROSE.sub(lambda match: blank(match[0]), text)
    spans = (python_spans(text) if lexer is PYTHON else
             (match.span("prose") for match in lexer.finditer(text) if match["prose"] is not None))
    return without_marks(only(text, spans))


def of(name, text):
    """The text with everything blanked that is not the author's prose, or None for a file without
    prose. Each character keeps its offset."""
    lexer = lexer_of(name)
    if lexer is None:
        return None
    return QUOTED.sub(lambda match: blank(match[0]), marked_prose(lexer, text))
