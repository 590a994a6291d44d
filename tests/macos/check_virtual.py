#!/usr/bin/env python3
"""The library that ships programs the virtual scaler, whose plug-in is a Mach-O bundle too.

usage: check_virtual.py LIBRARY PLUGIN FOLDER HOST...
"""

import os
import pathlib
import shutil
import subprocess
import sys

FIRMWARE = bytes(i * 7 % 251 for i in range(200_000))


def run(folder, host, *lines):
    """(events, standard output) of one process."""
    (folder / "run.txt").write_text("load\n" + "".join(f"call {line}\n" for line in lines))
    (folder / "events.txt").unlink(missing_ok=True)
    done = subprocess.run([*host, str(folder / "libScalerIsp.dylib"), "run.txt", "events.txt"],
                          cwd=folder, env=dict(os.environ, LC_ALL="C.UTF-8"), check=True,
                          stdout=subprocess.PIPE)
    return (folder / "events.txt").read_text().splitlines(), done.stdout


def main():
    folder = pathlib.Path(sys.argv[3])
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "PlugIn").mkdir(parents=True)
    shutil.copy(sys.argv[1], folder / "libScalerIsp.dylib")
    shutil.copy(sys.argv[2], folder / "PlugIn/libIsp.dylib")
    (folder / "a.bin").write_bytes(FIRMWARE)
    host = sys.argv[4:]

    dump = f"p --dumpflash --dumpaddr 0 --dumplen {len(FIRMWARE)} --dumpname {folder}/b.bin"
    events, printed = run(folder, host, "p --isp --fw a.bin", dump)
    assert [line for line in events if line.startswith("result")] == ["result 0"] * 2, events
    assert "progress 100" in events, events
    assert printed.endswith(b"\x1b[32mSuccess\n\x1b[m"), printed
    flash = (folder / "VirtualScaler/flash.bin").read_bytes()
    assert flash[:len(FIRMWARE)] == FIRMWARE
    assert flash[len(FIRMWARE):4 * 65536] == b"\xff" * (4 * 65536 - len(FIRMWARE))

    assert (folder / "b.bin").read_bytes() == FIRMWARE

    events, _ = run(folder, host, "p --isp --fw missing.bin")
    assert events == ["result -1"], events
    print("programmed, padded, read again, and refused a missing file")


if __name__ == "__main__":
    main()
