#!/usr/bin/env python3
"""Runs the commands that README.md and docs/*.md show, and compares what they print with the pages.

    ```console
    $ ispctl edid monitor.hex
    EDID 1.4 of ...
    ```

All console blocks of a page are one shell session, in a new directory, with the programs of an installation
first in the PATH and the installation itself in $PREFIX. Each page has a copy of the installation of its own
and may change it. In the output these two directories appear as /home/you/monitor and
/home/you/scaler-isp. A line "> " continues the command above. A line of output that is "..." stands for any
lines, and "…" within a line for any text. Standard output and standard error are shown as a terminal shows
them, in one stream, but without colours.

Marks, each a comment on a line of its own directly before a block:

    <!-- file: NAME -->             the block is written to that file before the next command runs
    <!-- not run: REASON -->        nothing here can run it: hardware, another system, a build
    <!-- output of: COMMAND -->     belongs to tools/check_doc_output.py

and anywhere on a page:

    <!-- no block on this page is run: REASON -->

A block of a shell, or an indented block with a command, that has no mark is an error, so that no command is
shown that nobody ran.

usage: page_sessions.py [--write] --prefix DIR [PAGE...]

--write puts what the commands print into the pages, where it differs.
"""

import argparse
import dataclasses
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

from tracked_files import ROOT, report

BLOCK = re.compile(r"(?:^<!-- (?P<mark>file|not run|output of): (?P<what>.+?) -->\n)?"
                   r"^(?P<indent> *)```(?P<language>\w*)\n(?P<text>.*?)^(?P=indent)```$",
                   re.DOTALL | re.MULTILINE)
INDENTED = re.compile(r"(?:^(?P<mark> *<!-- not run: .+? -->)\n)?^\n(?P<text>(?: {4,}\S.*\n)+)",
                      re.MULTILINE)
COMMAND = re.compile(r" {4,}(?:\$ |(?:ispctl|\./dev|cmake|ctest|git|make|openssl|python3|sh|cp|xcrun|"
                     r"codesign|install_name_tool|sudo|apt-get|brew|export|tar|sha256sum|shasum)\s)")
PAGE_MARK = re.compile(r"<!-- no block on this page is run: .+? -->")
SHELLS = ("console", "sh", "bash", "shell", "zsh")
COLOUR = re.compile(r"\x1b\[[0-9;]*m")
MARKER = "-- next command --"
# The next command may ask for the status of this one.
NEXT = f"{{ page_status=$?; printf '\\n%s\\n' '{MARKER}'; (exit $page_status); }}"
SECONDS = 300
# Names below a directory /tmp/pgXXXXXXXX, and what is shown for these paths. Both have the same length,
# because messages are folded to the width of a terminal, and words are underlined.
SHOWN = {"w": "/home/you/monitor", "inst": "/home/you/scaler-isp"}


@dataclasses.dataclass
class Command:
    """One command with the output that the page shows for it."""

    lines: list
    number: int
    shown: list = dataclasses.field(default_factory=list)


def commands_of(text, first_line):
    """The commands of one console block; ValueError if it does not begin with one."""
    found = []
    for number, line in enumerate(text.splitlines(), first_line):
        if line.startswith("$ "):
            found.append(Command([line[2:]], number))
        elif found and not found[-1].shown and line.startswith("> "):
            found[-1].lines.append(line[2:])
        elif found:
            found[-1].shown.append(line)
        else:
            raise ValueError(f"line {number}: a console block begins with \"$ \"")
    return found


def steps_of(text):
    """What the session of a page does, in order: ("file", name, text) and ("run", Command, None)."""
    for block in BLOCK.finditer(text):
        if block["mark"] == "file":
            yield "file", block["what"], block["text"]
        elif block["mark"] is None and block["language"] == "console":
            for command in commands_of(block["text"], text.count("\n", 0, block.start("text")) + 1):
                yield "run", command, None


def unmarked(text):
    """Numbers of the lines at which a block of commands begins that nobody runs."""
    if PAGE_MARK.search(text):
        return
    without_blocks = text
    for block in BLOCK.finditer(text):
        if block["mark"] is None and block["language"] in SHELLS and block["language"] != "console":
            yield text.count("\n", 0, block.start("text"))
        blank = re.sub(r"[^\n]", "", block[0])
        without_blocks = without_blocks.replace(block[0], blank, 1)
    for block in INDENTED.finditer(without_blocks):
        if block["mark"] is None and any(COMMAND.match(line) for line in block["text"].splitlines()):
            yield without_blocks.count("\n", 0, block.start("text")) + 1


