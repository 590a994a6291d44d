#!/usr/bin/env python3
"""Writes docs/communication-library.md from comm_functions.def; --check only compares."""

import re
import sys

from tracked_files import ROOT, report

SOURCE = ROOT / "scaler_isp/plugins/comm_functions.def"
TARGET = ROOT / "docs/communication-library.md"
HEAD = """# The communication library

A separately delivered library reaches the scaler over I2C adapters, DDC/CI, USB, AUX and others.
`CNxComm` opens it by path and offers each of its functions as a virtual method that passes the arguments
on unchanged and returns the result unchanged. This page is for authors of such a library and of ISP
plug-ins, which call the methods by their slot in the virtual table. Written by `tools/comm_table.py`
from `scaler_isp/plugins/comm_functions.def`; change it there.

A library exports plain, unmangled C names. Of the {rows} methods

- {required} functions are **required**: without any one of them the library is not loaded, and nothing
  is printed. `{twice}` is looked up twice, which changes nothing;
- {optional} are **optional**: a missing one makes its method answer as not loaded;
- {never} are **never looked up**: exporting one changes nothing, its method always answers as not loaded.

Two methods do not call the function of their own name:

{redirections}
If no library is loaded, a method calls nothing, prints nothing and returns the value in the last column: 6
for a status. All other statuses, and what the functions do, are defined by the communication library; those
of the virtual one are described in [the virtual scaler](virtual-scaler.md). To write a communication library,
include the table to generate its exports, as `simulator/bus/CommExports.cpp` does in a few lines.

Slots 0 and 1 are the destructors, 2 is `LoadCommDllFile`, 3 is `FreeCommDllFile`.

| slot | method | symbol | look-up | result | not loaded |
|---|---|---|---|---|---|
"""
LOOKUPS = {"REQUIRED": "required", "REQUIRED_TWICE": "required", "OPTIONAL": "optional",
           "NEVER": "never"}
ROW = re.compile(r"^SCALER_ISP_COMM_(SAME|FUNCTION)\((.*)\)$")


class Row:
    """One function of the table."""

    def __init__(self, form, arguments):
        if form == "SAME":
            look_up, result, name, unloaded, parameters, _ = arguments
            arguments = look_up, result, name, name, name, unloaded, parameters, _
        (self.look_up, self.result, self.method, self.symbol, self.calls, self.unloaded,
         self.parameters, _) = arguments

    def line(self, slot, symbols):
        """The row of the page; `symbols` tells which symbol a row's pointer comes from."""
        called = "none" if self.look_up == "NEVER" else f"`{symbols[self.calls]}`"
        unloaded = {"": "nothing", "{}": "0", "nullptr": "0"}.get(self.unloaded, self.unloaded)
        return (f"| {slot} | `{self.method}{self.parameters}` | {called} | {LOOKUPS[self.look_up]} "
                f"| `{self.result}` | {unloaded} |\n")


def split(text):
    """The arguments of a macro: at commas outside parentheses."""
    parts, depth = [""], 0
    for character in text:
        depth += {"(": 1, ")": -1}.get(character, 0)
        if character == "," and depth == 0:
            parts.append("")
        else:
            parts[-1] += character
    return [part.strip() for part in parts]


def rows():
    """The rows of the table in its order."""
    found = []
    lines = SOURCE.read_text().splitlines()
    for index, line in enumerate(lines):
        if not line.startswith("SCALER_ISP_COMM_"):
            continue
        whole = line
        while whole.count("(") > whole.count(")"):
            index += 1
            whole += " " + lines[index].strip()
        form, arguments = ROW.match(whole).groups()
        found.append(Row(form, split(arguments)))
    return found


def page():
    table = rows()
    symbols = {row.method: row.symbol for row in table}
    redirections = ""
    for row in table:
        if symbols[row.calls] != row.method:
            redirections += f"- `{row.method}` calls `{symbols[row.calls]}`"
            if row.calls != row.method:
                redirections += f"; `{row.symbol}` is required all the same, but never called"
            redirections += ".\n"
    count = [LOOKUPS[row.look_up] for row in table].count
    text = HEAD.format(rows=len(table), required=count("required"), optional=count("optional"),
                       never=count("never"), redirections=redirections,
                       twice=next(r.symbol for r in table if r.look_up == "REQUIRED_TWICE"))
    return text + "".join(row.line(slot, symbols) for slot, row in enumerate(table, 4))


def main():
    text, problems = page(), []
    if "--check" in sys.argv[1:]:
        if not TARGET.is_file() or TARGET.read_text() != text:
            problems.append("docs/communication-library.md is out of date: run tools/comm_table.py")
    else:
        TARGET.write_text(text)
    return report("communication library", problems)


if __name__ == "__main__":
    sys.exit(main())
