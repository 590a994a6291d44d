#!/usr/bin/env python3
"""The example hosts for macOS run in the loader: those in C and C++ program the virtual scaler, one opens the
library by path, the other links it; the third uses the virtual bus.

usage: check_examples.py MACOS-BUILD LIBRARY FOLDER LAUNCHER...
"""

import os
import pathlib
import subprocess
import sys

from check_program import install

BUS_LINES = "register 0x10 = 0x5A\nscript read 1 byte: 0x5A\n00 FF FF FF FF FF FF 00 "


class Examples:
    def __init__(self, build, library, folder, launcher):
        self.programs, self.folder, self.launcher = build / "tests/macos/examples", folder, launcher
        install(build, library, folder, build / "bin/ispctl")
        self.virtual = folder / "share/scaler-isp/virtual"
        self.device = folder / "device"
        self.environment = dict(os.environ, LC_ALL="C.UTF-8", MACHO_RPATH=str(self.virtual),
                                SCALER_ISP_VIRTUAL_DEVICE=str(self.device))

    def run(self, name, *arguments, status=0):
        done = subprocess.run([*self.launcher, self.programs / name, *arguments], check=False, text=True,
                              env=self.environment, cwd=self.folder, stdin=subprocess.DEVNULL, timeout=60,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        assert done.returncode == status, (name, done.returncode, done.stdout)
        return done.stdout

    def programs_device(self, name, fill, *library):
        firmware = self.folder / f"firmware of {name}.bin"  # the host quotes it
        firmware.write_bytes(bytes([fill]) * 65_536)
        shown = self.run(name, *library, "--isp", "--fw", firmware)
        assert "progress 100 %" in shown and "result 0x0: success" in shown, shown
        assert (self.device / "flash.bin").read_bytes().startswith(firmware.read_bytes())
        shown = self.run(name, *library, "--isp", "--fw", "missing.bin", status=1)
        assert "result 0x0:" not in shown, shown


def main():
    build, library, folder = (pathlib.Path(word) for word in sys.argv[1:4])
    examples = Examples(build, library, folder, sys.argv[4:])
    examples.programs_device("host_c", 0xC1, examples.virtual / "libScalerIsp.dylib")
    examples.programs_device("host_cpp", 0xC2)
    shown = examples.run("bus_host", examples.virtual / "libVirtualComm.dylib")
    assert BUS_LINES in shown, shown
    print("the hosts in C and C++ program the virtual scaler, the third reads the virtual bus")


if __name__ == "__main__":
    main()
