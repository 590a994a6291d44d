"""A copy of the sources with a build of its own: nothing that a person edits is ever changed."""

import contextlib
import hashlib
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time

from tracked_files import ROOT, git

COPY = ROOT / "build/mutate"
BUILD = COPY / "build/mutants"
# Objects that ./dev test has built are taken over; HOME differs for tests, not for the cache.
ENVIRONMENT = {"CCACHE_BASEDIR": str(ROOT), "CCACHE_NOHASHDIR": "1",
               "CCACHE_DIR": os.path.expanduser("~/.cache/ccache")} | os.environ
MEMORY = 4 << 30  # a change can ask for all of it
SECONDS_OF_A_TEST = 60
PASSED = "passed.txt"  # the sources of which every test has passed
FAILED = re.compile(r"^\[  FAILED  \] (\S+)|^\s*\d+/\d+ Test\s+#\d+: (.+?) \.+\s*\*\*\*", re.MULTILINE)


def programs_of(names):
    """The targets of test programs."""
    return [f"test_{name}" for name in names]


def sources():
    """Relative paths of all files of the project, those that are not committed yet included."""
    names = git("ls-files", "-z", "--cached", "--others", "--exclude-standard").split("\0")
    return sorted({name for name in names if name and (ROOT / name).is_file()})


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


def run_limited(command, seconds, variables=None, **options):
    """(exit status or None if it took too long, output); a group of its own, so that nothing is left over."""
    scratch = BUILD / "scratch"
    scratch.mkdir(parents=True, exist_ok=True)
    environment = ENVIRONMENT | {"TMPDIR": str(scratch), "HOME": str(scratch)} | (variables or {})
    # To a file: a process that is left over would keep a pipe open.
    with tempfile.TemporaryFile() as output:
        process = subprocess.Popen(
            [str(word) for word in command], stdin=subprocess.DEVNULL, stdout=output,
            stderr=subprocess.STDOUT, env=environment, start_new_session=True, preexec_fn=limit_memory,
            **options)
        try:
            status = process.wait(seconds)
        except subprocess.TimeoutExpired:
            status = None
        finally:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            shutil.rmtree(scratch, ignore_errors=True)
        output.seek(0)
        return status, output.read().decode("utf-8", errors="replace")


class CopiedTree:
    def __init__(self, jobs):
        self.jobs = jobs
        self.seconds = {}  # of the programs, as they are without a change

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

    def prepare(self, programs, whole):
        """Configures and builds, and runs the tests without a change."""
        launchers = [f"-DCMAKE_{language}_COMPILER_LAUNCHER={COPY / 'tools/mutate/compiler.sh'}"
                     for language in ("C", "CXX")]
        subprocess.run(["cmake", "--preset", "mutate", *launchers], cwd=COPY, check=True,
                       stdout=subprocess.DEVNULL)
        if not self.build(*([] if whole else programs_of(programs))):
            raise SystemExit("the sources do not build without a change:\n" + self.build_output[-4000:])
        failures = [self.program_failure(name) for name in programs]
        if whole and not self.is_known_to_pass():
            failures.append(self.failing_test(stop=False))
        if any(failures):
            raise SystemExit(f"without a change, this fails: {', '.join(filter(None, failures))}")
        if whole:
            (BUILD / PASSED).write_text(self.digest)

    def is_known_to_pass(self):
        return (BUILD / PASSED).exists() and (BUILD / PASSED).read_text() == self.digest

    def build(self, *targets, flags=""):
        status, self.build_output = run_limited(
            ["cmake", "--build", BUILD, "-j", self.jobs, *(["--target", *targets] if targets else [])],
            None, {"MUTATE_FLAGS": flags})
        return status == 0

    def object_of(self, path):
        folder, _, rest = path.partition("/")
        return next((BUILD / folder / "CMakeFiles").glob(f"*.dir/{rest}.o"), None)

    @contextlib.contextmanager
    def changed(self, mutation):
        """The copy with that change; it is undone whatever happens."""
        place = COPY / mutation.path
        place.write_text(mutation.changed())
        try:
            yield
        finally:
            place.write_text(mutation.source)

    def program_failure(self, name):
        """The first test of a program that fails, or None."""
        program = next(BUILD.glob(f"tests/**/test_{name}"))
        unchanged = self.seconds.get(name)
        begin = time.monotonic()
        status, output = run_limited(
            [program, "--gtest_brief=1", "--gtest_fail_fast"],
            10 * unchanged + 10 if unchanged else None, cwd=program.parent)
        self.seconds.setdefault(name, time.monotonic() - begin)
        return None if status == 0 else self.named_failure(name, status, output)

    def failing_test(self, stop=True):
        """The first test of all that fails, or None."""
        status, output = run_limited(
            ["ctest", "--test-dir", BUILD, "-j", self.jobs + 1, "--label-exclude", "own_build",
             "--timeout", SECONDS_OF_A_TEST, *(["--stop-on-failure"] if stop else [])], None)
        return None if status == 0 else self.named_failure("ctest", status, output)

    @staticmethod
    def named_failure(name, status, output):
        found = FAILED.search(output)
        return (found[1] or found[2]) if found else f"{name} ({'too slow' if status is None else status})"
