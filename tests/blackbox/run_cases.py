#!/usr/bin/env python3
"""Runs black-box cases: stages a folder, starts the host, compares what came out.

  run_cases.py --host HOST --library FILE --plugins FOLDER [options] CASE-FILE...

A case file is a text file. Lines that begin with # are comments; the others are KEY: VALUE. A block is
a key without value, followed by lines "  |TEXT"; everything after the bar counts.

  include: FILE            takes the definitions of another file
  define: NAME = TEXT      @NAME@ stands for TEXT from here on

  case: NAME               begins a case; everything below belongs to it
  file: NAME = SIZE        stages a file of zeros; with a block instead of a size its contents
  dir: NAME                stages a folder
  folder: PATH             the library's own folder below the staged one (lib); @PAD:n@ counts the
                           whole path
  plugin: PATH = BINARY    what lies there; "none" leaves it out. Without this line:
                           PlugIn/libIsp.dylib = isp and libSignVerify.dylib = sign
  answer: FUNCTION VERB ARGUMENT   how a recording plug-in answers (journal.h)
  env: NAME=VALUE          an environment variable; -NAME removes it. Locale variables are removed and
                           LC_ALL=C.UTF-8 is set before
  needs-locale: NAME       a locale that the build made
  line: COMMAND LINE       one call of the library
  do: COMMAND              any other command of the host (host.c), in the order of the file
  row: A | B | ...         the case is run once for each row, with {1}, {2} ... replaced by its cells
  not-in-loader: REASON    skipped with --in-loader
  not-emulated: REASON     skipped with --emulated
  not-sanitized: REASON    skipped with --sanitized

  events: BLOCK            calls of the plug-ins and callbacks and what the host tells, in order; the
                           fields of one call in any order
  result: NUMBER           the same as the last event "result NUMBER"
  stdout: BLOCK, stderr: BLOCK   exactly what is printed; nothing when there is no block
  exit: NUMBER             exit status of the host (0)

Escapes in command lines, files, stdout and stderr (not in events, where the host and the plug-ins have
escaped already): \\e ESC, \\0 NUL, \\t, \\r, \\n, \\\\, \\xHH any byte, \\s a space at the end of a line.
Each line of a block ends with a line feed; one that ends with \\c has none.

Macros: @DIR@ the library's folder, without the last slash; @ROOT@ the staged folder around it;
@SEQ:1:3:,@ is 1,2,3; @REPEAT:3:ab@ is ababab; @PAD:n@ lengthens the word before it to n bytes;
@FILL-LINE:n@ lengthens the line to n bytes; @ANY@ in an expectation is any text within a line.
"""

import argparse
import concurrent.futures
import difflib
import os
import re
import shutil
import subprocess
import sys
import tempfile

import case_text
from case_file import BLOCKS, read_cases

DEFAULT_PLUGINS = ["PlugIn/libIsp.dylib = isp", "libSignVerify.dylib = sign"]
LOCALE_VARIABLE = re.compile(r"LC_.*|LANG|LANGUAGE|LOCPATH|BLACKBOX_DIR")


def link_or_copy(source, target):
    """A hard link is faster; on macOS dyld may report another name of the file as its path."""
    os.makedirs(os.path.dirname(target), exist_ok=True)
    if sys.platform == "darwin":
        shutil.copy2(source, target)
        return
    try:
        os.link(source, target)
    except OSError:
        shutil.copy2(source, target)


