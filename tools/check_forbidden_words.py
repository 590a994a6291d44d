#!/usr/bin/env python3
"""Finds words that must not be in the project: it speaks as the system itself.

Reads the contents and names of all tracked files and the messages of all commits. The words are stored as
hashes only, because a readable list would itself contain them. A word is one to three consecutive tokens
with what separates them; letters become lower case, each digit 0 and white space one space. The name of a
directory at the start of an absolute path is a word with its slashes.

usage: check_forbidden_words.py [--hash WORD]

--hash prints the hash of a word, for one of the two lists below.
"""

import functools
import hashlib
import re
import sys

from tracked_files import git, report, tracked_files, tracked_texts

EVERYWHERE = frozenset("""
    bc6661da34ecae62 688b9329eddb9906 27978f1e3b72f0a5 ddff5e1bfa9e543b 80a4cf760a0fa2bf
    55bc0d8ce3cf22ea 68d09c12ce218426 39b71edcf04f114b 8e34ccd0ece17617 216d3696f4fb08b1
    e248e355ce56844c
""".split())
IN_MESSAGES = frozenset("""
    d4f02eaafd1a9e9d d4f0bc5a29de06b5 8c70b25cbbbe8e79 549eb0447cc9d1d1 25adbaaad52ba557
""".split())
LONGEST = 3
TOKEN = re.compile(r"[a-z0-9]+")
TOP_DIRECTORY = re.compile(r"(?<![a-z])/[a-z]+/")
# Texts that are not ours.
FOREIGN = re.compile(r"(package-lock\.json|LICENSE|THIRD)")


def normalised(text):
    return re.sub(r"\s+", " ", re.sub(r"\d", "0", text.lower()))


@functools.lru_cache(maxsize=None)
def hash_of(word):
    """The hash of a normalised word."""
    return hashlib.sha256(word.encode()).hexdigest()[:16]


def words_of(line):
    """Every word of a line, normalised."""
    text = normalised(line)
    tokens = list(TOKEN.finditer(text))
    for index, first in enumerate(tokens):
        # What follows a full stop or a brace is the rest of a version or of an escaped character.
        is_rest = text[:first.start()].endswith((".", "{"))
        for last in tokens[index:index + LONGEST]:
            word = text[first.start():last.end()]
            if not (is_rest and "0" in word):
                yield word
    yield from TOP_DIRECTORY.findall(text)


def has_word(line, hashes):
    return any(hash_of(word) in hashes for word in words_of(line))


def main():
    if sys.argv[1:2] == ["--hash"]:
        print(hash_of(normalised(sys.argv[2])))
        return 0
    problems = [f"{name}: file name" for name in tracked_files() if has_word(name, EVERYWHERE)]
    for name, text in tracked_texts():
        if FOREIGN.search(name):
            continue
        for number, line in enumerate(text.splitlines(), 1):
            if has_word(line, EVERYWHERE):
                problems.append(f"{name}:{number}: {line.strip()}")
    for line in git("log", "--format=%h %s %b").splitlines():
        if has_word(line, EVERYWHERE | IN_MESSAGES):
            problems.append(f"commit message: {line}")
    return report("words", problems)


if __name__ == "__main__":
    sys.exit(main())
