"""Reads what the application bundle is made of: macbundletest.py FOLDER VERSION

FOLDER holds the Info.plist and the icon set as the build made them."""

import pathlib
import plistlib
import struct
import sys
import unittest

ROOT = pathlib.Path(__file__).parents[2]
FOLDER = pathlib.Path(sys.argv[1])
VERSION = sys.argv[2]


class InfoPlist(unittest.TestCase):
    def setUp(self):
        self.info = plistlib.loads((FOLDER / "Info.plist").read_bytes())

    def test_names_the_program_as_every_other_platform_does(self):
        self.assertEqual(self.info["CFBundleIdentifier"], "com.tarnel.Plenaura")
        main = (ROOT / "src/app/main.cpp").read_text()
        self.assertIn(f'setDesktopFileName(u"{self.info["CFBundleIdentifier"]}"_s)', main)
        self.assertIn(f'setApplicationName(u"{self.info["CFBundleName"]}"_s)', main)

    def test_is_of_this_version(self):
        self.assertEqual(self.info["CFBundleShortVersionString"], VERSION)
        self.assertEqual(self.info["CFBundleVersion"], VERSION)

    def test_names_the_files_that_the_build_makes(self):
        build = (ROOT / "packaging/macos/CMakeLists.txt").read_text()
        self.assertIn(f'OUTPUT_NAME {self.info["CFBundleExecutable"]}\n', build)
        self.assertIn(f'/{self.info["CFBundleIconFile"]}.icns"', build)

    def test_lives_in_the_menu_bar_and_not_in_the_dock(self):
        self.assertIs(self.info["LSUIElement"], True)

    def test_draws_in_full_resolution(self):
        self.assertIs(self.info["NSHighResolutionCapable"], True)

    def test_has_a_category(self):
        self.assertEqual(
            self.info["LSApplicationCategoryType"], "public.app-category.graphics-design")

    def test_leaves_no_gap_unfilled(self):
        for key, value in self.info.items():
            self.assertNotIn("@", str(value), key)
            self.assertNotEqual(value, "", key)


class Entitlements(unittest.TestCase):
    def test_allow_nothing_but_run_time_compilation_and_keep_the_home_folder(self):
        path = ROOT / "packaging/macos/Plenaura.entitlements"
        self.assertEqual(
            plistlib.loads(path.read_bytes()), {"com.apple.security.cs.allow-jit": True})


class IconSet(unittest.TestCase):
    def test_has_every_size_once_and_twice(self):
        expected = {}
        for size in (16, 32, 128, 256, 512):
            expected[f"icon_{size}x{size}.png"] = (size, size)
            expected[f"icon_{size}x{size}@2x.png"] = (2 * size, 2 * size)
        found = {
            picture.name: struct.unpack(">II", picture.read_bytes()[16:24])
            for picture in (FOLDER / "Plenaura.iconset").iterdir()
        }
        self.assertEqual(found, expected)

    def test_is_of_pictures_with_transparency(self):
        for picture in (FOLDER / "Plenaura.iconset").iterdir():
            content = picture.read_bytes()
            self.assertEqual(content[:8], b"\x89PNG\r\n\x1a\n", picture.name)
            self.assertEqual(content[25], 6, picture.name)  # Colour and alpha.


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
