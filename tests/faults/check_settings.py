"""Settings writers under faults: the file is the old or the new one, and nothing else changes."""

import os
import re
import signal
import subprocess
import tempfile

import outcome

FIELDS = ("operation", "first", "forever", "error", "status", "stage", "injected", "new_descriptors",
          "new_blocks", "result", "next_result", "contents",
          "surroundings", "out", "next_contents", "next_surroundings", "next_out", "staged_contents",
          "staged_surroundings", "staged_out")
TEXTS = FIELDS[-9:]
NO_FAULT = (-1, 1, 0, 0)
KILL = 1000

WRITERS = ("wide", "narrow", "record", "firmware_path")
RETURNING = ("wide", "narrow")  # the others return nothing
# Written in one step elsewhere; here bytes are put back after a failure, which a disk that fails for
# good prevents, and so does a kill.
IN_PLACE = ("second_link", "read_only_directory")
SCENARIOS = ("existing", "missing", "symbolic_link", "second_link", "write_only",
             "read_only_directory", "other_encoding", "large", "overlong_line")
# One of each kind meets everything, the other two what differs for them, unless with --long.
THOROUGH = ("wide", "record")
FEW_SCENARIOS = ("existing", "missing", "second_link", "other_encoding")
# Operations at whose n-th call the process is killed: all that touch a file.
KILLED_AT = ("open", "read", "write", "rename", "close", "flock", "owner", "unlink")
KILLS = 300
TURNS = 200
OPEN_ERROR = b"Open file error \n"

ORDINARY = ("[Communication]\nenumCommID=3\n\n[ISP_Fw]\nstrFwPrefix=old\nulProgStartBank=2\n\n"
            "[Other]\nname=größe\n")


def old_contents(scenario):
    if scenario == "other_encoding":
        return ORDINARY.encode("latin-1")
    if scenario == "large":
        return ORDINARY.encode() + b"".join(b"key%05d=%0100d\n" % (i, i) for i in range(700))
    if scenario == "overlong_line":
        return ORDINARY.encode() + b"x" * 1100 + b"\nlost=1\n"
    return ORDINARY.encode()


class Save:
    """One disturbed save and the undisturbed one after it."""

    def __init__(self, values, texts):
        self.numbers = dict(zip(FIELDS, values))
        self.calls = values[len(FIELDS):]
        for name, text in texts.items():
            setattr(self, name, text)


def parse(data):
    position = 0
    while position < len(data):
        end = data.index(b"\n", position)
        values = [int(word) for word in data[position:end].split()]
        position = end + 1
        texts = {}
        for name, size in zip(TEXTS, values[len(FIELDS) - len(TEXTS):]):
            texts[name] = data[position:position + size]
            position += size
        yield Save(values, texts)


class Folder:
    """Where one writer saves in one scenario."""

    def __init__(self, options, writer, scenario):
        self.options, self.writer, self.scenario = options, writer, scenario
        self.path = tempfile.mkdtemp(prefix="%s-%s-" % (writer, scenario), dir=options.work)
        os.chmod(self.path, 0o755)
        os.chmod(options.work, 0o755)
        self.put("old.ini", old_contents(scenario))
        self.put("out.txt", b"")
        self.put("fw.bin", bytes(65536 * 2 + 1))
        self.put("victim", b"untouched\n")
        os.chmod(os.path.join(self.path, "out.txt"), 0o666)

    def put(self, name, contents):
        with open(os.path.join(self.path, name), "wb") as file:
            file.write(contents)

    def get(self, name):
        with open(os.path.join(self.path, name), "rb") as file:
            return file.read()

    def environment(self):
        env = {k: v for k, v in os.environ.items() if not re.fullmatch(r"LC_.*|LANG|LOCPATH|FAULTS_.*", k)}
        env.update(LC_ALL="C.UTF-8", LD_PRELOAD=self.options.preload, LD_BIND_NOW="1",
                   **self.options.variables)
        if self.scenario == "other_encoding":
            env.update(LC_ALL="de_DE.ISO-8859-1", LOCPATH=self.options.locales)
        return env

    def run(self, mode, *arguments, orders=()):
        text = "".join("%d %d %d %d\n" % order for order in orders)
        command = [self.options.settings_host, mode, self.path, self.writer, *map(str, arguments)]
        done = subprocess.run(command, input=text.encode(), env=self.environment(), timeout=500,
                              capture_output=True, check=False)
        if done.returncode != 0:
            raise RuntimeError("%s ended with %d: %s" % (
                " ".join(command), done.returncode, done.stderr.decode("utf-8", "replace")))
        return list(parse(done.stdout))


