"""The state of the library in this process: it starts once, and one Bridge owns it."""

import threading
from typing import Callable, Optional

_this_thread = threading.local()


def mark_event_thread() -> None:
    """Marks the calling thread as the library's event thread."""
    _this_thread.is_event_thread = True


def refuse_event_thread(what: str) -> None:
    """The event thread cannot wait for itself."""
    if getattr(_this_thread, "is_event_thread", False):
        raise RuntimeError(f"{what} must not be called inside a callback")


class Life:
    def __init__(self) -> None:
        self._lock = threading.Lock()
        self._owner: Optional[object] = None
        self._ended = False

    def start(self, owner: object, start: Callable[[], None]) -> None:
        """Calls start() and remembers the owner, unless that raises."""
        with self._lock:
            self.require_startable(owner)
            start()
            self._owner = owner

    def require_startable(self, owner: object) -> None:
        if self._ended:
            raise RuntimeError("the library has ended: it starts once per process")
        if self._owner not in (None, owner):
            raise RuntimeError("another Bridge has started the library")

    def require_unstarted(self, what: str) -> None:
        if self._owner is not None or self._ended:
            raise RuntimeError(f"{what} must be called before init()")

    def end(self, owner: object) -> bool:
        """Returns whether the library has to be stopped: true once, for the owner."""
        with self._lock:
            if self._owner is not owner:
                return False
            self._owner, self._ended = None, True
            return True

    def has(self, owner: object) -> bool:
        return self._owner is owner

    def require(self, owner: object) -> None:
        """Raises RuntimeError before the start and after the end, when a call would end the process."""
        if self._owner is not owner:
            raise RuntimeError("the library has ended" if self._ended
                               else "the library is not started: call init() first")


_current = Life()


def current() -> Life:
    return _current
