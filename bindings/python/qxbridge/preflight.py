"""Checks, before the start, for causes that make the library's start fail or end the process."""

from typing import List, Optional

from . import _windows, product
from .errors import Problem
from .generated import VERSION

BYTE_ORDER_MARK = b"\xef\xbb\xbf"
VERSION_CHECKED_CLIENT = "Launcher"


def _registry_value(name: str) -> str:
    return f'the registry value HKEY_LOCAL_MACHINE\\{product.REGISTRY_KEY} "{name}"'


def _missing_data_folder() -> Problem:
    return Problem(
        f'{_registry_value("UserDefinedDir")} is missing',
        "install the product, or set it to a data folder (reg add "
        f'HKLM\\{product.REGISTRY_KEY} /v UserDefinedDir /d <folder> /reg:64)')


def _folder_to_write(folder: str) -> str:
    """The folder, or its nearest existing parent."""
    while folder and not _windows.is_folder(folder):
        folder = folder.rpartition("\\")[0]
    return folder


def _own_log_folder(path: str) -> Optional[Problem]:
    """A problem with the log's folder. The library creates only the folders before the last "\\"."""
    last = max(path.rfind("\\"), path.rfind("/"))
    if last < 0 or path[last] == "\\" or _windows.is_folder(path[:last]):
        return None
    return Problem(f"the folder {path[:last]} of the log does not exist", "create it")


def _log(path: str) -> Optional[Problem]:
    error = 0
    if _windows.exists(path):
        error = _windows.append_error(path)
    else:
        separator = max(path.rfind("\\"), path.rfind("/"))
        folder = _folder_to_write(path[:separator]) if separator >= 0 else "."
        if folder:
            error = _windows.create_error(folder)
    if error == 0:
        return None
    return Problem(f"the log {path} cannot be opened (Windows error {error})",
                   "give this user the right to write it, and close programs that lock it")


def _logs_folder(data: str, own_log: Optional[str]) -> Optional[Problem]:
    if own_log is not None:
        # An empty path means standard output.
        return (_own_log_folder(own_log) or _log(own_log)) if own_log else None
    folder = f"{data}\\Logs"
    if not _windows.is_folder(folder):
        return Problem(f"the folder {folder} does not exist", "create it")
    return _log(product.log_file(data))


def _conf_file(path: str) -> Optional[Problem]:
    content = _windows.read_file(path)
    if content is None:
        what = "cannot be read" if _windows.exists(path) else "does not exist"
        return Problem(f"the configuration file {path} {what}",
                       "install the product, or start without the file")
    if content.startswith(BYTE_ORDER_MARK):
        return Problem(f"the configuration file {path} begins with a byte order mark",
                       "save it as UTF-8 without one")
    return None


def _version(client_id: str) -> Optional[Problem]:
    if client_id != VERSION_CHECKED_CLIENT:
        return None
    version = _windows.registry_text(product.REGISTRY_KEY, "Version") or ""
    if version == VERSION:
        return None
    return Problem(f'the product\'s version is "{version}", and the library\'s is "{VERSION}"',
                   "install product and library of the same version")


def preflight(client_id: str, *, no_conf_file: bool = False,
              log_file: Optional[str] = None) -> List[Problem]:
    """The problems with which the library would not start; empty when there are none. Needs no library."""
    data = product.data_folder()
    if not no_conf_file or log_file is None:  # else nothing in it is used
        if not data:
            return [_missing_data_folder()]
        if not _windows.is_folder(data):
            return [Problem(f"the data folder {data} does not exist",
                            f'create it, or correct {_registry_value("UserDefinedDir")}')]
    found = [_logs_folder(data, log_file),
             None if no_conf_file else _conf_file(product.conf_file(data)),
             _version(client_id)]
    return [one for one in found if one is not None]
