#!/usr/bin/env python3
"""Runs the measurements of a Release build and writes the table of ratios to its part of bench/RESULTS.md.

    tools/bench.py BUILD [--quick]

BUILD is a Release build folder in which the target scaler_isp_bench has been built.
"""

import argparse
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
from collections import defaultdict

from results import write_part

PART = "Speed"
FIRST_CALL = "bench_first_call"
INTRODUCTION = """\
Written by `./dev bench`. The library is before the slash, the comparison after it. Both run
alternately, and the minimum processor time of each is used, because other programs on the machine can only
add to it. The spread is the middle half of the library's runs, relative to its minimum. The commands are
programs in the directory `bench` of the build, to be run with `LC_ALL=C.UTF-8`.

The floor of a complete call loads the plug-in, looks up its eleven functions, calls one, unloads it, fills
one command record and copies it to another; in a fresh process it also opens iconv and switches the
locale once. The allocator of the C library may give memory back to the system after every call, which
buries a call and its floor under page faults; the rows where it keeps its memory are the hard ones.
"""
# With these the allocator keeps its memory.
KEEP_MEMORY = {"MALLOC_TRIM_THRESHOLD_": "67108864", "MALLOC_MMAP_THRESHOLD_": "33554432"}

# Program, row, goal (the ratio may be at most this), what is measured.
PAIRS = [
    ("bench_scan", "scan_8", 1.0, "scan 8 arguments with the 90 options / getopt_long"),
    ("bench_scan", "scan_40", 1.0, "scan 40 arguments with the 90 options / getopt_long"),
    ("bench_transform", "to_utf8_plain", 1.2, "wide to UTF-8, 60 ASCII characters / bare iconv"),
    ("bench_transform", "to_utf8_mixed", 1.2, "wide to UTF-8, 60 mixed characters / bare iconv"),
    ("bench_transform", "to_wide_plain", 1.2, "UTF-8 to wide, 60 ASCII characters / bare iconv"),
    ("bench_transform", "to_wide_mixed", 1.2, "UTF-8 to wide, 60 mixed characters / bare iconv"),
    ("bench_transform", "string_to_wstring_mixed", 1.2,
     "ConvertStringToWString, 60 mixed characters / bare iconv"),
    ("bench_search", "search", 1.5, "find 1 firmware file among 10,000 entries / bare readdir"),
    ("bench_toolkit", "byte_list", 0.5, "CmdToBin of 256 KiB / strtol on the narrow text"),
    ("bench_toolkit", "script", 2.0, "RunCommand of 10,000 records / the same calls, decoded before"),
    ("bench_settings", "read_key", 2.0, "read one key of 1,500 lines / getline on a narrow stream"),
    ("bench_settings", "write_key", 2.0,
     "write one key of 1,500 lines / getline, then replace the file"),
]
SETTINGS = "bench_settings"
DISK_GOAL, MEMORY_GOAL, LINEAR_GOAL, ODD_GOAL = 2.0, 2.0, 1.1, 10.0
ODD_FILES = [("twice", "that has the section twice"),
             ("unreadable", "that the encoding cannot read")]
CALL_GOAL = 1.5
EXTRA_FAULTS = 30
BANKS = [64, 128, 256, 512]
# A cost that grows no faster than the banks; the tenth is room for noise.
BANKS_GOAL = 1.1
FURTHER_BANK_GOAL = 1.25  # a difference of two small figures


def quantile(values, part):
    return sorted(values)[round(part * (len(values) - 1))]


class Runs:
    """All runs of one side of a row: processor nanoseconds, and a counter such as page faults."""

    def __init__(self):
        self.times = []
        self.elapsed = []
        self.counts = []

    @property
    def least(self):
        return min(self.times)

    @property
    def count(self):
        return quantile(self.counts, 0.5)

    @property
    def spread(self):
        low, high = (quantile(self.times, part) / self.least - 1 for part in (0.25, 0.75))
        return f"+{100 * low:.0f}..{100 * high:.0f} %"


def environment(extra):
    clean = {name: value for name, value in os.environ.items() if not name.startswith("MALLOC_")}
    return {**clean, "LC_ALL": "C.UTF-8", **extra}


