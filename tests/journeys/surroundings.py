"""What the program finds around it: a private desktop, and the local image service."""

import json
import os
import pathlib
import shutil
import subprocess
import tempfile

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from sessionbus import call, has_owner  # noqa: E402
from waiting import Process, wait_until  # noqa: E402

SCREEN = (1400, 900)


class Desktop:
    """A real window manager, a real desktop painter, and a small tray."""

    def __init__(self, accessible=True):
        os.environ.setdefault("XDG_CURRENT_DESKTOP", "XFCE")
        os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        os.environ["QT_QUICK_BACKEND"] = "software"
        self.tray = self.painter = None
        self.window_manager = Process(["xfwm4", "--compositor=off"], stderr=subprocess.DEVNULL)
        self.start_painter()
        self.start_tray()
        wait_until(self.backdrop, "xfdesktop knowing its monitor")
        if accessible:
            # Any call wakes the accessibility bus, which takes a moment.
            wait_until(lambda: Atspi.get_desktop(0) is not None, "the accessibility bus")

    def start_painter(self):
        self.painter = Process(["xfdesktop"], stderr=subprocess.DEVNULL)
        wait_until(lambda: has_owner("org.xfce.xfdesktop"), "xfdesktop on the bus")

    def start_tray(self):
        self.tray = Process([pathlib.Path(__file__).with_name("tray_watcher.py")])
        wait_until(lambda: has_owner("org.kde.StatusNotifierWatcher"), "the tray")

    def end_tray(self):
        self.tray.end()
        wait_until(lambda: not has_owner("org.kde.StatusNotifierWatcher"), "the tray's end")

    def end(self):
        for process in (self.tray, self.painter, self.window_manager):
            process.end()

    @staticmethod
    def backdrop():
        """The picture that the desktop's settings name, or nothing before its first start."""
        try:
            (properties,) = call("org.xfce.Xfconf", "/org/xfce/Xfconf", "org.xfce.Xfconf",
                                 "GetAllProperties",
                                 GLib.Variant("(ss)", ("xfce4-desktop", "/backdrop")))
        except GLib.Error:
            return None
        pictures = [value for name, value in properties.items()
                    if name.endswith("/workspace0/last-image")]
        return pictures[0] if pictures else None

    @staticmethod
    def screenshot(path):
        subprocess.run(["import", "-window", "root", str(path)], check=True)

    @staticmethod
    def show_bare(bare):
        """Hides all windows, or shows them again."""
        wait_until(lambda: subprocess.run(["wmctrl", "-k", "on" if bare else "off"], check=False,
                                          stderr=subprocess.DEVNULL).returncode == 0,
                   "the window manager")


def difference(screenshot, picture, size=SCREEN):
    """How far a screenshot is from the picture scaled to cover the screen; 0 equal, 1 opposite."""
    area = f"{size[0]}x{size[1]}"
    answer = subprocess.run(
        ["convert", str(screenshot),
         "(", str(picture), "-resize", f"{area}^", "-gravity", "center", "-extent", area, ")",
         "-alpha", "off", "-metric", "RMSE", "-compare", "-format", "%[distortion]", "info:"],
        capture_output=True, text=True, check=True)
    return float(answer.stdout)


class ImageService:
    """The local image service, with a record of all it was asked."""

    def __init__(self, binaries, record=None, port=None):
        self.folder = pathlib.Path(record or tempfile.mkdtemp(prefix="requests-"))
        self.folder.mkdir(parents=True, exist_ok=True)
        command = [binaries / "imageservice", "--record", self.folder]
        if port is not None:
            command += ["--port", str(port)]
        self.process = Process(command, stdout=subprocess.PIPE, text=True)
        line = self.process.child.stdout.readline()
        if "listening" not in line:
            raise AssertionError("the image service did not start: is its port taken?")

    def requests(self):
        return [json.loads(path.read_text()) for path in sorted(self.folder.glob("*.json"))]

    def end(self):
        self.process.end()
        shutil.rmtree(self.folder, ignore_errors=True)
