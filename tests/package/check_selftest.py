#!/usr/bin/env python3
"""The self-test of an installation passes, names what differs from our assumptions, and fails if something is
broken: a plug-in that is missing, a file that was changed, a library that is none.

usage: check_selftest.py PREFIX FOLDER [--faults] [--in-loader] [--launcher WORDS]
"""

import argparse
import csv
import hashlib
import os
import pathlib
import shlex
import shutil
import subprocess

RUN = "share/scaler-isp/selftest/run.sh"
VIRTUAL = "share/scaler-isp/virtual"
LEAST_CHECKS = 80
# Groups and checks that a Linux under the loader cannot answer as a Mac would.
IN_LOADER = {
    "names/composed_name_by_the_other_form",
    "names/decomposed_name_by_the_other_form",
    "locale/composite_name",
    "locale/formatting_of_20AC_in_C",
}
ON_SOME_MACHINES = {"locale/locale_en_US.UTF-8"}


def run_selftest(prefix, folder, launcher, **variables):
    """(exit status, {group/check: outcome}, output). A check that fails in one environment has failed."""
    report = folder / "report of the self-test.txt"
    report.unlink(missing_ok=True)
    words = shlex.join(launcher)
    environment = dict(os.environ, SELFTEST_LAUNCHER=words, MACHO_LAUNCHER=words, **variables)
    done = subprocess.run(["sh", prefix / RUN, "--report", report], check=False, env=environment, cwd=folder,
                          text=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=280)
    outcomes = {}
    if report.exists():
        with report.open(newline="", encoding="utf-8", errors="replace") as text:
            rows = [row for row in csv.reader(text, delimiter="\t", quoting=csv.QUOTE_NONE) if len(row) == 7]
        for row in sorted(rows, key=lambda row: row[5] in ("failed", "differs")):
            outcomes[f"{row[3]}/{row[4]}"] = row[5]
    return done.returncode, outcomes, done.stdout


def with_outcome(outcomes, wanted):
    return {check for check, outcome in outcomes.items() if outcome == wanted}


def check_passes(prefix, folder, in_loader=False, launcher=()):
    status, outcomes, output = run_selftest(prefix, folder, launcher)
    assert status == 0, output
    assert not with_outcome(outcomes, "failed"), output
    expected = IN_LOADER if in_loader else set()
    differing = with_outcome(outcomes, "differs")
    if in_loader:
        differing -= ON_SOME_MACHINES
    assert differing == expected, f"{differing ^ expected}\n{output}"
    assert len(outcomes) >= LEAST_CHECKS, outcomes
    assert "required checks passed, 0 failed" in output and "The report is in" in output, output


def without_plugin(prefix):
    (prefix / VIRTUAL / "PlugIn/libIsp.dylib").unlink()


def without_library(prefix):
    library, = (prefix / VIRTUAL).glob("libScalerIsp.*")
    library.write_text("not a library")


def with_changed_file(prefix):
    """As in an archive, which has the hashes of its files."""
    page = prefix / "share/doc/scaler-isp/LICENSE"
    digest = hashlib.sha256(page.read_bytes()).hexdigest()
    (prefix / "SHA256SUMS").write_text(f"{digest}  ./{page.relative_to(prefix)}\n")
    page.write_text(page.read_text() + "changed")


def without_probe(prefix):
    (prefix / "share/scaler-isp/selftest/probe").unlink()


# What is broken, the exit status, and checks that must notice it.
FAULTS = (
    (without_plugin, 1, {"calls/programs_firmware", "loading/finds_plugin_next_to_library",
                         "ispctl/run --virtual --isp"}),
    (without_library, 1, {"calls/opens_library", "ispctl/run --virtual --isp"}),
    (with_changed_file, 1, {"files/SHA256SUMS"}),
    (without_probe, 2, set()),
)


def check_faults(prefix, folder):
    for damage, expected, noticed in FAULTS:
        broken = folder / "broken"
        shutil.rmtree(broken, ignore_errors=True)
        shutil.copytree(prefix, broken, symlinks=True)
        damage(broken)
        status, outcomes, output = run_selftest(broken, folder, ())
        assert status == expected, f"{damage.__name__}: status {status}\n{output}"
        missed = noticed - with_outcome(outcomes, "failed")
        assert not missed, f"{damage.__name__}: not noticed by {missed}\n{output}"
    shutil.rmtree(broken)


# Programs that only a Mac has, as far as the self-test uses them: here one that has no Rosetta.
MAC_TOOLS = {
    "uname": 'if [ "$*" = -s ]; then echo Darwin; else echo "Darwin 20.0.0 mac"; fi',
    "arch": 'if [ "$1" != "-$MAC_PROCESSOR" ]; then exit 1; fi; shift; exec "$@"',
    "codesign": 'for file; do :; done; case $file in *"$UNSIGNED"*) echo "not signed"; exit 1 ;; esac',
    "lipo": 'echo "$MAC_PROCESSOR"',
    "otool": "echo libraries",
    "sw_vers": "echo ProductVersion: 11.3",
    "sysctl": "echo value",
    "xattr": "exit 1",
    "xcode-select": "echo /Library/Developer",
}


def check_tools_of_a_mac(prefix, folder):
    """What the self-test does with them; whether they do what is assumed, only a Mac can show."""
    tools = folder / "tools"
    shutil.rmtree(tools, ignore_errors=True)
    tools.mkdir()
    for name, script in MAC_TOOLS.items():
        (tools / name).write_text(f"#!/bin/sh\n{script}\n")
        (tools / name).chmod(0o755)
    processor = {"x86_64": "x86_64", "aarch64": "arm64"}[os.uname().machine]
    variables = {"PATH": f"{tools}:{os.environ['PATH']}", "MAC_PROCESSOR": processor}
    status, outcomes, output = run_selftest(prefix, folder, (), UNSIGNED="none", **variables)
    checks = {"files/codesign bin/ispctl", "files/lipo bin/ispctl", "ispctl/run --virtual --isp"}
    missing = checks - with_outcome(outcomes, "passed")
    assert not missing and not with_outcome(outcomes, "failed"), f"{status} {missing}\n{output}"
    status, outcomes, output = run_selftest(prefix, folder, (), UNSIGNED="libIsp", **variables)
    failed = with_outcome(outcomes, "failed")
    assert status == 1 and failed == {f"files/codesign {VIRTUAL}/PlugIn/libIsp.dylib"}, output
    variables["MAC_PROCESSOR"] = "none"
    status, _, output = run_selftest(prefix, folder, (), UNSIGNED="none", **variables)
    assert status == 2 and "neither slice can be run" in output, output


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("prefix", type=lambda text: pathlib.Path(text).resolve())
    parser.add_argument("folder", type=lambda text: pathlib.Path(text).resolve())
    parser.add_argument("--faults", action="store_true")
    parser.add_argument("--in-loader", action="store_true")
    parser.add_argument("--launcher", default="")
    given = parser.parse_args()
    given.folder.mkdir(parents=True, exist_ok=True)
    check_passes(given.prefix, given.folder, given.in_loader, shlex.split(given.launcher))
    if given.faults:
        check_faults(given.prefix, given.folder)
        check_tools_of_a_mac(given.prefix, given.folder)
    print("the self-test passes" + (", and notices what is broken" if given.faults else ""))


if __name__ == "__main__":
    main()
