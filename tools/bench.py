#!/usr/bin/env python3
"""Runs the measurements of a Release build and writes the table of ratios to its part of bench/RESULTS.md.

    tools/bench.py BUILD [--quick]

BUILD is a Release build folder in which the target scaler_isp_bench has been built.
"""

import argparse
import json
import math
import os
import pathlib
import re
import resource
import subprocess
import sys
import tempfile
from collections import defaultdict

from results import write_part

PART = "Speed"
FIRST_CALL = "bench_first_call"
INTRODUCTION = """\
Written by `./dev bench`. The library is before the slash; after it is what a program without the library
would do by hand for the same result, and both results are checked. All runs of both are in random turns,
because they may share the processor with other programs. Run n of one side is divided by run n of the
other; a row shows the median of these ratios of processor time, and their middle half as the spread. A goal
is missed if even the lower end of the spread is above it. The page faults are medians of one iteration of
the library / by hand. The commands are programs in the directory `bench` of the build, to be run with
`LC_ALL=C.UTF-8`.

A call by hand zeroes two command records, loads the plug-in, looks up its eleven functions, calls one and
unloads it; in a fresh process it also opens iconv and makes a locale for characters once. The allocator of
the C library may give memory back to the system after every call; the rows where it keeps its memory are
the hard ones.
"""
# With these the allocator keeps its memory.
KEEP_MEMORY = {"MALLOC_TRIM_THRESHOLD_": "67108864", "MALLOC_MMAP_THRESHOLD_": "33554432"}

# Program, row, goal (the ratio may be at most this), what is measured.
PAIRS = [
    ("bench_scan", "scan_8", 0.5, "scan 8 arguments with all options / getopt_long"),
    ("bench_scan", "scan_40", 0.5, "scan 40 arguments with all options / getopt_long"),
    ("bench_transform", "to_utf8_plain", 1.2, "wide to UTF-8, 60 ASCII characters / bare iconv"),
    ("bench_transform", "to_utf8_mixed", 1.2, "wide to UTF-8, 60 mixed characters / bare iconv"),
    ("bench_transform", "to_wide_plain", 1.2, "UTF-8 to wide, 60 ASCII characters / bare iconv"),
    ("bench_transform", "to_wide_mixed", 1.2, "UTF-8 to wide, 60 mixed characters / bare iconv"),
    ("bench_transform", "string_to_wstring_mixed", 1.2,
     "ConvertStringToWString, 60 mixed characters / bare iconv"),
    ("bench_search", "search", 1.5, "find 1 firmware file among 10,000 entries / bare readdir"),
    ("bench_conversions", "list_hex", 0.6, "CmdToBin of 256 KiB `0xHH, ` / strtol on the narrow text"),
    ("bench_conversions", "list_lines", 0.6, "the same, `0xHH` a line"),
    ("bench_conversions", "list_braces", 0.6, "the same, `{0xH ,` a line"),
    ("bench_conversions", "list_decimal", 0.6, "the same, decimal"),
    ("bench_conversions", "list_comments", 0.6, "the same, with a comment in every line"),
    ("bench_conversions", "script", 2.0, "RunCommand of 10,000 records / the same calls, decoded before"),
    ("bench_bank_map", "bank_map", 1.2,
     "bank map of 32 MiB / realpath, open, seek, plain map of 512"),
    ("bench_settings", "read_last", 1.0, "read the last key of 1,500 lines / getline on a narrow stream"),
    ("bench_settings", "read_second", 1.5, "read the second of them / the same"),
    ("bench_settings", "write_key", 2.0,
     "write one key of 1,500 lines / getline, then replace the file"),
]
CALLS = [
    ("call", {}, 0.8, "complete call, warm / the same by hand"),
    ("call", KEEP_MEMORY, 1.1, "complete call, warm, allocator keeps its memory / the same by hand"),
    ("isp", {}, 1.1, "`--isp` of 16 banks, warm / the same with realpath, open, seek by hand"),
]
FIRST_CALL_GOAL = 1.2
SETTINGS = "bench_settings"
DISK_GOAL, MEMORY_GOAL, ODD_GOAL = 2.0, 2.0, 10.0
ODD_FILES = [("twice", "that has the section twice"),
             ("unreadable", "that the encoding cannot read"),
             ("newline", "with a newline in every path"),
             ("overlong", "with an overlong line")]
