#!/usr/bin/env python3
"""The table of docs/macos.md that says what was built for which system, and where it ran.

usage: where_it_ran.py [--check | --write]

A cell says what was done if the results of the command that does it are there and say so; a result that says
otherwise makes it "no". Without results of its own a cell stays as it is, because no command does everything.
The program only compares, and ends with 1 if the page says anything else; --write renews the page. --check
reads no results: it compares the page with the rows below, and these with the commands.
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
PARTS = ("library", "unit tests", "virtual scaler", "tests of the virtual scaler", "`ispctl`",
         "tests of `ispctl`", "examples", "self-test")
COLUMNS = ("built", "ran in the loader", "ran on the real thing")
BUILT, LOADER, REAL = COLUMNS

# Evidence: the command, the file with its results, what must have passed in it, and words for the page.
Evidence = namedtuple("Evidence", "part systems column command results passed words")
MACS = SYSTEMS[1:]
MAC_X86, MAC_ARM = SYSTEMS[1:2], SYSTEMS[2:]
LINUX = SYSTEMS[:1]
ALL = ""
TESTS = "build/test/tests.xml"
IN_LOADER = "build/macos/{arch}/tests.xml"
EMULATED_UNIT, PROGRAM_TESTS = (f"build/macos/run_{step}/tests.xml" for step in ("unit_arm64", "tests"))
UNIVERSAL = "build/macos/universal/"
RELEASE = "build/package/checks/passed.txt"
ROWS = (
    Evidence("library", LINUX, BUILT, "test", "build/test/lib/libScalerIsp.so", ALL, ""),
    Evidence("library", LINUX, REAL, "test", TESTS, r"(unit|blackbox)[._]", "unit tests, black-box cases"),
    Evidence("library", MACS, BUILT, "macos library", "build/macos/out/libScalerIsp.dylib", ALL, ""),
    Evidence("library", MACS, LOADER, "macos {arch}", IN_LOADER, r"(blackbox|platform)\.", "black-box cases"),
    Evidence("unit tests", LINUX, BUILT, "test", TESTS, r"unit_", ""),
    Evidence("unit tests", LINUX, REAL, "test", TESTS, r"unit_", "all"),
    Evidence("unit tests", MAC_X86, BUILT, "macos unit", UNIVERSAL + "tests/unit/test_unit_entry", ALL, ""),
    Evidence("unit tests", MAC_X86, LOADER, "macos {arch}", IN_LOADER, r"unit\.", "all but those listed"),
    Evidence("unit tests", MAC_ARM, BUILT, "macos unit_arm64",
             "build/macos/unit_arm64/tests/unit/test_unit_entry", ALL, ""),
    Evidence("unit tests", MAC_ARM, LOADER, "macos unit_arm64", EMULATED_UNIT, r"unit\.",
             "all but those listed"),
    Evidence("virtual scaler", LINUX, BUILT, "test", "build/test/virtual/PlugIn/libIsp.dylib", ALL, ""),
    Evidence("virtual scaler", LINUX, REAL, "test", TESTS, r"virtual_", "its tests"),
    Evidence("virtual scaler", MACS, BUILT, "macos library", UNIVERSAL + "virtual/PlugIn/libIsp.dylib", ALL,
             ""),
    Evidence("virtual scaler", MACS, LOADER, "macos {arch}", IN_LOADER, r"(virtual_scaler|real_signatures)$",
             "programmed, real signatures"),
    Evidence("tests of the virtual scaler", LINUX, BUILT, "test", TESTS, r"virtual_", ""),
    Evidence("tests of the virtual scaler", LINUX, REAL, "test", TESTS, r"virtual_", "all"),
    Evidence("tests of the virtual scaler", MAC_X86, BUILT, "macos tests",
             "build/macos/ispctl/tests/simulator/test_virtual_bus", ALL, ""),
    Evidence("tests of the virtual scaler", MAC_X86, LOADER, "macos tests", PROGRAM_TESTS, r"virtual\.",
             "all but those listed"),
    Evidence("`ispctl`", LINUX, BUILT, "test", "build/test/bin/ispctl", ALL, ""),
    Evidence("`ispctl`", LINUX, REAL, "test", TESTS, r"ispctl", "its tests"),
    Evidence("`ispctl`", MAC_X86, BUILT, "macos ispctl", "build/macos/ispctl/bin/ispctl", ALL, ""),
    Evidence("`ispctl`", MAC_X86, LOADER, "macos {arch}", IN_LOADER, r"program\.ispctl$",
             "its commands, the demo"),
    Evidence("`ispctl`", MAC_ARM, BUILT, "macos programs", UNIVERSAL + "bin/ispctl", ALL, ""),
    Evidence("`ispctl`", MAC_ARM, LOADER, "package", RELEASE, r"macos_archive$", "its commands, the demo"),
    Evidence("tests of `ispctl`", LINUX, BUILT, "test", TESTS, r"ispctl_", ""),
    Evidence("tests of `ispctl`", LINUX, REAL, "test", TESTS, r"ispctl_", "all"),
    Evidence("tests of `ispctl`", MAC_X86, BUILT, "macos tests",
             "build/macos/ispctl/tests/ispctl/test_ispctl_parts", ALL, ""),
    Evidence("tests of `ispctl`", MAC_X86, LOADER, "macos tests", PROGRAM_TESTS, r"ispctl\.",
             "all but those listed"),
    Evidence("examples", LINUX, BUILT, "test", TESTS, r"examples\.bus_host|package\.templates", ""),
    Evidence("examples", LINUX, REAL, "test", TESTS, r"examples\.|package\.templates", "all"),
    Evidence("examples", MACS, BUILT, "macos library", UNIVERSAL + "tests/macos/examples/host_cpp", ALL,
             "those in C and C++"),
    Evidence("examples", MACS, LOADER, "macos {arch}", IN_LOADER, r"examples$", "those in C and C++"),
    Evidence("self-test", LINUX, BUILT, "test", "build/test/selftest/probe", ALL, ""),
    Evidence("self-test", LINUX, REAL, "test", TESTS, r"package\.selftest$", "all of it"),
    Evidence("self-test", MACS, BUILT, "macos library", UNIVERSAL + "selftest/probe", ALL, ""),
    Evidence("self-test", MACS, LOADER, "macos {arch}", IN_LOADER, r"selftest$", "all of it"),
)
# Where a cell has no meaning.
NONE = {(system, LOADER): "-" for system in LINUX}


def command_of(row, system):
    return row.command.format(arch=system.split()[1])


def claim_of(row, system):
    command = f"`./dev {command_of(row, system)}`"
    return f"{command}: {row.words}" if row.words else command


def row_of(part, system, column):
    return next((row for row in ROWS if row.part == part and system in row.systems and row.column == column),
                None)


def outcomes_of(path):
    """{name: passed} of the tests that ran, or of the steps that a command has noted in a text file."""
    if path.suffix == ".txt":
        return {name: True for name in path.read_text().split()}
    cases = xml.etree.ElementTree.parse(path).getroot().iter("testcase")
    return {case.get("name"): case.get("status") == "run" and case.find("failure") is None
            for case in cases if case.get("status") in ("run", "fail")}


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
    for command in sorted({command_of(row, system) for row in ROWS for system in row.systems}):
        words = command.split()
        for function in (f"dev_{words[0]}()", *(f"{words[0]}_{word}()" for word in words[1:])):
            if f"\n{function} {{" not in text:
                yield f"./dev {command}: there is no {function}"


def page_problems(shown):
    """What the page could not say, whatever has run."""
    for key in everything():
        row = row_of(*key)
        possible = {NO, claim_of(row, key[1])} if row else {NONE.get(key[1:], NO)}
        if shown.get(key) not in possible:
            yield f"{PAGE.name}: {', '.join(key)}: {shown.get(key)!r}, but possible are {sorted(possible)}"
    for key in shown.keys() - set(everything()):
        yield f"{PAGE.name}: {', '.join(key)}: no such cell"


def differences(shown, cells):
    for key, cell in cells.items():
        if shown.get(key) != cell:
            yield (f"{PAGE.name}: {', '.join(key)}: says {shown.get(key)!r}, but it is {cell!r};"
                   " --write renews it")


def main():
    shown = shown_cells()
    if "--check" in sys.argv[1:]:
        return report("where it ran", [*missing_commands(), *page_problems(shown)])
    cells = {key: cell_of(*key, shown) for key in everything()}
    if "--write" in sys.argv[1:]:
        write_figures(FIGURES, "".join(table_of(cells)), PAGE)
        return 0
    return report("where it ran", list(differences(shown, cells)))


if __name__ == "__main__":
    sys.exit(main())
