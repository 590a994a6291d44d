"""A build that is changed, and tested: what those of a copy of the sources and of ./dev test have in common.
"""

import concurrent.futures
import contextlib
import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time

from tracked_files import ROOT

# Objects that ./dev test has built are taken over; HOME differs for tests, not for the cache.
ENVIRONMENT = {"CCACHE_BASEDIR": str(ROOT), "CCACHE_NOHASHDIR": "1",
               "CCACHE_DIR": os.path.expanduser("~/.cache/ccache")} | os.environ
MEMORY = 4 << 30  # a change can ask for all of it
SECONDS_OF_A_TEST = 60
SECONDS_OF_A_BUILD = 1800  # a build runs programs that it has built
FAILED = re.compile(r"^\[  FAILED  \] (\S+)|^\s*\d+/\d+ Test\s+#\d+: (.+?) \.+\s*\*\*\*", re.MULTILINE)
NO_ERRORS = "-Wno-error"
# What comes of a change before any test runs.
CHANGED, SAME_CODE, NOT_COMPILED = "changed", "same code", "does not compile"


def programs_of(names):
    """The targets of test programs."""
    return [f"test_{name}" for name in names]


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


class Tree:
    """A build directory; changed() of each kind of tree puts a change into it and takes it out again."""

    def __init__(self, build, jobs):
        self.directory = build
        self.jobs = jobs
        self.seconds = {}  # of the programs, as they are without a change

    def run_limited(self, command, seconds, variables=None, **options):
        """(exit status or None if it took too long, output); a group of its own, so that nothing is left."""
        scratch = tempfile.mkdtemp(prefix="m")  # a short name, as texts are wrapped
        os.chmod(scratch, 0o755)  # some tests are another user
        environment = ENVIRONMENT | {"TMPDIR": scratch, "HOME": scratch} | (variables or {})
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

    def build(self, *targets, flags=""):
        status, self.build_output = self.run_limited(
            ["cmake", "--build", self.directory, "-j", self.jobs,
             *(["--target", *targets] if targets else [])],
            SECONDS_OF_A_BUILD, {"MUTATE_FLAGS": flags})
        return status == 0

    def object_of(self, path):
        folder, _, rest = path.partition("/")
        return next((self.directory / folder / "CMakeFiles").glob(f"*.dir/{rest}.o"), None)

    def check_nearest(self, programs):
        """Ends here if one of these programs fails without a change; learns how long each takes."""
        if not self.build(*programs_of(programs)):
            raise SystemExit("the sources do not build without a change:\n" + self.build_output[-4000:])
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            self.check(list(pool.map(self.program_failure, programs)))

    @staticmethod
    def check(failures):
        if any(failures):
            raise SystemExit(f"without a change, this fails: {', '.join(filter(None, failures))}")

    def program_failure(self, name):
        """The first test of a program that fails, or None."""
        program = next(self.directory.glob(f"tests/**/test_{name}"))
        unchanged = self.seconds.get(name)
        begin = time.monotonic()
        status, output = self.run_limited(
            [program, "--gtest_brief=1", "--gtest_fail_fast"],
            10 * unchanged + 10 if unchanged else None, cwd=program.parent)
        self.seconds.setdefault(name, time.monotonic() - begin)
        return None if status == 0 else self.named_failure(name, status, output)

    def failing_test(self, *options):
        """The first test of all that fails, or None."""
        status, output = self.run_limited(
            ["ctest", "--test-dir", self.directory, "-j", self.jobs + 1, "--label-exclude", "own_build",
             "--timeout", SECONDS_OF_A_TEST, *options], None)
        return None if status == 0 else self.named_failure("ctest", status, output)

    @staticmethod
    def named_failure(name, status, output):
        found = FAILED.search(output)
        return (found[1] or found[2]) if found else f"{name} ({'too slow' if status is None else status})"
