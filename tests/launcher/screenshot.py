#!/usr/bin/env python3
"""screenshot.py ADDRESS FILE: saves a screenshot of the example launcher after the launch of an app."""

import pathlib
import sys

sys.dont_write_bytecode = True
from browser import Browser, wait_until

with Browser() as browser:
    browser.open(sys.argv[1])
    wait_until(lambda: browser.run("return document.querySelector('#Nougat64 .app') !== null"))
    for app in ("com.example.maps", "com.example.reader"):
        browser.click(f"#Nougat64 .app[title='{app}']")
        wait_until(lambda: browser.run("return document.querySelector('#events li')?.textContent.includes(arguments)"
                                       .replace("arguments", repr(app))))
    pathlib.Path(sys.argv[2]).write_bytes(browser.screenshot())
