#!/usr/bin/env python3
"""The library that ships signs, verifies and programs with real signatures; both plug-ins next to it are
Mach-O bundles. The openssl program checks what was signed, and signs what is then accepted.

usage: check_signed.py LIBRARY ISP-PLUGIN SIGN-PLUGIN FOLDER HOST...
"""

import shutil
import subprocess
import sys

from in_loader import SUCCESS, Folder

FIRMWARE = bytes(i * 7 % 251 for i in range(200_000))
TAMPERED = FIRMWARE[:100_000] + bytes([FIRMWARE[100_000] ^ 1]) + FIRMWARE[100_001:]
MACH_O = (b"\xca\xfe\xba\xbe", b"\xcf\xfa\xed\xfe")  # for several processors, for one
REFUSED = "\x1b[31mFail! Error Code: 0x4003\n\x1b[m"


def openssl(folder, *words):
    return subprocess.run(["openssl", *words], cwd=folder.path, text=True, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)


def prepare(arguments):
    library, isp_plugin, sign_plugin, place, *host = arguments
    folder = Folder(place, library, isp_plugin, host)
    shutil.copy(sign_plugin, folder.path / "libSignVerify.dylib")
    for name in ("libScalerIsp.dylib", "PlugIn/libIsp.dylib", "libSignVerify.dylib"):
        assert (folder.path / name).read_bytes()[:4] in MACH_O, name
    (folder.path / "größe.bin").write_bytes(FIRMWARE)
    (folder.path / "tampered.bin").write_bytes(TAMPERED)
    for pair in ("own", "other"):
        for words in (("genpkey", "-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-256",
                       "-out", f"{pair}.pem"),
                      ("pkey", "-in", f"{pair}.pem", "-pubout", "-out", f"{pair}.pub")):
            done = openssl(folder, *words)
            assert done.returncode == 0, done.stdout
    return folder


def check_signing(folder):
    """The record that the plug-in saw, and a signature that somebody else finds valid."""
    events, printed = folder.run(
        "p --sign --sw --dsmode 3 --fw größe.bin --signfile a.sig --skfile own.pem")
    assert (events, printed) == (["result 0"], SUCCESS), (events, printed)
    line = ("SignFwExport enumSignActionType=1 enumDigitalSignatureType=1 "
            f'enumSWDigitalSignatureMode=3 szFwFile="{folder.path}/größe.bin" '
            f'szSignatureFile="{folder.path}/a.sig" szSignKeyFile="{folder.path}/own.pem"')
    assert folder.journal() == [line], folder.journal()
    for key, good in (("own", True), ("other", False)):
        done = openssl(folder, "dgst", "-sha256", "-verify", f"{key}.pub", "-signature", "a.sig",
                       "größe.bin")
        assert (done.returncode == 0) == good, done.stdout


def check_programming(folder):
    events, printed = folder.run(
        "p --isp --sw --dsmode 3 --fw größe.bin --signfile a.sig --vkfile own.pub")
    assert events[-2:] == ["progress 100", "result 0"], events
    assert printed.endswith(SUCCESS), printed
    assert folder.flash()[:len(FIRMWARE)] == FIRMWARE


def check_refusals(folder):
    """Whatever is not good ends with 0x4003, and nothing of it gets into the device."""
    before = folder.flash()
    said = f"Virtual sign/verify: the signature is not good: {folder.path}/a.sig\n"
    for action in ("verify", "isp"):
        for firmware, key in (("tampered.bin", "own.pub"), ("größe.bin", "other.pub")):
            events, printed = folder.run(f"p --{action} --sw --dsmode 3 --fw {firmware} "
                                         f"--signfile a.sig --vkfile {key}")
            assert (events, printed) == (["result 0x4003"], said + REFUSED), (events, printed)
    assert folder.flash() == before


def check_foreign_signature(folder):
    done = openssl(folder, "dgst", "-sha256", "-sign", "own.pem", "-out", "b.sig", "größe.bin")
    assert done.returncode == 0, done.stdout
    events, printed = folder.run(
        "p --verify --sw --dsmode 3 --fw größe.bin --signfile b.sig --vkfile own.pub")
    assert (events, printed) == (["result 0"], SUCCESS), (events, printed)


def check_key_from_flash(folder):
    """The key goes from the Mach-O plug-in through the library to the ELF plug-in."""
    line = "p --isp --sw --dsmode 4 --fw größe.bin --signfile a.sig"
    for pair, result in (("own", "result 0"), ("other", "result 0x4003")):
        events, _ = folder.run(f"p --isp --fw {pair}.pub --bank 255")
        assert events[-1] == "result 0", events
        events, printed = folder.run(line)
        assert events[-1] == result, (pair, events, printed)
        assert ("progress 100" in events) == (pair == "own"), events
        assert printed.startswith("Get Key From Flash ...\n"), printed


def main():
    folder = prepare(sys.argv[1:])
    check_signing(folder)
    check_programming(folder)
    check_refusals(folder)
    check_foreign_signature(folder)
    check_key_from_flash(folder)
    print("signed, programmed, verified; refused a tampered file and another key")


if __name__ == "__main__":
    main()
