#!/usr/bin/env python3
"""Says how much of each component the tests have reached, and compares it with tests/coverage.floors.

usage: coverage.py BUILD-DIRECTORY [--write] [--missed [PATH-PREFIX]]

The directory is a build of the preset "coverage" whose tests have run. Everything that no test reaches goes
to missed.txt in it; --missed also prints what lies below a path. --write raises the floors to what was
measured and renews the figures of docs/testing.md. Ends with 1 below a floor, if a line of the library that
no test reaches is not listed in docs/testing.md, or if a listed one is reached.
"""

import argparse
import math
import pathlib
import re
import subprocess
import sys

from components import COMPONENTS
from covered_source import covered_sources, runs_of
from figures import PAGE, read_figures, rows_of, write_figures
from tracked_files import ROOT, report

FLOORS = ROOT / "tests/coverage.floors"
# In points of percent. Some branches depend on how fast two processes are: a floor is that much lower than
# what was measured; the page may differ that much from what is measured.
FLOOR_SLACK = 1.0
PAGE_SLACK = 1.0
LEAST_TEXT = 8
LISTED = re.compile(r"^\| `([^`]+)` \| `([^`]+)` \| (.+) \|$", re.MULTILINE)


def merged_profile(build, llvm_profdata):
    profiles = sorted(build.glob("profiles/*.profraw"))
    if not profiles:
        raise SystemExit(f"{build}: no test of it has run")
    merged = build / "tests.profdata"
    subprocess.run([llvm_profdata, "merge", "--sparse", "-o", merged, *profiles], check=True)
    return merged


def objects_of(build):
    """The delivered files; those of the unit tests hold the same functions, under the same names."""
    library = sorted((build / "lib").glob("libScalerIsp.*"))
    plugins = [path for path in sorted(build.glob("virtual/**/*.dylib")) if "ScalerIsp" not in path.name]
    return [*library, build / "bin/ispctl", *plugins]


def percent(part, whole):
    return 100 * part / whole if whole else 100.0


def measured_figures(sources):
    """{component: (percent of lines, percent of branches)}"""
    figures = {}
    for each in COMPONENTS:
        own = [source for source in sources if source.path.startswith(each.folder + "/")]
        lines = sum(len(source.lines) for source in own)
        outcomes = sum(len(source.outcomes) for source in own)
        figures[each.name] = (
            percent(lines - sum(len(source.missed_lines()) for source in own), lines),
            percent(outcomes - sum(len(source.missed_outcomes()) for source in own), outcomes))
    return figures


def read_floors():
    floors = {}
    for row in FLOORS.read_text().splitlines():
        if row and not row.startswith("#"):
            name, lines, branches = row.rsplit(maxsplit=2)
            floors[name] = (float(lines), float(branches))
    return floors


def raised_floors(floors, figures):
    """The higher of each floor and what was measured, less the slack."""
    return {name: tuple(max(floor, math.floor((figure - FLOOR_SLACK) * 10) / 10)
                        for floor, figure in zip(floors.get(name, (0, 0)), figures[name]))
            for name in figures}


def write_floors(floors):
    head = "".join(row + "\n" for row in FLOORS.read_text().splitlines() if row.startswith("#"))
    FLOORS.write_text(head + "".join(
        f"{name:15} {lines:5.1f} {branches:5.1f}\n" for name, (lines, branches) in floors.items()))


def figure_table(figures, floors):
    yield "| component | lines | branches | floors | goals |\n|---|---|---|---|---|\n"
    for each in COMPONENTS:
        lines, branches = figures[each.name]
        lines_goal = "every line but those listed" if each.every_line else f"{each.lines:g} %"
        yield (f"| {each.name} | {lines:.1f} % | {branches:.1f} % "
               f"| {floors[each.name][0]:.1f} %, {floors[each.name][1]:.1f} % "
               f"| {lines_goal}, {each.branches:g} % |\n")


def floor_problems(figures, floors):
    for name, measured in figures.items():
        for what, figure, floor in zip(("lines", "branches"), measured, floors[name]):
            if figure < floor:
                yield f"{name}: {figure:.2f} % of the {what} are reached, below the floor of {floor} %"


def page_problems(figures):
    shown = rows_of(read_figures("coverage"))
    for name, measured in figures.items():
        for figure, on_page in zip(measured, shown.get(name, (0, 0))):
            if abs(figure - on_page) > PAGE_SLACK:
                yield (f"{PAGE.name} says {on_page} % of the {name}, measured are {figure:.1f} %: "
                       "run ./dev coverage --write")


def place_of(text, first):
    """What names a run of lines: the one before, unless it says too little; then the first of them."""
    before, here = text[first - 2].strip(), text[first - 1].strip()
    return here if len(before) < LEAST_TEXT or before.startswith("//") else before


def unlisted_problems(sources):
    """A listed place is named by a line, which a change elsewhere in the file does not move."""
    listed = {(path, text.replace("\\|", "|")) for path, text, _ in LISTED.findall(PAGE.read_text())}
    missed = set()
    for source in sources:
        text = (ROOT / source.path).read_text().splitlines()
        for first, _ in runs_of(source.missed_lines()):
            place = (source.path, place_of(text, first))
            missed.add(place)
            if place not in listed:
                yield (f"{source.path}:{first}: no test reaches this; "
                       f"{PAGE.name} does not say why, at `{place[1]}`")
    for path, text in sorted(listed - missed):
        yield f"{PAGE.name} lists a place in {path} that is reached, or is no longer there: `{text}`"


def missed_places(sources):
    for source in sources:
        for first, last in runs_of(source.missed_lines()):
            yield f"{source.path}:{first}" + (f"-{last}" if last > first else "") + ": never reached"
        missed = set(source.missed_lines())
        for line, column, which in source.missed_outcomes():
            if line not in missed:
                yield f"{source.path}:{line}:{column}: never {which}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--write", action="store_true")
    parser.add_argument("--missed", nargs="?", const="")
    parser.add_argument("--places", action="store_true")
    parser.add_argument("--llvm-cov", default="llvm-cov-14")
    parser.add_argument("--llvm-profdata", default="llvm-profdata-14")
    given = parser.parse_args()
    sources = covered_sources(given.llvm_cov, merged_profile(given.build, given.llvm_profdata),
                              objects_of(given.build), [each.folder for each in COMPONENTS])
    places = list(missed_places(sources))
    (given.build / "missed.txt").write_text("".join(place + "\n" for place in places))
    if given.missed is not None:
        print("\n".join(place for place in places if place.startswith(given.missed)))
    figures = measured_figures(sources)
    floors = read_floors()
    if given.write:
        floors = raised_floors(floors, figures)
        write_floors(floors)
        write_figures("coverage", "".join(figure_table(figures, floors)))
    print("".join(figure_table(figures, floors)), end="")
    print(f"what no test reaches: {given.build / 'missed.txt'}")
    folders = tuple(each.folder + "/" for each in COMPONENTS if each.every_line)
    problems = [*floor_problems(figures, floors), *page_problems(figures)]
    if given.places:
        problems += unlisted_problems([source for source in sources if source.path.startswith(folders)])
    return report("coverage", problems)


if __name__ == "__main__":
    sys.exit(main())
