#!/usr/bin/python3
"""The catalogues hold the texts that stand in the sources: no fewer, no others."""

import pathlib
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

PROJECT = pathlib.Path(__file__).resolve().parents[2]


def messages(catalogue):
    """Context, text, and whether it has plural forms, of every message."""
    return {(context.findtext("name"), message.findtext("source"), message.get("numerus", "no"))
            for context in ElementTree.parse(catalogue).iter("context")
            for message in context.iter("message")}


class UpToDate(unittest.TestCase):
    def test_catalogues_hold_the_texts_of_the_sources(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([PROJECT / "scripts/update-translations", "--into", folder], check=True)
            fresh = sorted(pathlib.Path(folder).glob("*.ts"))
            self.assertGreater(len(messages(fresh[0])), 50)
            for catalogue in fresh:
                kept = messages(PROJECT / "translations" / catalogue.name)
                self.assertEqual(kept, messages(catalogue),
                                 f"{catalogue.name}: scripts/update-translations was not run")

    def test_every_catalogue_is_built_in(self):
        built_in = (PROJECT / "src/app/CMakeLists.txt").read_text()
        for catalogue in (PROJECT / "translations").glob("*.ts"):
            self.assertIn(f"/translations/{catalogue.name}\"", built_in)


if __name__ == "__main__":
    unittest.main()
