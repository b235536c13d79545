"""A host for a type checker, which accepts all lines but those marked as wrong."""

import asyncio
from typing import List

from qxbridge import (ApkInstallCompleted, App, AppDisplayed, Bridge, Callbacks, Event, EventStream,
                      Instance, Problem, Work, keys, preflight, use_folders)


def configuration(bridge: Bridge) -> None:
    conf = bridge.conf
    nougat = keys.instance("Nougat64")
    access: bool = conf.get(keys.GLOBAL.enable_adb_access)
    dpi: int = conf.get(nougat.dpi)
    locale: str = conf.get(keys.GLOBAL.locale)
    folders: List[str] = conf.get(keys.GLOBAL.shared_folders)
    conf.set(keys.GLOBAL.enable_adb_access, not access)
    conf.set(nougat.dpi, dpi + 80)
    conf.set(keys.GLOBAL.locale, locale + folders[0])
    conf.set(keys.GLOBAL.shared_folders, ["a"])
    conf.set(keys.GLOBAL.enable_adb_access, 1)  # wrong
    conf.set(nougat.dpi, "240")  # wrong
    conf.set(keys.GLOBAL.shared_folders, "a,b")  # wrong
    wrong: int = conf.get(keys.GLOBAL.enable_adb_access) or conf.get(keys.GLOBAL.locale)  # wrong
    print(wrong, keys.GLOBAL.enable_adb_acces)  # wrong
    print(nougat.locale)  # wrong
    keys.GLOBAL.locale = keys.GLOBAL.country  # wrong
    conf.set_bool("vtr.enable_adb_access", "true")  # wrong
    conf.add_instance("Nougat64_1")


def listings(bridge: Bridge) -> None:
    instances: List[Instance] = bridge.instances()
    apps: List[App] = bridge.apps(instances[0]["instance"])
    code: int = apps[0]["versionCode"]
    name: str = instances[0]["displayname"]  # wrong
    text: str = bridge.instances_json() + bridge.apps_json(name)
    print(code, text)


async def events(bridge: Bridge) -> None:
    stream: EventStream[Event] = bridge.events(["app_displayed", "app_installed"])
    async for event in stream:
        if event.event == "app_installed":
            print(event.is_update)
        if isinstance(event, AppDisplayed):
            print(event.package)
    async for one in bridge.events(AppDisplayed, limit=10):
        print(one.package)
        print(one.version_code)  # wrong
    bridge.events("app_shown")  # wrong


async def work(bridge: Bridge) -> None:
    install: Work[ApkInstallCompleted] = bridge.install_apk("Nougat64", "a.apk")
    status: int = (await install.finished(timeout=5)).status
    image = bridge.install_image("Nougat64", lambda event: print(event.progress))
    print(status, image.wait().image_name, image.wait().package)  # wrong
    await bridge.conf.commit_async(timeout=1.5)
    instances: List[Instance] = await bridge.instances_async()
    print(instances)


def main() -> None:
    use_folders("C:\\data", "C:\\programs")
    use_folders("C:\\data")  # wrong
    problems: List[Problem] = preflight("Helper", no_conf_file=True)
    print(problems)
    with Bridge() as bridge:
        bridge.init("Helper", log_file="own.log")
        bridge.listen(Callbacks(app_displayed=lambda instance, package: print(instance, package)))
        bridge.register(Callbacks(app_displayed=lambda instance: print(instance)))  # wrong
        asyncio.run(events(bridge))
