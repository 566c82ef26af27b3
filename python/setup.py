"""Installs the package and records where libvel.so is: the directory of the
file named by VEL_LIBRARY at install time, else the repository's build/
beside this directory.  Without either, the package looks for the library
at run time (VEL_LIBRARY, then the system's libvel.so.0)."""
import ctypes
import os
import re
from pathlib import Path

from setuptools import setup
from setuptools.command.build_py import build_py


def library_directory():
    explicit = os.environ.get("VEL_LIBRARY")
    candidate = Path(explicit) if explicit else Path(__file__).resolve().parent.parent / "build" / "libvel.so"
    return candidate.resolve().parent if candidate.exists() else None


class BuildRecordingLibrary(build_py):
    def run(self):
        super().run()
        directory = library_directory()
        if directory is None:
            self.warn("libvel.so not found (build the repository or set VEL_LIBRARY); "
                      "the package will look for it at run time")
            return
        target = Path(self.build_lib) / "vel" / "_installed.py"
        target.write_text(f'"""Written at installation."""\nLIBRARY_DIRECTORY = {str(directory)!r}\n')


def project_version():
    """The version set once, in project(VERSION) of the repository's
    CMakeLists.txt; from a copy of the package outside the repository, the
    version of the library it is installed for."""
    cmake = Path(__file__).resolve().parent.parent / "CMakeLists.txt"
    if cmake.exists():
        return re.search(r"project\(vel VERSION ([0-9.]+)", cmake.read_text()).group(1)
    directory = library_directory()
    if directory is None:
        raise SystemExit("vel: set VEL_LIBRARY to the built libvel.so (its version is the package's)")
    library = ctypes.CDLL(str(directory / "libvel.so"))
    library.vel_version.restype = ctypes.c_char_p
    return library.vel_version().decode()


setup(version=project_version(), cmdclass={"build_py": BuildRecordingLibrary})
