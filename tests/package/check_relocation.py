#!/usr/bin/env python3
"""A moved installation does not look back: no file names the place it was first installed to, and no
text file the source folder.

usage: check_relocation.py MOVED FIRST-PREFIX SOURCE-FOLDER
"""

import pathlib
import sys


def main():
    moved, first, source = pathlib.Path(sys.argv[1]), sys.argv[2].encode(), sys.argv[3].encode()
    problems = []
    for path in sorted(moved.rglob("*")):
        if path.is_symlink():
            if pathlib.Path(path.readlink()).is_absolute():
                problems.append(f"{path}: an absolute link")
            if not path.exists():
                problems.append(f"{path}: a link to nothing")
        elif path.is_file():
            data = path.read_bytes()
            if first in data or (b"\0" not in data and source in data):
                problems.append(f"{path}: names a folder of the build")
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
