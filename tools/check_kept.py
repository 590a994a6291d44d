#!/usr/bin/env python3
"""Sees that the test exists which each KEPT comment names: a TEST or the title of a black-box case."""

import re
import sys

from kept import all_kept
from tracked import report, tracked_files, tracked_texts

TEST = re.compile(r"\bTEST(?:_F|_P)?\(\s*\w+,\s*(\w+)\s*\)")
CASE_SUFFIX = ".case"


def test_names():
    names = set()
    for name, text in tracked_texts(".cpp"):
        if name.startswith("tests/"):
            names.update(TEST.findall(text))
    for name in tracked_files():
        if name.startswith("tests/blackbox/") and name.endswith(CASE_SUFFIX):
            names.add(name.rsplit("/", 1)[1][: -len(CASE_SUFFIX)])
    return names


def main():
    kept, problems = all_kept()
    names = test_names()
    problems += [f"{entry.place}: no test is called {entry.test}"
                 for entry in kept if entry.test not in names]
    return report(f"kept ({len(kept)} comments)", problems)


if __name__ == "__main__":
    sys.exit(main())
