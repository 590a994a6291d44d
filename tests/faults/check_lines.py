"""Command lines under faults: stages each, runs its orders in line_host, judges every run."""

import dataclasses
import os
import re
import shutil
import subprocess

import outcome
from lines import LINES

FIELDS = ("operation", "first", "forever", "error", "status", "stage", "injected", "new_descriptors",
          "new_blocks", "new_of_others", "in_c_library", "result", "next_result", "out", "out_total",
          "err", "err_total", "events", "events_total")
SIGALRM = 14
NO_FAULT = (-1, 1, 0, 0)

FAIL_LINE = re.compile(rb"\x1b\[31mFail! Error Code: 0x([0-9A-F]+)")
SUCCESS_LINE = b"\x1b[32mSuccess"
# What the library may print when a file, a directory or a plug-in does not open, whatever the reason.
STATED = re.compile(rb"File open fail! .*|dlopen - .*|dlsym - .*|Digital signature: .*is not exist! .*")
# What it leaves of a path is used, whatever the reason for its failure.
STATED_FAILURES = ("realpath",)
STATED_FOR = {
    "opendir": re.compile(rb"cann't find bin file!|Cannot find bin in current dir!"
                          rb"|get userdefined info fail!|cann't find fw use userdefined .*"),
    "seek": re.compile(rb"Total bank count exceeds 512!|Program fw bank duplicate!"),
}


@dataclasses.dataclass
class Run:
    """One disturbed run and the undisturbed call after it."""

    numbers: dict
    calls: list
    out: bytes
    next_out: bytes
    err: bytes
    next_err: bytes
    events: bytes
    next_events: bytes

    def seen(self):
        """What a host and its plug-ins see of the first call."""
        return self.numbers["result"], self.out, self.err, self.events

    def seen_next(self):
        return self.numbers["next_result"], self.next_out, self.next_err, self.next_events


class Stage:
    """A directory with the library, the plug-ins and the files of a line."""

    def __init__(self, line, options, lacking=None):
        self.line, self.options = line, options
        self.root = os.path.join(options.work, line.name + ("-without-" + lacking if lacking else ""))
        self.folder = os.path.join(os.fsencode(self.root), line.folder)
        os.makedirs(os.path.join(self.folder, b"PlugIn"))
        self.library = self.put(options.library, b"libScalerIsp.so")
        self.plugins = [self.put(options.isp, b"PlugIn/libIsp.dylib"),
                        self.put(options.sign, b"libSignVerify.dylib")]
        # What a library that does not know its directory would find: the same files, but plug-ins of
        # a stranger, in the current directory and on the loader's path.
        os.makedirs(os.path.join(self.root, "PlugIn"))
        shutil.copy2(options.stranger, os.path.join(self.root, "PlugIn/libIsp.dylib"))
        shutil.copy2(options.stranger, os.path.join(self.root, "libSignVerify.dylib"))
        for name, contents in line.files.items():
            if name != lacking:
                self.write(self.folder, name, contents)
                self.write(os.fsencode(self.root), name, contents)
        with open(os.path.join(self.root, "answers.txt"), "w", encoding="utf-8") as file:
            file.write("".join(answer + "\n" for answer in line.answers))

    def put(self, source, name):
        target = os.path.join(self.folder, name)
        shutil.copy2(source, target)
        return target

    @staticmethod
    def write(folder, name, contents):
        with open(os.path.join(folder, os.fsencode(name)), "wb") as file:
            if isinstance(contents, int):
                file.truncate(contents)
            else:
                file.write(contents)

    def environment(self):
        env = {k: v for k, v in os.environ.items()
               if not re.fullmatch(r"LC_.*|LANG|LANGUAGE|LOCPATH|FAULTS_.*", k)}
        env.update(LC_ALL=self.line.locale, BLACKBOX_DIR=self.root, LD_PRELOAD=self.options.faulty,
                   LD_LIBRARY_PATH=self.root, LD_BIND_NOW="1", **self.options.variables)
        if self.line.locale != "C.UTF-8":
            env["LOCPATH"] = self.options.locales
        return env

    def run(self, warmth, orders):
        """The runs of the orders; a host that ends early is an error of the check itself."""
        text = self.line.text + "\n" + "".join("%d %d %d %d\n" % order for order in orders)
        command = [self.options.host, self.library, self.root, warmth]
        if warmth == "warm":
            command += self.plugins
        done = subprocess.run(command, input=text.encode(), env=self.environment(), cwd=self.root,
                              capture_output=True, check=False)
        if done.returncode != 0:
            raise RuntimeError("%s: the host ended with %d: %s" % (
                self.line.name, done.returncode, done.stderr.decode("utf-8", "replace")))
        return list(parse(done.stdout))


