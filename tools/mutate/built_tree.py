"""The build of ./dev test itself: nothing else has to be built, so that a few changes take a few minutes.

No source is touched. A changed source is compiled elsewhere, its object takes the place of the right one,
and what contains it is linked again; afterwards the right object comes back and everything is linked once
more. If this program is killed in between, the next ./dev command that uses the build compiles the object
again (restore_object in dev).
"""

import contextlib
import json
import os
import shlex
import shutil
import subprocess

from tracked_files import ROOT
from tree import CHANGED, NO_ERRORS, NOT_COMPILED, SAME_CODE, Tree

BUILD = ROOT / "build/test"
CHANGED_OBJECT = BUILD / "changed_object"  # names the object that is not the right one
ELSEWHERE = BUILD / "changed"


class BuiltTree(Tree):
    def __init__(self, jobs):
        super().__init__(BUILD, jobs)
        self.confirmed = set()

    def prepare(self, programs, whole):
        """Whether all tests pass without a change is asked only of those that catch one."""
        if not (BUILD / "build.ninja").exists():
            raise SystemExit("mutate --built: there is no build; run ./dev test first")
        if whole and not self.build():
            raise SystemExit("the sources do not build without a change:\n" + self.build_output[-4000:])
        self.check_nearest(programs)
        self.commands = {each["file"]: shlex.split(each["command"])
                         for each in json.loads((BUILD / "compile_commands.json").read_text())}

    def compiled(self, mutation):
        """The object of the changed source, or None. The directory of the source is looked into as before."""
        source = ROOT / mutation.path
        place = ELSEWHERE / source.name  # an object names its source, without the directory
        place.parent.mkdir(exist_ok=True)
        place.write_text(mutation.changed())
        command = list(self.commands[str(source)])
        command[command.index("-o") + 1] = str(place) + ".o"
        command[command.index("-c") + 1] = str(place)
        status, self.build_output = self.run_limited(
            [*command, "-iquote", source.parent, NO_ERRORS], None, cwd=BUILD)
        changed = place.with_name(place.name + ".o").read_bytes() if status == 0 else None
        shutil.rmtree(ELSEWHERE)
        return changed

    def containing(self, path):
        """What is made directly of an object: archives, libraries, programs."""
        shown = subprocess.run(["ninja", "-C", BUILD, "-t", "query", path.relative_to(BUILD)],
                               stdout=subprocess.PIPE, check=True).stdout.decode()
        return [BUILD / line.strip() for line in shown.split("  outputs:\n")[1].splitlines()]

    def put(self, path, data):
        """Ninja compiles an object again if it has another time; it links again what is not there."""
        times = path.stat()
        path.write_bytes(data)
        os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))
        for each in self.containing(path):
            each.unlink(missing_ok=True)

    @contextlib.contextmanager
    def changed(self, mutation):
        """Puts the changed object into the build and says what comes of it; it is undone whatever happens."""
        path = self.object_of(mutation.path)
        before, after = path.read_bytes(), self.compiled(mutation)
        if after is None or after == before:
            yield NOT_COMPILED if after is None else SAME_CODE
            return
        CHANGED_OBJECT.write_text(f"{path}\n")
        try:
            self.put(path, after)
            yield CHANGED
        finally:
            self.put(path, before)
            CHANGED_OBJECT.unlink()

    def failing_test(self):
        return super().failing_test("--stop-on-failure", "--repeat", "until-pass:2")

    def confirm(self, failure):
        """Ends here if a test that noticed a change fails without it, too."""
        if failure in self.confirmed:
            return
        self.finish()
        status, _ = self.run_limited(["ctest", "--test-dir", BUILD, "--no-tests=ignore",
                                      "--tests-regex", f"(^|\\.){failure.replace('.', '[.]')}$"], None)
        self.check([failure if status else None])
        self.confirmed.add(failure)

    def finish(self):
        """Links everything as it was."""
        if not self.build():
            raise SystemExit("the build cannot be brought back:\n" + self.build_output[-4000:])
