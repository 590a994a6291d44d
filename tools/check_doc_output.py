#!/usr/bin/env python3
"""Keeps the output that pages show true: runs the command named in front of a block and puts its
output into it; --check only compares.

    <!-- output of: ./dev demo -->
    ```text
    ...
    ```

    <!-- output of: ./dev demo; from "# Sign it" to "# Ask" -->    an excerpt: from the first line with
                                                  the one text to before the next with the other

Read are README.md and docs/*.md. A line "== " with the command's own heading may separate what a
command does to get ready from what it shows: everything up to the last such line is left out.
"""

import difflib
import functools
import re
import shlex
import subprocess
import sys

from tracked_files import ROOT, report

BLOCK = re.compile(
    r"(?P<head><!-- output of: (?P<command>[^\n;]+)(?:; from \"(?P<first>.+?)\" to \"(?P<last>.+?)\")? -->"
    r"\n```text\n)(?P<text>.*?)(?P<tail>```\n)", re.DOTALL)


@functools.lru_cache(maxsize=None)
def output_of(command):
    done = subprocess.run(shlex.split(command), cwd=ROOT, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    text = done.stdout.decode("utf-8", errors="replace")
    if done.returncode != 0:
        raise SystemExit(f"{command} ended with {done.returncode}:\n{text}")
    return re.split(r"^== [^\n]*\n", text, flags=re.MULTILINE)[-1]


def excerpt(text, first, last):
    lines = text.splitlines(keepends=True)
    begin = next(index for index, line in enumerate(lines) if first in line)
    end = next((index for index, line in enumerate(lines) if index > begin and last in line),
               len(lines))
    return "".join(lines[begin:end]).rstrip("\n") + "\n"


def renewed(match):
    text = output_of(match["command"])
    if match["first"]:
        text = excerpt(text, match["first"], match["last"])
    return match["head"] + text + match["tail"]


def main():
    check, problems, blocks = "--check" in sys.argv[1:], [], 0
    for page in [ROOT / "README.md", *sorted(ROOT.glob("docs/*.md"))]:
        if not page.is_file():
            continue
        old = page.read_text()
        blocks += len(BLOCK.findall(old))
        new = BLOCK.sub(renewed, old)
        if new != old and check:
            problems += difflib.unified_diff(old.splitlines(), new.splitlines(), str(page),
                                             "what the command prints", lineterm="")
        elif new != old:
            page.write_text(new)
    return report(f"shown output ({blocks} blocks)", problems)


if __name__ == "__main__":
    sys.exit(main())