class Judge:
    def __init__(self, operations, folder, reference):
        self.operations, self.folder, self.reference = operations, folder, reference
        self.new = reference.contents
        self.old = b"" if folder.scenario == "missing" else folder.get("old.ini")
        self.before = set(reference.staged_surroundings.splitlines())
        if folder.scenario == "missing":
            self.after = set(reference.surroundings.splitlines())
        else:
            self.after = self.before  # a save changes nothing else

    def failed(self, save):
        numbers = save.numbers
        operation = self.operations[numbers["operation"]]
        killed = numbers["error"] == KILL and numbers["injected"] == 0 and os.WIFSIGNALED(numbers["status"])
        found = []
        if os.WIFSIGNALED(numbers["status"]) and not killed:
            which = os.WTERMSIG(numbers["status"])
            return [("hang" if which == signal.SIGALRM else "crash", "signal %d" % which)]
        put_back = self.folder.scenario in IN_PLACE and (killed or (
            numbers["forever"] and operation in ("write", "short_write", "open", "close", "memory")))
        # A firmware file without an end counts as 65,536 banks, which the writer then writes.
        counted = (self.folder.writer == "firmware_path" and operation == "seek"
                   and b"fwFileCount=65536\n" in save.contents)
        put_back = put_back or counted
        if not put_back:
            found += self.contents(save, killed)
        found += self.kept(save, killed or operation == "unlink")
        if not killed:
            found += self.leaks(save) + self.output(save, operation)
        lost = save.contents not in (self.old, self.new)  # and so is what the next save reads
        if numbers["stage"] != 3 or not put_back and not lost and (
                save.next_contents != self.new or save.next_out != self.reference.out
                or numbers["next_result"] != self.reference.numbers["result"]):
            found.append(("next", "result %d, printed %r, file %s" % (
                numbers["next_result"], save.next_out, shown(save.next_contents))))
        return found

    def contents(self, save, killed):
        result = save.numbers["result"]
        if save.contents not in (self.old, self.new):
            return [("contents", "neither old nor new: " + shown(save.contents))]
        if killed or save.numbers["operation"] == -1:
            return []
        if result == 1 and save.contents != self.new:
            return [("settings_result", "1, and the file is the old one")]
        if result == 0 and save.contents != self.old and self.old != self.new:
            return [("settings_result", "0, and the file is the new one")]
        return []

    def kept(self, save, may_be_left):
        found = []
        seen = set(save.surroundings.splitlines())
        extra = seen - self.before - self.after
        gone = self.before - seen
        if extra and not may_be_left:
            found.append(("surroundings", "; ".join(map(shown, sorted(extra)))))
        elif gone:
            found.append(("surroundings", "gone: " + "; ".join(map(shown, sorted(gone)))))
        if set(save.next_surroundings.splitlines()) != self.after:
            found.append(("surroundings_after_next", shown(save.next_surroundings)))
        return found

    def leaks(self, save):
        found = []
        extra = save.numbers["new_blocks"] - self.reference.numbers["new_blocks"]
        if extra > 0:
            found.append(("memory", "%d blocks are left" % extra))
        if save.numbers["new_descriptors"] > 0:
            found.append(("descriptors", "%d descriptors are left" % save.numbers["new_descriptors"]))
        return found

    def output(self, save, operation):
        rest = save.out.replace(OPEN_ERROR, b"")
        if operation in ("open", "memory"):
            rest = re.sub(rb"File open fail! .*\n", b"", rest)
            allowed = True
        else:
            allowed = save.out == self.reference.out
        return [] if rest == b"" and allowed else [("output", shown(save.out))]


