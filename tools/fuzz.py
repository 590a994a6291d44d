#!/usr/bin/env python3
"""Runs the fuzz targets of a build and reports how fast each ran and what it found.

    tools/fuzz.py BUILD [TARGET|all] [SECONDS]

The seconds are shared by all targets; as many as there are processors run at once. New inputs that reach
new code stay in BUILD/corpus for the next run. An input that ends a target is made smaller and copied to
tests/fuzz/corpus/TARGET, where it is a test from then on: commit it together with what mends it.
Exit status: 0 nothing found, 1 something found, 2 bad usage.
"""

import base64
import concurrent.futures
import hashlib
import os
import pathlib
import re
import shutil
import subprocess
import sys

from fuzz_dictionaries import DICTIONARIES, write_dictionary
from tracked_files import ROOT

CORPUS = ROOT / "tests" / "fuzz" / "corpus"
STATISTIC = re.compile(r"stat::(\w+):\s+(\d+)")
BROKEN_RULE = re.compile(r"does not hold|ERROR: |runtime error: |SUMMARY: ")
COVERAGE = re.compile(r"cov: (\d+)")
LEAST_SECONDS = 2
SLACK_SECONDS = 120  # replaying the corpus, reporting, making a finding smaller


class Target:
    """One program and its directories in the build."""

    def __init__(self, build, name):
        self.name = name
        self.program = build / "tests" / "fuzz" / name / f"fuzz_{name}"
        self.corpus = build / "corpus" / name
        self.findings = build / "findings" / name
        self.temporary = build / "temporary" / name
        self.dictionary = build / f"{name}.dict"

    def prepare(self):
        shutil.rmtree(self.findings, ignore_errors=True)
        for directory in (self.corpus, self.findings, self.temporary):
            directory.mkdir(parents=True, exist_ok=True)
        write_dictionary(self.name, self.dictionary)

    def call(self, *options, seconds):
        # A process that is killed leaves its directory of files behind.
        environment = {**os.environ, "TMPDIR": str(self.temporary), "LC_ALL": "C.UTF-8",
                       "ASAN_SYMBOLIZER_PATH": shutil.which("llvm-symbolizer-14") or ""}
        command = [str(self.program), "-close_fd_mask=3", f"-artifact_prefix={self.findings}/", *options]
        return subprocess.run(command, env=environment, cwd=self.temporary, timeout=seconds + SLACK_SECONDS,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)

    def fuzz(self, seconds):
        """RETURNS (output, numbers, whether something was found)."""
        result = self.call(f"-max_total_time={seconds}", f"-dict={self.dictionary}", "-timeout=20",
                           "-rss_limit_mb=2048", "-print_final_stats=1", "-use_value_profile=1",
                           str(self.corpus), str(CORPUS / self.name), seconds=seconds)
        output = result.stderr.decode("utf-8", errors="replace")
        numbers = {name: int(value) for name, value in STATISTIC.findall(output)}
        numbers["coverage"] = int((COVERAGE.findall(output) or ["0"])[-1])
        shutil.rmtree(self.temporary, ignore_errors=True)
        return output, numbers, result.returncode != 0

    def keep_findings(self):
        """Copies what was found into the corpus. RETURNS the new files."""
        kept = []
        self.temporary.mkdir(parents=True, exist_ok=True)
        for found in sorted(self.findings.iterdir()):
            smaller = self.findings / "smaller"
            self.call("-minimize_crash=1", "-max_total_time=20", f"-exact_artifact_path={smaller}",
                      str(found), seconds=20)
            best = smaller if smaller.exists() else found
            name = "found-" + hashlib.sha256(best.read_bytes()).hexdigest()[:12]
            shutil.copyfile(best, CORPUS / self.name / name)
            kept.append(CORPUS / self.name / name)
            smaller.unlink(missing_ok=True)
        return kept


def in_short(target, output, kept):
    """A finding in a few lines, printed last: who reads only the end of a log sees all findings."""
    rule = next((text for text in output.splitlines() if BROKEN_RULE.search(text)), "no rule is named")
    lines = [f"{target.name}: {rule.strip()}"]
    for path in kept:
        lines.append(f"    {path.relative_to(ROOT)} {base64.b64encode(path.read_bytes()).decode()}")
    return "\n".join(lines)


def run(target, seconds):
    """RETURNS (report, the finding in short or None)."""
    target.prepare()
    try:
        output, numbers, found = target.fuzz(seconds)
    except subprocess.TimeoutExpired:
        report = f"{target.name}: did not end within {seconds + SLACK_SECONDS} s"
        return report, report
    line = (f"{target.name:<14} {numbers.get('number_of_executed_units', 0):>9} executions"
            f" {numbers.get('average_exec_per_sec', 0):>7}/s {numbers['coverage']:>6} edges"
            f" {numbers.get('peak_rss_mb', 0):>5} MB")
    if not found:
        return line, None
    finding = in_short(target, output, target.keep_findings())
    last = "\n".join("    " + text for text in output.splitlines()[-60:])
    return f"{line}\n{last}\n    repeat it: {target.program} FILE", finding


def names_to_run(word):
    with_corpus = {path.name for path in CORPUS.iterdir() if any(path.iterdir())}
    if with_corpus != set(DICTIONARIES):
        sys.exit(f"only a corpus or only a dictionary: {sorted(with_corpus ^ set(DICTIONARIES))}")
    if word == "all":
        return sorted(DICTIONARIES)
    if word not in DICTIONARIES:
        print(f"no target is called {word}; there are: all {' '.join(sorted(DICTIONARIES))}", file=sys.stderr)
        sys.exit(2)
    return [word]


def main(arguments):
    if not 1 <= len(arguments) <= 3 or not (len(arguments) < 3 or arguments[2].isdigit()):
        print(__doc__, file=sys.stderr)
        return 2
    build = pathlib.Path(arguments[0]).resolve()
    names = names_to_run(arguments[1] if len(arguments) > 1 else "all")
    seconds = int(arguments[2]) if len(arguments) > 2 else 60
    at_once = min(os.cpu_count() or 1, len(names))
    each = max(LEAST_SECONDS, seconds * at_once // len(names))
    findings = []
    with concurrent.futures.ThreadPoolExecutor(at_once) as pool:
        for report, finding in pool.map(lambda name: run(Target(build, name), each), names):
            print(report, flush=True)
            findings += [finding] if finding else []
    for finding in findings:
        print(finding)
    print(f"fuzz: {len(names)} targets, {each} s each, {len(findings)} with a finding")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
