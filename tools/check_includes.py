#!/usr/bin/env python3
"""Holds the #include lines against the picture of the layers: includes go downward only.

    entry --> args --> settings, sign --> common --> abi
    entry --> plugins ------------------> common
    common/script --> plugins

Besides: no file includes itself in a circle, an installed header includes installed headers only, and
everything outside the library (ispctl, simulator, selftest, examples) includes installed headers only.
"""

import re
import sys

from tracked_files import ROOT, report, tracked_texts

# Layer -> the layers directly below it.
BELOW = {
    "entry": ["args", "plugins"],
    "args": ["settings", "sign"],
    "settings": ["common"],
    "sign": ["common"],
    "plugins": ["common"],
    "common/script": ["plugins"],
    "common": ["abi"],
    "abi": [],
}
# Not there in every C++ library the project builds with, or dependent on the system's version.
UNPORTABLE = {"filesystem", "format", "memory_resource", "semaphore", "latch", "barrier", "charconv"}
ENTRY_HEADER = "scaler_isp/OperateScaler.h"
INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^>"]+)[>"]', re.MULTILINE)


def reachable(layer):
    """A layer and all layers below it."""
    layers = {layer}
    for below in BELOW[layer]:
        layers |= reachable(below)
    return layers


def layer_of(path):
    """The layer of a file of the library, None for the two headers at the top."""
    parts = path.split("/")[1:-1]
    return "/".join(parts) if parts else None


def may_include(layer, target):
    """The two headers at the top stand above all layers; one of them declares what entry defines."""
    if layer is None:
        return True
    return target == ENTRY_HEADER and layer == "entry" or layer_of(target) in reachable(layer)


def public_headers():
    """The headers that an installation offers, read from the list that installs them."""
    text = (ROOT / "scaler_isp/CMakeLists.txt").read_text()
    names = re.search(r"set\(public_headers\s([^)]*)\)", text).group(1).split()
    return {"scaler_isp/" + name for name in names}


def library_problems(name, text, public):
    layer = layer_of(name)
    if layer is not None and layer not in BELOW:
        return [f"{name}: the picture has no layer {layer}"]
    problems = []
    for style, target in INCLUDE.findall(text):
        if target.startswith("scaler_isp/"):
            if not may_include(layer, target):
                problems.append(f"{name}: {layer} must not include {target}")
            if name in public and target not in public:
                problems.append(f"{name}: an installed header must not include the internal {target}")
            if not (ROOT / target).is_file():
                problems.append(f"{name}: there is no {target}")
        elif style == '"':
            problems.append(f'{name}: write the whole path from scaler_isp/ on: "{target}"')
        elif target in UNPORTABLE:
            problems.append(f"{name}: <{target}> is not portable enough for the library")
    return problems


def circles(edges):
    """Every circle of includes, as one line each."""
    problems, done = [], set()

    def visit(name, trail):
        if name in trail:
            problems.append("circle: " + " -> ".join(trail[trail.index(name):] + [name]))
        elif name not in done:
            for target in edges.get(name, []):
                visit(target, trail + [name])
            done.add(name)

    for name in edges:
        visit(name, [])
    return problems


def main():
    public = public_headers()
    problems, edges = [], {}
    for name, text in tracked_texts(".h", ".cpp", ".c", ".def"):
        if name.startswith("scaler_isp/"):
            problems += library_problems(name, text, public)
            edges[name] = [target for _, target in INCLUDE.findall(text) if target != name]
        elif name.startswith(("ispctl/", "simulator/", "selftest/", "examples/")):
            for _, target in INCLUDE.findall(text):
                if target.startswith("scaler_isp/") and target not in public:
                    problems.append(f"{name}: {target} is not installed")
    return report("includes", problems + circles(edges))


if __name__ == "__main__":
    sys.exit(main())
