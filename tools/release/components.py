"""What is compiled into the files of a release besides our own sources; the one table of it."""

import pathlib
import re
import subprocess
from collections import namedtuple

ROOT = pathlib.Path(__file__).resolve().parents[2]
INPUTS = ROOT / "packaging/macos/fetch_inputs.sh"
POOL = "https://deb.debian.org/debian/pool/main/"

# kinds: archives that it is in. files: a pattern of the files there. pinned: name of its hash in
# fetch_inputs.sh, or None where it is headers of an installed Debian package.
Component = namedtuple("Component", "name kinds files version source debian pinned licence supplier")

PROGRAM = r"\./bin/ispctl"
BOTH = ("linux", "macos")
COMPONENTS = (
    Component("CLI11", BOTH, PROGRAM, "2.1.2", "c/cli11/cli11_2.1.2+ds.orig.tar.xz", "libcli11-dev", None,
              "BSD-3-Clause", "Organization: University of Cincinnati"),
    Component("nlohmann-json", BOTH, PROGRAM, "3.11.2", "n/nlohmann-json3/nlohmann-json3_3.11.2.orig.tar.gz",
              "nlohmann-json3-dev", None, "MIT", "Person: Niels Lohmann"),
    Component("fmt", BOTH, PROGRAM, "9.1.0", "f/fmtlib/fmtlib_9.1.0+ds1.orig.tar.gz", "libfmt-dev",
              "fmt_sha256", "MIT", "Person: Victor Zverovich"),
    Component("mbedtls", BOTH, r".*/libSignVerify\.dylib", "2.28.3", "m/mbedtls/mbedtls_2.28.3.orig.tar.gz",
              "libmbedtls-dev", "mbed_sha256", "Apache-2.0", "Organization: Mbed TLS Contributors"),
    Component("libc++", ("macos", "xcframework"), r".*(ispctl|/probe|\.dylib)", "19.1.7", None,
              "libc++-19-dev", "deb_sha256", "Apache-2.0 WITH LLVM-exception", "Organization: LLVM Project"),
)


def of_kind(kind):
    return [component for component in COMPONENTS if kind in component.kinds]


def pinned_hash(name):
    """A hash in fetch_inputs.sh, or None."""
    return name and re.search(rf"^{name}=([0-9a-f]{{64}})$", INPUTS.read_text(), re.MULTILINE)[1]


def check_version(component):
    """The version in the table is the installed one: a header that changes must not stay unnoticed."""
    if component.pinned and component.name != "fmt":
        pinned = INPUTS.read_text()
        assert component.version in pinned, f"{component.name}: {INPUTS.name} pins another version"
        return
    installed = subprocess.run(["dpkg-query", "--show", "--showformat", "${Version}", component.debian],
                               check=True, text=True, stdout=subprocess.PIPE).stdout
    assert re.split(r"[+-]", installed)[0] == component.version, \
        f"{component.debian} {installed} is installed; the table in {__file__} says {component.version}"
