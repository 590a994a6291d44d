#!/usr/bin/env python3
"""The library contains none of the strings that options.def and actions.def hold for the documentation.

usage: check_library_strings.py LIBRARY OPTION-TABLES
"""

import pathlib
import subprocess
import sys

# Strings of the library's own columns: if they were not found, the search would not work.
OWN_STRINGS = ["mergeinfotype", "hpscaler hpfwname hpmodelname hphwcid", "wrong edp isp mode!"]


def main():
    library = pathlib.Path(sys.argv[1]).read_bytes()
    printed = subprocess.run([sys.argv[2]], stdout=subprocess.PIPE, text=True, check=True).stdout
    strings = printed.split("== documentation strings\n", 1)[1].splitlines()
    found = [text for text in strings if text.encode() in library]
    missing = [text for text in OWN_STRINGS if text.encode() not in library]
    for text in found:
        print(f"in the library: {text}")
    for text in missing:
        print(f"not in the library: {text}")
    print(f"{len(strings)} documentation strings, {len(found)} in the library")
    return 1 if found or missing or len(strings) < 100 else 0


if __name__ == "__main__":
    sys.exit(main())
