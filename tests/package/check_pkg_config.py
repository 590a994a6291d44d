#!/usr/bin/env python3
"""Builds and runs the consumers with what pkg-config says about an installation, without CMake.

usage: check_pkg_config.py PREFIX VERSION CONSUMER-FOLDER C-COMMAND C++-COMMAND
"""

import os
import pathlib
import shlex
import subprocess
import sys
import tempfile


def pkg_config(prefix, *arguments):
    environment = dict(os.environ, PKG_CONFIG_LIBDIR=str(prefix / "lib/pkgconfig"))
    done = subprocess.run(["pkg-config", *arguments, "scaler-isp"], env=environment, text=True,
                          stdout=subprocess.PIPE, check=True)
    return shlex.split(done.stdout)


def main():
    prefix, version, consumers = pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3])
    compilers = {
        "host.c": [*shlex.split(sys.argv[4]), "-std=c99"],
        "host.cpp": [*shlex.split(sys.argv[5]), "-std=c++20"],
    }
    assert pkg_config(prefix, "--modversion") == [version]
    with tempfile.TemporaryDirectory() as folder:
        for source, compiler in compilers.items():
            program = os.path.join(folder, source + ".out")
            subprocess.run([*compiler, "-Wall", "-Werror", "-pedantic",
                            *pkg_config(prefix, "--cflags"), str(consumers / source),
                            *pkg_config(prefix, "--libs"), f"-Wl,-rpath,{prefix}/lib",
                            "-o", program], check=True)
            subprocess.run([program], check=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
