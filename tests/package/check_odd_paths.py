#!/usr/bin/env python3
"""Checkout, build and installation in directories with spaces, parentheses and umlauts, and the library in
another directory than lib: two levels deeper, or an absolute path. Consumers build with what the
installation says, and ispctl finds the library.

usage: check_odd_paths.py SOURCE C-COMPILER C++-COMPILER VERSION [ispctl]

Built without optimisation, and of ispctl only its search; it is configured only for "ispctl".
"""

import json
import pathlib
import shlex
import sys
import tempfile

from checkout import ODD, cache_of, configure, copy_of, run

HERE = pathlib.Path(__file__).resolve().parent
SEARCH = """#include "LibraryPaths.h"
#include <cstdio>
int main() { std::puts(ispctl::InstalledLibraryPath().c_str()); }
"""


class Installation:
    """One installation of the build, with the library where LIBDIR says."""

    def __init__(self, folder, checkout, arguments, name, libdir):
        self.folder, self.checkout = folder, checkout
        _, self.c_compiler, self.compiler, self.version, *parts = arguments
        self.prefix = folder / name
        self.build = folder / "build"
        self.libdir = self.prefix / libdir  # an absolute path stays one
        self.with_ispctl = "ispctl" in parts
        # Without a type, as somebody types it.
        configure(checkout, self.build, self.compiler, f"-DCMAKE_C_COMPILER={self.c_compiler}",
                  f"-DCMAKE_INSTALL_LIBDIR={libdir}", f"-DCMAKE_INSTALL_PREFIX={self.prefix}",
                  "-DCMAKE_BUILD_TYPE=None", "-DBUILD_TESTING=OFF", "-DSCALER_ISP_SIMULATOR=OFF",
                  f"-DSCALER_ISP_HOST={'ON' if self.with_ispctl else 'OFF'}")
        assert cache_of(self.build)["CMAKE_INSTALL_LIBDIR"] == f"PATH={libdir}"
        run("cmake", "--build", self.build, "--target", "ScalerIsp")
        for part in ("scaler_isp", "packaging"):
            run("cmake", "--install", self.build / part)

    def check_files(self):
        for name in ("cmake/ScalerIsp/ScalerIspConfig.cmake", "pkgconfig/scaler-isp.pc"):
            assert (self.libdir / name).is_file(), f"{self.libdir / name} is not there"

    def check_find_package(self):
        consumer = self.prefix / "consumer (1)"
        configure(HERE / "consumer", consumer, self.compiler, f"-DCMAKE_C_COMPILER={self.c_compiler}",
                  f"-DScalerIsp_DIR={self.libdir / 'cmake/ScalerIsp'}",
                  f"-DEXPECTED_VERSION={self.version}", f"-DLIBRARY_FOLDER={self.libdir}")
        run("cmake", "--build", consumer)
        run("ctest", "--test-dir", consumer, "--no-tests=error")

    def check_pkg_config(self):
        run(sys.executable, "-B", HERE / "check_pkg_config.py", self.libdir, self.version,
            HERE / "consumer", self.c_compiler, self.compiler)

    def check_search(self):
        """ispctl's search, compiled as for ispctl, in the directory where ispctl would be."""
        commands = json.loads((self.build / "compile_commands.json").read_text())
        command = next(entry["command"] for entry in commands
                       if entry["file"].endswith("ispctl/LibraryPaths.cpp"))
        definitions = [word for word in shlex.split(command) if word.startswith("-DISPCTL_")]
        (self.prefix / "bin").mkdir()
        main = self.prefix / "main.cpp"
        main.write_text(SEARCH)
        program = self.prefix / "bin/search"
        run(self.compiler, "-std=c++20", *definitions, "-I", self.checkout / "ispctl", main,
            self.checkout / "ispctl/LibraryPaths.cpp", "-o", program)
        found = pathlib.Path(run(program).strip())
        assert found.parent == self.libdir and found.is_file(), f"ispctl searches {found}"

    def check(self):
        self.check_files()
        self.check_find_package()
        self.check_pkg_config()
        if self.with_ispctl:
            self.check_search()


def main():
    with tempfile.TemporaryDirectory() as place:
        folder = pathlib.Path(place).resolve() / ODD
        checkout = copy_of(pathlib.Path(sys.argv[1]), folder / "checkout")
        for name, libdir in (("deep", "lib/x/y"), ("absolute", str(folder / "elsewhere"))):
            Installation(folder, checkout, sys.argv[1:], name, libdir).check()
            print(f"{libdir}: two consumers build and run")
    return 0


if __name__ == "__main__":
    sys.exit(main())
