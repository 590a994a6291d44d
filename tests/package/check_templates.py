#!/usr/bin/env python3
"""An author copies a template, builds it against the installation, has it checked and runs it; an integrator
does the same with the hosts.

usage: check_templates.py PREFIX LIBRARY-FOLDER C-COMPILER C++-COMPILER [--node NODE]

The commands are those that docs/plug-ins.md and docs/hosts.md show.
"""

import argparse
import os
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile

STRICT = ("-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-qual -Wformat=2 -Wundef "
          "-Wvla -Werror")
FIRMWARE_BYTES = 3 * 65536 + 100


class Templates:
    def __init__(self, given, folder):
        self.given, self.folder = given, folder
        self.share = given.prefix / "share/scaler-isp"
        self.ispctl = given.prefix / "bin/ispctl"
        self.virtual = next((self.share / "virtual").glob("libScalerIsp.*"))
        self.firmware = folder / "monitor 1.bin"
        self.firmware.write_bytes(bytes(i * 7 % 251 for i in range(FIRMWARE_BYTES)))
        self.environment = dict(os.environ, LC_ALL="C.UTF-8",
                                SCALER_ISP_VIRTUAL_DEVICE=str(folder / "device"))
        self.environment.pop("LD_LIBRARY_PATH", None)

    def run(self, *command, status=0, folder=None):
        """Runs a command and expects a status. RETURNS both its streams."""
        done = subprocess.run([str(word) for word in command], cwd=folder or self.folder, text=True,
                              env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False)
        shown = shlex.join(str(word) for word in command)
        assert done.returncode == status, f"{shown}\nended with {done.returncode}:\n{done.stdout}"
        return done.stdout

    def build(self, source, *, strict=True):
        """Copies a project and builds it. RETURNS its build directory."""
        project = self.folder / source.name
        shutil.copytree(source, project)
        flags = STRICT if strict else ""
        self.run("cmake", "-S", project, "-B", project / "build",
                 f"-DCMAKE_PREFIX_PATH={self.given.prefix}",
                 f"-DScalerIsp_DIR={self.given.libdir / 'cmake/ScalerIsp'}",
                 f"-DCMAKE_C_COMPILER={self.given.c_compiler}", f"-DCMAKE_C_FLAGS={flags}",
                 f"-DCMAKE_CXX_COMPILER={self.given.cxx_compiler}", f"-DCMAKE_CXX_FLAGS={flags}")
        self.run("cmake", "--build", project / "build")
        return project / "build"

    def check_isp(self, name):
        build = self.build(self.share / "templates" / name)
        plugin = build / "PlugIn/libIsp.dylib"
        verdict = self.run(self.ispctl, "check-plugin", "--call", plugin).splitlines()[-1]
        assert ": passed (0 errors, 0 warnings" in verdict, verdict
        library = next(build.glob("libScalerIsp.*"))
        work = self.folder / f"{name} work"
        work.mkdir()

        def isp(*arguments, status=0):
            return self.run(self.ispctl, "run", "--lib", library, "--", *arguments, status=status,
                            folder=work)
        shown = isp("--isp", "--fw", self.firmware, "--bank", "2")
        assert "progress 100 %" in shown and "ispctl: success" in shown, shown
        isp("--dumpflash", "--dumpaddr", "0x20000", "--dumplen", str(FIRMWARE_BYTES),
            "--dumpname", work / "dump.bin")
        assert (work / "dump.bin").read_bytes() == self.firmware.read_bytes(), "the dump differs"
        shown = isp("--getscalertype")
        assert "Scaler type: template" in shown, shown
        isp("--recordver")
        shown = isp("--resetmcu", status=5)  # an optional function that the template lacks
        assert "ResetMCUExport" in shown, shown

    def check_sign(self):
        build = self.build(self.share / "templates/sign-c")
        verdict = self.run(self.ispctl, "check-plugin", "--call",
                           build / "libSignVerify.dylib").splitlines()[-1]
        assert ": passed (0 errors, 0 warnings" in verdict, verdict
        library = next(build.glob("libScalerIsp.*"))
        key, other, signature = (self.folder / name for name in ("key.bin", "other.bin", "monitor.sig"))
        key.write_bytes(bytes(range(32)))
        other.write_bytes(bytes(range(1, 33)))
        signed = ["--sw", "--dsmode", "3", "--fw", self.firmware, "--signfile", signature]
        run = [self.ispctl, "run", "--lib", library, "--"]
        self.run(*run, "--sign", *signed, "--skfile", key)
        self.run(*run, "--verify", *signed, "--vkfile", key)
        self.run(*run, "--verify", *signed, "--vkfile", other, status=6)
        # Both templates in one directory are a chip that programs signed firmware only.
        shutil.copytree(self.folder / "isp-c/build/PlugIn", build / "PlugIn")
        flash = ["--isp", *signed, "--vkfile"]
        self.run(*run, *flash, key)
        self.run(*run, *flash, other, status=6)
        # The chip of the template has no key; its own code says so.
        next_key = ["--isp", "--sw", "--dsmode", "4", *signed[3:], "--nextvkfile", key]
        shown = self.run(*run, *next_key, status=1)
        assert "this chip has no verify key in its flash" in shown, shown

    def check_host(self, *command):
        """One host programs the virtual scaler, then meets a device that cannot be opened."""
        faults = self.folder / "device/faults.txt"
        shown = self.run(*command, "--isp", "--fw", self.firmware)
        for text in ("progress 0 %", "progress 100 %", "message: Banks programmed: 4 of 4",
                     "result 0x0: success"):
            assert text in shown, f"{command[0]}: no {text}:\n{shown}"
        faults.write_text("refuse-open\n")
        shown = self.run(*command, "--getscalertype", status=1)
        faults.unlink()
        assert "result 0x5A01: " in shown and "success" not in shown, shown

    def check_refusal(self, *command, status=1):
        """A host that makes the line itself refuses what the line cannot express."""
        shown = self.run(*command, "--isp", "--fw", '/a "b.bin', status=status)
        assert "quote" in shown and "result" not in shown, shown

    def check_hosts(self):
        examples = self.share / "examples"
        self.check_host(self.build(examples / "host_c") / "host_c", self.virtual)
        self.check_host(self.build(examples / "host_cpp", strict=False) / "host_cpp")
        python = (sys.executable, examples / "host_python/host.py")
        self.check_host(*python, self.virtual)
        self.check_refusal(self.folder / "host_c/build/host_c", self.virtual)
        self.check_refusal(self.folder / "host_cpp/build/host_cpp", status=2)
        self.check_refusal(*python, self.virtual)
        shown = self.run(*python, self.folder / "missing", status=1)
        assert "missing" in shown and "Traceback" not in shown, shown
        if self.given.node:
            self.check_host(self.given.node, examples / "host_node/host.mjs", self.ispctl, "--virtual", "--")
        for path in examples.glob("host_*/*"):
            lines = len(path.read_text().splitlines())
            assert lines < 80, f"{path} has {lines} lines"

    def check_pkg_config(self):
        """The line that docs/hosts.md shows, without CMake."""
        environment = dict(os.environ, PKG_CONFIG_LIBDIR=str(self.given.libdir / "pkgconfig"))

        def ask(*arguments):
            done = subprocess.run(["pkg-config", *arguments, "scaler-isp"], env=environment, text=True,
                                  stdout=subprocess.PIPE, check=True)
            return shlex.split(done.stdout)
        virtual = pathlib.Path(ask("--variable=virtual_library")[0])
        assert virtual.is_file(), virtual
        program = self.folder / "linked"
        self.run(*shlex.split(self.given.cxx_compiler), "-std=c++20",
                 self.share / "examples/host_cpp/main.cpp", *ask("--cflags", "--libs"),
                 f"-Wl,-rpath,{virtual.parent}", "-o", program)
        self.check_host(program)


def main():
    parser = argparse.ArgumentParser()
    for name in ("prefix", "libdir"):
        parser.add_argument(name, type=pathlib.Path)
    for name in ("c_compiler", "cxx_compiler"):
        parser.add_argument(name)
    parser.add_argument("--node")
    given = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        templates = Templates(given, pathlib.Path(folder).resolve())
        templates.check_isp("isp-c")
        templates.check_isp("isp-cpp")
        templates.check_sign()
        templates.check_hosts()
        templates.check_pkg_config()
    print(f"three templates, {4 if given.node else 3} hosts, one line of pkg-config")
    return 0


if __name__ == "__main__":
    sys.exit(main())
