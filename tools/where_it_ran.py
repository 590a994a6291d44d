#!/usr/bin/env python3
"""The table of docs/macos.md that says what was built for which system, and where it ran.

usage: where_it_ran.py [--check | --write]

A cell says what was done if the results of the command that does it are there and say so; a result that says
otherwise makes it "no". Without results of its own a cell stays as it is, because no command does everything.
Only compares: ends with 1 if the page says anything else. --write renews the page. --check reads no results: it
compares the page with the table below, and the table with the commands.
"""

import platform
import re
import sys
import xml.etree.ElementTree
from collections import namedtuple

from figures import read_figures, write_figures
from tracked_files import ROOT, report

sys.path.insert(0, str(ROOT / "packaging/macos"))
import macho_reader

PAGE = ROOT / "docs/macos.md"
FIGURES = "where it ran"
NO = "no"
SYSTEMS = ("Linux x86_64", "macOS x86_64", "macOS arm64")
PARTS = ("library", "virtual scaler", "`ispctl`", "examples", "self-test")
COLUMNS = ("built", "ran in the loader", "ran on the real thing")
BUILT, LOADER, REAL = COLUMNS

# Evidence: the command, the file with its results, what must have passed in it, and words for the page.
Evidence = namedtuple("Evidence", "part systems column command results passed words")
MACS = SYSTEMS[1:]
LINUX = SYSTEMS[:1]
ALL = ""
ROWS = (
    Evidence("library", LINUX, BUILT, "test", "build/test/lib/libScalerIsp.so", ALL, ""),
    Evidence("library", LINUX, REAL, "test", "build/test/tests.xml", r"(unit|blackbox|abi)[._]",
             "unit tests, black-box cases"),
    Evidence("library", MACS, BUILT, "macos library", "build/macos/out/libScalerIsp.dylib", ALL, ""),
    Evidence("library", MACS, LOADER, "macos {arch}", "build/macos/{arch}/tests.xml", r"(blackbox|platform)\.",
             "black-box cases"),
    Evidence("virtual scaler", LINUX, BUILT, "test", "build/test/virtual/PlugIn/libIsp.dylib", ALL, ""),
    Evidence("virtual scaler", LINUX, REAL, "test", "build/test/tests.xml", r"virtual_", "its tests"),
    Evidence("virtual scaler", MACS, BUILT, "macos library", "build/macos/universal/virtual/PlugIn/libIsp.dylib",
             ALL, ""),
    Evidence("virtual scaler", MACS, LOADER, "macos {arch}", "build/macos/{arch}/tests.xml",
             r"(virtual_scaler|real_signatures)$", "programmed, real signatures"),
    Evidence("`ispctl`", LINUX, BUILT, "test", "build/test/bin/ispctl", ALL, ""),
    Evidence("`ispctl`", LINUX, REAL, "test", "build/test/tests.xml", r"ispctl", "its tests"),
    Evidence("`ispctl`", MACS, BUILT, "macos programs", "build/macos/universal/bin/ispctl", ALL, ""),
    Evidence("`ispctl`", MACS, LOADER, "package", "build/package/checks/passed.txt", r"macos_archive$",
             "its commands, the demo"),
    Evidence("examples", LINUX, BUILT, "test", "build/test/tests.xml", r"examples\.bus_host|package\.templates",
             ""),
    Evidence("examples", LINUX, REAL, "test", "build/test/tests.xml", r"examples\.|package\.templates", "all"),
    Evidence("examples", MACS, BUILT, "package", "build/package/checks/passed.txt", r"macos_archive$",
             "the one in Objective-C++"),
    Evidence("self-test", LINUX, BUILT, "test", "build/test/selftest/probe", ALL, ""),
    Evidence("self-test", LINUX, REAL, "test", "build/test/tests.xml", r"package\.selftest$", "all of it"),
    Evidence("self-test", MACS, BUILT, "macos library", "build/macos/universal/selftest/probe", ALL, ""),
    Evidence("self-test", MACS, LOADER, "macos {arch}", "build/macos/{arch}/tests.xml", r"selftest$",
             "all of it"),
)
# Where a cell has no meaning.
NONE = {(system, LOADER): "-" for system in LINUX}


