"""Changes one operator, bound, constant, text, condition or statement at a time, and says whether a test
notices.

usage: mutate [FOLDER|FILE] [--sample N] [--seed S] [--known] [--nearest] [--built] [--list] [--write]

The changes are drawn from FOLDER or FILE, otherwise from all components in equal parts; FILE may be a header,
which folders leave out because so much is built again. --known tries those that tests/mutants.txt says are
caught, instead of a sample. --nearest runs only the nearest tests: quicker, and no judgement of the goals,
as other tests may catch what survives. --list only shows what would be tried. --write puts the figures into
docs/testing.md.

The work is done in build/mutate, on a copy of the sources; with --built it is done in the build of
./dev test, which nothing else may use at that time. For each change, what it touches is built and the nearest
tests run, then everything is. Ends with 1 if the survivors contradict the goals of the components
(tools/components.py), or if one survives that was caught before.
"""

import argparse
import os
import pathlib
import random
import signal
import sys

TOOLS = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TOOLS))

from components import COMPONENTS, component_of
from built_tree import BuiltTree
from copied_tree import CopiedTree, sources
from figures import write_figures
from known import KnownChanges
from mutations import mutations_of
from nearest import nearest_programs
from tracked_files import ROOT, git, report
from tree import CHANGED, NO_ERRORS, NOT_COMPILED, SAME_CODE, programs_of
from verdict import HEAD, Tally, contradictions

SIGNALS = (signal.SIGHUP, signal.SIGINT, signal.SIGTERM)


def arguments():
    parser = argparse.ArgumentParser(prog="mutate", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("place", nargs="?", default="", metavar="FOLDER|FILE")
    parser.add_argument("--sample", type=int, default=12, metavar="N")
    parser.add_argument("--seed", metavar="S", help="any text; the commit if it is left out")
    parser.add_argument("--known", action="store_true")
    parser.add_argument("--nearest", action="store_true")
    parser.add_argument("--built", action="store_true")
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--write", action="store_true")
    given = parser.parse_args()
    given.place = os.path.normpath(given.place) if given.place else ""
    if given.built and given.place.endswith((".h", ".def")):
        parser.error("--built is for sources that are compiled by themselves")
    given.seed = given.seed or git("rev-parse", "HEAD").strip()
    return given


def all_mutations(place):
    """{component: its changes below that place}"""
    found = {}
    for path in sources():
        component = component_of(path)
        below = not place or path == place or path.startswith(place + "/")
        if component and below and (path.endswith(".cpp") or path == place):
            found.setdefault(component, []).extend(mutations_of(path, (ROOT / path).read_text()))
    if not found:
        raise SystemExit(f"mutate: no source of a component is called {place}")
    return found


def chosen(found, known, given):
    """The changes to try, and their order: a seed gives the same ones as long as the sources are equal."""
    if given.known:
        return [each for every in found.values() for each in every if known.is_caught(each.key())]
    part, rest = divmod(given.sample, len(found))
    changes = []
    for number, (component, every) in enumerate(found.items()):
        size = min(part + (number < rest), len(every))
        changes += random.Random(f"{given.seed} {component.folder}").sample(every, size)
    return changes


def outcome_of(mutation, tree, known, only_nearest):
    """(outcome, what says so)"""
    reason = known.reason(mutation.key())
    if reason:
        return "equivalent", reason
    compiled = tree.object_of(mutation.path)
    if not compiled and mutation.path.endswith(".cpp"):
        return "equivalent", "is not compiled on this system"
    with tree.changed(mutation) as what:
        if what == NOT_COMPILED:
            return "does not compile", ""
        if what == SAME_CODE:
            return "equivalent", "the compiler makes the same code of it"
        assert what == CHANGED
        # Once the source compiles, a build can fail only where it runs what it has built.
        unbuilt = ("caught", "the build of the tests") if compiled else ("does not compile", "")
        nearest = nearest_programs(mutation.path)
        if not tree.build(*programs_of(nearest), flags=NO_ERRORS):
            return unbuilt
        failure = next(filter(None, (tree.program_failure(name) for name in nearest)), None)
        by_others = not failure and not only_nearest
        if by_others:
            if not tree.build(flags=NO_ERRORS):
                return unbuilt
            failure = tree.failing_test()
    if failure and by_others:
        tree.confirm(failure)
    return ("caught", failure) if failure else ("survived", "every test passes")


def show(number, count, mutation, outcome, by):
    print(f"{number}/{count} {outcome}: {mutation.path}:{mutation.line()} ({mutation.kind})"
          + (f": {by}" if by else ""), flush=True)
    if outcome == "survived":
        print(mutation.diff(), flush=True)


def stop_politely(number, _frame):
    """A signal ends this as an error does: what was changed is undone, and no other signal stops that."""
    for each in SIGNALS:
        signal.signal(each, signal.SIG_IGN)
    raise SystemExit(128 + number)


def try_changes(changes, tree, known, given):
    """({component: tally}, problems)"""
    tallies = {each: Tally(each) for each in COMPONENTS}
    problems = []
    for number, mutation in enumerate(changes, 1):
        outcome, by = outcome_of(mutation, tree, known, given.nearest)
        show(number, len(changes), mutation, outcome, by)
        tallies[component_of(mutation.path)].add(outcome)
        if outcome == "survived" and known.is_caught(mutation.key()):
            problems.append(f"{mutation.path}:{mutation.line()}: this was caught before")
    return tallies, problems


def main():
    given = arguments()
    known = KnownChanges()
    changes = chosen(all_mutations(given.place), known, given)
    if given.list:
        for each in changes:
            print("\n    ".join((f"{each.path}:{each.line()} ({each.kind})", *each.key()[1:])))
        return 0
    print(f"{len(changes)} changes, seed {given.seed}", flush=True)
    for each in SIGNALS:
        signal.signal(each, stop_politely)
    tree = (BuiltTree if given.built else CopiedTree)(os.cpu_count() or 2)
    tree.prepare(sorted({name for each in changes for name in nearest_programs(each.path)}),
                 not given.nearest)
    try:
        tallies, problems = try_changes(changes, tree, known, given)
    finally:
        tree.finish()
    tried = [tally for tally in tallies.values() if sum(tally.counts.values())]
    table = HEAD + "".join(tally.row() for tally in tried)
    print(table, end="")
    if given.write:
        write_figures("mutants", table)
    if not given.nearest:
        problems += contradictions(tried)
    return report("mutate", problems)


if __name__ == "__main__":
    sys.exit(main())
