#!/usr/bin/python3
"""Whether every installed program and library carries the usual protections."""

import json
import platform
import re
import subprocess
import sys
import unittest

import installation


def readelf(path, *options):
    return subprocess.run(["readelf", "--wide", *options, path], check=True, text=True,
                          capture_output=True, env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"}).stdout


class Hardening(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.installed = BUILD.install(installation.new_prefix(cls))
        cls.binaries = cls.installed.binaries()

    def for_each(self, check):
        self.assertLessEqual({self.installed.program, self.installed.windows_module},
                             set(self.binaries))
        for binary in self.binaries:
            with self.subTest(binary=binary.name):
                check(binary)

    def test_the_program_runs_at_any_address(self):
        self.assertRegex(readelf(self.installed.program, "--dynamic"), r"FLAGS_1.*\bPIE\b")
        self.for_each(lambda binary: self.assertRegex(
            readelf(binary, "--file-header"), r"Type:\s+DYN\b"))

    def test_relocations_are_read_only_from_the_start(self):
        def check(binary):
            self.assertRegex(readelf(binary, "--segments"), r"(?m)^\s+GNU_RELRO\s")
            dynamic = readelf(binary, "--dynamic")
            self.assertRegex(dynamic, r"FLAGS_1.*\bNOW\b")
            self.assertNotIn("TEXTREL", dynamic)
        self.for_each(check)

    def test_nothing_is_writable_and_executable(self):
        def check(binary):
            segments = re.findall(r"(?m)^\s+([A-Z_]+)(?:\s+0x[0-9a-f]+){5}\s+([RWE ]{3})\s",
                                  readelf(binary, "--segments"))
            self.assertIn("GNU_STACK", dict(segments))
            for segment, flags in segments:
                self.assertFalse({"W", "E"} <= set(flags), (segment, flags))
        self.for_each(check)

    def test_overrun_stacks_are_noticed(self):
        self.for_each(lambda binary: self.assertIn(
            " __stack_chk_fail", readelf(binary, "--dyn-syms")))

    def test_libraries_are_sought_in_no_build_folder(self):
        def check(binary):
            for path in re.findall(r"R(?:UN)?PATH.*\[(.*)\]", readelf(binary, "--dynamic")):
                for folder in path.split(":"):
                    self.assertTrue(folder.startswith("$ORIGIN"), folder)
        self.for_each(check)

    def test_sources_are_compiled_with_fortified_library_calls(self):
        """A program without a call to fortify shows nothing of it, so its compilation is asked."""
        if BUILD.configuration == "Debug":
            self.skipTest("fortification needs optimisation")
        commands = json.loads((BUILD.folder / "compile_commands.json").read_text())
        own = [command for command in commands
               if command["file"].startswith(f"{installation.ROOT}/src/")]
        self.assertTrue(own)
        for command in own:
            last = re.findall(r"-[UD]_FORTIFY_SOURCE\S*", command["command"])[-1:]
            self.assertIn(last, (["-D_FORTIFY_SOURCE=2"], ["-D_FORTIFY_SOURCE=3"]),
                          command["file"])
            self.assertRegex(command["command"], r" -O[123s]\b", command["file"])

    @unittest.skipUnless(platform.machine() == "x86_64", "only these processors have it")
    def test_jumps_and_returns_are_marked_for_the_processor(self):
        """Debian's start files carry no mark, so no whole program does; its functions are asked."""
        start_files = {"_init", "_start", "_fini"}

        def check(binary):
            functions = {
                name: int(address, 16) for address, name in re.findall(
                    r"(?m)^\s*\d+: ([0-9a-f]{16})\s+\d+ FUNC\s+(?:GLOBAL|WEAK)\s+\w+\s+\d+ (\S+)$",
                    readelf(binary, "--symbols")) if name not in start_files}
            code = subprocess.run(["objdump", "--disassemble", "--no-show-raw-insn", binary],
                                  check=True, text=True, capture_output=True).stdout
            marked = {int(address, 16)
                      for address in re.findall(r"(?m)^\s*([0-9a-f]+):\s+endbr64", code)}
            self.assertTrue(functions)
            self.assertEqual([name for name, address in functions.items()
                              if address not in marked], [])
        self.for_each(check)


if __name__ == "__main__":
    BUILD = installation.build_from(sys.argv)
    unittest.main(verbosity=2)
