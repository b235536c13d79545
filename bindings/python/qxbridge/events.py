"""Events: streams for asyncio, and the delivery of each event to works, streams and callbacks."""

import asyncio
import threading
from collections import deque
from typing import (Any, AsyncIterator, Callable, Deque, Generic, Iterable, List, Optional, Protocol,
                    Tuple, Type, TypeVar, Union)

from . import life
from .errors import EventOverflow
from .generated import CALLBACKS, EVENT_TYPES, EVENTS, RECORDS, Callbacks

E = TypeVar("E")

_SLOTS = {name: slot for slot, name in enumerate(CALLBACKS)}


def _wake(future: "asyncio.Future[None]") -> None:
    if not future.done():
        future.set_result(None)


class EventStream(AsyncIterator[E], Generic[E]):
    """Events in order, for `async for`. The stream ends with the library or with close().

    Its buffer is limited. When it overflows, the stream delivers the buffered events and then raises
    EventOverflow.
    """

    def __init__(self, types: Tuple[Type[Any], ...], limit: int) -> None:
        if limit < 1:
            raise ValueError("limit must be at least 1")
        self._types = types
        self._limit = limit
        self._lock = threading.Lock()
        self._events: Deque[E] = deque()
        self._open = True
        self._overflown = False
        self._reader: Optional[Tuple[asyncio.AbstractEventLoop, "asyncio.Future[None]"]] = None

    def put(self, event: Any) -> bool:
        """Returns whether the stream is still open. Runs on the event thread."""
        with self._lock:
            if self._open and isinstance(event, self._types):
                self._overflown = len(self._events) == self._limit
                self._open = not self._overflown
                if self._open:
                    self._events.append(event)
                self._wake_reader()
            return self._open

    def close(self) -> None:
        """Ends the stream after the buffered events. May be called on any thread."""
        with self._lock:
            self._open = False
            self._wake_reader()

    async def __anext__(self) -> E:
        while True:
            with self._lock:
                if self._events:
                    return self._events.popleft()
                if self._overflown:
                    raise EventOverflow(self._limit)
                if not self._open:
                    raise StopAsyncIteration
                waiting = self._wait_for_event()
            try:
                await waiting
            finally:
                with self._lock:
                    self._reader = None

    def _wait_for_event(self) -> "asyncio.Future[None]":
        if self._reader is not None:
            raise RuntimeError("another task reads this stream")
        loop = asyncio.get_running_loop()
        self._reader = loop, loop.create_future()
        return self._reader[1]

    def _wake_reader(self) -> None:
        if self._reader is None:
            return
        loop, future = self._reader
        try:
            loop.call_soon_threadsafe(_wake, future)
        except RuntimeError:
            pass  # the loop has ended, and its tasks with it


def types_of(wanted: Union[None, str, Type[Any], Iterable[str]]) -> Tuple[Type[Any], ...]:
    """The event classes for names or for one class; all of them for None."""
    if wanted is None:
        return tuple(EVENT_TYPES.values())
    if isinstance(wanted, type):
        if wanted not in EVENT_TYPES.values():
            raise ValueError(f"{wanted.__name__} is not a class of events")
        return (wanted,)
    names = [wanted] if isinstance(wanted, str) else list(wanted)
    for one in names:
        if one not in EVENT_TYPES:
            raise ValueError(f"there is no event {one!r}; there are {', '.join(EVENT_TYPES)}")
    return tuple(EVENT_TYPES[one] for one in names)


class Watch(Protocol):
    """Waits for one event."""

    def offer(self, event: Any) -> bool:
        """Returns whether this was the event. Runs on the event thread."""

    def end(self) -> None:
        """No more events will arrive."""


class Dispatcher:
    """Delivers each event to the matching works and streams, then to the host's function."""

    def __init__(self, reload: Callable[[], None]) -> None:
        self._reload = reload  # called when the library has reloaded the configuration
        self._lock = threading.Lock()
        self._watches: List[Watch] = []
        self._streams: List[EventStream[Any]] = []
        self.callbacks = Callbacks()

    def receive(self, name: str, *values: Any) -> None:
        """Runs on the event thread. An exception of one receiver goes to sys.unraisablehook; the others
        still get the event."""
        life.mark_event_thread()
        event = EVENTS[name](*values)
        try:
            self._follow(event)
        finally:
            self._call_host(name, event)

    def watch(self, watch: Watch) -> None:
        """Offers each event from now on, until the watch takes one."""
        with self._lock:
            self._watches.append(watch)

    def unwatch(self, watch: Watch) -> None:
        with self._lock:
            self._watches = [one for one in self._watches if one is not watch]

    def add_stream(self, stream: EventStream[Any]) -> None:
        with self._lock:
            self._streams.append(stream)

    def end(self) -> None:
        with self._lock:
            watches, self._watches = self._watches, []
            streams, self._streams = self._streams, []
        for watch in watches:
            watch.end()
        for stream in streams:
            stream.close()

    def _follow(self, event: Any) -> None:
        if event.event in ("instance_list_updated", "instance_configuration_changed"):
            self._reload()
        with self._lock:
            streams, watches = list(self._streams), list(self._watches)
        closed = [one for one in streams if not one.put(event)]
        with self._lock:
            self._streams = [one for one in self._streams if one not in closed]
        self._offer(watches, event)

    def _offer(self, watches: List[Watch], event: Any) -> None:
        """Only the oldest matching watch gets the event."""
        failed: Optional[Exception] = None
        for watch in watches:
            try:
                if watch.offer(event):
                    self.unwatch(watch)
                    break
            except Exception as one:  # the host's function for progress
                failed = one
        if failed is not None:
            raise failed

    def _call_host(self, name: str, event: Any) -> None:
        function: Any = self.callbacks[_SLOTS[name]]
        if function is None:
            return
        if name in RECORDS:
            function(event)
        else:
            function(*event)
