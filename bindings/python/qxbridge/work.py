"""Work that a program was started for, and the event that reports its outcome."""

import asyncio
from concurrent import futures
from typing import Any, Callable, Generic, Optional, Type, TypeVar

from . import life
from .background import within
from .errors import BridgeError
from .events import Dispatcher

E = TypeVar("E")


class Work(Generic[E]):
    """Started work. Its outcome is the event that reports its end. An event belongs to the oldest work that
    it matches. Without listen() no event arrives, and waiting raises RuntimeError."""

    def __init__(self, type_: Type[E], is_outcome: Callable[[E], bool],
                 is_listening: Callable[[], bool]) -> None:
        self._type = type_
        self._is_outcome = is_outcome
        self._is_listening = is_listening
        self._outcome: "futures.Future[Optional[E]]" = futures.Future()  # None: the library ended

    def start(self, dispatcher: Dispatcher, start: Callable[[], None]) -> "Work[E]":
        """Watches before it starts, because the event may arrive before start() returns."""
        dispatcher.watch(self)
        try:
            start()
        except BridgeError:
            dispatcher.unwatch(self)
            raise
        return self

    @property
    def is_finished(self) -> bool:
        return self._outcome.done()

    def wait(self, timeout: Optional[float] = None) -> E:
        """Returns the outcome. Raises TimeoutError after `timeout` seconds; the work goes on."""
        self._require_listening()
        if not self._outcome.done():
            life.refuse_event_thread("wait()")
        try:
            return self._event(self._outcome.result(timeout))
        except futures.TimeoutError:
            raise TimeoutError(f"timed out after {timeout} s") from None

    async def finished(self, timeout: Optional[float] = None) -> E:
        """wait() for asyncio."""
        self._require_listening()
        return self._event(await within(asyncio.wrap_future(self._outcome), timeout))

    def offer(self, event: Any) -> bool:
        """Returns whether this is the outcome. Runs on the event thread."""
        if not isinstance(event, self._type) or not self._is_outcome(event):
            return False
        self._outcome.set_result(event)
        return True

    def end(self) -> None:
        """The library has ended."""
        self._outcome.set_result(None)

    def _require_listening(self) -> None:
        if not self._outcome.done() and not self._is_listening():
            raise RuntimeError("call listen() first")

    @staticmethod
    def _event(outcome: Optional[E]) -> E:
        if outcome is None:
            raise RuntimeError("the library has ended")
        return outcome
