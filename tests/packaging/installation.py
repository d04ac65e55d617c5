"""Installs a build folder with `cmake --install` into a prefix that is thrown away."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
ID = "com.tarnel.Plenaura"
ICON_SIZES = (48, 64, 96, 128, 256)


class Build:
    """A configured and built build folder."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()
        lines = (self.folder / "CMakeCache.txt").read_text().splitlines()
        found = (re.fullmatch(r"(\w+):\w+=(.*)", line) for line in lines)
        self.cache = dict(match.groups() for match in found if match)
        self.configuration = self.cache["CMAKE_BUILD_TYPE"]
        self.version = self.cache["CMAKE_PROJECT_VERSION"]

    def install(self, prefix, stage=None):
        environment = {**os.environ, "DESTDIR": str(stage)} if stage else None
        subprocess.run(["cmake", "--install", self.folder, "--prefix", prefix], check=True,
                       stdout=subprocess.DEVNULL, env=environment)
        return Installation(prefix, self.cache)


class Installation:
    """Where everything lies below a prefix."""

    def __init__(self, prefix, cache):
        self.prefix = pathlib.Path(prefix)
        self.programs = self.prefix / cache["CMAKE_INSTALL_BINDIR"]
        self.libraries = self.prefix / cache["CMAKE_INSTALL_LIBDIR"]
        data = self.prefix / (cache["CMAKE_INSTALL_DATADIR"] or
                              cache["CMAKE_INSTALL_DATAROOTDIR"])
        self.manual = self.prefix / (cache["CMAKE_INSTALL_MANDIR"] or data / "man")
        self.program = self.programs / "plenaura"
        self.windows_module = self.libraries / "plenaura/plenaura-windows.so"
        self.desktop_file = data / "applications" / f"{ID}.desktop"
        self.service_file = data / "dbus-1/services" / f"{ID}.service"
        self.metainfo = data / "metainfo" / f"{ID}.metainfo.xml"
        self.autostart_file = data / "plenaura/autostart" / f"{ID}.desktop"
        self.manual_page = self.manual / "man1/plenaura.1"
        icons = data / "icons/hicolor"
        self.drawings = [icons / "scalable/apps" / f"{ID}.svg",
                         icons / "symbolic/apps" / f"{ID}-symbolic.svg"]
        self.pngs = {size: icons / f"{size}x{size}/apps/{ID}.png" for size in ICON_SIZES}

    def expected(self):
        return {self.program, self.windows_module, self.desktop_file, self.service_file,
                self.metainfo, self.autostart_file, self.manual_page, *self.drawings,
                *self.pngs.values()}

    def found(self):
        return {path for path in self.prefix.rglob("*") if not path.is_dir()}

    def binaries(self):
        """Every program and library, known by its first bytes."""
        return sorted(path for path in self.found() if path.read_bytes()[:4] == b"\x7fELF")


def build_from(arguments):
    """The build folder, named as the first argument of a test."""
    if len(arguments) < 2:
        sys.exit(f"usage: {arguments[0]} BUILD [TEST...]")
    return Build(arguments.pop(1))


def new_prefix(case, name="prefix"):
    """A folder that is removed after the tests of a class."""
    folder = tempfile.TemporaryDirectory(prefix="installed-")
    case.addClassCleanup(folder.cleanup)
    return pathlib.Path(folder.name) / name
