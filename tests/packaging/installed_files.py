#!/usr/bin/python3
"""What `cmake --install` puts where, and whether desktops will understand it."""

import configparser
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

import installation  # noqa: E402

ODD_NAME = "an \"odd\" $place `of` ;=&"


def key_file(path):
    parser = configparser.ConfigParser(interpolation=None, strict=True)
    parser.optionxform = str
    parser.read(path)
    return parser


class InstalledFiles(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.installed = BUILD.install(installation.new_prefix(cls))
        cls.oddly_installed = BUILD.install(installation.new_prefix(cls, ODD_NAME))

    def assert_quiet(self, *command):
        """The checker is content and has nothing to remark."""
        answer = subprocess.run(command, capture_output=True, text=True, check=False)
        self.assertEqual((answer.returncode, answer.stdout + answer.stderr), (0, ""), command)

    def test_nothing_is_missing_and_nothing_is_too_much(self):
        self.assertEqual(self.installed.found(), self.installed.expected())

    def test_a_staged_installation_names_the_final_place(self):
        stage = installation.new_prefix(type(self), "stage")
        BUILD.install("/opt/plenaura", stage=stage)
        service = stage / "opt/plenaura" / self.installed.service_file.relative_to(
            self.installed.prefix)
        self.assertEqual(key_file(service)["D-BUS Service"]["Exec"],
                         str("/opt/plenaura" / self.installed.program.relative_to(
                             self.installed.prefix)))

    def test_a_relative_prefix_becomes_an_absolute_command(self):
        folder = installation.new_prefix(type(self)).parent
        subprocess.run(["cmake", "--install", BUILD.folder, "--prefix", "here"], check=True,
                       stdout=subprocess.DEVNULL, cwd=folder)
        service = folder / "here" / self.installed.service_file.relative_to(self.installed.prefix)
        self.assertEqual(key_file(service)["D-BUS Service"]["Exec"],
                         str(folder / "here" / self.installed.program.relative_to(
                             self.installed.prefix)))

    def test_the_bus_starts_the_installed_program(self):
        for installed in (self.installed, self.oddly_installed):
            service = GLib.KeyFile()
            service.load_from_file(str(installed.service_file), GLib.KeyFileFlags.NONE)
            self.assertEqual(service.get_string("D-BUS Service", "Name"), installation.ID)
            _, command = GLib.shell_parse_argv(service.get_string("D-BUS Service", "Exec"))
            self.assertEqual(command, [str(installed.program)])

    def test_a_launcher_starts_the_installed_program(self):
        for installed in (self.installed, self.oddly_installed):
            launcher = Gio.DesktopAppInfo.new_from_filename(str(installed.desktop_file))
            self.assertIsNotNone(launcher, "Gio refuses the file or does not find the program")
            _, command = GLib.shell_parse_argv(launcher.get_commandline())
            self.assertEqual(command, [str(installed.program)])

    def test_a_percent_sign_in_the_prefix_is_no_field_code(self):
        installed = BUILD.install(installation.new_prefix(type(self), "100%u"))
        command = key_file(installed.desktop_file)["Desktop Entry"]["Exec"]
        self.assertEqual(command, '"{}"'.format(str(installed.program).replace("%", "%%")))

    def test_a_launcher_offers_what_the_tray_menu_offers(self):
        launcher = Gio.DesktopAppInfo.new_from_filename(str(self.installed.desktop_file))
        self.assertEqual({action: launcher.get_action_name(action)
                          for action in launcher.list_actions()},
                         {"generate": "Generate Now", "settings": "Settings...", "quit": "Quit"})
        self.assertTrue(launcher.get_boolean("DBusActivatable"))

    def test_the_desktop_files_are_valid(self):
        for installed in (self.installed, self.oddly_installed):
            self.assert_quiet("desktop-file-validate", installed.desktop_file,
                              installed.autostart_file)

    def test_the_metainfo_is_valid(self):
        answer = subprocess.run(
            ["appstreamcli", "validate", "--no-net", "--no-color", self.installed.metainfo],
            capture_output=True, text=True, check=False)
        self.assertEqual(answer.returncode, 0, answer.stdout)
        self.assertNotRegex(answer.stdout, r"(?m)^[EWI]: ")

    def test_the_metainfo_is_of_this_application(self):
        component = xml.etree.ElementTree.parse(self.installed.metainfo).getroot()
        self.assertEqual(component.findtext("id"), installation.ID)
        self.assertEqual(component.findtext("launchable"), self.installed.desktop_file.name)
        self.assertEqual(component.findtext("provides/binary"), self.installed.program.name)
        self.assertEqual(component.findtext("provides/dbus"), installation.ID)
        desktop_entry = key_file(self.installed.desktop_file)["Desktop Entry"]
        self.assertEqual(component.findtext("name"), desktop_entry["Name"])
        self.assertEqual(component.findtext("summary"), desktop_entry["Comment"])

    def test_every_file_tells_the_same_version(self):
        component = xml.etree.ElementTree.parse(self.installed.metainfo).getroot()
        changelog = (installation.ROOT / "packaging/debian/changelog").read_text()
        manual = self.installed.manual_page.read_text()
        self.assertEqual(
            (component.find("releases/release").get("version"),
             re.match(r"plenaura \((.*?)\)", changelog).group(1),
             re.search(r'(?m)^\.Os "Plenaura (.*)"$', manual).group(1)),
            (BUILD.version,) * 3)

    def test_the_manual_page_has_no_warnings(self):
        self.assert_quiet("mandoc", "-T", "lint", "-W", "warning", self.installed.manual_page)
        self.assert_quiet("groff", "-mandoc", "-ww", "-z", self.installed.manual_page)

    def test_the_manual_names_files_that_are_there(self):
        self.assertIn(str(self.installed.autostart_file), self.installed.manual_page.read_text())

    def test_the_icons_have_their_sizes_and_show_something(self):
        for size, path in self.installed.pngs.items():
            corner, middle = "%[fx:p{0,0}.a]", "%[fx:p{w/2,h/2}.a]"
            seen = subprocess.run(
                ["convert", path, "-format", f"%w %h {corner} {middle}", "info:"],
                check=True, capture_output=True, text=True).stdout
            self.assertEqual(seen, f"{size} {size} 0 1", path)


if __name__ == "__main__":
    BUILD = installation.build_from(sys.argv)
    unittest.main(verbosity=2)
