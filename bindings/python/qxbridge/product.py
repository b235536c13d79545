"""Paths of the product's files. The registry names their folders."""

from typing import NamedTuple, Optional

from . import _windows

REGISTRY_KEY = "SOFTWARE\\Vantrel_nvo"
PLAYER = "QX-Player.exe"
MANAGER = "QX-MultiInstanceManager.exe"


class Places(NamedTuple):
    """Paths as the library makes them; empty when the registry value is missing."""

    conf_file: str
    log_file: str
    player: str
    manager: str


def _below(folder: str, path: str) -> str:
    return folder.rstrip("\\") + "\\" + path if folder else ""


def data_folder() -> str:
    """Without a separator at its end; empty when the registry value is missing."""
    return (_windows.registry_text(REGISTRY_KEY, "UserDefinedDir") or "").rstrip("\\")


def conf_file(folder: str) -> str:
    return _below(folder, "vantrel.conf")


def log_file(folder: str) -> str:
    return _below(folder, "Logs\\Player.log")


def places(no_conf_file: bool, log: Optional[str]) -> Places:
    folder = data_folder()
    programs = _windows.registry_text(REGISTRY_KEY, "InstallDir") or ""
    return Places("" if no_conf_file else conf_file(folder),
                  log_file(folder) if log is None else log,
                  _below(programs, PLAYER), _below(programs, MANAGER))
