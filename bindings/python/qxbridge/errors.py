"""The exceptions of the binding, besides TypeError, ValueError, OverflowError, TimeoutError, and RuntimeError
for a call at the wrong time."""

from typing import NamedTuple, Optional, Sequence, Tuple

from .generated import CODES

# Added to a Windows error to make a result code.
WINDOWS_ERRORS = 100000

_CODES = {one.number: one for one in CODES}


class Problem(NamedTuple):
    """A reason for which the library cannot start, and its remedy."""

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
    """A function of the library returned a code other than 0, or no text."""

    def __init__(self, operation: str, code: int, file: str = "", log: str = "") -> None:
        self.operation = operation
        self.code = code
        self.name, self.text = _words_of(code)
        self.file = file  # the file of the call; empty when there is none
        self.log = log  # path of the log; empty when it is not known
        cause = ": ".join(one for one in (self.name, self.text) if one)
        super().__init__(f"{operation} failed with {code} ({cause})"
                         + (f" for {file}" if file else "")
                         + "; the log" + (f" {log}" if log else "") + " has the cause")


class BridgeKeyError(KeyError, ValueError):
    """A key, instance or stored value with which the library would end the process."""

    def __init__(self, message: str, key: str = "", suggestion: str = "") -> None:
        super().__init__(message)
        self.key = key  # the key, or the name of the instance
        self.suggestion = suggestion  # the nearest known name; empty when none is near

    def __str__(self) -> str:
        """Without the quotes that KeyError adds."""
        return str(self.args[0])


class PreflightError(Exception):
    """A check before the start failed."""

    def __init__(self, problems: Sequence[Problem]) -> None:
        super().__init__("\n".join(f"{one.what}: {one.remedy}" for one in problems))
        self.problems = tuple(problems)


class ListenError(Exception):
    """This process does not receive the events."""

    def __init__(self, message: str, process_id: Optional[int]) -> None:
        super().__init__(message)
        self.process_id = process_id  # the process that receives them; None when there is none or not known


class EventOverflow(Exception):
    """More events arrived than the stream can buffer. Those buffered were delivered; later ones are lost."""

    def __init__(self, limit: int) -> None:
        super().__init__(f"more than {limit} events waited to be read")
        self.limit = limit
