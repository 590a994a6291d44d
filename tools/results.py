"""bench/RESULTS.md: parts under a heading each, every one written by the command that measured it."""

from tracked_files import ROOT

RESULTS = ROOT / "bench/RESULTS.md"


def read_parts(path=RESULTS):
    """(what stands in front of the first part, {heading: text}), in the order of the file."""
    top, *parts = path.read_text().split("\n## ")
    pairs = (part.split("\n", 1) for part in parts)
    return top.strip("\n"), {heading: text.strip("\n") for heading, text in pairs}


def write_part(heading, text, path=RESULTS):
    """Replaces that part, or adds it as the last one; every other part stays as it is."""
    top, parts = read_parts(path)
    parts[heading] = text.strip("\n")
    path.write_text(f"{top}\n" + "".join(
        f"\n## {name}\n\n{part}\n" for name, part in parts.items()))
