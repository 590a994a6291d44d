#!/usr/bin/env python3
"""Writes the manual pages and the shell completion of ispctl from its own tables; --check only compares.

usage: command_pages.py [--check] --program PATH

PATH is a build of tools/command_tree.cpp, which prints the commands, their options and the options of the
library as JSON. The files are written into ispctl/man and ispctl/completion; an installation contains them.
"""

import argparse
import json
import pathlib
import subprocess
import sys

import completion_pages
import manual_pages
from tracked_files import ROOT, report


def pages(tree):
    """{path below ispctl/: text} of everything that is made from the tree."""
    made = {f"man/{name}": text for name, text in manual_pages.pages(tree).items()}
    made.update({f"completion/{name}": text for name, text in completion_pages.pages(tree).items()})
    return made


def stale(folder, made):
    """Names of files that differ from what is made, or that no command makes any more."""
    there = {str(path.relative_to(folder)) for part in ("man", "completion")
             for path in (folder / part).glob("*")}
    for name in sorted(there | set(made)):
        path = folder / name
        if not path.exists() or path.read_text() != made.get(name):
            yield name


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--program", type=pathlib.Path, required=True)
    options = parser.parse_args()
    tree = json.loads(subprocess.run([options.program], check=True, capture_output=True).stdout)
    folder, made = ROOT / "ispctl", pages(tree)
    differing = list(stale(folder, made))
    if options.check:
        return report("manual pages and completion", [
            f"ispctl/{name} is out of date: run tools/command_pages.py --program {options.program}"
            for name in differing])
    for name in differing:
        path = folder / name
        if name in made:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(made[name])
        else:
            path.unlink()
    return 0


if __name__ == "__main__":
    sys.exit(main())
