#!/usr/bin/env python3
"""ispctl for macOS runs in the loader, from an installation of the library that ships and the virtual scaler:
its commands, and the demo with the output that the README shows. `ispctl run` starts a second process, which
runs in the loader too.

usage: check_program.py ISPCTL MACOS-BUILD LIBRARY SOURCES FOLDER LAUNCHER...
"""

import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys

README_BLOCK = re.compile(r"<!-- output of: \./dev demo;[^\n]*-->\n```text\n(.*?)```\n", re.DOTALL)
PANEL_BYTES = "0000  5A 11 22 33 00 FF"


def install(build, library, prefix, ispctl):
    """A prefix as the archive has it; without ispctl if that is not there."""
    shutil.rmtree(prefix, ignore_errors=True)
    virtual = prefix / "share/scaler-isp/virtual"
    shutil.copytree(build / "virtual", virtual, ignore=shutil.ignore_patterns("VirtualScaler"))
    for name in ("bin", "lib"):
        (prefix / name).mkdir()
    for directory in (prefix / "lib", virtual):
        shutil.copy(library, directory / "libScalerIsp.dylib")
    if ispctl.exists():
        shutil.copy(ispctl, prefix / "bin/ispctl")


class Installation:
    """A prefix, and a script in a folder of its own that runs its ispctl in the loader."""

    def __init__(self, prefix, folder, launcher):
        self.prefix, self.folder = prefix, folder
        self.ispctl = folder / "ispctl"
        self.ispctl.write_text(
            f"#!/bin/sh\nexec {shlex.join(launcher)} {shlex.quote(str(prefix / 'bin/ispctl'))} \"$@\"\n")
        self.ispctl.chmod(0o755)
        self.environment = dict(os.environ, LC_ALL="C.UTF-8", MACHO_LAUNCHER=" ".join(launcher),
                                SCALER_ISP_VIRTUAL_DEVICE=str(folder / "device"))

    def run(self, *arguments, status=0):
        done = subprocess.run([self.ispctl, *arguments], env=self.environment, check=False,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, timeout=120)
        texts = [text.decode("utf-8", "backslashreplace") for text in (done.stdout, done.stderr)]
        assert done.returncode == status, (arguments, done.returncode, *texts)
        return texts[0]


def check_commands(installation, sources):
    version = re.search(r"VERSION (\S+) LANGUAGES", (sources / "CMakeLists.txt").read_text())
    assert version[1] in installation.run("--version")
    paths = installation.run("paths", "--virtual")
    assert str(installation.prefix / "share/scaler-isp/virtual") in paths, paths
    firmware = installation.folder / "fw.bin"
    firmware.write_bytes(bytes(i % 251 for i in range(100_000)))
    shown = installation.run("explain", "--isp", "--fw", str(firmware))
    assert str(firmware) in shown, shown
    panel = sources / "examples/scripts/panel.script"
    shown = installation.run("script", "run", "--virtual", "--text", str(panel))
    assert PANEL_BYTES in shown, shown
    edid = installation.folder / "device/edid.bin"  # the script has read it
    shown = installation.run("edid", str(edid))
    assert re.search(r"^name +VIRTUAL 1080P$", shown, re.MULTILINE), shown
    shown = installation.run("doctor", "--virtual")
    plain = " ".join(shown.split())  # lines are wrapped
    assert "libSignVerify.dylib is a universal Mach-O file for x86-64, arm64" in plain, shown
    events = installation.run("run", "--virtual", "--json", "--isp", "--fw", str(firmware))
    last = json.loads(events.splitlines()[-1])
    assert last["event"] == "result" and last["code"] == 0, last
    flash = (installation.folder / "device/flash.bin").read_bytes()
    assert flash.startswith(firmware.read_bytes())
    installation.run("run", "--virtual", "--isp", "--fw", "missing.bin", status=4)


def check_demo(installation, sources):
    done = subprocess.run([sources / "tools/demo.sh", installation.ispctl], check=False,
                          env=installation.environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=200)
    shown = done.stdout.decode("utf-8", "backslashreplace")
    assert done.returncode == 0, shown
    blocks = README_BLOCK.findall((sources / "README.md").read_text())
    assert blocks, "the README shows nothing of the demo"
    for block in blocks:
        assert block in shown, f"the demo prints:\n{shown}\nbut the README shows:\n{block}"


def main():
    ispctl, build, library, sources, folder = (pathlib.Path(word) for word in sys.argv[1:6])
    install(build, library, folder, ispctl)
    installation = Installation(folder, folder, sys.argv[6:])
    check_commands(installation, sources)
    check_demo(installation, sources)
    print("ispctl: version, paths, explain, script, edid, doctor, run, and the demo as the README shows it")


if __name__ == "__main__":
    main()