def shown(text, width=160):
    text = text.decode("utf-8", "backslashreplace")
    return repr(text if len(text) <= width else "%d bytes, %s…" % (len(text), text[:width]))


def orders_for(calls, operations, options, name):
    for number, operation in enumerate(operations):
        if calls[number] == 0 or options.operation not in (None, operation):
            continue
        for error in outcome.ERRNOS[operation]:
            for forever in (0, 1):
                for first in outcome.numbers(calls[number], options.long, name + operation):
                    yield number, first, forever, outcome.errno_named(error)
        if operation in KILLED_AT:
            for first in range(1, calls[number] + 1):
                yield number, first, 0, KILL


def check_saves(writer, scenario, options):
    operations = outcome.operations(options.source)
    folder = Folder(options, writer, scenario)
    reference = folder.run("orders", scenario, orders=[NO_FAULT])[0]
    judge = Judge(operations, folder, reference)
    failures = judge.failed(reference) + check_reference(writer, scenario, reference, judge.old)
    failures = [(name, writer + "/" + scenario, "undisturbed", "-", seen) for name, seen in failures]
    orders = options.orders or list(orders_for(reference.calls, operations, options, writer + scenario))
    saves = folder.run("orders", scenario, orders=orders)
    for save in saves:
        if options.trace:
            print(save.numbers, shown(save.contents), shown(save.surroundings, 999), save.out)
        for name, seen in judge.failed(save):
            failures.append((name, writer + "/" + scenario, scenario, order_text(operations, save), seen))
    return len(saves), sum(save.numbers["injected"] > 0 or os.WIFSIGNALED(save.numbers["status"])
                           for save in saves), failures


def check_reference(writer, scenario, reference, old):
    """What an undisturbed save must do."""
    result = reference.numbers["result"]
    if scenario == "write_only":  # it may be written and not read, so nobody knows what it holds
        if reference.contents != old or reference.out or result == 1:
            return [("settings_result", "a file that cannot be read was rewritten")]
        return []
    if not is_saved_file(reference.contents, old, writer) or reference.contents == old:
        return [("contents", shown(reference.contents))]
    return [("settings_result", str(result))] if writer in RETURNING and result != 1 else []


def order_text(operations, save):
    numbers = save.numbers
    return "%s:%d:%s:%d" % (operations[numbers["operation"]], numbers["first"],
                            "forever" if numbers["forever"] else "once", numbers["error"])


def check_kills(writer, options):
    """Kills at random instants: every round leaves one of the saved files, whole."""
    folder = Folder(options, writer, "large")
    old = folder.get("old.ini")
    rounds = folder.run("kills", KILLS, options.seed)
    failures = []
    for index, save in enumerate(rounds):
        if not is_saved_file(save.contents, old, writer):
            failures.append(("contents", writer + "/kills", "kills", str(index), shown(save.contents)))
    if rounds[-1].next_surroundings.count(b"\n") != 1:
        failures.append(("surroundings_after_next", writer + "/kills", "kills", "last",
                         shown(rounds[-1].next_surroundings)))
    return len(rounds), len(rounds), failures


def is_saved_file(contents, old, writer):
    """The old file, with the keys that the writer adds or replaces; nothing may be missing."""
    if contents == old:
        return True
    lines = contents.splitlines()
    missing = [line for line in old.splitlines() if line not in lines and line and
               not line.startswith((b"strFwPrefix=", b"lost=", b"xxxx"))]
    keys = [line.split(b"=")[0] for line in lines if b"=" in line]
    if writer in RETURNING:
        complete = b"strFwPrefix" in keys
    else:
        complete = [b"fwFileCount" in keys] + [b"fw%d_%s" % (i, name) in keys for i in range(3)
                                               for name in (b"TargetBank", b"FileBank", b"Path")]
        complete = all(complete)
    return not missing and complete and contents.endswith(b"\n")


