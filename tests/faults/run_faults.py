#!/usr/bin/env python3
"""Fails one operation of the C library at a time under the library and ispctl, and judges what comes of
it (README.md). Works on a finished build of the tests.

  run_faults.py BUILD [--long] [--part lines|settings|ispctl|self-test] [--only NAME]
                [--operation NAME] [--one WARMTH OPERATION:FIRST:once|forever:ERRNO]
"""

import argparse
import collections
import concurrent.futures
import os
import shutil
import sys
import tempfile
import time

import check_ispctl
import check_lines
import check_settings
import outcome
import self_test

PARTS = ("self-test", "lines", "settings", "ispctl")
SHOWN_OF_ONE_KIND = 3


class Tally:
    """Runs and failures of everything; prints a line as each subject ends."""

    def __init__(self, options):
        self.options = options
        self.passed = self.failed = 0
        self.by_assertion = collections.Counter()

    def subject(self, part, name, runs, faults, failures, detail=""):
        bad = {failure[1:4] for failure in failures}
        self.failed += len(bad)
        self.passed += runs - len(bad)
        print("%-9s %-26s %6d runs %6d faults  %s%s" % (
            part, name, runs, faults, detail, "  %d FAILED" % len(bad) if bad else ""), flush=True)
        self.show(part, failures)

    def show(self, part, failures):
        kinds = collections.defaultdict(list)
        for assertion, _, _, _ in {failure[:4] for failure in failures}:
            self.by_assertion[part + "." + assertion] += 1
        for failure in failures:
            kinds[failure[0]].append(failure)
        for assertion, those in kinds.items():
            for _, subject, state, order, seen in those[:SHOWN_OF_ONE_KIND]:
                one = " --one %s %s" % (state, order) if order.count(":") in (1, 3) else ""
                print("    FAILED %s: %s\n        %s --part %s --only '%s'%s" % (
                    assertion, seen, self.options.command, part, subject, one))
            if len(those) > SHOWN_OF_ONE_KIND:
                print("    ... %d more of %s" % (len(those) - SHOWN_OF_ONE_KIND, assertion))


def one_order(options, text):
    names = outcome.operations(options.source)
    operation, first, how, error = text.split(":")
    return names.index(operation), int(first), int(how == "forever"), int(error)


def run_lines(options, tally):
    lines = check_lines.selected(options.only)
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        futures = [pool.submit(check_lines.check_line, line, options) for line in lines]
        for line, future in zip(lines, futures):
            runs, faults, failures, calls = future.result()
            tally.subject("lines", line.name, runs, faults, failures,
                          "%d calls cold, %d warm" % tuple(calls))


def run_settings(options, tally):
    subjects = check_settings.subjects(options)
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        futures = [pool.submit(function) for _, function in subjects]
        for (name, _), future in zip(subjects, futures):
            runs, faults, failures = future.result()
            tally.subject("settings", name, runs, faults, failures)
    if os.geteuid() != 0 and not options.only:
        print("settings: left out without root: write_only, read_only_directory, full_disk")


def run_self_test(options, tally):
    cases = self_test.cases(options)
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        futures = [pool.submit(function) for _, _, function in cases]
        for (name, wanted, _), future in zip(cases, futures):
            found = future.result()
            passed = set(wanted) <= found if wanted else not found
            seen = "caught by: " + ", ".join(sorted(found))
            failures = [] if passed else [("self_test", name, "-", "-", seen)]
            tally.subject("self-test", name, 1, 1, failures,
                          "must fail: " + ", ".join(wanted) if wanted else "must pass")


def run_ispctl(options, tally):
    for name, function in check_ispctl.subjects(options):
        runs, faults, failures = function()
        tally.subject("ispctl", name, runs, faults, failures)


def parse_options():
    parser = argparse.ArgumentParser(description="The library and ispctl under failing operations.")
    parser.add_argument("build", help="a finished build of the tests, build/test")
    parser.add_argument("--long", action="store_true", help="every n instead of a sample")
    parser.add_argument("--part", choices=PARTS, help="only this part")
    parser.add_argument("--only", help="only this command line or subject")
    parser.add_argument("--operation", help="only this operation")
    parser.add_argument("--one", nargs=2, metavar=("STATE", "ORDER"), help="one single fault")
    parser.add_argument("--trace", action="store_true", help="with --one: who met the fault")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    options = parser.parse_args()
    build = os.path.abspath(options.build)
    here = os.path.join(build, "tests/faults")
    options.command = "tests/faults/run_faults.py " + options.build
    options.source = os.path.dirname(os.path.abspath(__file__))
    options.here = here
    options.library = os.path.join(build, "lib/libScalerIsp.so")
    options.locales = os.path.join(build, "tests/support/locales")
    options.faulty = os.path.join(here, "faulty.so")
    options.isp = os.path.join(here, "isp.so")
    options.stranger = os.path.join(here, "stranger.so")
    options.ispctl = os.path.join(build, "bin/ispctl")
    options.sign = os.path.join(here, "sign.so")
    options.settings_host = os.path.join(here, "settings_host")
    options.preload = options.faulty
    options.seed = 1
    options.timeout = 20
    options.host = os.path.join(here, "line_host")
    options.variables = {"FAULTS_TRACE": "1"} if options.trace else {}
    options.orders = None
    if options.one and options.part != "ispctl":
        options.orders = [one_order(options, options.one[1])]
    return options


def main():
    options = parse_options()
    start = time.monotonic()
    options.work = os.path.realpath(tempfile.mkdtemp(prefix="faults-"))
    print("faults: %s" % ("every call of every operation" if options.long else
                          "each of the first 64 calls of an operation, then a sample (--long: every call)"))
    tally = Tally(options)
    try:
        parts = {"self-test": run_self_test, "lines": run_lines, "settings": run_settings,
                 "ispctl": run_ispctl}
        for part in PARTS:
            if options.part in (None, part) and part in parts:
                parts[part](options, tally)
    finally:
        shutil.rmtree(options.work, ignore_errors=True)
    for assertion, count in sorted(tally.by_assertion.items()):
        print("faults: %s failed in %d runs" % (assertion, count))
    print("faults: %d passed, %d failed in %d s" % (tally.passed, tally.failed,
                                                    time.monotonic() - start))
    return 1 if tally.failed or tally.passed == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
