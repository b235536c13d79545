"""A headless Chromium, driven through WebDriver."""

import base64
import json
import re
import subprocess
import time
import urllib.request
from typing import Any, Callable, Optional

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"  # the key of an element in WebDriver's answers


class Browser:
    def __init__(self) -> None:
        self._driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        self._address = f"http://127.0.0.1:{self._port()}"
        # Chromium's own sandbox does not work for root.
        options = {"args": ["--headless=new", "--no-sandbox", "--window-size=1100,760"]}
        wanted = {"capabilities": {"alwaysMatch": {"goog:chromeOptions": options}}}
        self._session = self._ask("POST", "/session", wanted)["sessionId"]

    def _port(self) -> int:
        assert self._driver.stdout is not None
        for line in self._driver.stdout:
            if found := re.search(r"successfully on port (\d+)", line):
                return int(found[1])
        raise RuntimeError("chromedriver does not start")

    def __enter__(self) -> "Browser":
        return self

    def __exit__(self, *_: Any) -> None:
        self._ask("DELETE", f"/session/{self._session}")
        self._driver.terminate()
        self._driver.wait()

    def _ask(self, method: str, path: str, body: Optional[Any] = None) -> Any:
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self._address + path, data, method=method)
        with urllib.request.urlopen(request, timeout=60) as answer:
            return json.load(answer)["value"]

    def _in_session(self, method: str, path: str, body: Optional[Any] = None) -> Any:
        return self._ask(method, f"/session/{self._session}{path}", body)

    def open(self, address: str) -> None:
        self._in_session("POST", "/url", {"url": address})

    def run(self, script: str) -> Any:
        """The result of a script in the page."""
        return self._in_session("POST", "/execute/sync", {"script": script, "args": []})

    def click(self, selector: str) -> None:
        element = self._in_session("POST", "/element", {"using": "css selector", "value": selector})
        self._in_session("POST", f"/element/{element[ELEMENT]}/click", {})

    def screenshot(self) -> bytes:
        return base64.b64decode(self._in_session("GET", "/screenshot"))


def wait_until(condition: Callable[[], Any], seconds: float = 30) -> Any:
    """The first true value of the condition."""
    end = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > end:
            raise AssertionError("it did not come within the time")
        time.sleep(0.05)
    return value
