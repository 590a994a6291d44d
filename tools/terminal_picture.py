#!/usr/bin/env python3
"""Draws what a command shows on a terminal, as docs/images/demo.svg; --check only compares.

The command runs in a pseudo-terminal, so that its colours and its progress bar are those that a user sees.
Drawn is the part that README.md does not show as text.

usage: terminal_picture.py [--check] [--command COMMAND]

COMMAND is "./dev demo" unless another one is given that prints the same.
"""

import argparse
import fcntl
import os
import pty
import re
import shlex
import struct
import subprocess
import sys
import termios
from xml.sax.saxutils import escape

from tracked_files import ROOT, report

PICTURE = ROOT / "docs/images/demo.svg"
FIRST, LAST = "# Sign it.", "# A device that fails"
COLUMNS, CELL_WIDTH, LINE_HEIGHT, MARGIN = 100, 8, 18, 16
COLOURS = {"31": "#f48771", "32": "#89d185", "": "#d4d4d4"}
PART = re.compile(r"\x1b\[([0-9;]*)([A-Za-z])|(\r)|([^\x1b\r]+)")


def terminal_output(command):
    """Everything that the command writes to a terminal of COLUMNS columns."""
    master, slave = pty.openpty()
    fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 40, COLUMNS, 0, 0))
    environment = {key: value for key, value in os.environ.items() if key != "NO_COLOR"}
    with subprocess.Popen(shlex.split(command), cwd=ROOT, stdin=slave, stdout=slave, stderr=slave,
                          env=environment | {"TERM": "xterm-256color", "LC_ALL": "C.UTF-8"}) as process:
        os.close(slave)
        data = b""
        try:
            while piece := os.read(master, 65536):
                data += piece
        except OSError:  # how Linux says that the other end is closed
            pass
        os.close(master)
    if process.returncode != 0:
        raise SystemExit(f"{command} ended with {process.returncode}")
    return data.decode("utf-8", errors="replace")


def screen_lines(output):
    """The lines as they stay on the screen: [[(colour, text)]]."""
    lines, colour = [], ""
    for raw in output.split("\n"):
        cells, column = [], 0
        for code, letter, back, text in PART.findall(raw):
            if letter == "m":
                colour = code if code in COLOURS else ""
            elif letter == "K":
                del cells[column:]
            elif back:
                column = 0
            for character in text:
                cells[column:column + 1] = [(colour, character)]
                column += 1
        lines.append(cells)
    return lines


def text_of(cells):
    return "".join(character for _, character in cells)


def with_short_paths(output):
    """The demo works in a temporary directory, which it calls $D."""
    found = re.search(r"(/\S*?/tmp\.\w+)/", output)
    return output.replace(found[1], "$D") if found else output


def shown_lines(output):
    """The lines of the excerpt, folded at the right edge."""
    lines = screen_lines(with_short_paths(output))
    texts = [text_of(cells) for cells in lines]
    begin = next(number for number, text in enumerate(texts) if text.startswith(FIRST))
    end = next(number for number, text in enumerate(texts) if text.startswith(LAST))
    while not texts[end - 1]:
        end -= 1
    for cells in lines[begin:end]:
        for edge in range(0, max(len(cells), 1), COLUMNS):
            yield cells[edge:edge + COLUMNS]


def drawn_line(cells, number):
    """One <text> with a <tspan> for each run of one colour."""
    spans, begin = "", 0
    prompt = text_of(cells).startswith(("$ ", "# "))
    while begin < len(cells):
        end = begin
        while end < len(cells) and cells[end][0] == cells[begin][0]:
            end += 1
        colour = COLOURS[cells[begin][0]] if not prompt else "#9cdcfe"
        spans += f'<tspan fill="{colour}">{escape(text_of(cells[begin:end]))}</tspan>'
        begin = end
    y = 2 * MARGIN + LINE_HEIGHT * (number + 1)
    return (f'<text x="{MARGIN}" y="{y}" textLength="{len(cells) * CELL_WIDTH}" xml:space="preserve">'
            f"{spans}</text>\n") if cells else ""


def picture(output):
    lines = list(shown_lines(output))
    width = 2 * MARGIN + COLUMNS * CELL_WIDTH
    height = 3 * MARGIN + LINE_HEIGHT * (len(lines) + 1)
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" '
           f'height="{height}" font-family="monospace" font-size="13">\n')
    yield "<title>ispctl signs, programs, reads back and rejects a firmware</title>\n"
    yield f'<rect width="{width}" height="{height}" rx="8" fill="#1e1e1e"/>\n'
    for index, colour in enumerate(("#f48771", "#e2c08d", "#89d185")):
        yield f'<circle cx="{MARGIN + 4 + 18 * index}" cy="{MARGIN}" r="5" fill="{colour}"/>\n'
    for number, cells in enumerate(lines):
        yield drawn_line(cells, number)
    yield "</svg>\n"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--command", default="./dev demo")
    options = parser.parse_args()
    made = "".join(picture(terminal_output(options.command)))
    if options.check:
        current = PICTURE.read_text() if PICTURE.exists() else ""
        return report("terminal picture", [] if made == current else [
            f"{PICTURE.relative_to(ROOT)} is out of date: run tools/terminal_picture.py"])
    PICTURE.write_text(made)
    return 0


if __name__ == "__main__":
    sys.exit(main())
