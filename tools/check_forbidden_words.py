#!/usr/bin/env python3
"""Finds words that must not stand in the project: it speaks as the system itself.

Read are the contents and names of all tracked files and the messages of all commits.
"""

import re
import sys

from tracked_files import git, report, tracked_files, tracked_texts

# In brackets where the plain word would make this file report itself.
WORDS = re.compile(
    r"\b[s]pec\.md\b|\bthe [s]pec\b|\bParts? [1-6]\.[1-6]\b|[d]ecisions\.md|[t]race\.md"
    r"|\bD[01][0-9]{2}\b|\b[1-6]\.[1-6]-[0-9]{2,3}\b|(^|[^a-z])/(work|farm)/",
    re.IGNORECASE,
)
MESSAGE_WORDS = re.compile(
    WORDS.pattern + r"|\b[s]pec\b|\b[a]gents?\b|\b[h]elper session", re.IGNORECASE)
# Texts that are not ours.
FOREIGN = re.compile(r"(package-lock\.json|LICENSE|THIRD)")


def main():
    problems = [f"{name}: file name" for name in tracked_files() if WORDS.search(name)]
    for name, text in tracked_texts():
        if FOREIGN.search(name):
            continue
        for number, line in enumerate(text.splitlines(), 1):
            if WORDS.search(line):
                problems.append(f"{name}:{number}: {line.strip()}")
    for line in git("log", "--format=%h %s %b").splitlines():
        if MESSAGE_WORDS.search(line):
            problems.append(f"commit message: {line}")
    return report("words", problems)


if __name__ == "__main__":
    sys.exit(main())
