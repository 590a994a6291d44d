#!/usr/bin/env python3
"""What is written in Swift can be parsed, and the parser finds an error where there is one. It knows the
syntax alone: neither types nor names are checked.

usage: check_swift.py PARSER FILE...
"""

import pathlib
import re
import subprocess
import sys
import tempfile

# Each takes something away that no Swift can do without.
SPOILT = ((r"\)\s*$", ""), (r"\blet\b", "let let"), (r"\(", "(("))


def parses(parser, path):
    done = subprocess.run([parser, path], check=False, text=True, stdout=subprocess.PIPE)
    assert done.returncode in (0, 1), f"{path}: the parser ended with {done.returncode}"
    return done.returncode == 0, done.stdout


def main():
    parser, *files = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        spoilt = pathlib.Path(folder) / "spoilt.swift"
        for name in files:
            good, shown = parses(parser, name)
            assert good, f"{name}:\n{shown}"
            text = re.sub(r"//.*", "", pathlib.Path(name).read_text())
            for pattern, replacement in SPOILT:
                worse, count = re.subn(pattern, replacement, text, count=1, flags=re.MULTILINE)
                assert count == 1, f"{name}: nothing to spoil by {pattern}"
                spoilt.write_text(worse)
                assert not parses(parser, spoilt)[0], f"{name} without sense is accepted ({pattern})"
    print(f"{len(files)} files in Swift: the syntax is right, {len(SPOILT)} errors in each are found")


if __name__ == "__main__":
    main()
