#!/usr/bin/env python3
"""Writes a directory into one archive whose bytes depend on names, contents and the time alone: sorted,
without owners, with two modes (0755 for programs and directories, 0644 for the rest) and one time for all.

usage: write_archive.py --time SECONDS DIRECTORY ARCHIVE

ARCHIVE ends in .tar.gz or .zip and has DIRECTORY, by its name, as its only entry at the top. SECONDS count
from 1970; a zip file cannot hold times before 1980.
"""

import argparse
import gzip
import os
import pathlib
import tarfile
import time
import zipfile

FIRST_TIME_OF_ZIP = 315532800
LEVEL = 9


def entries(root):
    """The directory and all below it, sorted by path."""
    yield root
    for path in sorted(root.rglob("*"), key=lambda path: path.relative_to(root).parts):
        yield path


def mode_of(path):
    return 0o755 if path.is_dir() or os.access(path, os.X_OK) else 0o644


def write_tar(root, archive, seconds):
    with open(archive, "wb") as raw, \
            gzip.GzipFile("", "wb", LEVEL, raw, mtime=seconds) as packed, \
            tarfile.open(mode="w", fileobj=packed, format=tarfile.GNU_FORMAT) as tar:
        for path in entries(root):
            entry = tar.gettarinfo(path, str(path.relative_to(root.parent)))
            if entry.islnk():  # the second name of a file is a file of its own
                entry.type, entry.linkname, entry.size = tarfile.REGTYPE, "", path.stat().st_size
            entry.mtime, entry.uid, entry.gid, entry.uname, entry.gname = seconds, 0, 0, "", ""
            entry.mode = 0o777 if entry.issym() else mode_of(path)
            if entry.isreg():
                with open(path, "rb") as content:
                    tar.addfile(entry, content)
            else:
                tar.addfile(entry)


def write_zip(root, archive, seconds):
    moment = time.gmtime(max(seconds, FIRST_TIME_OF_ZIP))[:6]
    with zipfile.ZipFile(archive, "w") as packed:
        for path in entries(root):
            if path.is_symlink():
                raise SystemExit(f"{path}: no symbolic link in a zip file")
            name = str(path.relative_to(root.parent)) + ("/" if path.is_dir() else "")
            entry = zipfile.ZipInfo(name, moment)
            kind = 0o040000 if path.is_dir() else 0o100000
            entry.create_system = 3  # modes are those of Unix
            entry.external_attr = (kind | mode_of(path)) << 16
            entry.compress_type = zipfile.ZIP_STORED if path.is_dir() else zipfile.ZIP_DEFLATED
            packed.writestr(entry, b"" if path.is_dir() else path.read_bytes(), compresslevel=LEVEL)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--time", type=int, required=True)
    parser.add_argument("directory", type=pathlib.Path)
    parser.add_argument("archive", type=pathlib.Path)
    given = parser.parse_args()
    write = write_zip if given.archive.suffix == ".zip" else write_tar
    write(given.directory.resolve(), given.archive, given.time)


if __name__ == "__main__":
    main()