def check_turns(mode, writer, options):
    """Two writers, each with keys of its own: all keys are there."""
    folder = Folder(options, writer, "existing")
    save = folder.run(mode, TURNS)[0]
    failures = []
    expected = [b"key%d=value" % i for i in range(TURNS)]
    for which in (0, 1):
        section = re.search(rb"\[writer%d\]\n(.*?)(\n\n|\n\[|\Z)" % which, save.contents, re.DOTALL)
        found = section[1].splitlines() if section else []
        lost = len(set(expected) - set(found))
        if lost:
            failures.append(("lost", writer + "/" + mode, mode, str(which), "%d keys of %d" % (lost, TURNS)))
    if save.numbers["result"] != 0:
        failures.append(("settings_result", writer + "/" + mode, mode, "-",
                         "%d saves were refused" % save.numbers["result"]))
    if save.surroundings.count(b"\n") != 1:
        failures.append(("surroundings", writer + "/" + mode, mode, "-", shown(save.surroundings)))
    return 2 * TURNS, 0, failures


def check_full(writer, how, options):
    """No capacity left: the old file, or the new one if it just fits."""
    folder = Folder(options, writer, "large" if how == "disk" else "existing")
    if how == "disk":  # the last page is full, so that even one byte more needs another
        old = folder.get("old.ini")
        folder.put("old.ini", old + b"x" * (-len(old) % 4096 - 1) + b"\n")
    saves = folder.run("full", how)
    failures = []
    old, new = folder.get("old.ini"), saves[-1].next_contents if saves else b""
    for save in saves:
        state = (writer + "/full_" + how, how, "%d" % save.numbers["first"])
        if save.contents not in (old, new):
            failures.append(("contents",) + state + (shown(save.contents),))
        elif save.numbers["result"] == 1 and save.contents != new:
            failures.append(("settings_result",) + state + ("1, and the file is the old one",))
        if save.surroundings.count(b"\n") > (2 if how == "disk" else 1):
            failures.append(("surroundings",) + state + (shown(save.surroundings),))
        if save.next_contents != new:
            failures.append(("next",) + state + (shown(save.next_contents),))
    return len(saves), len(saves), failures


def check_planted(writer, options):
    """The name of the temporary file, as a kill shows it, as a symbolic link to somebody's file."""
    operations = outcome.operations(options.source)
    folder = Folder(options, writer, "existing")
    kill = folder.run("orders", "existing", orders=[(operations.index("rename"), 1, 0, KILL)])[0]
    names = [line.split(b" mode ")[0] for line in kill.surroundings.splitlines()]
    names = [name for name in names if name != b"s.ini"]
    state = (writer + "/planted_link", "planted", "-")
    if len(names) != 1:
        return 1, 1, [("temporary",) + state + ("a kill before the rename leaves no temporary file",)]
    folder.put("temporary_name", names[0])
    save = folder.run("orders", "planted", orders=[NO_FAULT])[0]
    failures = []
    if folder.get("victim") != b"untouched\n":
        failures.append(("victim",) + state + ("the file that the link leads to was written",))
    if save.next_contents != kill.next_contents:
        failures.append(("next",) + state + (shown(save.next_contents),))
    return 1, 1, failures


def subjects(options):
    """(name, function) of everything here."""
    made = []
    for writer in WRITERS:
        for scenario in SCENARIOS if writer in THOROUGH or options.long else FEW_SCENARIOS:
            if scenario in ("write_only", "read_only_directory") and os.geteuid() != 0:
                continue
            made.append((writer + "/" + scenario,
                         lambda w=writer, s=scenario: check_saves(w, s, options)))
        made.append((writer + "/kills", lambda w=writer: check_kills(w, options)))
        made.append((writer + "/full_limit", lambda w=writer: check_full(w, "limit", options)))
        if os.geteuid() == 0:
            made.append((writer + "/full_disk", lambda w=writer: check_full(w, "disk", options)))
        made.append((writer + "/planted_link", lambda w=writer: check_planted(w, options)))
    for writer in RETURNING:
        for mode in ("writers", "threads"):
            made.append((writer + "/" + mode, lambda w=writer, m=mode: check_turns(m, w, options)))
    return [subject for subject in made if options.only in (None, subject[0])]
