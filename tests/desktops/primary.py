"""Which screen gets the picture where the program has no window with the keyboard."""

from gi.repository import GLib
from results import NotRun
from screens import RED
from sessionbus import call, has_owner
from waiting import wait_until

DISPLAYS = "org.gnome.Mutter.DisplayConfig"
DISPLAYS_PATH = "/org/gnome/Mutter/DisplayConfig"
FOR_THIS_SESSION = 1
PRIMARY = 4


class PrimaryScreenCheck:
    """The part of the checks that is about the primary screen."""

    def primary_screen(self):
        """The second screen is made the primary one, which programs on Wayland are not told."""
        self.need(self.picture)
        if self.arguments.screens < 2:
            raise NotRun("There is one screen")
        if not has_owner(DISPLAYS):
            raise NotRun("It cannot be changed here")
        make_primary(1)
        try:
            with self.covered():
                self.apply("red.png")
                self.wait_new_status()
            self.expect_set([self.shown[0], RED])
        finally:
            make_primary(0)
        self.shown[1] = RED
        return "Gets the picture"


def make_primary(number):
    """Counted from the left."""
    serial, monitors, screens, _ = call(DISPLAYS, DISPLAYS_PATH, DISPLAYS, "GetCurrentState")
    modes = {connector: next(mode[0] for mode in its_modes if mode[6].get("is-current"))
             for (connector, *_), its_modes, _ in monitors}
    screens = [(x, y, scale, transform, position == number,
                [(output[0], modes[output[0]], {}) for output in outputs])
               for position, (x, y, scale, transform, _, outputs, _) in enumerate(sorted(screens))]
    call(DISPLAYS, DISPLAYS_PATH, DISPLAYS, "ApplyMonitorsConfig",
         GLib.Variant("(uua(iiduba(ssa{sv}))a{sv})", (serial, FOR_THIS_SESSION, screens, {})))
    wait_until(lambda: primary() == number, "the other primary screen")


def primary():
    _, _, screens, _ = call(DISPLAYS, DISPLAYS_PATH, DISPLAYS, "GetCurrentState")
    return [screen[PRIMARY] for screen in sorted(screens)].index(True)
