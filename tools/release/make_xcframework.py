#!/usr/bin/env python3
"""Makes ScalerIsp.xcframework of an unpacked archive for macOS: the library for both processors, its headers,
the module map in a directory of its own, the debug information.

usage: make_xcframework.py PREFIX XCFRAMEWORK

The module map is not directly in Headers: Xcode copies the Headers of all packages into one directory, and
two of them with a module map there fail with "Multiple commands produce".
"""

import pathlib
import plistlib
import shutil
import sys

IDENTIFIER = "macos-arm64_x86_64"
LIBRARY = "libScalerIsp.dylib"
PROPERTIES = {
    "AvailableLibraries": [{
        "BinaryPath": LIBRARY,
        "DebugSymbolsPath": "dSYMs",
        "HeadersPath": "Headers",
        "LibraryIdentifier": IDENTIFIER,
        "LibraryPath": LIBRARY,
        "SupportedArchitectures": ["arm64", "x86_64"],
        "SupportedPlatform": "macos",
    }],
    "CFBundlePackageType": "XFWK",
    "XCFrameworkFormatVersion": "1.0",
}


def main():
    prefix, bundle = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    shutil.rmtree(bundle, ignore_errors=True)
    library = bundle / IDENTIFIER
    library.mkdir(parents=True)
    (bundle / "Info.plist").write_bytes(plistlib.dumps(PROPERTIES))
    shutil.copy(prefix / "lib" / LIBRARY, library)
    shutil.copytree(prefix / "include", library / "Headers")
    debug_information = f"{LIBRARY}.dSYM"
    shutil.copytree(prefix / "lib" / debug_information, library / "dSYMs" / debug_information)


if __name__ == "__main__":
    main()
