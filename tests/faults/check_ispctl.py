"""ispctl without descriptors, pipes, processes or with an output that is full: it never claims a success that
was not, never hangs and never ends in silence."""

import concurrent.futures
import json
import os
import re
import resource
import shutil
import subprocess
import tempfile

import outcome

LIMITS = range(3, 21)
OPERATIONS = ("open", "pipe", "process", "thread", "duplicate", "read", "close", "stat", "dlopen")
DEPTHS = {"parent": 0, "child": 1}
MOST_CALLS = 400


class Result:
    def __init__(self, status, out, err):
        self.status, self.out, self.err = status, out, err
        self.journal = None  # what the plug-in wrote down, if it could


class Console:
    """A directory with a library, a recording plug-in and files for each subcommand."""

    def __init__(self, options):
        self.options = options
        self.root = os.path.join(options.work, "ispctl")
        os.makedirs(os.path.join(self.root, "lib/PlugIn"))
        self.library = os.path.join(self.root, "lib/libScalerIsp.so")
        shutil.copy2(options.library, self.library)
        shutil.copy2(options.isp, os.path.join(self.root, "lib/PlugIn/libIsp.dylib"))
        self.write("a.bin", bytes(65537))
        self.write("panel.script", b"Write8BitReg 0x01 0x02\n")
        edid = bytes.fromhex("00ffffffffffff00") + bytes(119)
        self.write("monitor.edid", edid + bytes([-sum(edid) % 256]))
        self.run_line = ["run", "--lib", self.library, "--isp", "--fw", os.path.join(self.root, "a.bin")]

    def write(self, name, contents):
        with open(os.path.join(self.root, name), "wb") as file:
            file.write(contents)

    def start(self, arguments, limit=None, variables=None, stdout=subprocess.PIPE):
        env = {k: v for k, v in os.environ.items() if not re.fullmatch(r"LC_.*|LANG|FAULTS_.*", k)}
        env.update(LC_ALL="C.UTF-8", **(variables or {}))

        def lower():
            resource.setrlimit(resource.RLIMIT_NOFILE, (limit, limit))
        try:
            done = subprocess.run([self.options.ispctl] + arguments, cwd=self.root, env=env, stdout=stdout,
                                  stderr=subprocess.PIPE, stdin=subprocess.DEVNULL,
                                  timeout=self.options.timeout,
                                  preexec_fn=lower if limit else None, check=False)
        except subprocess.TimeoutExpired as error:
            return Result(None, error.stdout or b"", error.stderr or b"")
        return Result(done.returncode, done.stdout or b"", done.stderr)

    def armed(self, arguments, depth, order):
        """A run with a fault; also whether anything failed in it."""
        folder = tempfile.mkdtemp(dir=self.root)
        report = os.path.join(folder, "report")
        result = self.start(arguments, variables={
            "LD_PRELOAD": self.options.faulty, "FAULTS_ARM": "%d:%s" % (depth, order),
            "FAULTS_REPORT": report, "BLACKBOX_DIR": folder})
        met = os.path.exists(report)
        journal = os.path.join(folder, "events.txt")
        result.journal = b""
        if os.path.exists(journal):
            with open(journal, "rb") as file:
                result.journal = file.read()
        shutil.rmtree(folder)
        return result, met


def judge(result, as_json):
    """The assertions that a run fails."""
    if result.status is None:
        return [("hang", "no end in time")]
    if result.status < 0:
        return [("crash", "signal %d: %r" % (-result.status, result.err[-200:]))]
    found = []
    reported = reports_success(result.out) if as_json else b"success" in result.err.lower()
    if result.status == 0 and not reported:
        found.append(("status", "0 without a report of success: %r" % (result.out + result.err)[-200:]))
    if result.status == 0 and result.journal is not None and b"IspFlash" not in result.journal:
        found.append(("status", "0, and the plug-in was never called"))
    if result.status != 0 and not result.err and not result.out:
        found.append(("silence", "status %d and not a word" % result.status))
    return found


def reports_success(out):
    lines = out.decode("utf-8", "replace").splitlines()
    try:
        last = json.loads(lines[-1])
    except (ValueError, IndexError):
        return False
    return last.get("event") == "result" and last.get("code") == 0


def forms(console):
    yield "text", console.run_line
    yield "json", ["run", "--json"] + console.run_line[1:]


def check_limits(console):
    failures = []
    runs = 0
    for form, arguments in forms(console):
        for limit in LIMITS:
            runs += 1
            for name, seen in judge(console.start(arguments, limit), form == "json"):
                failures.append((name, "limits", form, "descriptors:%d" % limit, seen))
    return runs, runs, failures


def check_operation(console, operation, options):
    runs = faults = 0
    failures = []
    error = outcome.errno_named(outcome.ERRNOS[operation][0])
    for form, arguments in forms(console):
        for where, depth in DEPTHS.items():
            for how in ("0", "1"):
                for first in range(1, MOST_CALLS):
                    order = "%s:%d:%s:%d" % (operation, first, how, error)
                    result, met = console.armed(arguments, depth, order)
                    runs += 1
                    faults += met
                    for name, seen in judge(result, form == "json"):
                        failures.append((name, operation, form + "-" + where, order, seen))
                    if not met:
                        break
    return runs, faults, failures


def check_full_output(console):
    """Standard output that takes nothing: not 0, and a message on standard error."""
    base = [["--help"], ["--version"], ["run", "--help"], ["script", "--help"], ["edid", "--help"],
            console.run_line, ["run", "--json"] + console.run_line[1:],
            ["script", "assemble", "panel.script"], ["script", "list", "panel.bin"],
            ["script", "check", "panel.bin"], ["script", "run", "--virtual", "panel.bin"],
            ["edid", "monitor.edid"], ["edid", "--text", "monitor.edid"]]
    console.start(["script", "assemble", "panel.script", "-o", "panel.bin"])
    failures = []
    for arguments in base:
        good = console.start(arguments)
        with open("/dev/full", "wb") as full:
            result = console.start(arguments, stdout=full)
        name = " ".join(word for word in arguments if not word.startswith("/"))
        if result.status is None or result.status < 0:
            failures.append(("hang" if result.status is None else "crash", "full_output", name, "-",
                             "%r" % result.err[-200:]))
        elif good.out and (result.status == 0 or not result.err):
            failures.append(("full", "full_output", name, "-", "status %d, %r" % (result.status, result.err)))
    return len(base), len(base), failures


def check_one(console, state, order):
    """One single run: FORM and descriptors:N, or FORM-WHERE and OPERATION:FIRST:FOREVER:ERRNO."""
    form, _, where = state.partition("-")
    arguments = dict(forms(console))[form]
    if where:
        result, _ = console.armed(arguments, DEPTHS[where], order)
    else:
        result = console.start(arguments, int(order.partition(":")[2]))
    print("status %s\n%r\n%r" % (result.status, result.out, result.err))
    return 1, 1, [(name, "one", state, order, seen) for name, seen in judge(result, form == "json")]


def subjects(options):
    console = Console(options)
    if options.one:
        yield "one", lambda: check_one(console, *options.one)
        return
    pool = concurrent.futures.ThreadPoolExecutor(options.jobs)

    def later(function, *arguments):
        future = pool.submit(function, *arguments)
        return future.result
    if options.only in (None, "full_output"):
        yield "full_output", lambda: check_full_output(console)
    if options.only in (None, "limits"):
        yield "limits", lambda: check_limits(console)
    made = [(operation, later(check_operation, console, operation, options)) for operation in OPERATIONS
            if options.only in (None, operation)]
    yield from made
