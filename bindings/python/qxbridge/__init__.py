"""QX-Bridge.dll for Python: configuration, instances, apps, programs and events.

    with Bridge(r"C:\\path\\to\\bin\\QX-Bridge.dll") as bridge:
        bridge.init("Helper")
        print(bridge.instances())

The conventions of bridge.h apply. Checks before each call turn most fatal errors into exceptions:
PreflightError before the start, BridgeKeyError before a read or write.
"""

from . import generated, keys
from .bridge import Bridge
from .configuration import Configuration
from .errors import (BridgeError, BridgeKeyError, EventOverflow, ListenError, PreflightError,
                     Problem)
from .events import EventStream
from .folders import use_folders
from .generated import *
from .generated import CALLBACKS, FUNCTIONS, RECORDS
from .key import Key
from .preflight import preflight
from .results import App, Instance
from .work import Work

CLIENTS = ("Launcher", "Installer", "LogCollector", "Helper", "Uninstaller")

__all__ = [
    "App", "Bridge", "BridgeError", "BridgeKeyError", "CALLBACKS", "CLIENTS", "Configuration",
    "EventOverflow", "EventStream", "FUNCTIONS", "Instance", "Key", "ListenError", "PreflightError",
    "Problem", "RECORDS", "Work", "keys", "preflight", "use_folders",
]
__all__ += generated.__all__
