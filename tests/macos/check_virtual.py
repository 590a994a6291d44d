#!/usr/bin/env python3
"""The library that ships programs the virtual scaler, whose plug-in is a Mach-O bundle too.

usage: check_virtual.py LIBRARY PLUGIN FOLDER HOST...
"""

import sys

from in_loader import SUCCESS, Folder

FIRMWARE = bytes(i * 7 % 251 for i in range(200_000))


def main():
    library, plugin, place, *host = sys.argv[1:]
    folder = Folder(place, library, plugin, host)
    (folder.path / "a.bin").write_bytes(FIRMWARE)

    dump = f"p --dumpflash --dumpaddr 0 --dumplen {len(FIRMWARE)} --dumpname {folder.path}/b.bin"
    events, printed = folder.run("p --isp --fw a.bin", dump)
    assert [line for line in events if line.startswith("result")] == ["result 0"] * 2, events
    assert "progress 100" in events, events
    assert printed.endswith(SUCCESS), printed
    flash = folder.flash()
    assert flash[:len(FIRMWARE)] == FIRMWARE
    assert flash[len(FIRMWARE):4 * 65536] == b"\xff" * (4 * 65536 - len(FIRMWARE))

    assert (folder.path / "b.bin").read_bytes() == FIRMWARE

    events, _ = folder.run("p --isp --fw missing.bin")
    assert events == ["result -1"], events
    print("programmed, padded, read again, and refused a missing file")


if __name__ == "__main__":
    main()
