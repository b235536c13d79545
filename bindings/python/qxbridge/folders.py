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
    """For development: makes this process use these folders instead of those in the registry.

    Call it before init(). It needs no administrator rights. The process gets its own HKEY_LOCAL_MACHINE
    with the two folders and the library's version; the rest of HKEY_LOCAL_MACHINE is hidden from it.
    Programs that it starts see the real one. Raises OSError with the Windows function that failed and its
    error.
    """
    data = _folder("data_folder", data_folder)
    programs = _folder("install_folder", install_folder)
    life.current().require_unstarted("use_folders()")
    _windows.own_local_machine(product.REGISTRY_KEY, {
        "UserDefinedDir": data,
        "InstallDir": programs if programs.endswith("\\") else programs + "\\",
        "Version": VERSION,
    })
