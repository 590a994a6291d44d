"""Figures that pages show, between <!-- figures: NAME --> and <!-- end of figures -->; whoever measures a
figure writes it, and nothing of it has a date."""

import re

from tracked_files import ROOT

PAGE = ROOT / "docs/testing.md"
NUMBER = re.compile(r"\d+(?:\.\d+)?")


def block_of(name):
    return re.compile(rf"(<!-- figures: {re.escape(name)} -->\n)(.*?)(<!-- end of figures -->\n)",
                      re.DOTALL)


def read_figures(name, page=PAGE):
    """The text between the marks of that name."""
    return block_of(name).search(page.read_text())[2]


def write_figures(name, text, page=PAGE):
    """Replaces the text between the marks of that name."""
    before = page.read_text()
    after, found = block_of(name).subn(lambda block: block[1] + text + block[3], before)
    if not found:
        raise SystemExit(f"{page.name}: there is no place for the figures '{name}'")
    if after != before:
        page.write_text(after)


def rows_of(text):
    """{first cell: [numbers in the other cells]} of a table; a cell without a number is None."""
    rows = {}
    for line in text.splitlines():
        first, *others = [cell.strip() for cell in line.strip("|").split("|")]
        numbers = [NUMBER.search(cell) for cell in others]
        if any(numbers):
            rows[first] = [float(number[0]) if number else None for number in numbers]
    return rows
