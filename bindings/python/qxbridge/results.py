"""The members of the listings, named as in the library's JSON."""

from typing import TypedDict


class Instance(TypedDict):
    instance: str
    deviceProfile: str
    graphicsEngine: str
    graphicsRenderer: str
    imageName: str
    displayName: str
    ram: int  # MiB
    cpu: int


class App(TypedDict):
    package: str
    activity: str
    appLabel: str
    versionCode: int
    versionName: str
    iconFilePath: str
