"""Finding and loading libvel.so and libvel_io.so.

The library is the first of: the file named by the environment variable
VEL_LIBRARY; the one recorded when the package was installed; the
repository's build/libvel.so when the package runs from a checkout; the
system's libvel.so.0.  libvel_io.so (model files and networks) is looked for
beside it.
"""
import ctypes
import os
from pathlib import Path

ENVIRONMENT_VARIABLE = "VEL_LIBRARY"


def _recorded_directory():
    try:
        from . import _installed
    except ImportError:
        return None
    return Path(_installed.LIBRARY_DIRECTORY)


def _candidates():
    explicit = os.environ.get(ENVIRONMENT_VARIABLE)
    if explicit:
        return [Path(explicit)]
    candidates = []
    recorded = _recorded_directory()
    if recorded is not None:
        candidates.append(recorded / "libvel.so")
    candidates.append(Path(__file__).resolve().parents[2] / "build" / "libvel.so")
    return candidates


def _load():
    for path in _candidates():
        if path.exists():
            return ctypes.CDLL(str(path)), path.parent
    if os.environ.get(ENVIRONMENT_VARIABLE):
        raise ImportError(f"{ENVIRONMENT_VARIABLE}={os.environ[ENVIRONMENT_VARIABLE]}: no such file")
    try:
        return ctypes.CDLL("libvel.so.0"), None
    except OSError:
        raise ImportError(
            "libvel.so not found: build the repository (cmake --build build), install the package "
            f"from a built checkout, or set {ENVIRONMENT_VARIABLE} to the library's path") from None


def _load_io(directory):
    """libvel_io.so beside libvel.so, else the system's; None without one.
    libvel.so is loaded first, so the io library's dependency on it resolves
    to that same copy."""
    name = str(directory / "libvel_io.so") if directory is not None else "libvel_io.so.0"
    try:
        return ctypes.CDLL(name)
    except OSError:
        return None


core, _directory = _load()
io = _load_io(_directory)
libc = ctypes.CDLL("libc.so.6", use_errno=True)
