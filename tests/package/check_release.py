#!/usr/bin/env python3
"""A release as its users check it: SHA256SUMS names every file with its hash, the lists of contents are
complete, and, if it is signed, the signature is good and does not fit other sums.

usage: check_release.py DIRECTORY
"""

import pathlib
import subprocess
import sys
import tempfile

from release_archive import run

HERE = pathlib.Path(__file__).resolve().parent
OF_THE_SIGNATURE = {"SHA256SUMS", "SHA256SUMS.sig", "scaler-isp-release.pub"}
SUFFIXES = (".tar.gz", ".zip")


def check_sums(folder):
    run("sha256sum", "--check", "--quiet", "SHA256SUMS", cwd=folder)
    listed = {line.split("  ", 1)[1] for line in (folder / "SHA256SUMS").read_text().splitlines()}
    found = {path.name for path in folder.iterdir() if path.is_file()} - OF_THE_SIGNATURE
    assert listed == found, listed ^ found


def check_lists(folder):
    archives = [path for path in folder.iterdir() if path.name.endswith(SUFFIXES)]
    assert len(archives) == 3, archives
    for archive in archives:
        stem = archive.name
        for suffix in SUFFIXES:
            stem = stem.removesuffix(suffix)
        shown = run(sys.executable, "-B", HERE / "check_sbom.py", folder / f"{stem}.spdx.json", archive)
        print(shown, end="")


def verify(folder, signature, sums):
    """The command of docs/verify-a-release.md."""
    return subprocess.run(["openssl", "dgst", "-sha256", "-verify", "scaler-isp-release.pub", "-signature",
                           signature, sums], cwd=folder, check=False, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL).returncode == 0


def check_signature(folder):
    assert verify(folder, "SHA256SUMS.sig", "SHA256SUMS"), "the signature is not good"
    sums = (folder / "SHA256SUMS").read_bytes()
    with tempfile.TemporaryDirectory() as place:
        changed = pathlib.Path(place) / "SHA256SUMS"
        changed.write_bytes(sums.replace(sums[:1], b"0" if sums[:1] != b"0" else b"1", 1))
        assert not verify(folder, "SHA256SUMS.sig", changed), "the signature fits other sums"


def main():
    folder = pathlib.Path(sys.argv[1]).resolve()
    check_sums(folder)
    check_lists(folder)
    if (folder / "SHA256SUMS.sig").exists():
        check_signature(folder)
        print("signed")
    else:
        print("not signed")


if __name__ == "__main__":
    main()
