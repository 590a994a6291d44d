#!/usr/bin/env python3
"""The library's unit tests, built for macOS, pass in the loader; all but those that the list names.

usage: check_unit.py PROGRAM LIST LAUNCHER...
"""

import fnmatch
import os
import pathlib
import subprocess
import sys


def excluded_tests(path, program):
    """Patterns of tests of this program, from rows "PROGRAM Suite.Test REASON"."""
    rows = [line.split() for line in path.read_text().splitlines() if not line.startswith("#")]
    return [row[1] for row in rows if row and row[0] == program]


def tests_of(command):
    listed = subprocess.run([*command, "--gtest_list_tests"], check=True, stdout=subprocess.PIPE, text=True)
    suite = ""
    for line in listed.stdout.splitlines():
        name = line.split("#")[0].strip()
        if line.startswith(" "):
            yield suite + name
        elif name.endswith("."):
            suite = name


def main():
    program, exclusions = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    command = [*sys.argv[3:], str(program)]
    tests = list(tests_of(command))
    excluded = excluded_tests(exclusions, program.name.removeprefix("test_"))
    unknown = [pattern for pattern in excluded if not fnmatch.filter(tests, pattern)]
    if unknown:
        print(f"{exclusions.name} names tests that {program.name} does not have: {', '.join(unknown)}")
        return 1
    done = subprocess.run([*command, "--gtest_brief=1", "--gtest_filter=-" + ":".join(excluded)],
                          env=dict(os.environ, GTEST_COLOR="no"), check=False)
    left_out = {test for pattern in excluded for test in fnmatch.filter(tests, pattern)}
    print(f"{program.name}: {len(tests) - len(left_out)} of {len(tests)} tests run in the loader")
    return done.returncode


if __name__ == "__main__":
    sys.exit(main())
