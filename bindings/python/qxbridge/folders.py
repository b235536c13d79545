"""Folders for development, where the product is not installed."""

from . import _windows, life, product
from .generated import VERSION
from .native import utf8


def _folder(name: str, path: str) -> str:
    utf8(path, name)
    if not path:
        raise ValueError(f"{name} must not be empty")
    return path


def use_folders(data_folder: str, install_folder: str) -> None:
    """For development: makes this process see a product of the library's version with these folders.

    It gives the process a HKEY_LOCAL_MACHINE of its own, which hides everything else of the machine's.
    Other processes, and programs that this one starts, see the machine's. It needs no administrator and
    comes before init(). OSError says which function Windows refused, and its error.
    """
    data = _folder("data_folder", data_folder)
    programs = _folder("install_folder", install_folder)
    life.current().require_unstarted("use_folders()")
    _windows.own_local_machine(product.REGISTRY_KEY, {
        "UserDefinedDir": data,
        "InstallDir": programs if programs.endswith("\\") else programs + "\\",
        "Version": VERSION,
    })
