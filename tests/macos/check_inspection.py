#!/usr/bin/env python3
"""The inspection of the library sees what it is there for: each change below makes it fail.

usage: check_inspection.py LIBRARY UNSTRIPPED SYSROOT SOURCE-ROOT
"""

import pathlib
import re
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
RESULTS = HERE.parents[1] / "bench/RESULTS.md"


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


def name_the_build_folder(data):
    folder = str(pathlib.Path(sys.argv[2]).resolve().parents[1]).encode() + b"/x.o"
    place = second_half(data) + 0x8000
    data[place:place + len(folder)] = folder
    return f"names a folder of this build: {folder[:-4].decode()}\n"


def import_an_unknown_symbol(data):
    place = data.index(b"_closedir\0")
    data[place:place + 9] = b"_closedri"
    return "has no _closedri"


def import_a_symbol_of_macos_13(data):
    place = data.index(b"_closedir\0")
    data[place:place + 9] = b"_mkfifoat"
    return "has no _mkfifoat"


CHANGES = [flip_a_byte_of_the_code, rename_the_library, ask_for_a_newer_system, name_a_folder,
           name_the_build_folder, import_an_unknown_symbol, import_a_symbol_of_macos_13]


def is_seen(what, expected, program, *arguments):
    done = subprocess.run([sys.executable, "-B", str(HERE / program), *map(str, arguments)],
                          capture_output=True, text=True, check=False)
    seen = done.returncode == 1 and expected in done.stdout
    print(f"{'seen' if seen else 'MISSED'}: {what}")
    if not seen:
        print(done.stdout + done.stderr)
    return seen


def changed_libraries_are_seen(library, folder):
    for change in CHANGES:
        data = bytearray(library.read_bytes())
        expected = change(data)
        changed = folder / library.name
        changed.write_bytes(data)
        yield is_seen(change.__name__, expected, "check_library.py", changed, *sys.argv[2:])


def old_numbers_are_seen(library, folder):
    """Of the recorded table: a size a fifth off, imports a tenth off, a row that is missing."""
    text = RESULTS.read_text()
    results = folder / "RESULTS.md"
    row = re.search(r"^\| arm64 \| (\S+) \| .*? \| yes \| \S+ \| (\d+) .*\n", text, re.MULTILINE)
    size, imports = int(row[1].replace(",", "")), int(row[2])
    for what, new in (
            ("another size", row[0].replace(row[1], f"{size * 4 // 5:,}")),
            ("other imports", row[0].replace(f" {imports} ", f" {imports * 11 // 10} ")),
            ("no row", "")):
        results.write_text(text.replace(row[0], new))
        yield is_seen(f"{what} in {results.name}", "RESULTS.md is out of date; ./dev macos numbers",
                      "check_numbers.py", library, "--results", results)


def main():
    library = pathlib.Path(sys.argv[1])
    with tempfile.TemporaryDirectory() as place:
        folder = pathlib.Path(place)
        seen = [*changed_libraries_are_seen(library, folder), *old_numbers_are_seen(library, folder)]
    return 0 if all(seen) else 1


if __name__ == "__main__":
    sys.exit(main())
