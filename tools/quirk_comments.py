"""Reads the comments that mark required oddities:

    // QUIRK NameOfTheTest: one sentence for users.
    // It may go on over comment lines.
"""

import re

from tracked_files import tracked_texts

START = re.compile(r"^\s*(?://[/!]?<?|/?\*+)\s*QUIRK\b\s*(.*)$")
CONTINUED = re.compile(r"^\s*(?://[/!]?<?|\*(?!/))\s*(.*?)\s*$")
STRAY = re.compile(r"^\s*(?://|/?\*).*\S.*\bKEPT(?: \w|\s*$)")
ENTRY = re.compile(r"^(\S+): (\S.*[.!)])$", re.DOTALL)


class Kept:
    """One oddity: where it stands, the test that holds it, the sentence for users."""

    def __init__(self, place, test, sentence):
        self.place, self.test, self.sentence = place, test, sentence


def comments_of(text):
    """(line number, whole text) of each QUIRK comment, its lines joined."""
    lines = text.splitlines()
    for index, line in enumerate(lines):
        start = START.match(line)
        if not start:
            continue
        words = [start.group(1).strip()]
        for following in lines[index + 1:]:
            more = CONTINUED.match(following)
            if not more or START.match(following) or not more.group(1):
                break
            # A documentation line after the comment is no part of it.
            if following.lstrip().startswith("///"):
                break
            words.append(more.group(1))
        yield index + 1, " ".join(words).strip()


def all_kept():
    """(list of Kept, list of problems) of the whole library."""
    found, problems = [], []
    for name, text in tracked_texts(".h", ".cpp", ".def"):
        if not name.startswith("scaler_isp/"):
            continue
        problems += [f"{name}:{number}: QUIRK must begin a comment"
                     for number, line in enumerate(text.splitlines(), 1)
                     if STRAY.match(line) and not START.match(line)]
        for number, comment in comments_of(text):
            entry = ENTRY.match(comment)
            if entry:
                found.append(Kept(f"{name}:{number}", entry.group(1), entry.group(2)))
            else:
                problems.append(f"{name}:{number}: not 'QUIRK NameOfTheTest: sentence.': {comment}")
    return found, problems