def pattern_of(shown):
    """The shown lines as a regular expression."""
    pattern = ""
    for line in shown:
        if line == "...":
            pattern += r"(?:.*\n)*?"
        else:
            pattern += r"[^\n]*?".join(re.escape(part) for part in line.split("…")) + r"\n"
    return re.compile(pattern)


def agrees(command, printed):
    return pattern_of(command.shown).fullmatch(with_end(printed)) is not None


def with_end(text):
    return text if not text or text.endswith("\n") else text + "\n"


def script_of(steps):
    """The session as a script, with a marker after the output of each command."""
    parts = []
    for kind, what, text in steps:
        if kind == "file":
            # Quoted, so that nothing in the text is expanded.
            parts.append(f"mkdir -p \"$(dirname '{what}')\"; cat > '{what}' <<'END OF FILE'\n{text}"
                         "END OF FILE")
        else:
            parts.append("\n".join(what.lines) + "\n" + NEXT)
    return "\n".join(parts) + "\n"


def with_shown_paths(output, root):
    """The output with the paths of SHOWN, also where "..." stands for one of their ends."""
    for name, shown in SHOWN.items():
        path = f"{root}/{name}"
        assert len(path) == len(shown), path
        output = output.replace(path, shown)
        for cut in range(1, len(path) - 2):
            output = output.replace("..." + path[cut:], "..." + shown[cut:])
            output = output.replace(path[:-cut] + "...", shown[:-cut] + "...")
    return output


def run_session(script, installation):
    """What the session prints, with the two directories by their names."""
    with tempfile.TemporaryDirectory(prefix="pg", dir="/tmp") as scratch:
        root = pathlib.Path(scratch)
        folder, prefix = (root / name for name in SHOWN)
        folder.mkdir()
        shutil.copytree(installation, prefix, symlinks=True)
        for directory in (folder, prefix, *(path for path in prefix.rglob("*") if path.is_dir())):
            directory.chmod(0o755)  # whatever the umask was; ispctl reports who else may write
        (root / "session.sh").write_text(script)
        environment = {
            "PATH": f"{prefix}/bin:{os.environ['PATH']}", "HOME": str(folder), "PREFIX": str(prefix),
            "LANG": "C.UTF-8", "TMPDIR": str(root)}
        done = subprocess.run(["bash", root / "session.sh"], cwd=folder, env=environment, check=False,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=SECONDS)
        output = done.stdout.decode("utf-8", errors="replace")
        return with_shown_paths(COLOUR.sub("", output), root)


def run_page(text, installation):
    """[(Command, what it printed)] in the order of the page."""
    steps = list(steps_of(text))
    commands = [what for kind, what, _ in steps if kind == "run"]
    if not commands:
        return []
    printed = run_session(script_of(steps), installation).split(f"\n{MARKER}\n")
    # The session may end early, in a command that exits the shell.
    printed += [""] * (len(commands) - len(printed))
    return list(zip(commands, printed))


def updated(text, results):
    """The page with what the commands printed, where it differs from what is shown."""
    lines = text.splitlines()
    for command, printed in reversed(results):
        if not agrees(command, printed):
            begin = command.number - 1 + len(command.lines)
            lines[begin:begin + len(command.shown)] = printed.splitlines()
    return "\n".join(lines) + "\n"


def problems_of(name, text, results):
    for number in unmarked(text):
        yield (f"{name}:{number}: commands that nobody runs: write ```console, or <!-- not run: REASON --> "
               "before the block")
    for command, printed in results:
        if not agrees(command, printed):
            yield (f"{name}:{command.number}: $ {command.lines[0]}\nprints\n{with_end(printed)}"
                   "and the page shows\n" + "\n".join(command.shown))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--write", action="store_true")
    parser.add_argument("--prefix", type=pathlib.Path, required=True)
    parser.add_argument("pages", nargs="*", type=pathlib.Path)
    options = parser.parse_args()
    problems, count = [], 0
    for page in options.pages or [ROOT / "README.md", *sorted(ROOT.glob("docs/*.md"))]:
        text = page.read_text()
        try:
            results = run_page(text, options.prefix.resolve())
        except (ValueError, subprocess.TimeoutExpired) as error:
            problems.append(f"{page.name}: {error}")
            continue
        count += len(results)
        if options.write:
            page.write_text(updated(text, results))
        else:
            problems += problems_of(page.name, text, results)
    return report(f"commands of the pages ({count} run)", problems)


if __name__ == "__main__":
    sys.exit(main())
