#!/usr/bin/env python3
"""Runs ispctl with hostile files (README.md): every case has an expected refusal, ends in time, writes
nothing and shows nothing that acts on a terminal.

    run_hostile.py BUILD [--sample] [--only TEXT]
"""

import argparse
import concurrent.futures
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time

from changing_files import CHANGES
from hostile_files import KINDS, NOT_PASSABLE, write
from inputs import INPUTS, OPTIONS
from mistakes import FILE_IS_NOT_USED, MISTAKES

SECONDS = 20
REFUSED = 4
NOBODY = 65534
NAMES_ONLY = "name-"  # these kinds are also run with --json


class Case:
    def __init__(self, name, kind, arguments, status, texts):
        self.name, self.kind, self.arguments = name, kind, arguments
        self.status, self.texts = status, texts


class Place:
    """The directory of one case: good files, one hostile one, and a device that must stay empty."""

    def __init__(self, root, case):
        self.root = os.path.join(root, case.name)
        self.good, self.device = self.root + "/good/", self.root + "/device"
        for directory in (self.root, self.good, self.device):
            os.makedirs(directory)
        for name in ("g.bin", "s.sig", "k.pem", "boot.bin"):
            write(self.good + name, b"x")
        write(self.good + "f.bin")
        self.file = case.kind[1](self.root)

    def arguments(self, words):
        """The words with the names of files put in; a name that is no text is bytes."""
        file, good = os.fsencode(self.file), os.fsencode(self.good)
        return [os.fsencode(word).replace(b"{F}", file).replace(b"{D}", good) for word in words]

    def listing(self):
        """Everything that is there: name, size, time and mode. A file's own bytes cannot change otherwise."""
        found = {}
        for directory, folders, files in os.walk(os.fsencode(self.root)):
            for name in folders + files:
                path = os.path.join(directory, name)
                status = os.lstat(path)
                size = 0 if name in folders else status.st_size
                found[path] = (size, status.st_mode, status.st_mtime_ns if name in files else 0)
        return found


def run(options, place, words, user=None):
    environment = {k: v for k, v in os.environ.items() if not k.startswith(("LC_", "LANG", "SCALER_ISP_"))}
    environment.update(LC_ALL="C.UTF-8", SCALER_ISP_VIRTUAL_DEVICE=place.device, TERM="dumb",
                       TMPDIR=options.work)
    command = [os.fsencode(options.ispctl)] + place.arguments(words)
    try:
        done = subprocess.run(command, env=environment, cwd=place.root, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=SECONDS, check=False, user=user)
    except subprocess.TimeoutExpired:
        return None, b"", b""
    return done.returncode, done.stdout, done.stderr


def problems_of_text(output):
    """What could act on a terminal, or be mistaken for a line of ispctl's own."""
    problems = []
    if any(byte < 0x20 and byte not in b"\n\t" or byte == 0x7F for byte in output):
        problems.append("a control character is shown")
    try:
        output.decode("utf-8")
    except UnicodeDecodeError:
        problems.append("what is shown is not UTF-8")
    if "\u202e".encode() in output:
        problems.append("a direction character is shown")
    return problems


def problems_of_json(out, status):
    try:
        last = json.loads(out.decode("utf-8").splitlines()[-1])
    except (ValueError, IndexError):
        return ["standard output does not end with a JSON object"]
    return [] if last.get("status") == status else [f"the status in the JSON is {last.get('status')}"]


def is_said(text, shown):
    return text is None or any(one in shown for one in text.split("|"))


def problems_of(options, place, case, words):
    before = place.listing()
    user = NOBODY if case.kind[0] == "unreadable" and os.geteuid() == 0 else None
    status, out, err = run(options, place, words, user)
    if status is None:
        return [f"no end within {SECONDS} s"]
    shown = " ".join((out + err).decode("utf-8", "replace").split())
    problems = problems_of_text(out) + problems_of_text(err)
    if status != case.status:
        problems.append(f"status {status} instead of {case.status}")
    if "--json" in words:
        problems += problems_of_json(out, status)
    else:
        problems += [f"not said: {text}" for text in case.texts if not is_said(text, shown)]
    if place.listing() != before:
        changed = set(place.listing().items()) ^ set(before.items())
        problems.append(f"something was written: {sorted(name for name, _ in changed)}")
    return [problem + f"\n        {shown[:600]}" for problem in problems]


