#!/usr/bin/env python3
"""The inspection of the library sees what it is there for: each change below makes it fail.

usage: check_inspection.py LIBRARY UNSTRIPPED SYSROOT SOURCE-ROOT
"""

import pathlib
import subprocess
import sys
import tempfile

CHECK = pathlib.Path(__file__).with_name("check_library.py")


def second_half(data):
    """Offset of the second architecture of a universal file."""
    return int.from_bytes(data[36:40], "big")


def flip_a_byte_of_the_code(data):
    place = second_half(data) + 0x8000
    data[place] ^= 1
    return "was changed after signing"


def rename_the_library(data):
    place = data.index(b"@rpath/libScalerIsp.dylib")
    data[place + 7:place + 10] = b"LIB"
    return "install_name is @rpath/LIBScalerIsp.dylib"


def ask_for_a_newer_system(data):
    place = data.index(b"\x01\0\0\0" + b"\0\0\x0b\0")  # platform and version
    data[place + 6] = 12
    return "minimum_os is 12.0.0"


def name_a_folder(data):
    place = data.index(b"non-option ARGV")
    data[place:place + 12] = b"/home/me/x.c"
    return "names a folder: /home/me/x.c"


def import_an_unknown_symbol(data):
    place = data.index(b"_closedir\0")
    data[place:place + 9] = b"_closedri"
    return "has no _closedri"


CHANGES = [flip_a_byte_of_the_code, rename_the_library, ask_for_a_newer_system, name_a_folder,
           import_an_unknown_symbol]


def main():
    library = pathlib.Path(sys.argv[1])
    missed = 0
    with tempfile.TemporaryDirectory() as folder:
        for change in CHANGES:
            data = bytearray(library.read_bytes())
            expected = change(data)
            changed = pathlib.Path(folder, library.name)
            changed.write_bytes(data)
            done = subprocess.run([sys.executable, "-B", str(CHECK), str(changed), *sys.argv[2:]],
                                  capture_output=True, text=True, check=False)
            seen = done.returncode == 1 and expected in done.stdout
            missed += not seen
            print(f"{'seen' if seen else 'MISSED'}: {change.__name__}")
            if not seen:
                print(done.stdout + done.stderr)
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
