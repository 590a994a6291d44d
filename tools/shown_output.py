#!/usr/bin/env python3
"""Keeps the output that pages show true: runs the command named in front of a block and puts its
output into it; --check only compares.

    <!-- output of: ./dev demo -->
    ```text
    ...
    ```

Read are README.md and docs/*.md. A line "== " with the command's own heading may separate what a
command does to get ready from what it shows: everything up to the last such line is left out.
"""

import difflib
import re
import shlex
import subprocess
import sys

from tracked import ROOT, report

BLOCK = re.compile(r"(<!-- output of: ([^\n]+?) -->\n```text\n)(.*?)(```\n)", re.DOTALL)


def output_of(command):
    done = subprocess.run(shlex.split(command), cwd=ROOT, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    text = done.stdout.decode("utf-8", errors="replace")
    if done.returncode != 0:
        raise SystemExit(f"{command} ended with {done.returncode}:\n{text}")
    return re.split(r"^== [^\n]*\n", text, flags=re.MULTILINE)[-1]


def main():
    check, problems, blocks = "--check" in sys.argv[1:], [], 0
    for page in [ROOT / "README.md", *sorted(ROOT.glob("docs/*.md"))]:
        if not page.is_file():
            continue
        old = page.read_text()
        blocks += len(BLOCK.findall(old))
        new = BLOCK.sub(lambda match: match[1] + output_of(match[2]) + match[4], old)
        if new != old and check:
            problems += difflib.unified_diff(old.splitlines(), new.splitlines(), str(page),
                                             "what the command prints", lineterm="")
        elif new != old:
            page.write_text(new)
    return report(f"shown output ({blocks} blocks)", problems)


if __name__ == "__main__":
    sys.exit(main())
