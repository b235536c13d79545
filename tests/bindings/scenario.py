#!/usr/bin/env python3
"""Plays the steps of a scenario with the Python binding: scenario.py LIBRARY DATA-FOLDER
INSTALL-FOLDER STEP... Tabs separate the words of a step, which scenarios.txt describes.

If LIBRARY is not a DLL, it is the stand-in of the tests, and python/fake_product.py adds a configuration
and programs. With the DLL, the registry names the folders.
"""

import asyncio
import pathlib
import re
import sys

sys.dont_write_bytecode = True  # the tree stays as it is
HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parents[1] / "bindings" / "python"), str(HERE / "python")]
import qxbridge  # noqa: E402
from qxbridge import catalogue, keys  # noqa: E402

LIMIT, SHORT_LIMIT = 30, 0.1  # seconds


def say(line):
    print(line, flush=True)


def shown(value):
    if isinstance(value, bool):
        return "true" if value else "false"
    return "|".join(value) if isinstance(value, list) else str(value)


def parsed(type_, text):
    readers = {"bool": lambda: text == "true", "i32": lambda: int(text), "i64": lambda: int(text),
               "multi-string": lambda: text.split("|") if text else []}
    return readers.get(type_, lambda: text)()


def type_of(key):
    """The catalogue's type; a key that it lacks is read as a text."""
    try:
        return catalogue.find(key)[1].type
    except qxbridge.BridgeKeyError:
        return "string"


def camel(name):
    return re.sub("_(.)", lambda one: one[1].upper(), name)


def event_line(event):
    values = [f"{one:.3f}" if isinstance(one, float) else str(int(one)) if isinstance(one, bool) else str(one)
              for one in event]
    return " ".join(["event", camel(event.event), *(["|".join(values)] if values else [])])


class Host:
    """A method for each word."""

    def __init__(self, bridge):
        self.bridge = bridge
        self.conf = bridge.conf
        self.stream = self.few = None

    async def preflight(self, client):
        problems = qxbridge.preflight(client)
        for one in problems:
            say(f"problem {one.what}")
        if not problems:
            say("fine")

    async def init(self, client):
        self.bridge.init(client)
        say("started")

    async def get(self, key, type_=None):
        type_ = type_ or type_of(key)
        read = getattr(self.conf, "get_" + type_.replace("-", "_"))
        say(f"{type_} {shown(read(key))}")

    async def set(self, key, value="", type_=None):
        type_ = type_ or type_of(key)
        getattr(self.conf, "set_" + type_.replace("-", "_"))(key, parsed(type_, value))
        say("set")

    async def gettyped(self):
        enabled = self.conf.get(keys.GLOBAL.enable_adb_access)
        say(f"typed {shown(enabled)} {self.conf.get(keys.instance('Nougat64').dpi)}")

    async def addinstance(self, name):
        self.conf.add_instance(name)
        say("added")

    async def commit(self):
        await self.conf.commit_async()
        say("committed")

    async def committofile(self, path):
        await self.conf.commit_to_file_async(path)
        say("committed")

    async def instances(self):
        for one in await self.bridge.instances_async():
            say(f"instance {one['instance']} {one['displayName']} {one['imageName']} {one['ram']} {one['cpu']}")

    async def apps(self, instance):
        for one in await self.bridge.apps_async(instance):
            say(f"app {one['package']} {one['appLabel']} {one['versionCode']}")

    async def listen(self):
        self.stream, self.few = self.bridge.events(), self.bridge.events(limit=2)
        try:
            self.bridge.listen()
            say("listening")
        except qxbridge.ListenError:
            say("listen error")

    async def launch(self, instance, package, *limit):
        await self.outcome(self.bridge.launch_app(instance, package), limit,
                           lambda one: f"displayed {one.instance} {one.package}")

    async def installapk(self, instance, path, *limit):
        await self.outcome(self.bridge.install_apk(instance, path), limit,
                           lambda one: f"installed {one.status}")

    async def uninstall(self, instance, package, *limit):
        await self.outcome(self.bridge.uninstall_app(instance, package), limit, lambda _: "uninstalled")

    async def installimage(self, image, *limit):
        await self.outcome(self.bridge.install_image(image), limit, lambda one: f"image {one.status}")

    async def create(self, image, *limit):
        await self.outcome(self.bridge.create_fresh_instance(image, 2, 2048, "aga", "dx", "s21"), limit,
                           lambda one: f"created {one.status} {one.instance}")

    async def outcome(self, work, limit, show):
        try:
            say(show(await work.finished(SHORT_LIMIT if limit == ("short",) else LIMIT)))
        except TimeoutError:
            say("time-out")

    async def events(self, count):
        for _ in range(int(count)):
            say(event_line(await asyncio.wait_for(self.stream.__anext__(), LIMIT)))

    async def overflow(self):
        """Of five events, a stream with room for two delivers the first two."""
        for _ in range(5):
            await asyncio.wait_for(self.stream.__anext__(), LIMIT)
        try:
            while True:
                say(event_line(await asyncio.wait_for(self.few.__anext__(), LIMIT)))
        except qxbridge.EventOverflow:
            say("overflow")

    async def fini(self):
        self.bridge.fini()
        say("ended")


async def play(host, step):
    word, *arguments = step.split("\t")
    try:
        await getattr(host, word)(*arguments)
    except qxbridge.BridgeKeyError as error:
        say(f"key error {error}")
    except qxbridge.BridgeError as error:
        say(f"error {error.code} {error.name}")
    except qxbridge.PreflightError as error:
        say(f"preflight {len(error.problems)}")


async def main(library, data, install, *steps):
    if not library.lower().endswith(".dll"):
        import fake_product
        fake_product.start(library, data, install)
    host = Host(qxbridge.Bridge(library))
    for step in steps:
        await play(host, step)
    say("finished")


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8", newline="\n")
    asyncio.run(main(*sys.argv[1:]))
