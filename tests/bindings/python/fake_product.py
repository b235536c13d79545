"""A product around the stand-in of the library, as far as scenarios need it: a configuration that is
loaded, listed and committed, and programs that send the event of their work at once."""

import json
import os

import qxbridge
import support
from qxbridge import _windows
from qxbridge.conf_file import entries, split_key
from qxbridge.generated import KEYS

CONF = "\\vantrel.conf"
LISTED = {"instance": "", "deviceProfile": "device_profile_code", "graphicsEngine": "graphics_engine",
          "graphicsRenderer": "graphics_renderer", "imageName": "", "displayName": "display_name",
          "ram": "ram", "cpu": "cpus"}


class Product:
    def __init__(self, fake, windows, data):
        self.fake = fake
        self.file = windows.path(data + CONF)
        self.values = {}
        self.staged = {}
        fake.on_call(self.called)

    def called(self, line):
        operation, _, values = line.partition(" ")
        handler = getattr(self, operation, None)
        if handler is not None:
            handler(values)

    def give(self, key, value):
        self.values[key] = value
        self.fake.value(key, value)

    def make_known(self, instance):
        prefix = f"vtr.instance.{instance}."
        for one in KEYS:
            if one.scope == "instance" and prefix + one.name not in self.values:
                self.give(prefix + one.name, one.default)

    def load(self):
        for key, value in entries(self.file.read_bytes()):
            self.make(key)
            self.give(key, value)

    def make(self, key):
        parts = split_key(key)
        if parts.scope == "instance":
            self.make_known(parts.instance)

    def bridgeApiInit(self, _client):
        for one in KEYS:
            if one.scope == "global":
                self.give(f"vtr.{one.name}", one.default)
        self.load()

    def set(self, values):
        key, _, value = values.partition(" ")
        self.make(key)
        self.give(key, value)
        self.staged[key] = value

    bridgeConfSetBool = bridgeConfSetI32 = bridgeConfSetString = bridgeConfSetMultiString = set

    def bridgeConfCommit(self, _):
        self.load()
        for key, value in self.staged.items():
            self.give(key, value)
        self.file.write_text("".join(f'{key}="{value}"\n' for key, value in sorted(self.values.items())), "utf-8")
        self.staged.clear()

    def bridgeConfGetInstances(self, _):
        names = sorted({split_key(key).instance for key in self.values} - {""})
        self.fake.value("bridgeConfGetInstances", json.dumps([self.listed(one) for one in names]))

    def listed(self, name):
        found = {member: self.values.get(f"vtr.instance.{name}.{key}", "") for member, key in LISTED.items()}
        return {**found, "instance": name, "imageName": name.partition("_")[0],
                "ram": int(found["ram"] or 0), "cpu": int(found["cpu"] or 0)}

    def bridgeLaunchApp(self, values):
        self.fake.event("app_displayed", *values.split(" "))

    def bridgeUninstallApp(self, values):
        self.fake.event("app_uninstalled", *values.split(" "))

    def bridgeInstallApk(self, values):
        instance, path = values.split(" ")
        self.fake.event("apk_install_completed", instance, path)

    def bridgeInstallImage(self, image):
        for status, progress in ((1, 25.0), (1, 50.0), (1, 75.0), (2, 100.0)):
            self.fake.event("install_image_progress", image, number=status, progress=progress)

    def bridgeCreateFreshInstance(self, values):
        self.fake.event("create_instance_completed", values.split(" ")[0] + "_1")
        self.fake.event("instance_list_updated")


def start(library, data, install):
    support.load(library)
    windows = support.FakeWindows(os.environ["QX_FAKE_ROOT"])
    windows.registry.update(UserDefinedDir=data, InstallDir=install,
                            Version=os.environ.get("QX_SCENARIO_VERSION", qxbridge.generated.VERSION))
    for name in support.WINDOWS:
        setattr(_windows, name, getattr(windows, name))
    Product(support.fake, windows, data)
