#!/usr/bin/python3
"""What was found out about each desktop, one line of JSON per check.

usage: results.py add FILE DESKTOP SCREENS CHECK OUTCOME [DETAIL]
       results.py table FILE    prints what was found; fails if a check did, or if none passed
       results.py page FILE     prints it as docs/desktops.md
"""

import json
import pathlib
import sys

PASSED, FAILED, NOT_RUN = "passed", "failed", "not run"

X11 = "X server without hardware, its root window read"
TITLES = {
    "xfce": ("Xfce", X11),
    "plasma": ("KDE Plasma on X11", X11),
    "plasma-wayland": ("KDE Plasma on Wayland", "Headless KWin, its own screenshots"),
    "gnome": ("GNOME on Wayland", "Headless GNOME Shell, its own screenshots"),
    "gnome-plain": ("GNOME without extensions", "Headless GNOME Shell, its own screenshots"),
    "budgie": ("Budgie", X11),
    "cinnamon": ("Cinnamon", X11),
    "mate": ("MATE", X11),
    "lxqt": ("LXQt", X11),
    "sway": ("sway", "Headless sway, screenshots by grim"),
    "phoc": ("phoc, a wlroots compositor", "Headless phoc, screenshots by grim"),
    "phoc-xwayland": ("phoc, the program an X11 client", "Headless phoc, screenshots by grim"),
    "openbox-tint2": ("Openbox with the panel tint2", X11),
    "openbox": ("Openbox without a desktop", X11),
}
PAGE = """# Desktops

Written by `tests/desktops/results.py page` from what `./test --desktops` found; not to be edited.

The built program runs on each desktop as Debian packages it, headless, with one screen and with
two. *Yes* under one screen: "Apply" in the gallery puts the picture on the screen, and another one
after it; a damaged or missing file gives "Failed: ..." and leaves the screen alone. *Yes* under two
screens: the same on the main screen, while the other one keeps what it showed. What the screens
show is read from a pixel of each. *Hangs* and *is gone* tell what the program says when the part of
the desktop that paints was stopped or killed before "Apply"; *program is killed*, what becomes of a
picture it has set; a painter that is a process of its own is *started again*. *Primary screen* is the
second one, while another program has the keyboard. *Panel is late* when it is started after the
program. *Second start* is made while the window is closed. *While covered* by the window of another
program, which has the keyboard, the window is asked for by a second start, by a call over the bus and
by a click on the tray icon; all hand over a token that the desktop has given that other program, and
*without a token* tells of a second start that has none. Nothing here is claimed that was not run;
"not run" says why.

| Desktop | Package | One screen | Two screens | Primary screen | Painter hangs | Painter is gone | Program is killed | Tray icon | Panel restarted | Panel is late | Second start | Start while covered | Call while covered | Click while covered | Start without a token | Logout | Read how |
|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|
"""
CHECKS = ("painter hung", "painter gone", "program killed", "tray icon", "panel restarted",
          "panel late", "second start", "start while covered", "call while covered",
          "icon while covered", "start without token", "logout")
PICTURE_CHECKS = ("window", "picture", "next picture", "broken picture", "missing picture")


class NotRun(Exception):
    """A check that makes no sense on this desktop, and why."""


def add(file, desktop, screens, check, outcome, detail=""):
    line = json.dumps({"desktop": desktop, "screens": int(screens), "check": check,
                       "outcome": outcome, "detail": detail})
    with open(file, "a", encoding="utf-8") as results:
        results.write(line + "\n")


def read(file):
    return [json.loads(line) for line in pathlib.Path(file).read_text(encoding="utf-8").splitlines()]


def table(file):
    found = read(file)
    for line in found:
        print(f"{line['desktop']:<15} {line['screens']}  {line['check']:<15} {line['outcome']:<8} "
              f"{line['detail']}".rstrip())
    count = {outcome: sum(line["outcome"] == outcome for line in found)
             for outcome in (PASSED, FAILED, NOT_RUN)}
    print(", ".join(f"{number} {outcome}" for outcome, number in count.items()))
    return 1 if count[FAILED] or not count[PASSED] else 0


class Desktop:
    """What was found about one desktop, as cells of the page's table."""

    def __init__(self, found):
        self.found = {(line["screens"], line["check"]): line for line in found}

    def package(self):
        return next((line["detail"] for (_, check), line in self.found.items()
                     if check == "start" and line["outcome"] == PASSED), "")

    def pictures(self, screens):
        lines = [self.found.get((screens, check)) for check in PICTURE_CHECKS]
        if all(line and line["outcome"] == PASSED for line in lines):
            return "Yes"
        start = self.found.get((screens, "start"))
        if start and start["outcome"] == NOT_RUN:
            return f"not run: {start['detail']}"
        return next((cell(line) for line in lines if line and line["outcome"] == FAILED), "not run")

    def both(self, check):
        """One cell for both numbers of screens, two if they differ."""
        cells = [cell(self.found.get((screens, check))) for screens in (1, 2)]
        return cells[0] if cells[0] == cells[1] else f"{cells[0]}; with two screens: {cells[1]}"


def cell(line):
    if line is None:
        return "not run"
    # The sentence alone; what the bus added to it, and how long it took, differ each time.
    detail = line["detail"].split(" (after ")[0]
    detail = ": ".join(detail.split(": ")[:2]).replace("|", "\\|")
    if line["outcome"] == PASSED:
        return detail or "Yes"
    return f"**{FAILED}**: {line['check']}: {detail}" if line["outcome"] == FAILED else f"not run: {detail}"


def page(file):
    found = read(file)
    print(PAGE, end="")
    for name, (title, how) in TITLES.items():
        desktop = Desktop([line for line in found if line["desktop"] == name])
        cells = [title, desktop.package(), desktop.pictures(1), desktop.pictures(2),
                 cell(desktop.found.get((2, "primary screen"))), *map(desktop.both, CHECKS), how]
        print("| " + " | ".join(cells) + " |")


if __name__ == "__main__":
    match sys.argv[1:]:
        case ["add", file, desktop, screens, check, outcome, *detail]:
            add(file, desktop, screens, check, outcome, *detail)
        case ["table", file]:
            sys.exit(table(file))
        case ["page", file]:
            page(file)
        case _:
            sys.exit(__doc__)
