#!/usr/bin/env python3
"""What the built library exports, needs and calls, read from the file itself.

usage: check_symbols.py LIBRARY EXPORT-LIST

Exported are the two C functions and the C++ API of the export list, each entry at least once; nothing
of the standard library, no anchor, no member that a class marks as internal. Needed are the system's C
and C++ libraries only. Of these it calls nothing that starts a thread, a process or a timer, that reads or
changes the environment, or that ends the host, and prints through C stdio alone.
"""

import pathlib
import re
import subprocess
import sys

C_FUNCTIONS = {"OperateScaler", "OperateScalerEx"}
# A program that used the anchor would get a copy of its own, and the plug-ins beside the program.
NEVER = {"TCSZ_GLOBAL_SYMBOL"}
INTERNAL_MEMBERS = re.compile(
    r"CpNxCmdLindParse::(ParseShortCmd|ParseElement|MoveOptionsForward|MissingArgument|AcceptLongCmd"
    r"|PrintAmbiguity)\(|(CCpIsp|CCpSignVerify)::Load\(|CCpIspArgsParse::Parse\(")
NEEDED = re.compile(r"(libstdc\+\+|libgcc_s|libc|libm|ld-linux[\w-]*|libdl)\.so\.\d+$")
# getenv only notices that the locale of the environment is another one; no variable configures the library.
NEVER_CALLED = re.compile(
    r"pthread_create|thrd_create|_ZNSt6thread.*|fork|vfork|clone|posix_spawnp?|exec[lv].*|system|popen"
    r"|timer_create|timerfd_create|setitimer|alarm|signal|sigaction"
    r"|(secure_|__secure_)getenv|setenv|unsetenv|putenv|clearenv|environ|__environ"
    r"|exit|_exit|_Exit|quick_exit|raise|kill|_ZSt[34](w?cout|w?cerr|w?clog)")


def output(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout.decode()


def exported(library):
    """(kind letter, demangled name) of each exported symbol."""
    for line in output("nm", "-D", "-C", "--defined-only", library).splitlines():
        _, kind, name = line.split(None, 2)
        yield kind, name.replace("[abi:cxx11]", "")


def entries(path):
    """(kind, name) rows of the export list."""
    for line in pathlib.Path(path).read_text().splitlines():
        match = re.match(r"([a-z]+) +(\S+)$", line)
        if match:
            yield match.group(1), match.group(2)


def entry_of(kind, name):
    """The row of the export list a symbol would need."""
    plain = name.split("(")[0]
    if plain.startswith("operator"):
        return ("operator", plain[len("operator"):]) if "CCpNxString" in name else None
    typed = re.match(r"(?:vtable|typeinfo|typeinfo name) for (\w+)$", name)
    if typed:
        return "class", typed.group(1)
    if "(" not in name:
        return ("c" if kind == "T" else "data"), name
    # Neither a function's own static nor a lambda may come along with a class.
    if ")::" in name or "{" in name:
        return None
    member = re.match(r"(\w+)::[~\w]+\(|(\w+)::operator\W+\(", name)
    if member:
        return "class", member.group(1) or member.group(2)
    return ("function", plain) if re.match(r"\w+\(", name) else None


def symbol_problems(library, export_list):
    rows, seen, problems = set(entries(export_list)), set(), []
    c_functions = set()
    for kind, name in exported(library):
        row = entry_of(kind, name)
        seen.add(row)
        if row is not None and row[0] == "c":
            c_functions.add(name)
        if row not in rows or name in NEVER or INTERNAL_MEMBERS.match(name):
            problems.append(f"exported, but not in the list: {name}")
        if kind == "u":
            problems.append(f"unique, would keep the library loaded for ever: {name}")
    problems += [f"in the list, but not exported: {' '.join(row)}" for row in sorted(rows - seen)]
    if c_functions != C_FUNCTIONS:
        problems.append(f"C functions are {sorted(c_functions)}")
    return problems


def dynamic_problems(library):
    problems = []
    for line in output("readelf", "-dW", library).splitlines():
        match = re.search(r"\((NEEDED|SONAME|RPATH|RUNPATH)\).*\[(.*)\]", line)
        if not match:
            continue
        tag, value = match.groups()
        if tag == "NEEDED" and not NEEDED.match(value):
            problems.append(f"needs {value}")
        if tag == "SONAME" and value != "libScalerIsp.so":
            problems.append(f"is called {value}")
        if tag in ("RPATH", "RUNPATH"):
            problems.append(f"has a search path: {value}")
    return problems


def call_problems(library):
    lines = output("nm", "-D", "--undefined-only", library).splitlines()
    names = {line.split()[-1].split("@")[0] for line in lines}
    problems = [f"calls {name}" for name in sorted(names) if NEVER_CALLED.fullmatch(name)]
    return problems if "dlopen" in names else problems + ["the calls cannot be read"]


def main():
    library, export_list = sys.argv[1:]
    problems = symbol_problems(library, export_list) + dynamic_problems(library)
    problems += call_problems(library)
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
