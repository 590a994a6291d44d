"""The check checked: right fakes pass, and each wrong one is caught by the assertion of its name."""

import copy
import os
import stat

import check_ispctl
import check_lines
import check_settings
import outcome
from lines import Line

# FAKE: the assertions that must fail (fake_library.c).
LIBRARIES = {"right": (), "record": ("record", "result"), "record_alone": ("record",),
             "result": ("result",), "output": ("output",), "words": ("output",), "memory": ("memory",),
             "descriptors": ("descriptors",), "crash": ("crash",), "hang": ("hang",), "next": ("next",),
             "untouched": ("untouched",), "stranger": ("stranger",)}
# fake_settings.cpp; beside each wrong one's assertion the operation that brings it out.
SETTINGS = {"right": None, "contents": "write", "settings_result": "read", "surroundings": "read",
            "surroundings_after_next": "rename", "output": "read", "memory": "read",
            "descriptors": "read", "crash": "read", "hang": "read"}
# Scripts instead of ispctl.
CONSOLES = {
    "status": ("exit 0", ("status",)),
    "silence": ("exit 3", ("silence",)),
    "hang": ("sleep 60", ("hang",)),
    "crash": ("kill -SEGV $$", ("crash",)),
    "right": ("echo cannot >&2; exit 3", ()),
}


def changed(options, **values):
    new = copy.copy(options)
    for name, value in values.items():
        setattr(new, name, value)
    return new


def folder(options, name):
    path = os.path.join(options.work, "self-" + name)
    os.mkdir(path)
    return path


def names(failures):
    return {failure[0] for failure in failures}


def library(options, fake):
    operations = outcome.operations(options.source)
    line = Line("self_test", "p --isp --fw a.bin", {"a.bin": 1})
    here = changed(options, work=folder(options, "library-" + fake), orders=None, operation=None,
                   library=os.path.join(options.here, "fake_library.so"),
                   variables={"FAKE": fake, "FAULTS_SECONDS": "1"})
    if fake == "hang":
        here.orders = [(operations.index("memory"), 1, 0, 12)]
    return names(check_lines.check_line(line, here)[2])


def settings(options, fake):
    operations = outcome.operations(options.source)
    preload = options.faulty + " " + os.path.join(options.here, "fake_settings.so")
    here = changed(options, work=folder(options, "settings-" + fake), orders=None,
                   operation=SETTINGS[fake],
                   preload=preload, variables={"FAKE": fake, "FAULTS_SECONDS": "1"})
    if fake == "hang":
        here.orders = [(operations.index("read"), 1, 0, 5)]
    failures = check_settings.check_saves("wide", "existing", here)[2]
    return names(failures)


def turns(options, fake, function):
    preload = options.faulty + " " + os.path.join(options.here, "fake_settings.so")
    here = changed(options, work=folder(options, "turns-" + fake), preload=preload,
                   variables={"FAKE": fake})
    return names(function(here)[2])


def console(options, fake, script):
    path = os.path.join(folder(options, "console-" + fake), "fake")
    with open(path, "w", encoding="ascii") as file:
        file.write("#!/bin/sh\n%s\n" % script)
    os.chmod(path, stat.S_IRWXU)
    here = changed(options, work=os.path.dirname(path), ispctl=path, timeout=0.5)
    there = check_ispctl.Console(here)
    return {name for as_json in (False, True)
            for name, _ in check_ispctl.judge(there.start(there.run_line), as_json)}


def full_console(options):
    path = os.path.join(folder(options, "console-full"), "fake")
    with open(path, "w", encoding="ascii") as file:
        file.write("#!/bin/sh\necho text 2>/dev/null\nexit 0\n")
    os.chmod(path, stat.S_IRWXU)
    here = changed(options, work=os.path.dirname(path), ispctl=path)
    return names(check_ispctl.check_full_output(check_ispctl.Console(here))[2])


def cases(options):
    """(name, the assertions that must fail, a function that gives those that did)."""
    def saves_in_turn(here):
        return check_settings.check_turns("writers", "wide", here)

    def planted(here):
        return check_settings.check_planted("wide", here)

    made = [("library " + fake, wanted, library, fake) for fake, wanted in LIBRARIES.items()]
    made += [("settings " + fake, (fake,) if operation else (), settings, fake)
             for fake, operation in SETTINGS.items()]
    made += [("settings lost", ("lost",), turns, "lost", saves_in_turn),
             ("settings in turn", (), turns, "in-turn", saves_in_turn),
             ("settings victim", ("victim",), turns, "victim", planted),
             ("settings planted", (), turns, "planted", planted)]
    made += [("ispctl " + fake, wanted, console, fake, script)
             for fake, (script, wanted) in CONSOLES.items()]
    made.append(("ispctl full", ("full",), full_console))
    return [(name, wanted, lambda f=function, a=arguments: f(options, *a))
            for name, wanted, function, *arguments in made if options.only in (None, name)]
