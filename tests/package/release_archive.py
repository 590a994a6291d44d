"""What every archive of a release has to be, whatever system it is for."""

import contextlib
import os
import pathlib
import re
import subprocess
import tarfile
import tempfile
import zipfile

SOURCES = pathlib.Path(__file__).resolve().parents[2]
# Without what leads a compiler to the libraries of this machine.
ENVIRONMENT = {name: value for name, value in os.environ.items()
               if name not in ("LIBRARY_PATH", "CPATH", "LD_LIBRARY_PATH", "CMAKE_PREFIX_PATH")}
# Directories of whoever built something. Pages show such directories of readers.
OF_A_BUILDER = re.compile(rb"/(?:home|root|work|Users)/[\x20-\x7e]+")
PAGES = ("share/doc/", "share/man/")
MODES = {0o755, 0o644}


def run(*command, **options):
    """Runs a command, which must succeed. RETURNS its output."""
    options.setdefault("env", ENVIRONMENT)
    done = subprocess.run([str(word) for word in command], check=False, text=True, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)
    shown = " ".join(str(word) for word in command)
    assert done.returncode == 0, f"{shown}\nended with {done.returncode}:\n{done.stdout}"
    return done.stdout


def check_entries(archive):
    """Everything below one directory, with one time, two modes and no owner."""
    name = archive.name.removesuffix(".tar.gz")
    with tarfile.open(archive) as tar:
        entries = tar.getmembers()
    for entry in entries:
        assert entry.name == name or entry.name.startswith(name + "/"), entry.name
        assert entry.isfile() or entry.isdir(), f"{entry.name} is neither file nor directory"
        assert (entry.uid, entry.gid, entry.uname, entry.gname) == (0, 0, "", ""), entry.name
        assert entry.mode in MODES, f"{entry.name} has mode {entry.mode:o}"
        assert entry.mtime == entries[0].mtime, f"{entry.name} has a time of its own"
    assert [e.name for e in entries] == sorted((e.name for e in entries), key=lambda n: n.split("/"))


def check_sums(root):
    run("sha256sum", "--check", "--quiet", "SHA256SUMS", cwd=root)
    listed = {line.split("  ./", 1)[1] for line in (root / "SHA256SUMS").read_text().splitlines()}
    found = {str(path.relative_to(root)) for path in root.rglob("*") if path.is_file()} - {"SHA256SUMS"}
    assert listed == found, listed ^ found


def check_readme(root):
    readme = (root / "README.md").read_text()
    assert "@" not in re.sub(r"@(rpath|import)\b", "", readme), "a mark was not replaced"
    assert max(map(len, readme.splitlines())) <= 110
    named = re.findall(r"^    ((?:bin|lib|include|share)/\S*)$", readme, re.MULTILINE)
    assert named, "the README names no file"
    for name in named:
        assert (root / name).exists(), f"the README names {name}"


def check_no_builder(root):
    """No file names a directory of the machine that built it."""
    for path in sorted(path for path in root.rglob("*") if path.is_file()):
        data = path.read_bytes()
        name = str(path.relative_to(root))
        assert str(SOURCES).encode() not in data, f"{name} names {SOURCES}"
        found = None if name.startswith(PAGES) else OF_A_BUILDER.search(data)
        assert not found, f"{name} names {found[0].decode()}"


def unpack(archive, folder):
    """Unpacks an archive into a directory and checks what holds for all. RETURNS its root."""
    if archive.suffix == ".zip":
        with zipfile.ZipFile(archive) as packed:
            packed.extractall(folder)
        return folder
    check_entries(archive)
    run("tar", "-xzf", archive, "-C", folder)
    root = folder / archive.name.removesuffix(".tar.gz")
    check_sums(root)
    check_readme(root)
    check_no_builder(root)
    return root


@contextlib.contextmanager
def unpacked(archive):
    """The root of an archive, below a directory whose name has a space and which is removed afterwards."""
    with tempfile.TemporaryDirectory() as place:
        folder = pathlib.Path(place).resolve() / "unpacked here"
        folder.mkdir()
        yield unpack(archive, folder)