LIBRARY_GOAL = 351
PROCESS_GOAL = 2.5
# Row, what grows. The exponent may be this much above that of the work by hand.
SCALING = [
    ("arguments", "arguments, 10 to 10,000"),
    ("quoted", "quoted words, 10 to 10,000"),
    ("banks", "banks of a file, 1 to 512"),
    ("lines", "lines of a settings file, 10 to 100,000"),
    ("entries", "entries of a directory, 10 to 100,000"),
    ("file_size", "size of a firmware file, 64 KiB to 1 GiB"),
]
EXPONENT_GOAL = 0.1


def quantile(values, part):
    return sorted(values)[round(part * (len(values) - 1))]


def median(values):
    return quantile(values, 0.5)


class Runs:
    """All runs of one row: processor and elapsed nanoseconds, page faults."""

    def __init__(self):
        self.times = []
        self.elapsed = []
        self.faults = []


def environment(extra):
    clean = {name: value for name, value in os.environ.items() if not name.startswith("MALLOC_")}
    return {**clean, "LC_ALL": "C.UTF-8", **extra}


def measure(folder, program, quick, extra=None, repetitions=None, only="."):
    """One Google Benchmark program, its rows in random turns. Returns the runs by row name."""
    repetitions = repetitions or (7 if quick else 41)
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        subprocess.run(
            [folder / program, f"--benchmark_min_time={0.005 if quick else 0.02}",
             f"--benchmark_repetitions={repetitions}", f"--benchmark_filter={only}",
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
            runs[run["name"]].faults.append(run["faults"])
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
            side_runs.faults.append(int(faults))
    return runs["subject"], runs["peer"]


def measure_processes(commands, rounds):
    """Whole processes with their children, in turns; each must succeed."""
    sides = [Runs() for _ in commands]
    for _ in range(rounds):
        for command, runs in zip(commands, sides):
            before = resource.getrusage(resource.RUSAGE_CHILDREN)
            subprocess.run(command, env=environment({}), stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL, check=True)
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
            runs.times.append(after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
            runs.faults.append(after.ru_minflt - before.ru_minflt)
    return sides


def row(what, values, goal, faults, command):
    """A row of values of several rounds, such as ratios."""
    low, high = (quantile(values, part) for part in (0.25, 0.75))
    return {"what": what, "value": f"{median(values):.2f}", "spread": f"{low:.2f} to {high:.2f}",
            "goal": f"{goal:.2f}", "met": median(values) <= goal, "missed": low > goal,
            "faults": faults, "command": command}


def ratios(subject, peer):
    return [ours / theirs for ours, theirs in zip(subject, peer)]


def pair_row(what, subject, peer, goal, command):
    faults = f"{median(subject.faults):.0f} / {median(peer.faults):.0f}"
    return row(what, ratios(subject.times, peer.times), goal, faults, command)


def pair_rows(folder, quick):
    programs = dict.fromkeys(program for program, *_ in PAIRS)
    measured = {program: measure(folder, program, quick) for program in programs}
    for program, name, goal, what in PAIRS:
        subject, peer = (measured[program][f"{name}:{side}"] for side in ("subject", "peer"))
        yield pair_row(what, subject, peer, goal, f"{program} --benchmark_filter={name}")


def measure_hosts(folder, name, quick, extra):
    """Each side in processes that do nothing else, in turns: the allocator behaves as its host does."""
    sides = [Runs(), Runs()]
    for _ in range(5 if quick else 11):
        for side, runs in zip(("subject", "peer"), sides):
            row_name = f"{name}:{side}"
            run = measure(folder, "bench_call", quick, extra, repetitions=1, only=row_name)[row_name]
            runs.times += run.times
            runs.faults += run.faults
    return sides


def call_rows(folder, quick):
    for name, extra, goal, what in CALLS:
        words = [f"{variable}={value}" for variable, value in extra.items()]
        command = " ".join([*words, f"bench_call --benchmark_filter={name}:subject"])
        yield pair_row(what, *measure_hosts(folder, name, quick, extra), goal, command)
    yield pair_row("complete call, first of a process / the same by hand",
                   *measure_first_calls(folder, quick), FIRST_CALL_GOAL,
                   f"{FIRST_CALL} subject, {FIRST_CALL} peer")


def process_rows(build, quick):
    """The console, which validates the line and runs it in a process of its own."""
    line = "--getscalertype"
    library = next((build / "virtual").glob("libScalerIsp.*"))
    sides = measure_processes([[build / "bin" / "ispctl", "run", "--virtual", line],
                               [build / "bench" / "bench_host", library, line]], 11 if quick else 81)
    yield pair_row(f"`ispctl run --virtual {line}` / a C host with this call, whole processes", *sides,
                   PROCESS_GOAL, f"ispctl run --virtual {line}, bench_host {library.name} {line}")


def file_system(folder):
    return subprocess.run(["stat", "-f", "-c", "%T", folder], text=True, capture_output=True,
                          check=True).stdout.strip()


def save_rows(folder, quick):
    """On a disk both wait for the disk, so what counts there is the time that passes."""
    runs = measure(folder, SETTINGS, quick)
    what = "SaveSetting of 512 entries on {} / read, format the lines, write, rename"
    subject, peer = (runs[f"save_on_disk:{side}"] for side in ("subject", "peer"))
    yield row(what.format(file_system(tempfile.gettempdir())) + ", elapsed",
              ratios(subject.elapsed, peer.elapsed), DISK_GOAL,
              f"{median(subject.faults):.0f} / {median(peer.faults):.0f}",
              f"{SETTINGS} --benchmark_filter=save_on_disk")
    subject, peer = (runs[f"save_in_memory:{side}"] for side in ("subject", "peer"))
    command = f"{SETTINGS} --benchmark_filter=save"
    yield pair_row(what.format(file_system("/dev/shm")), subject, peer, MEMORY_GOAL, command)
    for name, which in ODD_FILES:
        yield pair_row(f"SaveSetting into a file {which} / into an ordinary one",
                       runs[f"save_odd_{name}"], subject, ODD_GOAL, command)


def size_row(build):
    """The library as it is delivered; the numbers of the one for macOS have a part of their own."""
    with tempfile.NamedTemporaryFile() as stripped:
        subprocess.run(["strip", "-o", stripped.name, build / "lib/libScalerIsp.so"], check=True)
        size = pathlib.Path(stripped.name).stat().st_size
    return row("thousand bytes of the library, stripped", [size / 1000], LIBRARY_GOAL, "",
               "strip lib/libScalerIsp.so")


def exponents(runs, name):
    """The exponent of each round: the slope of the times over the sizes, both as logarithms."""
    sizes = {int(key.rsplit("/", 1)[1]): run for key, run in runs.items()
             if key.startswith(f"{name}/")}
    x = [math.log(size) for size in sizes]
    mean = sum(x) / len(x)
    for times in zip(*(run.times for run in sizes.values())):
        y = [math.log(time) for time in times]
        yield (sum((a - mean) * b for a, b in zip(x, y)) / sum((a - mean) ** 2 for a in x))


def scaling_rows(folder, quick):
    runs = measure(folder, "bench_scaling", quick, repetitions=5 if quick else 15)
    for name, what in SCALING:
        subject, peer = (list(exponents(runs, f"{name}:{side}")) for side in ("subject", "peer"))
        above = [ours - theirs for ours, theirs in zip(subject, peer)]
        text = f"exponent of {what}, above that by hand: {median(subject):.2f} - {median(peer):.2f}"
        yield row(text, above, EXPONENT_GOAL, "", f"bench_scaling --benchmark_filter={name}")


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


def load():
    """How busy the machine is with other programs."""
    return f"{os.getloadavg()[0]:.1f} before the measurement"


def table(rows):
    lines = ["| what | ratio | spread | goal | met | page faults | command |",
             "|---|---|---|---|---|---|---|"]
    lines += [f"| {r['what']} | {r['value']} | {r['spread']} | {r['goal']} | "
              f"{'yes' if r['met'] else 'NO' if r['missed'] else 'within the spread'} | "
              f"{r['faults']} | `{r['command']}` |" for r in rows]
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

    busy = load()
    rows = [*call_rows(folder, options.quick), *process_rows(options.build.resolve(), options.quick),
            *pair_rows(folder, options.quick), *save_rows(folder, options.quick),
            *scaling_rows(folder, options.quick)]
    if sys.platform == "linux":
        rows.append(size_row(options.build))
    text = table(rows)
    print(text, end="")
    if not options.quick:
        write_part(PART, f"{INTRODUCTION}\nMachine: {machine(cache)}; load {busy}.\n\n{text}")
    missed = [r["what"] for r in rows if r["missed"]]
    print(f"{len(rows) - len(missed)} of {len(rows)} goals met")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