def parse(data):
    position = 0
    while position < len(data):
        end = data.index(b"\n", position)
        values = [int(word) for word in data[position:end].split()]
        numbers = dict(zip(FIELDS, values))
        position = end + 1
        pieces = []
        for name in ("out", "err", "events"):
            middle, end = position + numbers[name], position + numbers[name + "_total"]
            pieces += [data[position:middle], data[middle:end]]
            position = end
        yield Run(numbers, values[len(FIELDS):], *pieces)


class Judge:
    """What an undisturbed run does, and whether a disturbed one may differ as it does."""

    def __init__(self, operations, line, folder, reference, alternatives):
        self.operations, self.line, self.reference = operations, line, reference
        self.folder = folder
        self.alternatives = alternatives  # file name: what is seen without it
        signs = line.text.startswith(("p --sign", "p --verify"))
        self.not_loaded = (0x4004,) if signs else (0xD67,)
        if reference.numbers["result"] == -1 or "--searchfw" in line.text:
            self.not_loaded += (-1,)  # refused before anything is loaded
        self.out_lines = set(lines_of(reference.out))

    def failed(self, run):
        """The assertions that a run fails, by name, each with what was seen."""
        numbers = run.numbers
        if os.WIFSIGNALED(numbers["status"]):
            signal = os.WTERMSIG(numbers["status"])
            last = (lines_of(run.err + run.next_err) or [b""])[-1]
            where = "in the call" if numbers["stage"] == 1 else "in the call after it"
            return [("hang", where) if signal == SIGALRM else
                    ("crash", "signal %d %s: %s" % (signal, where, shown(last)))]
        if numbers["stage"] != 3:
            return [("crash", "the process ended in stage %d" % numbers["stage"])]
        found = list(self.leaks(run)) + list(self.next_call(run))
        if b"STRANGER" in run.events + run.next_events:
            return [("stranger", "a plug-in from the current directory or the search path was loaded")]
        if self.operations[numbers["operation"]] == "dladdr" and numbers["forever"] and (
                numbers["injected"] > 0 and numbers["first"] == 1
                and numbers["result"] not in self.not_loaded):
            found.append(("stranger", "result %d although the own directory is unknown" % numbers["result"]))
        if numbers["injected"] == 0:
            if run.seen() != self.reference.seen():
                found.append(("untouched", "another outcome without a fault"))
        elif not self.is_stated_alternative(run):
            found += list(self.records(run)) + list(self.output(run))
        return found

    def leaks(self, run):
        which = "new_of_others" if run.numbers["in_c_library"] else "new_blocks"
        extra = run.numbers[which] - self.reference.numbers[which]
        if self.warm and extra > 0:
            yield "memory", "%d blocks are left" % extra
        if run.numbers["new_descriptors"] > 0:
            yield "descriptors", "%d descriptors are left" % run.numbers["new_descriptors"]

    @property
    def warm(self):
        return self.reference.warmth == "warm"

    def next_call(self, run):
        if run.seen_next() != self.reference.seen():
            yield "next", "result %d, printed %r, %r, journal %r" % run.seen_next()

    def is_stated_alternative(self, run):
        operation = self.operations[run.numbers["operation"]]
        error = run.numbers["error"]
        for name, seen in self.alternatives.items():
            may_be = (operation == "open" and error == outcome.errno_named("EACCES")
                      if name in self.line.defaults else operation in ("open", "memory"))
            if may_be and run.seen() == seen:
                return True
        return False

    def records(self, run):
        events, wanted = self.resolved(run).splitlines(), self.reference.events.splitlines()
        alternatives = [wanted]
        if self.missed_a_file(run):
            alternatives += [seen[3].splitlines() for name, seen in self.alternatives.items()
                             if name in self.line.may_lack]
        if not any(events == other[:len(events)] for other in alternatives):
            difference = next((e for e, w in zip(events, wanted) if e != w), events[-1])
            yield "record", shown(difference)
        result = run.numbers["result"]
        if result == 0 and (events != wanted or self.reference.numbers["result"] != 0):
            # A parser that cannot be made is a stated 0, before anything else happens.
            parser = (self.operations[run.numbers["operation"]] == "memory" and not events
                      and run.out == b"")
            if not parser:
                yield "result", "0 after %d of %d calls of plug-ins" % (len(events), len(wanted))

    def missed_a_file(self, run):
        """Whether the run said so; opening a file takes memory, too."""
        said = b" is not exist! " in run.out or b"File open fail! " in run.out
        return said and self.operations[run.numbers["operation"]] in ("open", "memory")

    def resolved(self, run):
        """The journal, with full paths where the run said that a file of the signature check does not
        exist and went on."""
        events = run.events
        if self.missed_a_file(run):
            for name in self.line.unresolved:
                name = os.fsencode(name)
                events = events.replace(b'File="%s"' % name, b'File="%s/%s"' % (self.folder, name))
        return events

    def output(self, run):
        operation = self.operations[run.numbers["operation"]]
        stated_here = STATED_FOR.get("opendir" if operation in ("memory", "dladdr") else operation)
        result = run.numbers["result"]
        for text in lines_of(run.out):
            fail = FAIL_LINE.fullmatch(text)
            if fail:
                if int(fail[1], 16) != result & 0xFFFFFFFF:
                    yield "output", "%r with result %d" % (text, result)
            elif text == SUCCESS_LINE:
                if result != 0:
                    yield "output", "Success with result %d" % result
            elif not (text in self.out_lines or STATED.fullmatch(text)
                      or stated_here and stated_here.fullmatch(text)):
                yield "output", shown(text)
        for text in set(lines_of(run.err)) - set(lines_of(self.reference.err)):
            yield "output", shown(text)