def measure(folder, program, quick, extra=None):
    """One Google Benchmark program, its rows in random turns. Returns the runs by row name."""
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        subprocess.run(
            [folder / program, f"--benchmark_min_time={0.005 if quick else 0.02}",
             f"--benchmark_repetitions={7 if quick else 41}",
             "--benchmark_enable_random_interleaving=true", "--benchmark_out_format=json",
             f"--benchmark_out={out.name}"],
            env=environment(extra or {}), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            check=True)
        report = json.load(out)
    runs = defaultdict(Runs)
    for run in report["benchmarks"]:
        if run.get("error_occurred"):
            sys.exit(f"{program}: {run['name']}: {run['error_message']}")
        if run["run_type"] == "iteration":
            runs[run["name"]].times.append(run["cpu_time"])
            runs[run["name"]].elapsed.append(run["real_time"])
            runs[run["name"]].counts.append(run.get("faults", run.get("conversions", 0)))
    return runs


def measure_first_calls(folder, quick):
    """Fresh processes, subject and peer in turns."""
    runs = {"subject": Runs(), "peer": Runs()}
    for _ in range(7 if quick else 41):
        for side, side_runs in runs.items():
            done = subprocess.run([folder / FIRST_CALL, side], env=environment({}), text=True,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=True)
            time, faults = done.stderr.split()
            side_runs.times.append(float(time))
            side_runs.counts.append(int(faults))
    return runs["subject"], runs["peer"]


def row(what, value, goal, spread, command):
    return {"what": what, "value": f"{value:.2f}", "goal": f"{goal:.2f}", "met": value <= goal,
            "spread": spread, "command": command}


def call_rows(what, subject, peer, command):
    extra = subject.count - peer.count
    return [
        row(f"{what} / its floor", subject.least / peer.least, CALL_GOAL, subject.spread, command),
        {"what": f"{what}: page faults more than the floor's {peer.count:.0f}",
         "value": f"{extra:+.0f}", "goal": f"+{EXTRA_FAULTS}", "met": extra <= EXTRA_FAULTS,
         "spread": f"{min(subject.counts):.0f}..{max(subject.counts):.0f}", "command": command},
    ]


def pair_rows(folder, quick):
    programs = dict.fromkeys(program for program, *_ in PAIRS)
    measured = {program: measure(folder, program, quick) for program in programs}
    for program, name, goal, what in PAIRS:
        subject, peer = (measured[program][f"{name}:{side}"] for side in ("subject", "peer"))
        yield row(what, subject.least / peer.least, goal, subject.spread,
                  f"{program} --benchmark_filter={name}")


def all_call_rows(folder, quick):
    for what, extra in [("complete call, warm", {}),
                        ("complete call, warm, allocator keeps its memory", KEEP_MEMORY)]:
        runs = measure(folder, "bench_call", quick, extra)
        words = [f"{name}={value}" for name, value in extra.items()] + ["bench_call"]
        yield from call_rows(what, runs["call:subject"], runs["call:peer"], " ".join(words))
    yield from call_rows("complete call, first of a process", *measure_first_calls(folder, quick),
                         f"{FIRST_CALL} subject, {FIRST_CALL} peer")


def file_system(folder):
    return subprocess.run(["stat", "-f", "-c", "%T", folder], text=True, capture_output=True,
                          check=True).stdout.strip()


def save_rows(folder, quick):
    """On a disk both wait for the disk, so what counts there is the median of the time that passes."""
    runs = measure(folder, SETTINGS, quick)
    what = "SaveSetting of 512 entries on {} / read, format the lines, write, rename"
    subject, peer = (runs[f"save_on_disk:{side}"] for side in ("subject", "peer"))
    yield row(what.format(file_system(tempfile.gettempdir())) + ", elapsed",
              quantile(subject.elapsed, 0.5) / quantile(peer.elapsed, 0.5), DISK_GOAL,
              subject.spread, f"{SETTINGS} --benchmark_filter=save_on_disk")
    subject, peer = (runs[f"save_in_memory:{side}"] for side in ("subject", "peer"))
    yield row(what.format(file_system("/dev/shm")), subject.least / peer.least, MEMORY_GOAL,
              subject.spread, f"{SETTINGS} --benchmark_filter=save_in_memory")
    yield row("SaveSetting, cost an entry of 512 / of 128",
              subject.least / 512 / (runs["save_128"].least / 128), LINEAR_GOAL, subject.spread,
              f"{SETTINGS} --benchmark_filter=save")
    for name, which in ODD_FILES:
        odd = runs[f"save_odd_{name}"]
        yield row(f"SaveSetting into a file {which} / into an ordinary one",
                  odd.least / subject.least, ODD_GOAL, odd.spread,
                  f"{SETTINGS} --benchmark_filter=save")


