#!/usr/bin/env python3
"""What the macOS library is made of, read from the file that ships.

usage: check_library.py LIBRARY UNSTRIPPED SYSROOT SOURCE-ROOT [--native]

--native: built by Xcode's tools, whose own stubs and paths are not looked at. Prints the problems; ends
with 1 when there is one.
"""

import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "packaging/macos"))
import code_signature
import macho_reader
import vtables
from check_numbers import SIZE_LIMIT
from stub_symbols import symbols_of

SYSTEM = {"/usr/lib/libSystem.B.dylib": "libSystem.tbd", "/usr/lib/libc++.1.dylib": "libc++.1.tbd",
          "/usr/lib/libiconv.2.dylib": "libiconv.2.tbd"}
C_FUNCTIONS = ["_OperateScaler", "_OperateScalerEx"]
MH_DYLIB = 6
OPERATORS_NEW_AND_DELETE = re.compile(r"__Z(n[wa]m|d[la]Pv)")


def stub_symbols(sysroot, arch):
    """{library: names} of the stubs the library was linked with, for this processor."""
    return {library: symbols_of(sysroot / "usr/lib" / stub, arch) for library, stub in SYSTEM.items()}


def export_patterns(path):
    """Rows of the export list as (row, pattern of Mach-O symbols)."""
    codes = {"==": "eq", "!=": "ne", "<": "lt", "<=": "le", ">": "gt", ">=": "ge", "+": "pl",
             "<<": "ls", ">>": "rs"}
    for line in pathlib.Path(path).read_text().splitlines():
        match = re.match(r"([a-z]+) +(\S+)$", line)
        if not match:
            continue
        kind, name = match.groups()
        word = f"{len(name)}{re.escape(name)}"
        pattern = {"c": f"_{name}", "data": f"_{name}", "function": f"__Z{word}.*",
                   "class": f"__ZNK?{word}.*|__ZT[VIS]{word}",
                   "operator": f"__Z{codes.get(name)}.*11CCpNxString.*"}[kind]
        yield line, re.compile(pattern)


def export_problems(image, root):
    rows = list(export_patterns(root / "packaging/exports.list"))
    exports = image.exports()
    for symbol, flags in exports.items():
        if not any(pattern.fullmatch(symbol) for _, pattern in rows):
            yield f"exported, but not in the list: {symbol}"
        if flags & macho_reader.EXPORT_WEAK:
            yield f"exported weakly: {symbol}"
    for row, pattern in rows:
        if not any(map(pattern.fullmatch, exports)):
            yield f"in the list, but not exported: {row}"
    data = {"_" + row.split()[1] for row, _ in rows if row.startswith("data ")}
    plain = sorted(name for name in exports if re.match(r"_[A-Z]", name) and name not in data)
    if plain != C_FUNCTIONS:
        yield f"C functions are {plain}"


def header_problems(image):
    wanted = {"file_type": MH_DYLIB, "install_name": "@rpath/libScalerIsp.dylib",
              "platform": "macos", "minimum_os": "11.0.0", "rpaths": []}
    for name, value in wanted.items():
        if getattr(image, name) != value:
            yield f"{name} is {getattr(image, name)}, not {value}"
    if sorted(image.libraries) != sorted(SYSTEM):
        yield f"needs {image.libraries}"
    if len(image.data) > SIZE_LIMIT:
        yield f"{len(image.data)} bytes, more than {SIZE_LIMIT}"


def import_problems(image, stubs):
    binds, _ = image.loader_fixups()
    for bind in binds:
        if bind.kind != "weak" and stubs and bind.symbol not in stubs.get(bind.library, ()):
            yield f"{bind.library} of macOS 11 has no {bind.symbol}"
    operators = {b.symbol for b in binds if OPERATORS_NEW_AND_DELETE.match(b.symbol)}
    if not any(bind.symbol == "___stack_chk_fail" for bind in binds):
        yield "no canary on the stack"
    weak = {b.symbol for b in binds if b.kind == "weak"}
    if weak != operators or not weak:
        yield f"bound weakly: {sorted(weak)}; operators new and delete: {sorted(operators)}"


def build_folders(unstripped, root):
    """The folders that took part in this build, by every name they had: none may stand in the file."""
    folders = {str(root), str(pathlib.Path.home())}
    for cache in (folder / "CMakeCache.txt" for folder in unstripped.parents):
        if cache.exists():
            folders.update(re.findall(
                r"^(?:CMAKE_HOME_DIRECTORY|CMAKE_CACHEFILE_DIR|MACOS_SYSROOT):\w+=(.+)$",
                cache.read_text(), re.MULTILINE))
    named = {name for folder in folders for name in (folder, str(pathlib.Path(folder).resolve()))}
    return sorted(named - {"/"}, key=len, reverse=True)


def build_path_problems(image, folders):
    for folder in folders:
        if re.search(re.escape(folder.encode()) + rb"[/\0]", image.data):
            yield f"names a folder of this build: {folder}"
            break
    for text in re.findall(rb"/(?:tmp|home|root|Users|work)/[\x20-\x7e]+", image.data):
        yield f"names a folder: {text.decode()}"


def main():
    arguments = [a for a in sys.argv[1:] if a != "--native"]
    native = "--native" in sys.argv
    library, unstripped, sysroot, root = (pathlib.Path(a).resolve() for a in arguments)
    images, whole = macho_reader.load(library), macho_reader.load(unstripped)
    folders = build_folders(unstripped, root)
    problems = [] if sorted(images) == ["arm64", "x86_64"] else [f"architectures: {sorted(images)}"]
    for arch, image in images.items():
        stubs = {} if native else stub_symbols(sysroot, arch)
        found = [*header_problems(image), *export_problems(image, root),
                 *import_problems(image, stubs), *code_signature.problems(image),
                 *build_path_problems(image, folders), *vtables.problems(whole[arch], root)]
        if image.signature_range and not code_signature.is_ad_hoc(image):
            found.append("signed with a certificate")
        problems += [f"{arch}: {text}" for text in found]
    for problem in problems:
        print(problem)
    print(f"{len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
