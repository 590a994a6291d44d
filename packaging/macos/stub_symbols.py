"""Reads what a library of the system exports, from the text stub that programs are linked with."""

import re

# A list of targets, and what follows it up to the next one.
EXPORTS = re.compile(r"- targets:\s*\[(.*?)\]\n(.*?)(?=\n  - targets|\n[a-z]|\n---|\n\.\.\.|\Z)", re.DOTALL)
NAMES = re.compile(r"\b(?:weak-)?symbols:\s*\[(.*?)\]", re.DOTALL)


def words_of(text):
    return {word.strip(" '\"\n") for word in text.split(",")}


def symbols_of(path, arch):
    """The names that the stub, or one inside it, lists for macOS on this processor."""
    found = set()
    for targets, exports in EXPORTS.findall(path.read_text()):
        if f"{arch}-macos" in words_of(targets):
            for names in NAMES.findall(exports):
                found |= words_of(names)
    return found
