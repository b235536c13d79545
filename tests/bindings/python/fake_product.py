"""A product for scenarios, around the stand-in of the library: a configuration, app caches, programs that
send the event of their work at once, and events that arrive when the host listens."""

import json
import os
import shlex

import qxbridge
import support
from qxbridge import _windows, catalogue
from qxbridge.conf_file import entries, split_key
from qxbridge.generated import KEYS

LISTED = {"deviceProfile": "device_profile_code", "graphicsEngine": "graphics_engine",
          "graphicsRenderer": "graphics_renderer", "displayName": "display_name"}
# The events by the stand-ins' names, in the order of bridge.h, with the parameters that are not texts.
EVENTS = {"app-installed": {4: "number", 7: "flag"}, "app-uninstalled": {},
          "apk-install-completed": {1: "number"}, "instance-list-updated": {},
          "image-install-progress": {1: "number", 2: "progress"}, "create-instance-completed": {0: "number"},
          "instance-configuration-changed": {}, "app-displayed": {}, "account-list-updated": {2: "number"}}
LOADING = ("instance-list-updated", "instance-configuration-changed")


class Given:
    """The "given" lines of a scenario."""

    def __init__(self, lines):
        self.lines = lines
        self.has_programs = "programs" in lines
        self.events = [shlex.split(one, posix=False) for one in self.of("event")]
        self.silent = {one.split()[0] for one in self.of("script on")}
        self.later = self.of("later")
        self.apps = dict(one.split(" ", 1) for one in self.of("apps"))

    def of(self, kind):
        return [one[len(kind) + 1:] for one in self.lines if one.startswith(kind + " ")]


class Product:
    def __init__(self, fake, windows, data, given):
        self.fake = fake
        self.windows = windows
        self.given = given
        self.file = windows.path(data + "\\vantrel.conf")
        self.values = {}
        self.staged = {}
        fake.on_call(self.called)

    def called(self, line):
        """Runs inside each call. The method with the function's name returns the code."""
        operation, _, values = line.partition(" ")
        handler = getattr(self, operation, None)
        self.fake.answer((handler(values) if handler else 0) or 0)

    def give(self, key, value):
        self.values[key] = value
        self.fake.value(key, value)

    def make_known(self, key):
        instance = split_key(key).instance
        prefix = f"vtr.instance.{instance}."
        for one in KEYS:
            if instance and one.scope == "instance" and prefix + one.name not in self.values:
                self.give(prefix + one.name, one.default)

    def load(self):
        for one in entries(self.file.read_bytes()):
            if one is None or not catalogue.is_declared(one[0]):
                return -1
            self.make_known(one[0])
            self.give(*one)
        return 0

    def bridgeApiInit(self, _client):
        for one in KEYS:
            if one.scope == "global":
                self.give(f"vtr.{one.name}", one.default)
        return self.load()

    def read(self, key):
        """A key that is not loaded has no value."""
        if key not in self.values:
            self.fake.value(key, "")

    bridgeConfGetI32 = bridgeConfGetString = bridgeConfGetMultiString = read

    def set(self, values):
        key, _, value = values.partition(" ")
        self.make_known(key)
        self.give(key, value)
        self.staged[key] = value

    bridgeConfSetBool = bridgeConfSetI32 = bridgeConfSetString = bridgeConfSetMultiString = set

    def commit(self, path):
        if path.is_dir():
            return 13
        self.load()
        for key, value in self.staged.items():
            self.give(key, value)
        self.staged.clear()
        if any("\n" in one for one in self.values.values()):
            return 22
        path.write_text("".join(f'{key}="{value}"\n' for key, value in sorted(self.values.items())), "utf-8")
        return 0

    def bridgeConfCommit(self, _):
        return self.commit(self.file) if self.staged else 0

    def bridgeConfCommitToFile(self, path):
        return self.commit(self.windows.path(path))

    def bridgeConfGetInstances(self, _):
        names = sorted({split_key(key).instance for key in self.values} - {""})
        self.fake.value("bridgeConfGetInstances", json.dumps([self.listed(one) for one in names]))

    def listed(self, name):
        def value(key):
            return self.values.get(f"vtr.instance.{name}.{key}", "")

        return {**{member: value(key) for member, key in LISTED.items()}, "instance": name,
                "imageName": name.partition("_")[0], "ram": int(value("ram") or 0), "cpu": int(value("cpus") or 0)}

    def bridgeGetInstalledApps(self, instance):
        text = self.given.apps.get(instance, "[]")
        readable = all(isinstance(one, dict) for one in json.loads(text))
        self.fake.value("bridgeGetInstalledApps", text if readable else "null")

    def bridgeRegisterCallbacks(self, _):
        """From now on the host listens: changes the file and sends the events."""
        if self.given.later:
            with self.file.open("a", encoding="utf-8") as file:
                file.writelines(one + "\n" for one in self.given.later)
        for one in self.given.events:
            self.send(*one)
        self.given.events.clear()

    def send(self, name, *words):
        if name in LOADING:
            self.load()
        kinds = EVENTS[name]
        texts = [one for index, one in enumerate(words) if index not in kinds]
        others = {kind: float(words[index]) for index, kind in kinds.items()}
        self.fake.event(list(support.SLOTS)[list(EVENTS).index(name)], *texts,
                        number=int(others.get("number", 0)), progress=others.get("progress", 0.0),
                        flag=bool(others.get("flag", 0)))

    def work(self, command, *events):
        """A program that was started sends its events, unless it is silent."""
        if not self.given.has_programs:
            return 2
        if command not in self.given.silent:
            for one in events:
                self.send(*one)
        return 0

    def bridgeLaunchApp(self, values):
        return self.work("launchApp", ["app-displayed", *values.split(" ")])

    def bridgeUninstallApp(self, values):
        return self.work("uninstallApp", ["app-uninstalled", *values.split(" ")])

    def bridgeInstallApk(self, values):
        instance, path = values.split(" ")
        return self.work("installApk", ["apk-install-completed", instance, "0", path])

    def bridgeInstallImage(self, image):
        progress = [["image-install-progress", image, "1", one] for one in ("25", "50", "75")]
        return self.work("installImage", *progress, ["image-install-progress", image, "2", "100"])

    def bridgeCreateFreshInstance(self, values):
        return self.work("createFreshInstance", ["create-instance-completed", "0", values.split(" ")[0] + "_1"],
                         ["instance-list-updated"])


def start(library, data, install):
    """Starts the product in this process. QX_FAKE_ROOT is the folder for "C:", QX_FAKE_GIVEN the "given"
    lines as JSON."""
    given = Given(json.loads(os.environ["QX_FAKE_GIVEN"]))
    support.load(library)
    windows = support.FakeWindows(os.environ["QX_FAKE_ROOT"])
    windows.registry.update(UserDefinedDir=data, InstallDir=install,
                            Version=(given.of("version") or [qxbridge.generated.VERSION])[0])
    if "another host listens" in given.lines:
        windows.server = 1234
    for name in support.WINDOWS:
        setattr(_windows, name, getattr(windows, name))
    Product(support.fake, windows, data, given)
