#!/usr/bin/python3
"""The Flatpak in its sandbox on Xfce: it works with what it is permitted, and needs all of that."""

import subprocess

import onthebus
import sandboxed
import journey
from driver import GENERATE, SET
from sandboxed import Permissions
from sessionbus import has_owner
from waiting import wait_until


class InSandbox(journey.Journey):
    def setUp(self):
        super().setUp()
        self.program = sandboxed.Plenaura(self.home)
        self.addCleanup(self.program.end)

    def enter_key(self):
        self.program.menu_row("Settings...").click()
        self.program.type("Gemini API Key", "ok-png")
        [save] = wait_until(lambda: [node for node in self.program.look("push button", "Save")
                                     if self.program.is_enabled(node)], "Save to be enabled")
        self.program.act(save, "Press")
        self.program.find("label", "Saved in Keychain")


class WithItsPermissions(InSandbox):
    def test_from_the_first_key_to_the_first_picture(self):
        self.program.start()
        self.enter_key()
        self.assertEqual(self.program.key_file.read_bytes(), b'{"gemini":"ok-png"}')
        self.assertEqual(self.program.key_file.stat().st_mode & 0o777, 0o600)
        inside = str(self.home / "Library/Application Support/Plenaura/keys.json")
        self.assertEqual(self.program.look_inside("stat", "--format=%a", inside), "600")
        self.assertFalse((self.home / "Library").exists())

        self.program.end()
        self.program.start()
        self.program.generate("a calm sea at sunset")
        self.program.wait_status(SET)
        [picture] = self.program.images()
        self.assertEqual(self.desktop.backdrop(), str(picture))
        self.assert_on_desktop(picture)

    def test_a_second_start_shows_the_first_one(self):
        self.program.start()
        first = onthebus.process_id()
        self.program.close_window()
        wait_until(lambda: not self.program.windows(), "the window to close")
        second = subprocess.run(self.program.command(), env=self.program.surroundings(),
                                check=True, capture_output=True, text=True)
        self.assertEqual(second.stdout + second.stderr, "")
        self.program.find("push button", GENERATE)
        self.assertEqual(onthebus.process_id(), first)

    def test_little_of_the_home_is_seen(self):
        (self.home / "letter").write_text("private")
        (self.home / "Pictures").mkdir()
        (self.home / "Pictures/photo").write_text("private")
        self.assertEqual(self.program.look_inside("ls", str(self.home)), "Library\nPictures")
        self.assertEqual(self.program.look_inside("ls", str(self.home / "Pictures")), "Plenaura")


class NeedsEachPermission(InSandbox):
    """One by one is taken away, and what the manifest names beside it is lost."""

    # GNOME is where a window without Wayland is tried, and a graphics card is needed for its pixels.
    ELSEWHERE = {("sockets", "wayland"), ("devices", "dri")}

    def test_each(self):
        losses = {
            ("shared", "network"): self.no_picture_is_made,
            ("sockets", "fallback-x11"): self.no_window_comes,
            ("filesystems", "~/Pictures/Plenaura:create"): self.no_picture_is_kept,
            ("persistent", "Library"): self.no_key_is_kept,
            ("talk", "org.kde.StatusNotifierWatcher"): self.no_icon_is_in_the_tray,
            ("talk", "org.xfce.Xfconf"): self.no_picture_is_set,
            ("talk", "org.xfce.xfdesktop"): self.no_picture_is_set,
        }
        permissions = Permissions()
        self.assertEqual(permissions.all(), set(losses) | self.ELSEWHERE)
        for permission, loss in losses.items():
            with self.subTest(permission), permissions.without(*permission):
                self.program.put_keys(gemini="ok-png")
                loss()
            self.program.end()

    def generate(self):
        self.program.start()
        self.program.generate("a calm sea at sunset")

    def wait_failure(self, beginning):
        wait_until(lambda: [name for name in self.program.names("label")
                            if name.startswith(beginning)], beginning)

    def no_picture_is_made(self):
        self.generate()
        self.wait_failure("Network error: ")

    def no_window_comes(self):
        start = subprocess.run(self.program.command(), env=self.program.surroundings(), check=False,
                               capture_output=True, text=True)
        self.assertNotEqual(start.returncode, 0)
        self.assertIn("could not connect to display", start.stderr)

    def no_picture_is_kept(self):
        before = self.program.images()
        self.generate()
        # Where the picture lies in the sandbox, the desktop may be told all the same.
        wait_until(lambda: [name for name in self.program.names("label")
                            if name == SET or name.startswith("Failed")], "the end of the run")
        self.assertEqual(self.program.images(), before)

    def no_key_is_kept(self):
        self.program.key_file.unlink()
        self.program.start()
        self.enter_key()
        self.program.end()
        self.assertFalse(self.program.key_file.exists())

    def no_icon_is_in_the_tray(self):
        self.program.start()
        # It says on the bus that it is ready after it has looked for a tray.
        onthebus.application("ActivateAction", "none-of-the-actions", [])
        item = self.program.tray_item()
        # Those of earlier starts stay in the list.
        self.assertFalse(item and has_owner(item))

    def no_picture_is_set(self):
        self.generate()
        self.wait_failure("Failed: ")


if __name__ == "__main__":
    journey.main()
