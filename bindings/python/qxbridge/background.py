"""Runs slow calls off the event loop."""

import asyncio
import threading
from concurrent.futures import ThreadPoolExecutor
from typing import Awaitable, Callable, Optional, TypeVar

T = TypeVar("T")

_THREADS = 2


async def within(awaitable: Awaitable[T], timeout: Optional[float]) -> T:
    """Waits for at most `timeout` seconds. The operation goes on after a timeout or a cancelled task."""
    try:
        return await asyncio.wait_for(asyncio.shield(awaitable), timeout)
    except asyncio.TimeoutError:
        raise TimeoutError(f"timed out after {timeout} s") from None


class Background:
    """A few threads, started with the first call."""

    def __init__(self) -> None:
        self._lock = threading.Lock()
        self._threads: Optional[ThreadPoolExecutor] = None

    async def run(self, call: Callable[[], T], timeout: Optional[float]) -> T:
        """Raises TimeoutError after `timeout` seconds; the call goes on."""
        return await within(asyncio.wrap_future(self._started().submit(call)), timeout)

    def finish(self) -> None:
        """Waits for running calls."""
        with self._lock:
            threads, self._threads = self._threads, None
        if threads is not None:
            threads.shutdown(wait=True)

    def _started(self) -> ThreadPoolExecutor:
        with self._lock:
            if self._threads is None:
                self._threads = ThreadPoolExecutor(_THREADS, thread_name_prefix="qxbridge")
            return self._threads