class Run:
    """One case, from staging to comparison."""

    def __init__(self, case, macros, options):
        self.case, self.options = case, options
        self.root = tempfile.mkdtemp(prefix="bb-", dir=options.work)
        folder = self.text_of(self.root + "/" + case.single.get("folder", "lib"), macros)
        self.folder = os.fsdecode(case_text.unescape(folder))
        self.macros = dict(macros, DIR=self.folder, ROOT=self.root)
        self.differences = []

    def text_of(self, text, macros=None):
        return case_text.expand(self.case.fill(text), macros or self.macros)

    def path_of(self, name):
        return os.path.join(self.folder, os.fsdecode(case_text.unescape(self.text_of(name))))

    def stage(self):
        os.makedirs(self.folder)
        self.library = os.path.join(self.folder, "libScalerIsp.so")
        link_or_copy(self.options.library, self.library)
        for line in self.case.lists["plugin"] or DEFAULT_PLUGINS:
            place, _, binary = self.text_of(line).partition(" = ")
            if binary != "none":
                source = os.path.join(self.options.plugins, binary + ".plugin")
                link_or_copy(source, os.path.join(self.folder, place))
        for name in self.case.lists["dir"]:
            os.makedirs(self.path_of(name))
        for name, size, lines in self.case.files:
            path = self.path_of(name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as file:
                if size is None:
                    file.write(case_text.block_bytes([self.text_of(line) for line in lines]))
                else:
                    file.truncate(int(self.text_of(size)))
        self.write("answers.txt", self.case.lists["answer"])
        steps = self.case.lists["do"]
        if not any(step.split(" ")[0] == "load" for step in steps):
            steps = ["load"] + steps
        self.write("run.txt", steps)

    def write(self, name, lines):
        with open(os.path.join(self.root, name), "wb") as file:
            for line in lines:
                data = case_text.unescape(self.text_of(line))
                if b"\n" in data or b"\0" in data:
                    raise ValueError("a command of the host is one line: " + line)
                file.write(data + b"\n")

    def environment(self):
        env = {k: v for k, v in os.environ.items() if not LOCALE_VARIABLE.fullmatch(k)}
        env.update(LC_ALL="C.UTF-8", BLACKBOX_DIR=self.root)
        if "needs-locale" in self.case.single:
            env["LOCPATH"] = self.options.locales
        for line in self.case.lists["env"]:
            name, _, value = self.text_of(line).partition("=")
            if name.startswith("-"):
                env.pop(name[1:], None)
            else:
                env[name] = value
        return env

    def start(self):
        events = os.path.join(self.root, "events.txt")
        command = self.options.launcher.split() + [
            self.options.host, self.library, os.path.join(self.root, "run.txt"), events]
        done = subprocess.run(command, env=self.environment(), cwd=self.root, timeout=100,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)
        self.actual = {"stdout": done.stdout, "stderr": done.stderr, "events": b""}
        if os.path.exists(events):
            with open(events, "rb") as file:
                self.actual["events"] = file.read()
        return done.returncode

    def expected_lines(self, key):
        lines = [self.text_of(line) for line in self.case.blocks[key]]
        if key == "events":
            if "result" in self.case.single:
                lines.append("result " + self.text_of(self.case.single["result"]))
            return lines
        return case_text.escape_block(case_text.block_bytes(lines))

    def actual_lines(self, key):
        if key == "events":
            return self.actual[key].decode("utf-8", "backslashreplace").split("\n")[:-1]
        return case_text.escape_block(self.actual[key])

    def compare(self, status):
        wanted = int(self.case.single.get("exit", "0"))
        if status != wanted:
            self.differences.append("exit status %d, expected %d" % (status, wanted))
        for key in BLOCKS:
            self.compare_block(key)

    def compare_block(self, key):
        wanted, found = self.expected_lines(key), self.actual_lines(key)
        if key == "events":
            wanted = [case_text.usual_order(line) for line in wanted]
            found = [case_text.usual_order(line) for line in found]
        if len(wanted) == len(found) and all(map(case_text.matches, wanted, found)):
            return
        same = [b if case_text.matches(a, b) else a for a, b in zip(wanted, found)]
        diff = difflib.unified_diff(same + wanted[len(found):], found, "expected " + key,
                                    "actual " + key, n=2, lineterm="")
        self.differences += [self.shown(line) for line in diff]

    def shown(self, line):
        return line.replace(self.folder, "@DIR@").replace(self.root, "@ROOT@")

    def execute(self):
        try:
            self.stage()
            self.compare(self.start())
        except subprocess.TimeoutExpired:
            self.differences.append("no end within 100 seconds")
        finally:
            if not self.options.keep:
                shutil.rmtree(self.root, ignore_errors=True)
        return self


def skip_reason(case, options):
    if options.in_loader and "not-in-loader" in case.single:
        return case.single["not-in-loader"]
    if options.emulated and "not-emulated" in case.single:
        return case.single["not-emulated"]
    if options.sanitized and "not-sanitized" in case.single:
        return case.single["not-sanitized"]
    locale = case.single.get("needs-locale")
    if locale and not os.path.exists(os.path.join(options.locales or "", locale, "LC_CTYPE")):
        return "the build made no locale " + locale
    return None


def updated_block(run, key):
    """The new lines of a block: a line that still fits keeps its wording, macros included."""
    written = list(run.case.blocks[key])
    lines = run.actual_lines(key)
    if key == "events" and "result" in run.case.single and lines[-1:] == [
            "result " + run.case.single["result"]]:
        lines = lines[:-1]
    new = []
    for index, line in enumerate(lines):
        fits = index < len(written) and case_text.matches(
            case_text.usual_order(run.text_of(written[index])), case_text.usual_order(line))
        new.append(written[index] if fits else run.shown(line))
    return ["  |" + line for line in new]


def update(path, failed):
    """Rewrites the expectations of failed cases; tables are left to a person."""
    with open(path, encoding="utf-8", newline="\n") as file:
        text = file.read().split("\n")
    for run in sorted(failed, key=lambda run: -run.case.number):
        case = run.case
        if case.cells:
            print("%s: %s: a table is not updated" % (path, case.name))
            continue
        places = sorted(((place, key) for key, place in case.block_place.items()), reverse=True)
        for (first, last), key in places:
            text[first:last] = updated_block(run, key)
        missing = [k for k in BLOCKS if k not in case.block_place and run.actual_lines(k)]
        for key in missing:
            if key != "events" or "result" not in case.single:
                text[case.number:case.number] = [key + ":"] + updated_block(run, key)
    with open(path, "w", encoding="utf-8", newline="\n") as file:
        file.write("\n".join(text))


def parse_options():
    parser = argparse.ArgumentParser(description="Runs black-box cases.")
    parser.add_argument("--host", required=True, help="the host program")
    parser.add_argument("--library", required=True, help="the library under test")
    parser.add_argument("--plugins", required=True, help="folder of the recording plug-ins")
    parser.add_argument("--locales", help="folder of the locales that the build made")
    parser.add_argument("--launcher", default="", help="words in front of the host's command")
    parser.add_argument("--only", default="", help="runs the cases whose name holds this text")
    parser.add_argument("--work", help="folder for staging (the system's)")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--in-loader", action="store_true", help="skips what a foreign loader cannot")
    parser.add_argument("--emulated", action="store_true", help="skips what an emulator disturbs")
    parser.add_argument("--sanitized", action="store_true", help="skips what sanitizers disturb")
    parser.add_argument("--keep", action="store_true", help="leaves the staged folders")
    parser.add_argument("--update", action="store_true", help="rewrites the expectations")
    parser.add_argument("cases", nargs="+", metavar="CASE-FILE")
    return parser.parse_args()


def main():
    options = parse_options()
    passed = failed = skipped = 0
    for path in options.cases:
        cases, macros = read_cases(path)
        cases = [case for case in cases if options.only in case.name]
        reasons = {case.name: skip_reason(case, options) for case in cases}
        with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
            runs = list(pool.map(lambda case: Run(case, macros, options).execute(),
                                 [case for case in cases if reasons[case.name] is None]))
        for name, reason in reasons.items():
            if reason is not None:
                print("skipped %s: %s" % (name, reason))
        bad = [run for run in runs if run.differences]
        for run in bad:
            print("FAILED %s (%s:%d)" % (run.case.name, path, run.case.number))
            print("\n".join("    " + line for line in run.differences))
        if options.update and bad:
            update(path, bad)
        passed, failed = passed + len(runs) - len(bad), failed + len(bad)
        skipped += len(cases) - len(runs)
    note = " (%d skipped)" % skipped if skipped else ""
    print("blackbox: %d passed, %d failed%s" % (passed, failed, note))
    return 1 if failed or passed + skipped == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
