#!/usr/bin/env python3
"""Keeps the tables that pages show equal to those in the code; --check only compares.

    <!-- table: opcodes -->
    | ... |
    <!-- end of table -->

The name after "table:" is one of TABLES, or "options" and a section of args/options.def; the pages are
docs/*.md. docs/options.md must explain every option, and name none that does not exist.

usage: doc_tables.py [--check] [--program PATH]

The tables of options are printed by tools/option_tables.cpp, which expands args/options.def; --program
names a build of it, otherwise it is compiled with $CXX (c++).
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile

import code_tables
import option_names
import record_tables
from tracked_files import ROOT, report

BLOCK = re.compile(r"(<!-- table: (?P<name>[a-zA-Z0-9 ]+) -->\n).*?(<!-- end of table -->\n)", re.DOTALL)
OPCODE = re.compile(
    r'^SCALER_ISP_OPCODE\((\d+), (\w+), (\w+), "([^"]*)", (.*)\)$', re.MULTILINE)
KEY = re.compile(r"^SCALER_ISP_(\w+)_KEY\(\"(\w+)\", (\w+)(?:, (\w+))?\)$", re.MULTILINE)
SIZES = {"b": 1, "i": 1, "w": 2, "L": 2, "d": 4}
DOES = {
    "WAIT": "waits `ms` milliseconds",
    "POLL": "reads the MCU register until (value AND mask) equals (expect AND mask)",
    "UNSUPPORTED": "ends with result 2",
}
READS = {"READ": "1", "BLOCK_READ": "length"}


def text_of(name):
    return (ROOT / "scaler_isp" / name).read_text()


def opcodes():
    """The records of a register script."""
    yield "| opcode | statement | operands (bytes) | record length | does | reads |\n"
    yield "|---|---|---|---|---|---|\n"
    for code, name, kind, operands, call in OPCODE.findall(
            text_of("common/script/script_opcodes.def")):
        items = [item.split(":") for item in operands.split()]
        length = 1 + sum(SIZES[letter] for letter, _ in items)
        shown = ", ".join(f"{item} ({SIZES[letter]})" for letter, item in items) or "none"
        extra = {"BLOCK_WRITE": " + length", "CALL_AND_SKIP": " + last length"}.get(kind, "")
        if kind == "BLOCK_WRITE":
            shown += ", data (length)"
        method = call.split("(")[0]
        yield (f"| {code} | `{name}` | {shown} | {length}{extra} | {DOES.get(kind, f'`{method}`')} "
               f"| {READS.get(kind, '')} |\n")


def number(word):
    """A default of the code: a number, or an enumeration's value."""
    if word.isdigit():
        return word
    return re.search(rf"\b{word} = (\d+)", text_of("abi/CommandSetting.h")).group(1)


def keys(kind):
    """The keys that a record loads, in their order."""
    yield "| section | key | default |\n|---|---|---|\n"
    for row, section, field, default in KEY.findall(text_of("settings/setting_keys.def")):
        if row == kind:
            yield f"| `{section}` | `{field}` | {number(default or '0')} |\n"


def printed_parts(program):
    """{heading: text} of what tools/option_tables.cpp prints."""
    with tempfile.TemporaryDirectory() as folder:
        if program is None:
            program = pathlib.Path(folder) / "option_tables"
            subprocess.run([os.environ.get("CXX", "c++"), "-std=c++20", "-I", ROOT,
                            ROOT / "tools/option_tables.cpp", "-o", program], check=True)
        text = subprocess.run([program], stdout=subprocess.PIPE, text=True, check=True).stdout
    parts = (part.split("\n", 1) for part in text.removeprefix("== ").split("\n== "))
    return {heading: body.rstrip("\n") + "\n" for heading, body in parts}


TABLES = {
    "opcodes": opcodes,
    "command keys": lambda: keys("COMMAND"),
    "switch keys": lambda: keys("UI"),
    **code_tables.TABLES,
    **record_tables.TABLES,
}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--program", type=pathlib.Path)
    given = parser.parse_args()
    parts = printed_parts(given.program)
    names = parts["option names"].split()
    tables = TABLES | {heading: lambda text=text: text for heading, text in parts.items()
                       if heading.startswith("options ")}
    problems, found = [], set()
    for page in sorted(ROOT.glob("docs/*.md")):
        before = page.read_text()

        def renewed(block):
            found.add(block["name"])
            if block["name"] not in tables:
                problems.append(f"{page.relative_to(ROOT)}: there is no table '{block['name']}'")
                return block[0]
            return block[1] + "".join(tables[block["name"]]()) + block[3]

        after = BLOCK.sub(renewed, before)
        if after == before:
            continue
        if given.check:
            problems.append(f"{page.relative_to(ROOT)} is out of date: run tools/doc_tables.py")
        else:
            page.write_text(after)
    problems += option_names.problems_of_page(
        "docs/options.md", (ROOT / "docs/options.md").read_text(), names,
        option_names.console_options())
    problems += [f"no page shows the table '{name}'" for name in sorted(tables.keys() - found)]
    for name, least in (("opcodes", 27), ("command keys", 12), ("switch keys", 8), ("result codes", 10),
                        ("exit statuses", 10), ("findings", 53), ("doctor findings", 105),
                        ("edid findings", 30), ("command record", 46), ("bank entry", 4), ("sign record", 12),
                        ("record values", 60)):
        # Two lines are the head. A row that is not understood would be missed here.
        if sum(text.count("\n") for text in TABLES[name]()) - 2 < least:
            problems.append(f"the table '{name}' has rows that are not understood")
    return report("doc tables", problems)


if __name__ == "__main__":
    sys.exit(main())
