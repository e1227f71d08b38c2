"""Finds and loads the installed library."""

from __future__ import annotations

import ctypes
import ctypes.util
import os
from functools import cache

from . import _abi

FILE = f"libkelvarissdk.so.{_abi.VERSION_MAJOR}"


class LibraryError(ImportError):
    """The library isn't installed, or what was found isn't the version that this package speaks to."""


def _load(name: str) -> ctypes.CDLL:
    """Loads a library. OSError: there is none; LibraryError: it has other structures than this package."""
    library = ctypes.CDLL(name)
    process = ctypes.CDLL(None)
    # The names that the library exports carry its major version. A C library that can't be asked for a name
    # of a version leaves only the file's name to go by.
    if hasattr(process, "dlvsym"):
        process.dlvsym.restype = ctypes.c_void_p
        process.dlvsym.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p]
        version = f"KELVARISSDK_{_abi.VERSION_MAJOR}".encode()
        if process.dlvsym(library._handle, b"KelvarisSDK_Destroy", version) is None:
            raise LibraryError(f"{name} isn't version {_abi.VERSION_MAJOR} of the Kelvaris client library")
    try:
        _abi.bind(library)
    except AttributeError as error:
        raise LibraryError(
            f"{name} is older than version {_abi.VERSION_MAJOR}.{_abi.VERSION_MINOR} of the Kelvaris client"
            f" library: {error}"
        ) from None
    return library


@cache
def library() -> ctypes.CDLL:
    """
    The library with its prototypes, loaded by the first call and never unloaded.

    The file that the environment variable KELVARISSDK_LIBRARY names is taken and no other; without the
    variable, the one that the system's loader finds.
    """
    chosen = os.environ.get("KELVARISSDK_LIBRARY")
    try:
        return _load(chosen or FILE)
    except OSError as error:
        reason = str(error)
    if chosen:
        raise LibraryError(f"KELVARISSDK_LIBRARY names a file that can't be loaded: {reason}")
    other = ctypes.util.find_library("kelvarissdk")
    if other and other != FILE:
        return _load(other)
    raise LibraryError(
        f"the Kelvaris client library isn't installed ({reason}): install the Debian package"
        f" libkelvarissdk{_abi.VERSION_MAJOR}, or name its file in KELVARISSDK_LIBRARY"
    )
