#!/usr/bin/env python3
"""A test program, built for macOS, passes in the loader; all of it but the tests that the lists name.

usage: check_test_program.py LIST[;LIST...] PROGRAM LAUNCHER...
"""

import fnmatch
import os
import pathlib
import subprocess
import sys


def excluded_tests(lists, program):
    """Patterns of tests of this program, from rows "PROGRAM Suite.Test REASON"."""
    rows = [line.split() for path in lists for line in path.read_text().splitlines()
            if not line.startswith("#")]
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
    lists, program = [pathlib.Path(name) for name in sys.argv[1].split(";")], pathlib.Path(sys.argv[2])
    launcher = sys.argv[3:]
    command = [*launcher, str(program)]
    tests = list(tests_of(command))
    excluded = excluded_tests(lists, program.name.removeprefix("test_"))
    unknown = [pattern for pattern in excluded if not fnmatch.filter(tests, pattern)]
    if unknown:
        print(f"the lists name tests that {program.name} does not have: {', '.join(unknown)}")
        return 1
    done = subprocess.run([*command, "--gtest_brief=1", "--gtest_filter=-" + ":".join(excluded)],
                          env=dict(os.environ, GTEST_COLOR="no", MACHO_LAUNCHER=" ".join(launcher)),
                          check=False)
    left_out = {test for pattern in excluded for test in fnmatch.filter(tests, pattern)}
    print(f"{program.name}: {len(tests) - len(left_out)} of {len(tests)} tests run in the loader")
    return done.returncode


if __name__ == "__main__":
    sys.exit(main())
