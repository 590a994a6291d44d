"""A copy of what a build of the library needs, and the commands to configure and build it."""

import os
import re
import shutil
import subprocess

# CMake's generators, the shell and pkg-config treat each of these characters specially somewhere.
ODD = "Prüfung (ß) 1"
PARTS = ("CMakeLists.txt", "scaler_isp", "packaging", "simulator", "selftest", "ispctl", "templates",
         "examples")
# Neither the compiler's defaults nor the directory of an earlier test may come from outside.
ENVIRONMENT = {name: value for name, value in os.environ.items()
               if name not in ("DESTDIR", "CXXFLAGS", "CFLAGS", "LDFLAGS")} | {"LC_ALL": "C.UTF-8"}


def run(*command, **options):
    """Output of a command, which must succeed."""
    done = subprocess.run([str(word) for word in command], env=ENVIRONMENT, text=True, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)
    assert done.returncode == 0, f"{command} ended with {done.returncode}:\n{done.stdout}"
    return done.stdout


def copy_of(source, folder):
    folder.mkdir(parents=True)
    for part in PARTS:
        if (source / part).is_dir():
            shutil.copytree(source / part, folder / part)
        else:
            shutil.copy(source / part, folder)
    return folder


def configure(source, build, compiler, *definitions):
    return run("cmake", "-S", source, "-B", build, "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={compiler}",
               "-DCMAKE_CXX_FLAGS=-O0", *definitions)


def cache_of(build):
    """{name: type and value} of the cache of a build directory."""
    lines = (build / "CMakeCache.txt").read_text().splitlines()
    return dict(match.groups() for line in lines if (match := re.match(r"([^#/][^:]*):(.*)", line)))
