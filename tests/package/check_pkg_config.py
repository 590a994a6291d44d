#!/usr/bin/env python3
"""Builds and runs the consumers with what pkg-config says about an installation, without CMake.

usage: check_pkg_config.py LIBRARY-FOLDER VERSION CONSUMER-FOLDER C-COMMAND C++-COMMAND
"""

import os
import pathlib
import shlex
import subprocess
import sys
import tempfile


def pkg_config(libdir, *arguments):
    environment = dict(os.environ, PKG_CONFIG_LIBDIR=str(libdir / "pkgconfig"))
    # It quotes for the shell byte by byte: each half of an umlaut has a backslash of its own.
    done = subprocess.run(["pkg-config", *arguments, "scaler-isp"], env=environment, text=True,
                          errors="surrogateescape", stdout=subprocess.PIPE, check=True)
    return shlex.split(done.stdout)


def main():
    libdir, version, consumers = pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3])
    compilers = {
        "host.c": [*shlex.split(sys.argv[4]), "-std=c99"],
        "host.cpp": [*shlex.split(sys.argv[5]), "-std=c++20"],
    }
    assert pkg_config(libdir, "--modversion") == [version]
    with tempfile.TemporaryDirectory() as folder:
        for source, compiler in compilers.items():
            program = os.path.join(folder, source + ".out")
            subprocess.run([*compiler, "-Wall", "-Werror", "-pedantic",
                            *pkg_config(libdir, "--cflags"), str(consumers / source),
                            *pkg_config(libdir, "--libs"), f"-Wl,-rpath,{libdir}",
                            "-o", program], check=True)
            subprocess.run([program, str(libdir)], check=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
