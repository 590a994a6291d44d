#!/usr/bin/env python3
"""Every installed header compiles alone: as C++20, and those for C hosts and plug-ins as C99.

usage: check_headers.py PREFIX C-COMPILER C++-COMPILER
"""

import concurrent.futures
import os
import pathlib
import subprocess
import sys

WARNINGS = ["-Wall", "-Wextra", "-Werror", "-pedantic", "-pedantic-errors", "-fsyntax-only"]


def compile_alone(include, header, command):
    """The compiler's complaints about a source that includes the header, twice."""
    line = f'#include "{header.relative_to(include)}"\n'
    # C forbids an empty source, which a header with macros only would be.
    source = line * 2 + "typedef int not_empty;\n"
    done = subprocess.run([*command, *WARNINGS, "-I", str(include), "-"], input=source, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    return f"{header.name}, {' '.join(command)}:\n{done.stdout}" if done.returncode else ""


def main():
    include = pathlib.Path(sys.argv[1]) / "include"
    as_c = [sys.argv[2], "-std=c99", "-x", "c"]
    as_cpp = [sys.argv[3], "-std=c++20", "-x", "c++"]
    jobs = []
    for header in sorted(include.rglob("*.h")):
        jobs.append((header, as_cpp))
        if header.name == "OperateScaler.h" or header.parent.name == "abi":
            jobs.append((header, as_c))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        complaints = [text for text in pool.map(lambda job: compile_alone(include, *job), jobs) if text]
    print("\n".join(complaints))
    print(f"{len(jobs)} compilations, {len(complaints)} failed")
    return 1 if complaints or not jobs else 0


if __name__ == "__main__":
    sys.exit(main())
