#!/usr/bin/env python3
"""How large the macOS library is and what it makes the system do when it is loaded, held against the table
in bench/RESULTS.md.

usage: check_numbers.py LIBRARY [--write | --native | --results FILE]

The table may be off by a twentieth and a size by a page more, so that not every change of the library must
write it again; where it must, --write does that. --native: built by Xcode's tools, whose numbers are
others; they are only shown.
"""

import argparse
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path += [str(ROOT / "packaging/macos"), str(ROOT / "tools")]
import macho_reader
from results import RESULTS, read_parts, write_part

SIZE_LIMIT = 300_000  # bytes of one architecture
TOLERANCE = 0.05
PAGE = 16_384  # code and data are padded to whole pages, so one more instruction may cost that much
PART = "The library for macOS"
INTRODUCTION = """\
Written by `./dev macos numbers`: the file that ships, stripped and with its signatures, built by clang 19 and
lld 19 of Debian 12. `./dev macos inspection` ends with an error where one half is larger than its goal, and
where a number here is more than a twentieth away from the file it has built, a size a page more.

Binds and rebases are the places that the system fills in when it loads the file, initialisers the
functions that it calls then.
"""
COLUMNS = ["bytes", "goal", "met", "exports", "imports", "binds", "rebases", "initialisers"]


def numbers(image):
    binds, rebases = image.loader_fixups()
    imports = {(b.symbol, b.library) for b in binds if b.kind != "weak"}
    return {"bytes": len(image.data), "exports": len(image.exports()), "imports": len(imports),
            "binds": len(binds), "rebases": len(rebases), "initialisers": image.initialisers()}


def library_rows(path):
    """{row: {column: number}}; the whole file has a size only."""
    rows = {arch: numbers(image) for arch, image in macho_reader.load(path).items()}
    return {**rows, "universal": {"bytes": path.stat().st_size}}


def table(rows):
    lines = ["| | " + " | ".join(COLUMNS) + " |", "|---" * (len(COLUMNS) + 1) + "|"]
    for name, row in rows.items():
        cells = {column: f"{value:,}" for column, value in row.items()}
        if len(row) > 1:  # a half; the goal is one of each
            cells["goal"] = f"{SIZE_LIMIT:,}"
            cells["met"] = "yes" if row["bytes"] <= SIZE_LIMIT else "NO"
        lines.append(f"| {name} | " + " | ".join(cells.get(c, "") for c in COLUMNS) + " |")
    return "\n".join(lines) + "\n"


def recorded_rows(text):
    """The rows of a table of this kind."""
    rows = {}
    for line in re.findall(r"^\| ([a-z0-9_]+) \|(.*)\|$", text, re.MULTILINE):
        cells = dict(zip(COLUMNS, (cell.strip() for cell in line[1].split("|"))))
        rows[line[0]] = {column: int(cell.replace(",", "")) for column, cell in cells.items()
                         if column not in ("goal", "met") and cell}
    return rows


def allowed(name, column, value):
    pages = 0 if column != "bytes" else 2 if name == "universal" else 1
    return value * TOLERANCE + pages * PAGE


def differences(rows, recorded):
    for name, row in rows.items():
        for column, value in row.items():
            said = recorded.get(name, {}).get(column)
            if said is None:
                yield f"{name}: no {column} recorded, the file has {value:,}"
            elif abs(said - value) > allowed(name, column, value):
                yield f"{name}: {said:,} {column} recorded, the file has {value:,}"
    yield from (f"{name}: recorded, but not in the file" for name in recorded.keys() - rows.keys())


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("library", type=pathlib.Path)
    parser.add_argument("--write", action="store_true")
    parser.add_argument("--native", action="store_true")
    parser.add_argument("--results", type=pathlib.Path, default=RESULTS)
    options = parser.parse_args()
    rows = library_rows(options.library)
    print(table(rows), end="")
    if options.write:
        write_part(PART, f"{INTRODUCTION}\n{table(rows)}", options.results)
    if options.native:
        return 0
    recorded = recorded_rows(read_parts(options.results)[1].get(PART, ""))
    problems = list(differences(rows, recorded))
    if problems:
        print(f"{options.results.name} is out of date; ./dev macos numbers writes it:")
        print("\n".join("    " + text for text in problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
