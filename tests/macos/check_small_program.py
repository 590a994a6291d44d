#!/usr/bin/env python3
"""A program that only the loader's tests have runs in the loader, starts itself again, and prints what is
expected.

usage: check_small_program.py PROGRAM EXPECTED LAUNCHER...
"""

import os
import pathlib
import subprocess
import sys

STATUS = 3


def main():
    program, expected, *launcher = sys.argv[1:]
    done = subprocess.run([*launcher, program], check=False, stdout=subprocess.PIPE, timeout=60,
                          env=dict(os.environ, MACHO_LAUNCHER=" ".join(launcher)))
    printed = done.stdout.decode("utf-8", "backslashreplace")
    assert done.returncode == STATUS, (done.returncode, printed)
    assert printed == pathlib.Path(expected).read_text(), printed
    print(printed, end="")


if __name__ == "__main__":
    main()
