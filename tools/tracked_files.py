"""The files that belong to the project."""

import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parent.parent


def git(*arguments):
    """Output of a git command in the project's folder, also where another user owns the folder."""
    command = ["git", "-c", "safe.directory=*", "-C", str(ROOT), *arguments]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout.decode("utf-8")


def tracked_files():
    """Relative paths of all tracked files that exist, sorted."""
    names = git("ls-files", "-z").split("\0")
    return sorted(name for name in names if name and (ROOT / name).is_file())


def tracked_texts(*suffixes):
    """(relative path, text) of the tracked text files, of all or of those with one of the suffixes."""
    for name in tracked_files():
        if suffixes and not name.endswith(suffixes):
            continue
        data = (ROOT / name).read_bytes()
        if b"\0" not in data:
            yield name, data.decode("utf-8", errors="replace")


def report(subject, problems):
    """Prints the problems of a check and gives its exit status."""
    for problem in problems:
        print(problem)
    print(f"{subject}: {len(problems)} problem(s)" if problems else f"{subject}: fine")
    return 1 if problems else 0
