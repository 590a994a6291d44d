#!/usr/bin/env python3
"""An installation consists of exactly the promised files.

usage: check_files.py PREFIX LIST LIBRARY-NAME PART...

The list holds one path a line, {library} standing for the library's file name; a line in front of
which a part stands in brackets counts only when that part was built.
"""

import pathlib
import re
import sys


def promised(path, library, parts):
    for line in pathlib.Path(path).read_text().splitlines():
        match = re.match(r"(?:\[(\w+)\]\s+)?([^#\s]\S*)$", line)
        if match and (match.group(1) is None or match.group(1) in parts):
            yield match.group(2).replace("{library}", library)


def main():
    prefix = pathlib.Path(sys.argv[1])
    expected = set(promised(sys.argv[2], sys.argv[3], sys.argv[4:]))
    found = {str(path.relative_to(prefix)) for path in prefix.rglob("*")
             if path.is_symlink() or not path.is_dir()}
    # CMake names this file after the build type.
    found = {re.sub(r"Targets-\w+\.cmake$", "Targets-CONFIG.cmake", name) for name in found}
    for name in sorted(expected - found):
        print(f"missing: {name}")
    for name in sorted(found - expected):
        print(f"not promised: {name}")
    print(f"{len(found)} files")
    return 0 if found == expected else 1


if __name__ == "__main__":
    sys.exit(main())
