"""A copy of the sources with a build of its own: nothing that a person edits is ever changed."""

import contextlib
import hashlib
import os
import pathlib
import shutil
import subprocess

from tracked_files import ROOT, git
from tree import CHANGED, NO_ERRORS, NOT_COMPILED, SAME_CODE, Tree

COPY = ROOT / "build/mutate"
PASSED = "passed.txt"  # the sources of which every test has passed


def sources():
    """Relative paths of all files of the project, those that are not committed yet included."""
    names = git("ls-files", "-z", "--cached", "--others", "--exclude-standard").split("\0")
    return sorted({name for name in names if name and (ROOT / name).is_file()})


class CopiedTree(Tree):
    def __init__(self, jobs):
        super().__init__(COPY / "build/mutants", jobs)

    def prepare(self, programs, whole):
        """Copies, configures and builds, and runs the tests without a change."""
        self.copy()
        launchers = [f"-DCMAKE_{language}_COMPILER_LAUNCHER={COPY / 'tools/mutate/compiler.sh'}"
                     for language in ("C", "CXX")]
        subprocess.run(["cmake", "--preset", "mutate", *launchers], cwd=COPY, check=True,
                       stdout=subprocess.DEVNULL)
        self.check_nearest(programs)
        passed = self.directory / PASSED
        if not whole or passed.exists() and passed.read_text() == self.digest:
            return
        if not self.build():
            raise SystemExit("the sources do not build without a change:\n" + self.build_output[-4000:])
        self.check([super().failing_test()])
        passed.write_text(self.digest)

    def copy(self):
        """Brings the copy up to date; what is equal keeps its time, so that little is built again."""
        names = sources()
        for name in names:
            data, place = (ROOT / name).read_bytes(), COPY / name
            if not place.exists() or place.read_bytes() != data:
                place.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(ROOT / name, place)
        kept = set(names)
        for folder, folders, files in os.walk(COPY):
            folders[:] = [each for each in folders if each not in ("build", ".git")]
            for each in files:
                path = pathlib.Path(folder, each)
                if str(path.relative_to(COPY)) not in kept:
                    path.unlink()
        # Some tests ask git which files there are.
        for command in (["init", "-q"], ["add", "-A"]):
            subprocess.run(["git", "-C", COPY, *command], check=True)
        self.digest = hashlib.sha256(b"".join(
            name.encode() + (ROOT / name).read_bytes() for name in names)).hexdigest()

    @contextlib.contextmanager
    def changed(self, mutation):
        """Puts the change into the copy and says what comes of it; it is undone whatever happens."""
        compiled, place = self.object_of(mutation.path), COPY / mutation.path
        target = compiled and compiled.relative_to(self.directory)
        if compiled and not self.build(target):  # it may be that of the change before
            raise SystemExit(self.build_output)
        before = compiled.read_bytes() if compiled else None
        place.write_text(mutation.changed())
        try:
            if compiled and not self.build(target, flags=NO_ERRORS):
                yield NOT_COMPILED
            elif compiled and compiled.read_bytes() == before:
                yield SAME_CODE
            else:
                yield CHANGED
        finally:
            place.write_text(mutation.source)

    def failing_test(self):
        return super().failing_test("--stop-on-failure")

    def confirm(self, failure):
        """Every test has passed without a change."""

    def finish(self):
        """A copy may stay as it is."""