def check(options, case):
    """RETURNS the problems of a case and how many runs it took."""
    place = Place(options.work, case)
    try:
        if case.kind[0] == "unreadable" and os.geteuid() == 0:
            os.chmod(place.root, 0o755)
            os.chmod(place.device, 0o777)
        lines = [case.arguments]
        if case.kind[0].startswith(NAMES_ONLY) and case.arguments[0] == "run":
            lines.append([case.arguments[0], "--json"] + case.arguments[1:])
        problems = [problem for words in lines for problem in problems_of(options, place, case, words)]
        return problems, len(lines)
    finally:
        shutil.rmtree(place.root, ignore_errors=True)


def cases_of_mistakes():
    """Every mistake with every kind of file as its firmware."""
    for name, line, text in MISTAKES:
        for kind in KINDS:
            words = ["run", "--virtual"] + line.split()
            texts = [kind[2]] if kind[0] == NOT_PASSABLE else [text, kind[2]]
            if name in FILE_IS_NOT_USED and kind[0] != NOT_PASSABLE:
                texts = [text]
            yield Case(f"{name}.{kind[0]}", kind, words, REFUSED, texts)


def cases_of_options():
    """Every option that names a file, on a line that is good otherwise; only what is read at all."""
    for name, line, texts in OPTIONS:
        for kind in KINDS:
            if kind[0] in texts:
                words = ["run", "--virtual"] + line.split()
                yield Case(f"{name}.{kind[0]}", kind, words, REFUSED, [texts[kind[0]]])


def cases_of_inputs():
    """Every command that reads a file of its own."""
    kinds = {kind[0]: kind for kind in KINDS}
    for name, line, statuses in INPUTS:
        for kind, status in statuses.items():
            yield Case(f"{name}.{kind}", kinds[kind], line.split(), status, [])


def sample(cases):
    """Each mistake, option and command with one kind, and each kind with some."""
    taken = {}
    for case in cases:
        row = case.name.split(".", maxsplit=1)[0]
        taken.setdefault(row, []).append(case)
    return [row[(5 * number) % len(row)] for number, row in enumerate(taken.values())]


def can_be_nobody(options):
    """Whether another user can start this ispctl; else root would read what is unreadable."""
    if os.geteuid() != 0:
        return True
    try:
        done = subprocess.run([options.ispctl, "--version"], user=NOBODY, capture_output=True, check=False)
    except OSError:
        return False
    return done.returncode == 0


def parse_options():
    parser = argparse.ArgumentParser(description="ispctl with hostile files.")
    parser.add_argument("build", help="a finished build of the tests, build/test")
    parser.add_argument("--sample", action="store_true", help="one case of each row, in seconds")
    parser.add_argument("--only", help="only cases whose names contain this")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    options = parser.parse_args()
    options.ispctl = os.path.abspath(os.path.join(options.build, "bin/ispctl"))
    return options


def main():
    options = parse_options()
    start = time.monotonic()
    cases = list(cases_of_mistakes()) + list(cases_of_options()) + list(cases_of_inputs())
    if not can_be_nobody(options):
        print("hostile: without unreadable files: root reads them, and no other user can start ispctl")
        cases = [case for case in cases if case.kind[0] != "unreadable"]
    cases = sample(cases) if options.sample else cases
    cases = [case for case in cases if options.only is None or options.only in case.name]
    options.work = os.path.realpath(tempfile.mkdtemp(prefix="hostile-"))
    os.chmod(options.work, 0o755)
    runs = failed = 0
    try:
        with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
            for case, (problems, count) in zip(cases, pool.map(lambda case: check(options, case), cases)):
                runs += count
                failed += bool(problems)
                for problem in problems:
                    print(f"FAILED {case.name}: {problem}", flush=True)
        for name, change in [] if options.only else CHANGES:
            problems = change(options)
            failed += bool(problems)
            runs += 1
            for problem in problems:
                print(f"FAILED {name}: {problem}", flush=True)
    finally:
        shutil.rmtree(options.work, ignore_errors=True)
    print(f"hostile: {len(cases)} cases, {runs} runs, {failed} failed in {time.monotonic() - start:.0f} s")
    return 1 if failed or not runs else 0


if __name__ == "__main__":
    sys.exit(main())
