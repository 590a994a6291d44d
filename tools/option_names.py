"""The names of options on a page: every option is explained in a table, and no other name is used."""

import re

from tracked_files import ROOT

CONSOLE = re.compile(r'add_(?:option|flag)\(\s*"--(\w+)"')
BLOCKS = re.compile(r"<!-- table: options [^\n]*-->\n(.*?)<!-- end of table -->", re.DOTALL)
NAME = re.compile(r"--([A-Za-z0-9]+)")


def console_options():
    """Names of ispctl's own options."""
    return {name for file in (ROOT / "ispctl").rglob("*.cpp") for name in CONSOLE.findall(file.read_text())}


def problems_of_page(name, text, options, others):
    """Options that the page does not explain in a table, and names on it that are neither option nor
    one of the others."""
    explained = {option for block in BLOCKS.findall(text) for line in block.splitlines()
                 for option in NAME.findall(line.split(" | ")[0])}
    problems = [f"{name}: no table explains --{option}" for option in options
                if option not in explained]
    for number, line in enumerate(text.splitlines(), 1):
        short = "abbreviat" in line  # only there a name may lack its end
        for word in NAME.findall(line):
            if word in options or word in others:
                continue
            if not (short and any(option.startswith(word) for option in options)):
                problems.append(f"{name}:{number}: there is no option --{word}")
    return problems
