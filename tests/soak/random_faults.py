"""Runs of ispctl, each with one operation of the C library that fails at a random call.

A run must end in time and without a signal, must not claim a success that was not, and must say something if
it fails. What succeeds in spite of the fault shows what it shows without one.
"""

import argparse
import concurrent.futures
import os
import pathlib
import random
import sys
import threading

FAULTS = pathlib.Path(__file__).resolve().parent.parent / "faults"
sys.path.insert(0, str(FAULTS))

import check_ispctl
import outcome

# `paths` and `doctor` are left out of the commands: what they cannot look at is what they report.
# Memory is left out: ispctl may end when there is none, and the library has its own check.
OPERATIONS = check_ispctl.OPERATIONS + ("opendir", "readdir", "short_read", "rename", "flock", "realpath")
SECONDS = 20


def console_of(options):
    here = options.build / "tests/faults"
    return check_ispctl.Console(argparse.Namespace(
        work=str(options.work), library=str(options.build / "lib/libScalerIsp.so"), isp=str(here / "isp.so"),
        ispctl=str(options.build / "bin/ispctl"), faulty=str(here / "faulty.so"), timeout=SECONDS))


class Commands:
    """The command lines, and what each shows without a fault."""

    def __init__(self, console):
        firmware = os.path.join(console.root, "a.bin")
        self.runs = [console.run_line, ["run", "--json"] + console.run_line[1:]]
        self.others = [
            ["explain", "--lib", console.library, "--isp", "--fw", firmware],
            ["explain", "--json", "--lib", console.library, "--isp", "--fw", firmware],
            ["edid", "monitor.edid"], ["edid", "--json", "monitor.edid"],
            ["script", "assemble", "panel.script"], ["script", "check", "panel.script"],
            ["log", "summary", "run.log"],
        ]
        console.start(["run", "--log", "run.log"] + console.run_line[1:])
        self.undisturbed = {" ".join(line): console.start(line) for line in self.others}

    def problems(self, line, result):
        if line in self.runs:
            return check_ispctl.judge(result, "--json" in line)
        if result.status is None or result.status < 0:
            return [("hang" if result.status is None else "crash", repr(result.err[-200:]))]
        good = self.undisturbed[" ".join(line)]
        if result.status == good.status == 0 and result.out != good.out:
            return [("output", "status 0, and other output: %r" % result.out[-200:])]
        if result.status != good.status and not result.err and not result.out:
            return [("silence", "status %d and not a word" % result.status)]
        return []


class Faults:
    """All runs so far, and what was wrong with them."""

    def __init__(self, options):
        self.console = console_of(options)
        self.commands = Commands(self.console)
        self.runs = self.met = 0
        self.problems = []
        self.lock = threading.Lock()

    def one(self, line, depth, order):
        """RETURNS whether anything failed in the run."""
        result, has_met = self.console.armed(line, depth, order)
        found = self.commands.problems(line, result)
        with self.lock:
            self.runs += 1
            self.met += has_met
            self.problems.extend("%s: %s\n        FAULTS_ARM=%d:%s ispctl %s" % (
                name, seen, depth, order, " ".join(line)) for name, seen in found)
        return has_met


def order_of(operation, first, forever, error):
    return "%s:%d:%d:%d" % (operation, first, forever, outcome.errno_named(error))


def reach_of(faults, line, depth, operation):
    """Up to which call of an operation a fault may be met; 0 if there is none."""
    reach = 0
    for first in (1, 4, 16, 64):
        if not faults.one(line, depth, order_of(operation, first, 0, outcome.ERRNOS[operation][0])):
            break
        reach = 4 * first - 1
    return reach


def run(options, count):
    """First finds out which operations each command calls, then lets random ones of them fail. RETURNS how
    many runs there were, how many met a fault, and the problems."""
    faults = Faults(options)
    lines = faults.commands.runs + faults.commands.others
    targets = [(line, depth, operation) for line in lines for depth in (0, 1) for operation in OPERATIONS]
    choice = random.Random(options.seed)
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        reaches = list(pool.map(lambda target: reach_of(faults, *target), targets))
        reachable = [(*target, reach) for target, reach in zip(targets, reaches) if reach > 0]
        jobs = []
        for _ in range(count):
            line, depth, operation, reach = choice.choice(reachable)
            jobs.append((line, depth, order_of(operation, choice.randint(1, reach), choice.randint(0, 1),
                                               choice.choice(outcome.ERRNOS[operation]))))
        list(pool.map(lambda job: faults.one(*job), jobs))
    return faults.runs, faults.met, faults.problems
