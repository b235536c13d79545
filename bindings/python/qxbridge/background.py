"""Calls that take their time, off the event loop."""

import asyncio
import threading
from concurrent.futures import ThreadPoolExecutor
from typing import Awaitable, Callable, Optional, TypeVar

T = TypeVar("T")

_THREADS = 2


async def within(awaitable: Awaitable[T], timeout: Optional[float]) -> T:
    """Waits so many seconds; what is waited for goes on, also when the task is cancelled."""
    try:
        return await asyncio.wait_for(asyncio.shield(awaitable), timeout)
    except asyncio.TimeoutError:
        raise TimeoutError(f"it took more than {timeout} s") from None


class Background:
    """A few threads, which start with the first call."""

    def __init__(self) -> None:
        self._lock = threading.Lock()
        self._threads: Optional[ThreadPoolExecutor] = None

    async def run(self, call: Callable[[], T], timeout: Optional[float]) -> T:
        """TimeoutError when it takes longer; the call goes on."""
        return await within(asyncio.wrap_future(self._started().submit(call)), timeout)

    def finish(self) -> None:
        """Waits for the calls that run."""
        with self._lock:
            threads, self._threads = self._threads, None
        if threads is not None:
            threads.shutdown(wait=True)

    def _started(self) -> ThreadPoolExecutor:
        with self._lock:
            if self._threads is None:
                self._threads = ThreadPoolExecutor(_THREADS, thread_name_prefix="qxbridge")
            return self._threads
