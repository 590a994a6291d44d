#!/usr/bin/env python3
"""Every relative link between pages leads to a file, and to a heading of it.

usage: check_links.py [DIR]

Read are the tracked pages of the checkout, or every page below DIR, such as the pages of an installation.
"""

import pathlib
import re
import sys

from tracked_files import ROOT, report, tracked_files

FENCE = re.compile(r"^( *)```.*?^\1```$", re.DOTALL | re.MULTILINE)
LINK = re.compile(r"\]\((?P<target>[^)\s]+)\)")
# Pages that others may name before they are written.
EXPECTED = ()
HEADING = re.compile(r"^#+ (.*)$", re.MULTILINE)


def prose(page):
    """The page without its code blocks."""
    return FENCE.sub("", page.read_text())


def anchors(page):
    """Fragments of the headings: lower case, no punctuation, "-" for spaces; repeated ones are numbered."""
    found = []
    for heading in HEADING.findall(prose(page)):
        text = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", heading).lower()
        name = re.sub(r"[^\w\- ]", "", text).replace(" ", "-")
        found.append(name + (f"-{found.count(name)}" if name in found else ""))
    return found


def problems_of(page, name):
    for match in LINK.finditer(prose(page)):
        target = match["target"]
        if re.match(r"[a-z]+:", target):
            continue
        path, _, fragment = target.partition("#")
        goal = (page.parent / path).resolve() if path else page
        if not goal.exists():
            if goal.name in EXPECTED:
                continue
            yield f"{name}: {target} leads nowhere"
        elif fragment and goal.suffix == ".md" and fragment not in anchors(goal):
            yield f"{name}: {target}: there is no such heading"


def main():
    if len(sys.argv) > 1:
        root = pathlib.Path(sys.argv[1])
        pages = {str(page.relative_to(root)): page for page in sorted(root.rglob("*.md"))}
    else:
        pages = {name: ROOT / name for name in tracked_files() if name.endswith(".md")}
    problems = [] if pages else ["there are no pages"]
    for name, page in pages.items():
        problems += problems_of(page, name)
    return report(f"links of {len(pages)} pages", problems)


if __name__ == "__main__":
    sys.exit(main())
