"""A folder with the library that ships and its plug-ins, and calls of it in the loader."""

import os
import pathlib
import shutil
import subprocess

SUCCESS = "\x1b[32mSuccess\n\x1b[m"


class Folder:
    """host: the words that start the host in the loader."""

    def __init__(self, path, library, isp_plugin, host):
        self.path = pathlib.Path(path)
        self.host = host
        self.opened = self.path / "libScalerIsp.dylib"
        shutil.rmtree(self.path, ignore_errors=True)
        (self.path / "PlugIn").mkdir(parents=True)
        shutil.copy(library, self.path / "libScalerIsp.dylib")
        shutil.copy(isp_plugin, self.path / "PlugIn/libIsp.dylib")

    def run(self, *lines, locale="C.UTF-8"):
        """(events, standard output) of one process that calls the library with these lines."""
        (self.path / "run.txt").write_text("load\n" + "".join(f"call {line}\n" for line in lines))
        (self.path / "events.txt").unlink(missing_ok=True)
        done = subprocess.run(
            [*self.host, str(self.opened), "run.txt", "events.txt"],
            cwd=self.path, env=dict(os.environ, LC_ALL=locale), check=True,
            stdout=subprocess.PIPE)
        return (self.path / "events.txt").read_text().splitlines(), done.stdout.decode()

    def flash(self):
        return (self.path / "VirtualScaler/flash.bin").read_bytes()

    def journal(self):
        return (self.path / "VirtualScaler/journal.txt").read_text().splitlines()
