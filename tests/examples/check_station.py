#!/usr/bin/env python3
"""Runs the script of a station on virtual devices: check_station.py SCRIPT ISPCTL"""

import json
import os
import subprocess
import sys
import tempfile

DEVICES = 16


def run(script, ispctl, folder, options, record=None):
    environment = dict(os.environ, ISPCTL=ispctl, DEVICES=str(DEVICES),
                       RECORD=record or os.path.join(folder, "records"))
    return subprocess.run(["sh", script, "monitor.bin"] + options, cwd=folder, env=environment,
                          capture_output=True, text=True, check=False)


def mistakes(script, ispctl, folder):
    """The reason of a run that was refused is shown; no older run is counted, and none is lost."""
    older = os.path.join(folder, "records")
    with open(older, encoding="utf-8") as file:
        before = file.read()
    for options, status, summary, words in (
            (["--virtual", "--wiat", "60"], 4, f"0 passed, {DEVICES} failed", "--wiat is not an option"),
            (["--virtual", "--wait", "soon"], 2, "", "--wait")):
        for record in (older, os.path.join(folder, f"new-{status}")):
            done = run(script, ispctl, folder, options, record)
            shown = done.stdout.partition("\n")[0]
            if (done.returncode, shown) != (status, summary) or not all(
                    text in done.stderr for text in ("run-1.txt", words)):
                yield f"status {done.returncode} with {options}:\n{done.stdout}{done.stderr}"
    with open(older, encoding="utf-8") as file:
        if not file.read().startswith(before) or before.count("\n") != 2 * DEVICES:
            yield "the record was not kept"


def main():
    script, ispctl = (os.path.abspath(path) for path in sys.argv[1:])
    problems = []
    with tempfile.TemporaryDirectory() as folder:
        firmware = b"f" * 70000
        with open(os.path.join(folder, "monitor.bin"), "wb") as file:
            file.write(firmware)
        options = ["--virtual", "--wait", "60"]
        good = run(script, ispctl, folder, options)
        if good.returncode != 0 or not good.stdout.startswith(f"{DEVICES} passed, 0 failed\n"):
            problems.append(f"status {good.returncode}:\n{good.stdout}{good.stderr}")
        with open(os.path.join(folder, "records"), encoding="utf-8") as file:
            records = [json.loads(line) for line in file]
        places = sorted(int(record["tags"]["place"]) for record in records)
        if places != list(range(1, DEVICES + 1)) or len({record["run"] for record in records}) != DEVICES:
            problems.append(f"records of the places {places}")
        for place in places:
            flash = os.path.join(folder, "station-output", f"device-{place}", "flash.bin")
            with open(flash, "rb") as file:
                if not file.read().startswith(firmware):
                    problems.append(f"{flash} was not programmed")
        with open(os.path.join(folder, "station-output", "device-7", "faults.txt"), "w",
                  encoding="utf-8") as file:
            file.write("refuse-open\n")
        bad = run(script, ispctl, folder, options)
        # The summary is that of this session; the record has both.
        if bad.returncode != 1 or not bad.stdout.startswith(f"{DEVICES - 1} passed, 1 failed\n"):
            problems.append(f"status {bad.returncode} with a broken device:\n{bad.stdout}{bad.stderr}")
        if "run-7.txt" not in bad.stderr or "0x5A01" not in bad.stderr:
            problems.append(f"the reason of the broken device is not shown:\n{bad.stderr}")
        problems += mistakes(script, ispctl, folder)
    for problem in problems:
        print(problem, file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
