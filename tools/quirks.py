#!/usr/bin/env python3
"""Writes docs/quirks.md from the QUIRK comments of the library; --check only compares."""

import sys

from quirk_comments import all_kept
from tracked_files import ROOT, report

TARGET = ROOT / "docs/quirks.md"
HEAD = """# Quirks that stay

Host tools, plug-ins and scripts of factory lines rely on the behaviour below, so it is kept on
purpose. Each has a test of the same name. Written by `tools/quirks.py` from the comments
in the code; change it there.
"""
TITLES = {
    "abi": "Records",
    "args": "Command line",
    "common": "Text and files",
    "common/script": "Register scripts",
    "entry": "A run",
    "plugins": "Plug-ins",
    "settings": "Settings files",
    "sign": "Signatures",
}


def page():
    kept, problems = all_kept()
    layers = {}
    for entry in kept:
        folder = entry.place.split(":")[0].split("/", 1)[1].rpartition("/")[0]
        layers.setdefault(folder, []).append(entry)
    parts = [HEAD]
    for layer in sorted(layers, key=lambda name: TITLES.get(name, name)):
        lines = sorted({f"- **{e.test.replace('_', ' ')}**: {e.sentence}\n" for e in layers[layer]})
        parts.append(f"\n## {TITLES.get(layer, layer)}\n\n" + "".join(lines))
    return "".join(parts), problems


def main():
    if sys.argv[1:] not in ([], ["--check"]):
        print("usage: tools/quirks.py [--check]", file=sys.stderr)
        return 2
    text, problems = page()
    if sys.argv[1:]:
        if not TARGET.is_file() or TARGET.read_text() != text:
            problems.append("docs/quirks.md is out of date: run tools/quirks.py")
    else:
        TARGET.parent.mkdir(exist_ok=True)
        TARGET.write_text(text)
    return report("quirks", problems)


if __name__ == "__main__":
    sys.exit(main())