def claim_of(row, system):
    command = f"`./dev {row.command.format(arch=system.split()[1])}`"
    return f"{command}: {row.words}" if row.words else command


def row_of(part, system, column):
    return next((row for row in ROWS if row.part == part and system in row.systems and row.column == column),
                None)


def outcomes_of(path):
    """{name: passed} of tests, or of the steps that a command has noted in a text file."""
    if path.suffix == ".txt":
        return {name: True for name in path.read_text().split()}
    cases = xml.etree.ElementTree.parse(path).getroot().iter("testcase")
    return {case.get("name"): case.get("status") == "run" and case.find("failure") is None for case in cases}


def has_processor(path, arch):
    return path.read_bytes()[:4] == b"\x7fELF" or arch in macho_reader.load(path)


def holds(row, system):
    """True, False, or None if there are no results for it."""
    arch = system.split()[1]
    if system in LINUX and platform.machine() != arch:
        return None
    path = ROOT / row.results.format(arch=arch)
    if not path.exists():
        return None
    if row.passed == ALL:
        return has_processor(path, arch)
    wanted = [passed for name, passed in outcomes_of(path).items() if re.match(row.passed, name)]
    return all(wanted) if wanted else None


def cell_of(part, system, column, shown):
    row = row_of(part, system, column)
    if row is None:
        return NONE.get((system, column), NO)
    found = holds(row, system)
    return shown.get((part, system, column), NO) if found is None else claim_of(row, system) if found else NO


def shown_cells():
    cells = {}
    for line in read_figures(FIGURES, PAGE).splitlines()[2:]:
        part, system, *others = [cell.strip() for cell in line.strip("|").split("|")]
        cells.update({(part, system, column): cell for column, cell in zip(COLUMNS, others)})
    return cells


def table_of(cells):
    yield "| | system | " + " | ".join(COLUMNS) + " |\n|---|---|---|---|---|\n"
    for part in PARTS:
        for system in SYSTEMS:
            row = " | ".join(cells[part, system, column] for column in COLUMNS)
            yield f"| {part} | {system} | {row} |\n"


def everything():
    return [(part, system, column) for part in PARTS for system in SYSTEMS for column in COLUMNS]


def missing_commands():
    text = "".join((ROOT / name).read_text() for name in ("dev", "tools/macos.sh", "tools/package.sh"))
    for command in sorted({row.command.format(arch=system.split()[1]) for row in ROWS for system in row.systems}):
        words = command.split()
        for function in (f"dev_{words[0]}()", *(f"{words[0]}_{word}()" for word in words[1:])):
            if f"\n{function} {{" not in text:
                yield f"./dev {command}: there is no {function}"


def page_problems():
    """What the page could not say, whatever has run."""
    shown = shown_cells()
    for key in everything():
        row = row_of(*key)
        possible = {NO, claim_of(row, key[1])} if row else {NONE.get(key[1:], NO)}
        if shown.get(key) not in possible:
            yield f"{PAGE.name}: {', '.join(key)}: {shown.get(key)!r}, but possible are {sorted(possible)}"
    for key in shown.keys() - set(everything()):
        yield f"{PAGE.name}: {', '.join(key)}: no such cell"


def main():
    if "--check" in sys.argv[1:]:
        return report("where it ran", [*missing_commands(), *page_problems()])
    shown = shown_cells()
    cells = {key: cell_of(*key, shown) for key in everything()}
    if "--write" in sys.argv[1:]:
        write_figures(FIGURES, "".join(table_of(cells)), PAGE)
        return 0
    return report("where it ran", [f"{PAGE.name}: {', '.join(key)}: says {shown.get(key)!r}, but it is {cell!r};"
                                   " --write renews it" for key, cell in cells.items()
                                   if shown.get(key) != cell])


if __name__ == "__main__":
    sys.exit(main())