def bank_rows(folder, quick):
    measured = measure(folder, "bench_bank_map", quick)
    runs = {banks: measured[f"bank_map_{banks}"] for banks in BANKS}
    fewest = runs[BANKS[0]]
    for banks in BANKS[1:]:
        yield row(f"bank map of {banks} banks, cost a bank / that of {BANKS[0]}",
                  runs[banks].least / banks / (fewest.least / BANKS[0]), BANKS_GOAL,
                  runs[banks].spread, f"bench_bank_map --benchmark_filter=bank_map_{banks}")
    further = [(runs[high].least - runs[low].least) / (high - low)
               for low, high in ((64, 128), (256, 512))]
    yield row("one more bank between 256 and 512 / between 64 and 128", further[1] / further[0],
              FURTHER_BANK_GOAL, f"{further[0]:.0f} and {further[1]:.0f} ns", "bench_bank_map")
    yield row(f"path conversions for {BANKS[-1]} banks of ten files / for {BANKS[0]}",
              runs[BANKS[-1]].count / fewest.count, 1.0, f"{runs[BANKS[-1]].count:.0f} each",
              "bench_bank_map")


def first_line(command):
    return subprocess.run(command, text=True, capture_output=True, check=True).stdout.split("\n")[0]


def machine(cache):
    """One line about where the figures come from, without the machine's name."""
    processor = "unknown processor"
    cpuinfo = pathlib.Path("/proc/cpuinfo")
    if cpuinfo.exists():
        processor = re.search(r"model name\s*:\s*(.*)", cpuinfo.read_text() + "\nmodel name: ?").group(1)
    compiler = re.search(r"CMAKE_CXX_COMPILER:\w+=(.*)", cache).group(1)
    system = os.uname()
    return (f"{processor}, {os.cpu_count()} cores, {system.sysname} {system.machine}, "
            f"{first_line(['getconf', 'GNU_LIBC_VERSION'])}, {first_line([compiler, '--version'])}")


def table(rows):
    lines = ["| what | ratio | goal | met | spread | command |", "|---|---|---|---|---|---|"]
    lines += [f"| {r['what']} | {r['value']} | {r['goal']} | {'yes' if r['met'] else 'NO'} | "
              f"{r['spread']} | `{r['command']}` |" for r in rows]
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("build", type=pathlib.Path, help="build folder, build type Release")
    parser.add_argument("--quick", action="store_true", help="few runs; writes no file")
    options = parser.parse_args()
    cache = (options.build / "CMakeCache.txt").read_text()
    if not re.search(r"^CMAKE_BUILD_TYPE:\w+=Release$", cache, re.MULTILINE):
        sys.exit(f"{options.build} is no Release build")
    folder = options.build.resolve() / "bench"
    if not (folder / FIRST_CALL).exists():
        sys.exit(f"cmake --build {options.build} --target scaler_isp_bench comes first")

    rows = [*pair_rows(folder, options.quick), *all_call_rows(folder, options.quick),
            *bank_rows(folder, options.quick), *save_rows(folder, options.quick)]
    text = table(rows)
    print(text, end="")
    if not options.quick:
        write_part(PART, f"{INTRODUCTION}\nMachine: {machine(cache)}.\n\n{text}")
    missed = sum(not r["met"] for r in rows)
    print(f"{len(rows) - missed} of {len(rows)} goals met")
    return 0


if __name__ == "__main__":
    sys.exit(main())