def lines_of(out):
    """The lines of an output; the reset of the colour comes after the newline."""
    pieces = [piece.removeprefix(b"\x1b[m") for piece in out.split(b"\n")]
    return [piece for piece in pieces if piece]


def shown(text, width=300):
    text = text.decode("utf-8", "backslashreplace")
    return text if len(text) <= width else text[:width] + "…"


def orders_for(line, calls, operations, options, warmth):
    for number, operation in enumerate(operations):
        if calls[number] == 0 or operation in STATED_FAILURES or options.operation not in (
                None, operation):
            continue
        for error in outcome.ERRNOS[operation]:
            for forever in (0, 1):
                seed = "%s %s %d %s" % (line.name, operation, forever, warmth)
                for first in outcome.numbers(calls[number], options.long, seed):
                    yield number, first, forever, outcome.errno_named(error)


def check_line(line, options):
    """RETURNS (number of runs, number of faults, failures, a line for the report)."""
    operations = outcome.operations(options.source)
    stage = Stage(line, options)
    alternatives = {name: Stage(line, options, name).run("cold", [NO_FAULT])[0]
                    for name in line.may_lack + line.defaults}
    runs = faults = 0
    failures = []
    calls_seen = []
    for warmth in ("cold", "warm"):
        reference = stage.run(warmth, [NO_FAULT])[0]
        reference.warmth = warmth
        check_reference(line, reference)
        rewritten = {name: run.seen_from(stage, line, name) for name, run in alternatives.items()}
        judge = Judge(operations, line, stage.folder, reference, rewritten)
        calls_seen.append(sum(reference.calls))
        orders = options.orders or list(orders_for(line, reference.calls, operations, options, warmth))
        for run in stage.run(warmth, orders):
            runs += 1
            faults += run.numbers["injected"] > 0
            if options.trace:
                print((run.err + run.next_err).decode("utf-8", "replace"))
            for name, seen in judge.failed(run):
                failures.append((name, line.name, warmth, order_text(operations, run), seen))
    return runs, faults, failures, calls_seen


def check_reference(line, reference):
    if reference.numbers["stage"] != 3 or reference.seen() != reference.seen_next():
        raise RuntimeError("%s: not even the undisturbed run is twice the same: %r" % (line.name, reference))


def seen_from(run, stage, line, lacking):
    """What was seen in the directory that lacks a file, with the paths of the other directory."""
    other = os.fsencode(stage.root + "-without-" + lacking) + b"/"
    own = os.fsencode(stage.root) + b"/"
    return (run.numbers["result"],) + tuple(text.replace(other, own) for text in run.seen()[1:])


Run.seen_from = seen_from


def order_text(operations, run):
    numbers = run.numbers
    return "%s:%d:%s:%d" % (operations[numbers["operation"]], numbers["first"],
                            "forever" if numbers["forever"] else "once", numbers["error"])


def selected(only):
    return [line for line in LINES if only in (None, line.name)]
