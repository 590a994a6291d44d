#!/usr/bin/env python3
"""The library that ships programs the virtual scaler, whose plug-in is a Mach-O bundle too.

usage: check_virtual.py LIBRARY PLUGIN FOLDER HOST...
"""

import shutil
import sys

from in_loader import SUCCESS, Folder

FIRMWARE = bytes(i * 7 % 251 for i in range(200_000))


def results(events):
    return [line for line in events if line.startswith("result")]


def check_programming(folder):
    dump = f"p --dumpflash --dumpaddr 0 --dumplen {len(FIRMWARE)} --dumpname {folder.path}/b.bin"
    events, printed = folder.run("p --isp --fw a.bin", dump)
    assert results(events) == ["result 0"] * 2, events
    assert "progress 100" in events, events
    assert printed.endswith(SUCCESS), printed
    flash = folder.flash()
    assert flash[:len(FIRMWARE)] == FIRMWARE
    assert flash[len(FIRMWARE):4 * 65536] == b"\xff" * (4 * 65536 - len(FIRMWARE))

    assert (folder.path / "b.bin").read_bytes() == FIRMWARE

    events, _ = folder.run("p --isp --fw missing.bin")
    assert events == ["result -1"], events


def check_plain_locale(folder):
    """Started from Finder, in a folder outside ASCII: every byte of its name is a character, and comes back
    as that byte for the plug-ins, but not for files, whose names are made UTF-8."""
    relative, full = "p --isp --fw a.bin", f"p --isp --fw {folder.path}/a.bin"
    events, _ = folder.run("p --resetmcu", relative, full, locale="C")
    assert results(events) == ["result 0", "result -1", "result 0"], events
    assert folder.flash()[:len(FIRMWARE)] == FIRMWARE
    events, _ = folder.run(relative)
    assert results(events) == ["result 0"], events


def check_link_into_keg(folder):
    """As Homebrew installs: what hosts open is a link in lib, and everything else is next to the file that
    it leads to. dyld reports the real file, so plug-ins and firmware are found there."""
    lib = folder.path.parent / "lib"
    shutil.rmtree(lib, ignore_errors=True)
    lib.mkdir()
    folder.opened = lib / "libScalerIsp.dylib"
    folder.opened.symlink_to(f"../{folder.path.name}/libScalerIsp.dylib")
    events, printed = folder.run("p --isp --fw a.bin")
    assert results(events) == ["result 0"], events
    assert printed.endswith(SUCCESS), printed
    assert folder.flash()[:len(FIRMWARE)] == FIRMWARE
    assert [path.name for path in lib.iterdir()] == ["libScalerIsp.dylib"]


def main():
    library, plugin, place, *host = sys.argv[1:]
    for check, name in ((check_programming, "virtual"), (check_plain_locale, "größe"),
                        (check_link_into_keg, "keg")):
        folder = Folder(f"{place}/{name}", library, plugin, host)
        (folder.path / "a.bin").write_bytes(FIRMWARE)
        check(folder)
    print("programmed, padded, read again, refused a missing file; plug-ins found without a locale "
          "and through a link")


if __name__ == "__main__":
    main()
