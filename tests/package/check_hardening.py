#!/usr/bin/env python3
"""How delivered files are hardened against mistakes in memory, read from the files themselves.

usage: check_hardening.py [--unoptimised] [--lacking PROGRAM] FILE...

--unoptimised: not built for release, so that sizes are not checked. --lacking names a program that has
nothing of all this: each check must find that.
"""

import argparse
import pathlib
import re
import subprocess
import sys

# With checked sizes these always have another name. snprintf has not where the size of the target is unknown.
UNCHECKED = re.compile(r"v?f?w?printf|v?sprintf|strcpy|strcat|stpcpy|gets")


class Hardened:
    """What the tools for ELF files show of one."""

    def __init__(self, path):
        def shown(*command):
            return subprocess.run([*command, path], check=True, stdout=subprocess.PIPE).stdout.decode()

        self.header = shown("readelf", "--file-header", "--wide")
        self.segments = shown("readelf", "--segments", "--wide")
        self.dynamic = shown("readelf", "--dynamic", "--wide")
        self.notes = shown("readelf", "--notes", "--wide")
        self.calls = {line.split()[-1].split("@")[0]
                      for line in shown("nm", "--dynamic", "--undefined-only").splitlines()}
        self.code = pathlib.Path(path).read_bytes()
        self.is_program = "INTERP" in self.segments

    def flags(self):
        return set(re.findall(r"\w+", " ".join(re.findall(r"\((?:FLAGS|FLAGS_1)\)(.*)", self.dynamic))))

    def stack(self):
        return re.search(r"^ +GNU_STACK .* ([R ][W ][E ]) ", self.segments, re.MULTILINE)

    def is_for(self, processor):
        return re.search(rf"^ +Machine: +.*{processor}", self.header, re.MULTILINE) is not None


def is_bound_at_once(file):
    return bool(file.flags() & {"BIND_NOW", "NOW"})


def has_relocatable_code(file):
    return "Type:" in file.header and " DYN " in file.header and (
        not file.is_program or "PIE" in file.flags())


def protects_returns(file):
    if file.is_for("X86-64"):
        return re.search(r"x86 feature: .*SHSTK", file.notes) is not None
    if file.is_for("AArch64"):
        return b"\x3f\x23\x03\xd5" in file.code  # paciasp, at the begin of functions
    return True


CHECKS = {
    "the table of functions stays writable (no RELRO)": lambda file: "GNU_RELRO" in file.segments,
    "functions are looked up at their first call (not -z now)": is_bound_at_once,
    "the stack is executable": lambda file: file.stack() and "E" not in file.stack()[1],
    "code is written to when it is loaded": lambda file: "TEXTREL" not in file.dynamic,
    "its address is fixed (no PIE)": has_relocatable_code,
    "no canary on the stack": lambda file: "__stack_chk_fail" in file.calls,
    "return addresses are not protected": protects_returns,
    "sizes are not checked (no _FORTIFY_SOURCE)":
        lambda file: not any(map(UNCHECKED.fullmatch, file.calls)),
}
# No linker of today makes such a program without being forced to.
ALWAYS = {"code is written to when it is loaded"}
OPTIMISED = {"sizes are not checked (no _FORTIFY_SOURCE)"}


def hardening_problems(path, left_out=()):
    """What a file lacks."""
    file = Hardened(path)
    return [text for text, holds in CHECKS.items() if text not in left_out and not holds(file)]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("files", nargs="+", metavar="FILE", type=pathlib.Path)
    parser.add_argument("--unoptimised", action="store_true")
    parser.add_argument("--lacking", metavar="PROGRAM", type=pathlib.Path)
    given = parser.parse_args()
    problems = []
    for path in given.files:
        found = hardening_problems(path, OPTIMISED if given.unoptimised else ())
        problems += [f"{path.name}: {text}" for text in found]
    if given.lacking:
        unnoticed = set(CHECKS) - ALWAYS - set(hardening_problems(given.lacking))
        problems += [f"{given.lacking.name}: not noticed: {text}" for text in sorted(unnoticed)]
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
