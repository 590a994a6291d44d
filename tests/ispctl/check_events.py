#!/usr/bin/env python3
"""Validates every event of ispctl run --json: check_events.py ISPCTL JSONSCHEMA SCHEMA"""

import json
import os
import subprocess
import sys
import tempfile

STATION = ["--virtual", "--wait", "20", "--station", "RECORDS", "--tag", "serial=4711"]
STATUSES = {
    # arguments after "ispctl run --json", or all of them if they have --json; the expected exit status
    "success": (["--virtual", "--isp", "--fw", "FW"], 0),
    "error of the plug-in": (["--virtual", "--allow", "unwritable-file", "--dumpflash", "--dumplen", "9",
                              "--dumpname", "/no/x.bin"], 1),
    "usage": ([], 2),
    "misspelt option": (["run", "--virtul", "--json"], 2),
    "unknown command": (["rnu", "--json"], 2),
    "usage of explain": (["explain", "--json"], 2),
    "output of explain": (["explain", "--json", "--virtual", "--svg", "/no/page", "--resetmcu"], 8),
    "record of explain": (["explain", "--json", "--decode", "/no/record"], 8),
    "usage of edid": (["edid", "--json", "--fix-checksum", "FW"], 2),
    "bytes and JSON of edid": (["edid", "--json", "-o", "-", "FW"], 2),
    "communication library of edid": (["edid", "--json", "--comm", "/no/comm"], 5),
    "usage of check-plugin": (["check-plugin", "--json"], 2),
    "usage of log": (["log", "summary", "--json"], 2),
    "usage of doctor": (["doctor", "--json", "more"], 2),
    "usage of script": (["script", "--json"], 2),
    "no library": (["--lib", "/no/lib.so", "--isp", "--fw", "FW"], 2),
    "refused by findings": (["--virtual", "--isp", "--bnak", "3", "--fw", "FW", "--signfile", "\x1b[2J"], 4),
    "refused for its characters": (["--virtual", "–isp", "--fw", "“FW”", "--bank", "010", "~/x"], 4),
    "refused by the library": (["--virtual", "--verbatim", "--isp"], 4),
    "no plug-in": (["--isp", "--fw", "FW"], 5),
    "log": (["--virtual", "--log", "/no/log", "--isp", "--fw", "FW"], 8),
    "station file": (["--virtual", "--station", "/no/station", "--isp", "--fw", "FW"], 8),
    "record": (STATION + ["--isp", "--fw", "FW", "--comm", "17"], 0),
    "record of a refusal": (STATION + ["--isp", "--bnak", "3", "--fw", "FW"], 4),
    "record without plug-in": (STATION[1:] + ["--isp", "--fw", "FW", "--comm", "17"], 5),
    "record of a failed backup": (STATION + ["--backup", "FW", "--isp", "--fw", "FW"], 8),
}


def problems_of_records(records, validator, schema):
    """Validates a station file by the part of the schema that describes its lines."""
    with open(schema, encoding="utf-8") as file:
        of_record = json.load(file)
    del of_record["oneOf"]
    of_record["$ref"] = "#/$defs/record"
    changed = records + ".schema"
    with open(changed, "w", encoding="utf-8") as file:
        json.dump(of_record, file)
    instances = []
    with open(records, encoding="utf-8") as file:
        for number, line in enumerate(file):
            path = f"{records}.{number}"
            with open(path, "w", encoding="utf-8") as one:
                one.write(line)
            instances += ["-i", path]
    if len(instances) != 2 * 4:
        return [f"{len(instances) // 2} records instead of 4"]
    checked = subprocess.run([validator] + instances + [changed], capture_output=True, text=True,
                             check=False)
    with open(records + ".0", "w", encoding="utf-8") as file:
        file.write('{"run": "no id"}')
    refused = subprocess.run([validator, "-i", records + ".0", changed], capture_output=True, check=False)
    problems = [checked.stderr] if checked.returncode != 0 else []
    return problems + (["the schema accepts a record without its keys"] if refused.returncode == 0 else [])


def main():
    ispctl, validator, schema = sys.argv[1:]
    problems = []
    with tempfile.TemporaryDirectory() as folder:
        firmware = os.path.join(folder, "fw.bin")
        with open(firmware, "wb") as file:
            file.write(b"f" * 1000)
        environment = dict(os.environ, SCALER_ISP_VIRTUAL_DEVICE=os.path.join(folder, "device"))
        instances = []
        files = {"FW": firmware, "RECORDS": os.path.join(folder, "records")}
        for name, (words, status) in STATUSES.items():
            words = words if "--json" in words else ["run", "--json"] + words
            line = [ispctl] + [files.get(word, word) for word in words]
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
        problems += problems_of_records(files["RECORDS"], validator, schema)
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
