#!/usr/bin/env python3
"""tools/page_sessions.py accepts a page that shows what its commands print, and no other.

usage: check_page_sessions_fails.py TOOL
"""

import pathlib
import subprocess
import sys
import tempfile

GOOD = """# A page

<!-- file: notes.txt -->
```text
one
two
```

```console
$ cat notes.txt
one
two
$ printf '%s\\n' first second \\
>     third
first
...
third
$ pwd; echo "$PREFIX/lib"
/home/you/monitor
/home/you/scaler-isp/lib
$ echo ...$(pwd | cut -c 7-)/monitor.bin
...you/monitor/monitor.bin
$ grep -c o notes.txt missing.txt
notes.txt:2
grep: …
$ echo $?
2
```

<!-- not run: it needs a device -->
```sh
program-the-device
```
"""
# What is changed in the page above, and what the tool has to say about it.
CHANGES = {
    "wrong line": ("\ntwo\n$", "\nthree\n$", "and the page shows\none\nthree"),
    "missing line": ("one\ntwo\n$", "one\n$", "$ cat notes.txt"),
    "line too many": ("third\n$ pwd", "third\nfourth\n$ pwd", "fourth"),
    "wrong start of a line": ("grep: …", "grap: …", "grap: …"),
    "command without a prompt": ("$ cat notes.txt\none", "one", "begins with"),
    "block of a shell without a mark": ("<!-- not run: it needs a device -->\n", "",
                                        "commands that nobody runs"),
    "indented command": ("# A page\n", "# A page\n\n    ./dev test\n", "commands that nobody runs"),
}


def outcome(tool, prefix, text):
    page = prefix / "page.md"
    page.write_text(text)
    return subprocess.run([sys.executable, "-B", tool, "--prefix", prefix / "prefix", page], check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def main():
    problems = []
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch)
        (folder / "prefix/bin").mkdir(parents=True)
        done = outcome(sys.argv[1], folder, GOOD)
        if done.returncode != 0 or "(6 run)" not in done.stdout:
            problems.append(f"the good page is refused:\n{done.stdout}")
        for name, (old, new, expected) in CHANGES.items():
            assert GOOD.count(old) == 1, name
            done = outcome(sys.argv[1], folder, GOOD.replace(old, new))
            if done.returncode != 1 or expected not in done.stdout:
                problems.append(f"{name}: status {done.returncode}, printed:\n{done.stdout}")
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
