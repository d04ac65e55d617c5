#!/usr/bin/python3
"""Whether every promise of SECURITY.md names the tests that are labelled with it, and no others.

Usage: promises.py BUILD SECURITY.md
"""

import json
import re
import subprocess
import sys

LABEL = "promise:"


def promised(text):
    """The pairs of promise and test in the tables: | K1 | what | `test`, `test` | figures |"""
    for line in text.splitlines():
        row = re.match(r"\| *([A-Z]\d+) *\|[^|]*\|([^|]*)\|", line)
        if row:
            tests = re.findall(r"`([^`]+)`", row[2])
            # A promise without a test is a pair that no build can have.
            yield from ((row[1], test) for test in tests or ["no test at all"])


def labelled(build):
    """The same pairs as the build has them."""
    listing = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], check=True,
                             text=True, capture_output=True).stdout
    for test in json.loads(listing)["tests"]:
        for entry in test["properties"]:
            if entry["name"] == "LABELS":
                yield from ((label.removeprefix(LABEL), test["name"])
                            for label in entry["value"] if label.startswith(LABEL))


def main(build, page):
    with open(page, encoding="utf-8") as file:
        promises = set(promised(file.read()))
    labels = set(labelled(build))
    for promise, test in sorted(promises - labels):
        print(f"{page} names for {promise}: {test}; but there is no such test with that label")
    for promise, test in sorted(labels - promises):
        print(f"{test} is labelled {LABEL}{promise}; but {page} does not name it there")
    return 0 if promises and promises == labels else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
