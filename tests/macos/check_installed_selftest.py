#!/usr/bin/env python3
"""The self-test of an installation of the library that ships passes in the loader. Differences from what is
assumed of macOS are those of a Linux underneath, and no others; without the plug-in it fails.

usage: check_installed_selftest.py MACOS-BUILD LIBRARY SOURCES FOLDER LAUNCHER...
"""

import pathlib
import shutil
import sys

from check_program import install

build, library, sources, folder = (pathlib.Path(word) for word in sys.argv[1:5])
sys.path.insert(0, str(sources / "tests/package"))
from check_selftest import check_passes, run_selftest, with_outcome, without_plugin

prefix = folder / "prefix"
install(build, library, prefix, build / "bin/ispctl")
selftest = prefix / "share/scaler-isp/selftest"
selftest.mkdir()
shutil.copy(build / "selftest/probe", selftest)
shutil.copy(sources / "selftest/run.sh", selftest)
check_passes(prefix, folder, in_loader=True, launcher=sys.argv[5:])
without_plugin(prefix)
status, outcomes, output = run_selftest(prefix, folder, sys.argv[5:])
assert status == 1 and "calls/programs_firmware" in with_outcome(outcomes, "failed"), output
print("the self-test passes in the loader, and fails without the plug-in")
