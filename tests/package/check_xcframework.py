#!/usr/bin/env python3
"""The .xcframework has the layout that Xcode expects, its module can be imported and its library linked for
both processors, and Package.swift names it with the right checksum.

usage: check_xcframework.py ZIP PACKAGE-SWIFT SYSROOT
"""

import hashlib
import pathlib
import plistlib
import sys
import tempfile
import zipfile

from check_macos_archive import ARCHITECTURES, OBJECTIVE_C, check_debug_information, clang
from release_archive import check_no_builder
import code_signature
import macho_reader

BUNDLE = "ScalerIsp.xcframework"
HOST = """@import ScalerIsp;
int main(void) { return OperateScaler(L"tool --isp", 0, 0, 0); }
"""


def check_entries(archive):
    with zipfile.ZipFile(archive) as packed:
        entries = packed.infolist()
        assert packed.testzip() is None
    assert len({entry.date_time for entry in entries}) == 1, "the entries have times of their own"
    assert {entry.filename.split("/")[0] for entry in entries} == {BUNDLE}
    for entry in entries:
        assert entry.external_attr >> 16 & 0o777 in (0o644, 0o755), entry.filename
        assert not entry.filename.endswith(("Headers/module.modulemap", "Modules/")), entry.filename


def check_properties(bundle):
    """What Info.plist names is there."""
    properties = plistlib.loads((bundle / "Info.plist").read_bytes())
    assert properties["CFBundlePackageType"] == "XFWK"
    assert properties["XCFrameworkFormatVersion"] == "1.0"
    library, = properties["AvailableLibraries"]
    folder = bundle / library["LibraryIdentifier"]
    assert library["SupportedPlatform"] == "macos" and "SupportedPlatformVariant" not in library
    assert library["BinaryPath"] == library["LibraryPath"]
    for key in ("LibraryPath", "HeadersPath", "DebugSymbolsPath"):
        assert (folder / library[key]).exists(), f"{key} names nothing"
    images = macho_reader.load(folder / library["LibraryPath"])
    assert sorted(images) == ARCHITECTURES == sorted(library["SupportedArchitectures"])
    for image in images.values():
        assert not code_signature.problems(image) and image.install_name == "@rpath/libScalerIsp.dylib"
    debug_information, = (folder / library["DebugSymbolsPath"]).iterdir()
    assert debug_information.name == library["LibraryPath"] + ".dSYM"
    return folder


def check_module(library_folder, folder, sysroot, arch):
    """Found by the name of the module, both where the headers are and where Xcode copies them; linked."""
    headers = library_folder / "Headers"
    modules = ["-fmodules", f"-fmodules-cache-path={folder}/modules"]
    for name, text in (("import.m", OBJECTIVE_C), ("host.m", HOST)):
        source = folder / name
        source.write_text(text)
        clang(arch, sysroot, "-x", "objective-c", *modules, "-I", headers, "-c", source, "-o",
              source.with_suffix(".o"))
    # Without -lScalerIsp: the module map says what to link.
    program = folder / "host"
    clang(arch, sysroot, "-fuse-ld=lld", folder / "host.o", "-L", library_folder, "-o", program)
    assert "@rpath/libScalerIsp.dylib" in macho_reader.load(program)[arch].libraries


def main():
    archive, package, sysroot = (pathlib.Path(word).resolve() for word in sys.argv[1:4])
    check_entries(archive)
    with tempfile.TemporaryDirectory() as place:
        folder = pathlib.Path(place).resolve()
        with zipfile.ZipFile(archive) as packed:
            packed.extractall(folder)
        library_folder = check_properties(folder / BUNDLE)
        check_no_builder(folder / BUNDLE)
        check_debug_information(library_folder / "libScalerIsp.dylib", library_folder / "dSYMs")
        for arch in ARCHITECTURES:
            check_module(library_folder, folder, sysroot, arch)
    text = package.read_text()
    assert hashlib.sha256(archive.read_bytes()).hexdigest() in text, "Package.swift has another checksum"
    assert f'/{archive.name}"' in text or f'path: "{BUNDLE}"' in text, text
    print(f"{archive.name}: imported and linked for {' and '.join(ARCHITECTURES)}; Package.swift names it")


if __name__ == "__main__":
    main()
