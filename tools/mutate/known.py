"""tests/mutants.txt: what is known of single changes. Each is named by its file and by its lines before and
after the change, so that an entry remains valid wherever the lines move:

    equivalent scaler_isp/common/Utf8.cpp
        if (length < 4) {
        if (length <= 4) {
        why: no caller passes more than 3

"equivalent" changes nothing that anybody sees, for the reason in its last line. "caught" was missed once; a
test was written for it, and must go on catching it.
"""

import re

from tracked_files import ROOT

FILE = ROOT / "tests/mutants.txt"
HEAD = re.compile(r"(caught|equivalent) (\S+)$")


def entries(text):
    """((path, before, after), reason or None) of each entry; a mistake ends the program."""
    paragraphs = re.split(r"\n\s*\n", "\n".join(
        line for line in text.splitlines() if not line.startswith("#")).strip())
    for paragraph in filter(None, paragraphs):
        head, *rest = [line.strip() for line in paragraph.splitlines()]
        found = HEAD.match(head)
        reason = rest.pop()[len("why: "):] if rest and rest[-1].startswith("why: ") else None
        if not found or len(rest) != 2 or (found[1] == "equivalent") != bool(reason):
            raise SystemExit(f"{FILE.name}: cannot understand\n{paragraph}")
        yield (found[2], rest[0], rest[1]), reason


class KnownChanges:
    def __init__(self, path=FILE):
        self.reasons = dict(entries(path.read_text()))

    def reason(self, key):
        """Why the change is equivalent, or None."""
        return self.reasons.get(key)

    def is_caught(self, key):
        return key in self.reasons and self.reasons[key] is None
