#!/usr/bin/env python3
"""Validates every event of ispctl run --json: check_events.py ISPCTL JSONSCHEMA SCHEMA"""

import json
import os
import subprocess
import sys
import tempfile

STATUSES = {
    # arguments after "run --json", the expected exit status
    "success": (["--virtual", "--isp", "--fw", "FW"], 0),
    "error of the plug-in": (["--virtual", "--allow", "unwritable-file", "--dumpflash", "--dumplen", "9",
                              "--dumpname", "/no/x.bin"], 1),
    "usage": ([], 2),
    "no library": (["--lib", "/no/lib.so", "--isp", "--fw", "FW"], 2),
    "refused by findings": (["--virtual", "--isp", "--bnak", "3", "--fw", "FW", "--signfile", "\x1b[2J"], 4),
    "refused by the library": (["--virtual", "--verbatim", "--isp"], 4),
    "no plug-in": (["--isp", "--fw", "FW"], 5),
    "log": (["--virtual", "--log", "/no/log", "--isp", "--fw", "FW"], 8),
}


def main():
    ispctl, validator, schema = sys.argv[1:]
    problems = []
    with tempfile.TemporaryDirectory() as folder:
        firmware = os.path.join(folder, "fw.bin")
        with open(firmware, "wb") as file:
            file.write(b"f" * 1000)
        environment = dict(os.environ, SCALER_ISP_VIRTUAL_DEVICE=os.path.join(folder, "device"))
        instances = []
        for name, (words, status) in STATUSES.items():
            line = [ispctl, "run", "--json"] + [firmware if word == "FW" else word for word in words]
            done = subprocess.run(line, capture_output=True, env=environment, check=False)
            events = [json.loads(text) for text in done.stdout.decode("utf-8").splitlines()]
            last = events[-1] if events else {}
            if (done.returncode, last.get("event"), last.get("status")) != (status, "result", status):
                problems.append(f"{name}: exit status {done.returncode}, last event {last}")
            for event in events:
                path = os.path.join(folder, f"{len(instances)}.json")
                with open(path, "w", encoding="utf-8") as file:
                    json.dump(event, file)
                instances += ["-i", path]
        wrong = os.path.join(folder, "wrong.json")
        with open(wrong, "w", encoding="utf-8") as file:
            file.write('{"event": "result", "status": 3}')
        checked = subprocess.run([validator] + instances + [schema], capture_output=True, text=True,
                                 check=False)
        if checked.returncode != 0:
            problems.append(checked.stderr)
        refused = subprocess.run([validator, "-i", wrong, schema], capture_output=True, check=False)
        if refused.returncode == 0:
            problems.append("the schema accepts a result without its keys")
    for problem in problems:
        print(problem, file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
