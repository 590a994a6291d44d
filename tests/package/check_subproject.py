#!/usr/bin/env python3
"""As a part of another project the library adds itself and changes nothing: no variable, no entry of the
cache without the prefix SCALER_ISP_, no test, no installed file, no target besides its own three.

usage: check_subproject.py SOURCE C++-COMPILER
"""

import pathlib
import re
import sys
import tempfile

from checkout import ODD, cache_of, configure, copy_of, run

HERE = pathlib.Path(__file__).resolve().parent
TARGETS = {"ScalerIsp", "scaler_isp_objects", "scaler_isp_static"}
# What project() and FetchContent enter themselves.
OF_CMAKE = re.compile(r"ScalerIsp_(BINARY_DIR|SOURCE_DIR|IS_TOP_LEVEL)$|FETCHCONTENT_\w+$")
# Variables that are expected to appear: of the record itself, and of the two above.
RECORDED = re.compile(r"recorded|(ScalerIsp|scalerisp|FETCHCONTENT|SCALER_ISP|__cmake)_")
OF_THE_RUN = {"HOW", "RECORD", "CMAKE_NUMBER_OF_MAKEFILES"}


class Parent:
    """A project of a user, configured with or without the library in it."""

    def __init__(self, folder, checkout, compiler, how, *definitions):
        self.build = folder / how
        self.record = folder / (how + " record")
        configure(HERE / "parent", self.build, compiler, f"-DHOW={how}", f"-DSCALER_ISP={checkout}",
                  f"-DRECORD={self.record}", f"-DHOST={HERE / 'consumer/host.cpp'}", *definitions)
        self.cache = {name: value.replace(str(self.build), "BUILD")
                      for name, value in cache_of(self.build).items()}

    def targets(self):
        return set((self.record / "targets").read_text().split(";")) - {""}

    def variables(self, moment):
        text = (self.record / moment).read_text()
        return {match[0] for match in re.finditer(r"^(\w+)=.*$", text, re.MULTILINE)
                if not RECORDED.match(match[1])}

    def tests(self):
        return int(re.search(r"Total Tests: (\d+)", run("ctest", "--test-dir", self.build, "-N"))[1])

    def installed(self, prefix):
        run("cmake", "--install", self.build, "--prefix", prefix)
        return [path for path in prefix.rglob("*") if path.is_file()]


def problems_of(parent, alone):
    problems = [f"target {name}" for name in parent.targets() ^ TARGETS]
    problems += [f"variable {line}" for line in parent.variables("before") ^ parent.variables("after")]
    for name, value in parent.cache.items():
        if name not in alone.cache:
            if not name.startswith("SCALER_ISP_") and not OF_CMAKE.match(name):
                problems.append(f"new in the cache: {name}:{value}")
        elif name not in OF_THE_RUN and value != alone.cache[name]:
            problems.append(f"changed in the cache: {name}:{value}, was {alone.cache[name]}")
    if parent.tests():
        problems.append(f"{parent.tests()} tests")
    problems += [f"installed: {path}" for path in parent.installed(parent.build / "prefix")]
    return [f"{parent.build.name}: {problem}" for problem in problems]


def main():
    source, compiler = pathlib.Path(sys.argv[1]), sys.argv[2]
    with tempfile.TemporaryDirectory() as place:
        folder = pathlib.Path(place).resolve() / ODD
        checkout = copy_of(source, folder / "checkout")
        alone = Parent(folder, checkout, compiler, "none")
        assert alone.variables("after") and not alone.targets()
        problems = []
        for how in ("add_subdirectory", "FetchContent"):
            problems += problems_of(Parent(folder, checkout, compiler, how), alone)
        asked = Parent(folder, checkout, compiler, "add_subdirectory", "-DSCALER_ISP_SIMULATOR=ON")
        if "virtual_isp" not in asked.targets():
            problems.append("the simulator is not there though asked for")
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
