#!/usr/bin/env python3
"""Writes the Package.swift that names the .xcframework.

usage: write_package_swift.py TEMPLATE VERSION ZIP [--url URL]

With URL, where the release will be published, the package manager downloads URL/ZIP-NAME and checks its
SHA-256. Without one it expects the unpacked bundle next to Package.swift. Prints the text.
"""

import argparse
import hashlib
import pathlib


def target(archive, url):
    checksum = hashlib.sha256(archive.read_bytes()).hexdigest()
    if url:
        return ('.binaryTarget(\n            name: "ScalerIsp",\n'
                f'            url: "{url.rstrip("/")}/{archive.name}",\n'
                f'            checksum: "{checksum}")')
    return (f"// of {archive.name}, unpacked here; its SHA-256 is\n        // {checksum}\n"
            f'        .binaryTarget(name: "ScalerIsp", path: "{archive.stem}")')


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("template", type=pathlib.Path)
    parser.add_argument("version")
    parser.add_argument("archive", type=pathlib.Path)
    parser.add_argument("--url")
    given = parser.parse_args()
    text = given.template.read_text().replace("@VERSION@", given.version)
    print(text.replace("@TARGET@", target(given.archive, given.url)), end="")


if __name__ == "__main__":
    main()
