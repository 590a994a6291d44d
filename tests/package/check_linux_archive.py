#!/usr/bin/env python3
"""Unpacks the archive for Linux and uses it as its users do: the self-test, the demo and every command of the
pages run, templates and hosts build against it, its plug-ins pass `ispctl check-plugin`, manual pages can be
read.

usage: check_linux_archive.py ARCHIVE VERSION
"""

import pathlib
import re
import sys

from check_files import promised
from check_hardening import hardening_problems
from check_selftest import check_passes
from release_archive import ENVIRONMENT, SOURCES, run, unpacked

HERE = pathlib.Path(__file__).resolve().parent
PARTS = ("ispctl", "virtual_isp", "virtual_comm", "virtual_device", "virtual_sign_verify",
         "selftest_probe")
OF_ARCHIVES = {"README.md", "LICENSE", "SHA256SUMS", "licences/CLI11.txt", "licences/fmt.txt",
               "licences/mbedtls.txt", "licences/nlohmann-json.txt"}
# Every Linux has them; whatever else were needed would be missing on most.
LIBRARIES = {"libstdc++.so.6", "libgcc_s.so.1", "libc.so.6", "libm.so.6", "ld-linux-x86-64.so.2",
             "ld-linux-aarch64.so.1"}


def check_files(root):
    expected = set(promised(HERE / "installed_files.txt", "libScalerIsp.so", PARTS)) | OF_ARCHIVES
    found = {re.sub(r"Targets-\w+\.cmake$", "Targets-CONFIG.cmake", str(path.relative_to(root)))
             for path in root.rglob("*") if path.is_file()}
    assert found == expected, found ^ expected


def check_binaries(root):
    """They need the system only, are stripped and hardened, and search for nothing in a directory of the
    build."""
    binaries = [path for path in root.rglob("*") if path.is_file() and path.read_bytes()[:4] == b"\x7fELF"]
    assert len(binaries) == 8, binaries
    for path in binaries:
        dynamic = run("readelf", "--dynamic", "--wide", path)
        needed = set(re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic))
        assert needed <= LIBRARIES, f"{path.name} needs {needed - LIBRARIES}"
        for paths in re.findall(r"\((?:RUNPATH|RPATH)\).*\[(.*)\]", dynamic):
            assert all(part.startswith("$ORIGIN") for part in paths.split(":")), f"{path.name}: {paths}"
        assert not hardening_problems(path), f"{path.name}: {hardening_problems(path)}"
        assert ".symtab" not in run("readelf", "--sections", "--wide", path), f"{path.name} is not stripped"


def check_manual(root):
    pages = sorted((root / "share/man/man1").glob("*.1"))
    for page in pages:
        run("mandoc", "-Tlint", "-Wwarning", page)
        shown = re.sub(".\x08", "", run("mandoc", "-Tutf8", page))  # bold letters are struck twice
        assert page.stem in shown, shown
    return len(pages)


def check_first_command(root, folder):
    """The block that the README of the archive begins with; it writes nothing into the archive."""
    readme = (root / "README.md").read_text()
    block = re.search(r"^((?:    .*\n)*    bin/ispctl .*\n)", readme, re.MULTILINE)[1]
    before = sorted(root.rglob("*"))
    shown = run("sh", "-c", block, cwd=root, env=dict(ENVIRONMENT, HOME=str(folder)))
    assert "ispctl: success" in shown, shown
    flash = (folder / "virtual-scaler/flash.bin").read_bytes()
    assert flash.startswith((root / "LICENSE").read_bytes())
    assert sorted(root.rglob("*")) == before, "the first command writes into the archive"


def check_use(root, folder, version):
    check_first_command(root, folder)
    check_passes(root, folder)
    shown = run(SOURCES / "tools/demo.sh", root / "bin/ispctl", cwd=folder)
    assert "ispctl: success" in shown, shown
    run(sys.executable, "-B", HERE / "check_templates.py", root, root / "lib", "cc", "c++", cwd=folder)
    run(sys.executable, "-B", HERE / "check_pkg_config.py", root / "lib", version, HERE / "consumer",
        "cc", "c++", cwd=folder)
    consumer = folder / "consumer"
    run("cmake", "-S", HERE / "consumer", "-B", consumer, "-G", "Ninja", f"-DEXPECTED_VERSION={version}",
        f"-DCMAKE_PREFIX_PATH={root}")
    run("cmake", "--build", consumer)
    run("ctest", "--test-dir", consumer, "--no-tests=error")
    run(sys.executable, "-B", SOURCES / "tools/page_sessions.py", "--prefix", root)


def main():
    archive, version = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2]
    with unpacked(archive) as root:
        folder = root.parent
        check_files(root)
        check_binaries(root)
        pages = check_manual(root)
        check_use(root, folder, version)
    print(f"{archive.name}: programs the virtual scaler, templates and hosts build, commands of the pages "
          f"run, {pages} manual pages")


if __name__ == "__main__":
    main()
