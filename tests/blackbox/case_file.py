"""Reads case files; run_cases.py describes them."""

import copy
import os
import re

BLOCKS = ("stdout", "stderr", "events")
LISTS = ("do", "answer", "env", "plugin", "dir", "row")
SINGLES = ("result", "exit", "folder", "needs-locale", "not-in-loader", "not-emulated",
           "not-sanitized")


class Case:
    """One case as written; texts are still unexpanded."""

    def __init__(self, path, number, name):
        self.path, self.number, self.name = path, number, name
        self.cells = []
        self.files = []  # (name, size or None, lines)
        self.lists = {key: [] for key in LISTS}
        self.single = {}
        self.blocks = {key: [] for key in BLOCKS}
        self.block_place = {}  # first and last line number of a block, for --update

    def fill(self, text):
        """Replaces {1}..{9} by the cells of the row."""
        for index, cell in enumerate(self.cells, 1):
            text = text.replace("{%d}" % index, cell)
        return text

    def rows(self):
        """The cases that the rows of a table make; the case itself when it has none."""
        if not self.lists["row"]:
            return [self]
        made = []
        for row in self.lists["row"]:
            case = copy.copy(self)
            case.cells = ["" if cell == "@EMPTY@" else cell for cell in row.split(" | ")]
            case.name = "%s(%s)" % (self.name, case.cells[0])
            made.append(case)
        return made


class _Reader:
    def __init__(self, path):
        self.path, self.macros, self.cases, self.block = path, {}, [], None
        with open(path, encoding="utf-8", newline="\n") as file:
            for number, line in enumerate(file.read().split("\n"), 1):
                try:
                    self._line(number, line)
                except (ValueError, IndexError, KeyError) as error:
                    raise SystemExit("%s:%d: %s" % (path, number, error)) from error

    def _line(self, number, line):
        block = re.match(r" +\|(.*)$", line)
        if block:
            self.block.append(block[1])
            if self.block_key:
                self.cases[-1].block_place[self.block_key][1] = number
            return
        self.block = None
        if line.strip() == "" or line.startswith("#"):
            return
        key, colon, text = line.partition(":")
        if not colon:
            raise ValueError("not understood: " + line)
        self._key(number, key, text.strip())

    def _key(self, number, key, text):
        if key == "include":
            self._include(text)
        elif key == "define":
            name, _, value = text.partition("=")
            self.macros[name.strip()] = value.strip()
        elif key == "case":
            if not re.fullmatch(r"[A-Za-z0-9_-]+", text):
                raise ValueError("a name is one word")
            self.cases.append(Case(self.path, number, text))
        elif key == "file":
            self._file(text)
        elif key == "line":
            self.cases[-1].lists["do"].append("call " + text)
        elif key in BLOCKS:
            case = self.cases[-1]
            if key in case.block_place:
                raise ValueError("a second %s" % key)
            self.block, self.block_key = case.blocks[key], key
            case.block_place[key] = [number, number]
        elif key in LISTS:
            self.cases[-1].lists[key].append(text)
        elif key in SINGLES:
            self.cases[-1].single[key] = text
        else:
            raise ValueError("unknown key " + key)

    def _include(self, name):
        other = _Reader(os.path.join(os.path.dirname(self.path), name))
        self.macros.update(other.macros)

    def _file(self, text):
        name, equals, size = text.partition(" = ")
        lines = []
        self.cases[-1].files.append((name, size if equals else None, lines))
        self.block, self.block_key = lines, None


def read_cases(path):
    """The cases of a file, tables unrolled, and its macros."""
    reader = _Reader(path)
    names = [case.name for case in reader.cases]
    if len(set(names)) != len(names):
        raise SystemExit("%s: a name stands twice" % path)
    return [row for case in reader.cases for row in case.rows()], reader.macros
