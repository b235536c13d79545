#!/usr/bin/env python3
"""browser_test.py ADDRESS DATA-FOLDER: the example launcher in a browser."""

import pathlib
import sys
import unittest
import urllib.error
import urllib.request

sys.dont_write_bytecode = True
from browser import Browser, wait_until

ADDRESS, DATA = sys.argv[1], pathlib.Path(sys.argv[2])
HOSTILE = "<img src=x onerror=document.title=1>"


def status(address, **headers):
    try:
        with urllib.request.urlopen(urllib.request.Request(address, headers=headers)) as answer:
            return answer.status
    except urllib.error.HTTPError as error:
        return error.code


class LauncherTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = cls.enterClassContext(Browser())
        cls.browser.open(ADDRESS)
        wait_until(lambda: cls.browser.run("return document.querySelectorAll('#instances section').length"))

    def text(self, selector):
        return self.browser.run(f"return document.querySelector({selector!r})?.textContent")

    def change(self, key, script):
        self.browser.run(f"const input = document.querySelector('[name=\"{key}\"]'); {script};"
                         "input.dispatchEvent(new Event('change'))")

    def has_line(self, line):
        return line in (DATA / "vantrel.conf").read_text("utf-8").splitlines()

    def test_instances_and_their_apps_are_listed(self):
        self.assertEqual(self.browser.run("return [...document.querySelectorAll('#instances section')].map(s => s.id)"),
                         ["Nougat32", "Nougat64", "Nougat64_1"])
        self.assertEqual(self.text("#Nougat64 h2"), "Appareil principalNougat64Stop")
        self.assertEqual(self.browser.run("return [...document.querySelectorAll('#Nougat64 .app')].map(a => a.textContent)"),
                         ["Карты", "Leser für Bücher"])

    def test_an_icon_is_shown_where_there_is_one(self):
        icons = ("return [...document.querySelectorAll('#Nougat64 .app')].map(app => app.firstChild)"
                 ".map(icon => icon.localName === 'img' && icon.complete && icon.naturalWidth > 0)")
        wait_until(lambda: self.browser.run(icons) == [False, True])

    def test_a_hostile_name_is_shown_as_text(self):
        self.assertEqual(self.browser.run("return document.querySelector('#Nougat32 h2').firstChild.data"), HOSTILE)
        self.assertEqual(self.browser.run("return document.querySelectorAll('h2 img').length"), 0)
        self.assertEqual(self.browser.run("return document.title"), "Launcher")

    def test_a_click_launches_an_app_and_its_event_arrives(self):
        self.browser.click("#Nougat64 .app[title='com.example.reader']")
        event = "appDisplayed Nougat64 com.example.reader"
        wait_until(lambda: self.text("#events li") == event)
        self.browser.click("#Nougat64 h2 button")
        programs = DATA.parent / "programs.txt"
        wait_until(lambda: "plrShutdownRpc(false)" in programs.read_text("utf-8"))

    def test_a_number_is_committed(self):
        self.change("vtr.instance.Nougat64.dpi", "input.valueAsNumber = 320")
        wait_until(lambda: self.has_line('vtr.instance.Nougat64.dpi="320"'))

    def test_a_switch_is_committed(self):
        self.change("vtr.enable_adb_access", "input.checked = true")
        wait_until(lambda: self.has_line('vtr.enable_adb_access="1"'))

    def test_a_text_that_cannot_be_stored_shows_the_error(self):
        self.change("vtr.locale", "input.value = 'x'.repeat(5000)")
        error = wait_until(lambda: self.text("#error"))
        self.assertIn("bridgeConfCommit failed with 7", error)
        self.change("vtr.locale", "input.value = 'de-DE'")
        wait_until(lambda: self.has_line('vtr.locale="de-DE"'))
        wait_until(lambda: self.text("#error") == "")

    def test_nothing_is_served_without_the_token_or_under_another_name(self):
        root = ADDRESS.rsplit("/", 2)[0]
        self.assertEqual(status(ADDRESS + "state"), 200)
        self.assertEqual(status(root + "/"), 404)
        self.assertEqual(status(root + "/state"), 404)
        self.assertEqual(status(root + "/" + "0" * 32 + "/state"), 404)
        self.assertEqual(status(ADDRESS + "state", Host="example.com"), 404)

    def test_no_other_file_is_served_as_an_icon(self):
        self.assertEqual(status(ADDRESS + "icon?instance=Nougat64&app=com.example.reader"), 200)
        for app in ("..%2F..%2Fvantrel.conf", "com.example.maps", "nothing"):
            self.assertEqual(status(f"{ADDRESS}icon?instance=Nougat64&app={app}"), 404, app)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
