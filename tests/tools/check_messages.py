#!/usr/bin/env python3
"""Checks that each message of the library is written in one place only, next to the code that prints it, and
that no message names a file by its path in a checkout, which an installation does not have.
"""

import collections
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
COMMENT = re.compile(r"^\s*//.*$", re.MULTILINE)
STRING = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
CHECKOUT_PATH = re.compile(r"\b(docs|tests|tools)/\w")
LEAST = 60


def is_message(text):
    """Texts with a space in them; names, keys and suffixes have none."""
    return " " in text.strip() and re.search(r"[A-Za-z]{2}", text) is not None


def checkout_paths():
    """Messages with a path such as docs/options.md."""
    for part in ("scaler_isp", "ispctl", "simulator", "templates", "examples"):
        for path in sorted((ROOT / part).rglob("*")):
            if path.suffix in (".c", ".cpp", ".h", ".def", ".codes"):
                text = COMMENT.sub("", path.read_text())
                for string in text.splitlines() if path.suffix == ".codes" else STRING.findall(text):
                    if is_message(string) and CHECKOUT_PATH.search(string):
                        yield f"{path.relative_to(ROOT)}: names a file of a checkout: {string}"


def main():
    counts = collections.Counter(
        text
        for path in sorted((ROOT / "scaler_isp").rglob("*.cpp"))
        for text in STRING.findall(COMMENT.sub("", path.read_text()))
        if is_message(text))
    twice = [text for text, count in counts.items() if count > 1]
    for text in twice:
        print(f"stands more than once: {text}")
    elsewhere = list(checkout_paths())
    print(*elsewhere, sep="\n")
    print(f"{len(counts)} messages, {len(twice)} of them more than once")
    return 1 if twice or elsewhere or len(counts) < LEAST else 0


if __name__ == "__main__":
    sys.exit(main())
