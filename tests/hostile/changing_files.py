"""Firmware that changes between the moment when it was sized and the moment when it is programmed."""

import os
import subprocess
import tempfile

from hostile_files import FIRMWARE, write

SECONDS = 30
BANK = 16
BANK_BYTES = 65536
CHANGES = []


def change(function):
    CHANGES.append((function.__name__.replace("_", "-"), function))
    return function


def run_and_change(options, contents, own_options=()):
    """Programs a boot firmware and then a file that was sized before, and whose contents change while the
    first is programmed. RETURNS status, output and what the device holds where the file goes."""
    root = tempfile.mkdtemp(dir=options.work)
    device = os.path.join(root, "device")
    os.mkdir(device)
    write(os.path.join(device, "faults.txt"), b"slow 300\n")
    firmware = write(os.path.join(root, "f.bin"))
    # Long enough for the change to come before the file is read.
    boot = write(os.path.join(root, "boot.bin"), bytes(4 * BANK_BYTES))
    environment = {**os.environ, "LC_ALL": "C.UTF-8", "SCALER_ISP_VIRTUAL_DEVICE": device,
                   "TMPDIR": options.work}
    command = [options.ispctl, "run", "--virtual", *own_options, "--isp", "--factory", "--newboot", "--hw",
               "--boot", boot, "--fw", firmware, "--bank", str(BANK)]
    with subprocess.Popen(command, env=environment, cwd=root, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT) as process:
        shown = b""
        for line in process.stdout:
            shown += line
            if b"Bank 0: erased" in line:
                # In one step: a plug-in must not meet a file in between.
                os.replace(write(firmware + ".new", contents), firmware)
        process.wait(SECONDS)
    with open(os.path.join(device, "flash.bin"), "rb") as file:
        file.seek(BANK * BANK_BYTES)
        return process.returncode, shown.decode("utf-8", "replace"), file.read()


@change
def shrinking_file_is_no_success(options):
    status, shown, _ = run_and_change(options, FIRMWARE[:70000])
    return [] if status == 1 and "success" not in shown.lower() else [f"status {status}: {shown[-400:]}"]


@change
def growing_file_programs_only_sized_banks(options):
    status, shown, memory = run_and_change(options, FIRMWARE + b"more" * 100000)
    good = status == 0 and "Banks programmed: 4 of 4" in shown and memory == FIRMWARE
    return [] if good else [f"status {status}: {shown[-400:]}"]


@change
def private_copy_ignores_shrinking_file(options):
    status, shown, memory = run_and_change(options, b"", ["--private-copy"])
    return [] if status == 0 and memory == FIRMWARE else [f"status {status}: {shown[-400:]}"]


@change
def private_copy_ignores_exchanged_contents(options):
    status, shown, memory = run_and_change(options, b"x" * len(FIRMWARE), ["--private-copy"])
    return [] if status == 0 and memory == FIRMWARE else [f"status {status}: {shown[-400:]}"]
