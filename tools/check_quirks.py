#!/usr/bin/env python3
"""Sees that the test exists which each QUIRK comment names: a TEST or the title of a black-box case."""

import re
import sys

from quirk_comments import all_kept
from tracked_files import report, tracked_texts

TEST = re.compile(r"\b(?:TYPED_)?TEST(?:_F|_P)?\(\s*\w+,\s*(\w+)\s*\)")
CASE = re.compile(r"^case: (\w+)", re.MULTILINE)


def test_names():
    names = set()
    for name, text in tracked_texts(".cpp"):
        if name.startswith("tests/"):
            names.update(TEST.findall(text))
    for name, text in tracked_texts(".cases"):
        names.update(CASE.findall(text))
    return names


def main():
    kept, problems = all_kept()
    names = test_names()
    problems += [f"{entry.place}: no test is called {entry.test}"
                 for entry in kept if entry.test not in names]
    return report(f"quirks ({len(kept)} comments)", problems)


if __name__ == "__main__":
    sys.exit(main())
