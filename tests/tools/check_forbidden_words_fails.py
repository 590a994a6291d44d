#!/usr/bin/env python3
"""The check of forbidden words fails for each place that it reads, and only then.

The check runs as it is, on a repository of its own with a word that only this test forbids.
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "tools"
WORD = "Quux 7.3"


def run(folder, *command):
    return subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, check=False)


def git(folder, *arguments):
    done = run(folder, "git", "-c", "user.name=T", "-c", "user.email=t@localhost",
               "-c", "core.hooksPath=/dev/null", "-c", "commit.gpgsign=false", *arguments)
    assert done.returncode == 0, done.stdout


def repository(folder, forbidden_in):
    """A repository with the check in it, which knows the word's hash in one of its lists."""
    (folder / "tools").mkdir()
    shutil.copy(TOOLS / "tracked_files.py", folder / "tools")
    check = TOOLS / "check_forbidden_words.py"
    word_hash = run(folder, sys.executable, "-B", check, "--hash", WORD).stdout.strip()
    head, list_start, tail = check.read_text().partition(f'{forbidden_in} = frozenset("""\n')
    assert list_start and len(word_hash) == 16, word_hash
    (folder / "tools" / check.name).write_text(f"{head}{list_start}    {word_hash}\n{tail}")
    git(folder, "init", "-q")
    git(folder, "add", ".")
    git(folder, "commit", "-q", "-m", "first")


def status(forbidden_in, name="a.txt", text="nothing", message="second"):
    """Exit status and output of the check after a commit with these texts."""
    with tempfile.TemporaryDirectory() as place:
        folder = pathlib.Path(place)
        repository(folder, forbidden_in)
        (folder / name).write_text(text)
        git(folder, "add", ".")
        git(folder, "commit", "-q", "-m", message)
        done = run(folder, sys.executable, "-B", "tools/check_forbidden_words.py")
        return done.returncode, done.stdout


CASES = [
    ("EVERYWHERE", {}, 0),
    ("EVERYWHERE", {"text": "one\nsee the QUUX   1.9, there"}, 1),
    ("EVERYWHERE", {"text": "one\nquux 10.9 and quuxes 1.9"}, 0),
    ("EVERYWHERE", {"name": "quux 0.0.txt"}, 1),
    ("EVERYWHERE", {"message": "second\n\nas in quux 2.2"}, 1),
    ("IN_MESSAGES", {"text": "quux 1.9"}, 0),
    ("IN_MESSAGES", {"message": "quux 1.9"}, 1),
]


def main():
    wrong = 0
    for forbidden_in, given, expected in CASES:
        found, output = status(forbidden_in, **given)
        if found != expected:
            wrong += 1
            print(f"{forbidden_in} {given}: {found} instead of {expected}\n{output}")
    print(f"{len(CASES)} cases, {wrong} wrong")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
