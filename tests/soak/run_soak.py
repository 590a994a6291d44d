#!/usr/bin/env python3
"""Long use: many calls in one process, many processes at once, and runs of ispctl with faults at random
(README.md). Works on a finished build of the tests.

    run_soak.py BUILD [--long] [--seed S] [--part calls|processes|faults]
"""

import argparse
import concurrent.futures
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

import random_faults

HERE = pathlib.Path(__file__).resolve().parent
CORPUS = HERE.parent / "fuzz" / "corpus" / "line"
PARTS = ("calls", "processes", "faults")
PROCESSES = 16
SECONDS = 1800


class Size:
    """How much of everything."""

    def __init__(self, is_long):
        self.calls = 100_000 if is_long else 5_000
        self.calls_at_once = 5_000 if is_long else 300
        self.writes_at_once = 100 if is_long else 10
        self.faults = 1_000 if is_long else 60


class Host:
    """The program that makes the calls, and the lines that it makes them with."""

    def __init__(self, options):
        self.program = options.build / "tests/soak/soak_host"
        self.library = options.build / "tests/soak/library"
        self.work = options.work
        self.environment = {**os.environ, "LC_ALL": "C.UTF-8", "LD_LIBRARY_PATH": str(self.library)}
        self.lines = self.work / "lines"
        self.outcomes = self.work / "outcomes"

    def call(self, *arguments):
        return subprocess.run([str(self.program), *map(str, arguments)], env=self.environment,
                              capture_output=True, text=True, timeout=SECONDS, check=False)

    def prepare(self):
        """The command lines are the cases of the fuzz target; each first runs in a process of its own."""
        for name, contents in (("fw.bin", bytes(200_000)), ("g.bin", b"g"), ("empty.bin", b""),
                               ("s.sig", b"s"), ("k.pem", b"k"),
                               ("IspSetting.ini", b"[ISP_Fw]\nstrFwPrefix=f\n")):
            (self.library / name).write_bytes(contents)
        lines = []
        for case in sorted(CORPUS.iterdir()):
            text = case.read_bytes().decode("utf-8", "ignore").replace("\n", " ").replace("\0", " ")
            lines.append(text[:1] + "tool " + text[1:].replace("/", "_").replace("@", f"{self.library}/"))
        self.lines.write_text("".join(line + "\n" for line in lines), encoding="utf-8")
        outcomes = []
        for number in range(len(lines)):
            done = self.call("one", self.lines, number)
            if done.returncode != 0:
                sys.exit(f"soak: line {number} alone ends with {done.returncode}")
            outcomes.append(done.stdout)
        reached = sum(int(outcome.split()[1]) > 1 for outcome in outcomes)
        assert reached > 5, f"only {reached} lines reach a plug-in"
        self.outcomes.write_text("".join(outcomes), encoding="utf-8")
        return len(lines)

    def many(self, count, seed):
        done = self.call("many", self.lines, self.outcomes, count, seed)
        return done.stdout.strip(), [] if done.returncode == 0 else [f"seed {seed}: {done.stdout.strip()}"]


def run_calls(options, size):
    host = Host(options)
    lines = host.prepare()
    text, problems = host.many(size.calls, options.seed)
    print(f"calls: {lines} lines, {text}")
    return problems


def run_processes(options, size):
    """All at once: calls, each process in its own order, then writers of one settings file."""
    host = Host(options)
    host.prepare()
    problems = []
    with concurrent.futures.ThreadPoolExecutor(PROCESSES) as pool:
        for _, found in pool.map(lambda n: host.many(size.calls_at_once, options.seed + n), range(PROCESSES)):
            problems += found
        settings = options.work / "shared.ini"
        settings.write_bytes(b"[Other]\nkept=1\n")
        statuses = list(pool.map(
            lambda n: host.call("write", settings, f"key{n}", size.writes_at_once).returncode,
            range(PROCESSES)))
    # A writer that does not get the lock in time says so; the others must all have their last value.
    written = settings.read_text(encoding="utf-8").splitlines()
    for number, status in enumerate(statuses):
        if status == 0 and f"key{number}={size.writes_at_once}" not in written:
            problems.append(f"the last value of key{number} is lost")
    if written[:2] != ["[Other]", "kept=1"]:
        problems.append("what other programs had written is lost")
    if [path.name for path in options.work.iterdir() if "shared" in path.name] != ["shared.ini"]:
        problems.append("a temporary file is left next to the settings")
    print(f"processes: {PROCESSES} at once, {size.calls_at_once} calls each; "
          f"{statuses.count(0)} writers of one file, {size.writes_at_once} values each")
    if statuses.count(0) < PROCESSES // 2:
        problems.append(f"only {statuses.count(0)} of {PROCESSES} writers got the lock each time")
    return problems


def run_faults(options, size):
    runs, met, problems = random_faults.run(options, size.faults)
    print(f"faults: {runs} runs of ispctl, {met} with a fault, seed {options.seed}")
    if met < runs // 10:
        problems.append("hardly any run met its fault")
    return problems


def parse_options():
    parser = argparse.ArgumentParser(description="Long use of the library and of ispctl.")
    parser.add_argument("build", type=pathlib.Path, help="a finished build of the tests, build/test")
    parser.add_argument("--long", action="store_true", help="100,000 calls and 1,000 faults")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--part", choices=PARTS)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    options = parser.parse_args()
    options.build = options.build.resolve()
    return options


def main():
    options = parse_options()
    start = time.monotonic()
    options.work = pathlib.Path(os.path.realpath(tempfile.mkdtemp(prefix="soak-")))
    parts = {"calls": run_calls, "processes": run_processes, "faults": run_faults}
    failed = 0
    try:
        for part in PARTS:
            if options.part in (None, part):
                problems = parts[part](options, Size(options.long))
                failed += len(problems)
                for problem in problems:
                    print(f"FAILED {part}: {problem}", flush=True)
    finally:
        shutil.rmtree(options.work, ignore_errors=True)
    print(f"soak: {failed} failed in {time.monotonic() - start:.0f} s")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
