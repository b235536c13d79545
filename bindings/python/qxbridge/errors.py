"""What the binding raises, besides TypeError, ValueError, OverflowError, TimeoutError, and
RuntimeError for a call at the wrong time."""

from typing import NamedTuple, Optional, Sequence, Tuple

from .generated import CODES

# From here on a code is this number plus a Windows error.
WINDOWS_ERRORS = 100000

_CODES = {one.number: one for one in CODES}


class Problem(NamedTuple):
    """Why the library cannot start, and what helps."""

    what: str
    remedy: str


def _words_of(code: int) -> Tuple[str, str]:
    """Name and text of a result code."""
    if code in _CODES:
        return _CODES[code].name, _CODES[code].text
    if code >= WINDOWS_ERRORS:
        return "", f"Windows error {code - WINDOWS_ERRORS}"
    return "", "an unknown code"


class BridgeError(Exception):
    """A function of the library returned another code than 0, or no text."""

    def __init__(self, operation: str, code: int, file: str = "", log: str = "") -> None:
        self.operation = operation
        self.code = code
        self.name, self.text = _words_of(code)
        self.file = file  # what the function worked on; empty where that is no file
        self.log = log  # path of the log; empty where it is not known
        cause = ": ".join(one for one in (self.name, self.text) if one)
        super().__init__(f"{operation} failed with {code} ({cause})"
                         + (f" for {file}" if file else "")
                         + "; the log" + (f" {log}" if log else "") + " has the cause")


class BridgeKeyError(KeyError, ValueError):
    """A key, an instance or a stored value with which the library would end the process."""

    def __init__(self, message: str, key: str = "", suggestion: str = "") -> None:
        super().__init__(message)
        self.key = key  # the key, or the name of the instance
        self.suggestion = suggestion  # what may have been meant; empty: nothing is near

    def __str__(self) -> str:
        """KeyError would show the message in quotes."""
        return str(self.args[0])


class PreflightError(Exception):
    """The library would not start, or would end the process."""

    def __init__(self, problems: Sequence[Problem]) -> None:
        super().__init__("\n".join(f"{one.what}: {one.remedy}" for one in problems))
        self.problems = tuple(problems)


class ListenError(Exception):
    """This process does not get the events."""

    def __init__(self, message: str, process_id: Optional[int]) -> None:
        super().__init__(message)
        self.process_id = process_id  # who gets them; None: it is not known, or nobody


class EventOverflow(Exception):
    """More events came than the stream holds. What it held has been read, later ones are lost."""

    def __init__(self, limit: int) -> None:
        super().__init__(f"more than {limit} events waited to be read")
        self.limit = limit
