#!/usr/bin/env python3
"""Manual pages are free of errors, and each shell completes the commands and options of ispctl.

usage: check_completion.py FOLDER      the directory with man/ and completion/

Every shell runs its real file. zsh completes only in a terminal, so its file runs there with functions that
write down what it would offer.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

SKIPPED = 77
# what is typed, words that must be offered, words that must not
CASES = [
    (["ispctl", ""], {"run", "edid", "doctor"}, {"__library", "--isp"}),
    (["ispctl", "run", "--"], {"--virtual", "--dry-run", "--isp", "--fw"}, {"--fix-checksum"}),
    (["ispctl", "run", "--is"], {"--isp"}, {"--virtual"}),
    (["ispctl", "explain", "--sv"], {"--svg"}, {"--json"}),
    (["ispctl", "edid", "--form", ""], {"binary", "hex", "list"}, {"--form"}),
    (["ispctl", "run", "--allow", "unknown"], {"unknown-option"}, {"--allow"}),
    (["ispctl", "script", "a"], {"assemble"}, {"run"}),
    (["ispctl", "script", "run", "--"], {"--virtual"}, {"--isp"}),
    (["ispctl", "run", "--fw", "moni"], {"monitor.bin"}, {"--isp"}),
    (["ispctl", "edid", "-o", "moni"], {"monitor.bin"}, {"--text"}),
    (["ispctl", "run", "--dsmode", ""], {"1", "4"}, {"0", "5", "--isp"}),
    (["ispctl", "run", "--searchfw", "pre"], {"prefix"}, {"auto", "monitor.bin"}),
    (["ispctl", "run", "--mergeinfotype", ""], {"hpfriends"}, {"--isp"}),
    (["ispctl", "run", "--recordvermode", ""], {"0", "1", "2"}, {"3", "or"}),
    (["ispctl", "explain", "--chip", ""], {"panel27", "panel32", "$(touch hit)"}, {"notes.txt", "--isp"}),
    (["ispctl", "doctor", "--chip", "panel3"], {"panel32"}, {"panel27"}),
    (["ispctl", "help", ""], {"run", "edid", "script"}, {"assemble", "monitor.bin"}),
    (["ispctl", "help", "script", ""], {"assemble", "run"}, {"edid", "monitor.bin"}),
    (["ispctl", "run", "--fw=moni"], {"monitor.bin"}, {"--isp"}),
    (["ispctl", "run", "--fw="], {"monitor.bin"}, {"--isp"}),
    (["ispctl", "run", "--searchfw=u"], {"userdefined"}, {"auto", "monitor.bin"}),
    (["ispctl", "run", "--chip=panel3"], {"panel32"}, {"panel27"}),
    (["ispctl", "run", "--allow", "unknown-option,ambig"], {"ambiguous-option"}, {"unknown-option", "--isp"}),
    (["ispctl", "run", "--allow=unknown-option,ambig"], {"ambiguous-option"}, {"unknown-option", "--isp"}),
    (["ispctl", "run", "--virtual", "--lib", "x", "--v"], {"--verbatim", "--veraddr"}, set()),
    (["ispctl", "run", "--lib=x", "--v"], {"--verbatim", "--veraddr"}, set()),
    (["ispctl", "help", "run", ""], set(), {"edid", "monitor.bin", "--isp"}),
]

# After ARGS have begun; fish offers everything.
CASES_OF_ARGS = [
    (["ispctl", "run", *begin, "--v"], {"--veraddr", "--verify"}, {"--virtual", "--verbatim"})
    for begin in (["--isp"], ["--"], ["--virtual", "--lib", "x", "--fw", "a.bin"], ["--lib=x", "--isp"])
] + [(["ispctl", "explain", "--isp", "--s"], {"--signfile"}, {"--svg"})]

# What completion asks for the directories of chips: those of a user without a home.
PATHS = """\
#!/bin/sh
test "$1" = paths || exit 1
printf 'chips                    yes  %s\\nchips                    no   /opt/none\\n' "$PWD/my chips"
"""

BASH = """
. "$1"; shift
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
compopt() { :; }
_ispctl
printf '%s\\n' "${COMPREPLY[@]}"
"""

ZSH = """
autoload -Uz compinit
file=$1; shift
typeset -ga words; words=("$@"); CURRENT=$#
_values() { print -rl -- "${@[4,-1]}" }
offer() { local word; for word; do print -r -- "${${word%%\\[*}%%:*}"; done }
_describe() { local name=$2; offer "${(@P)name}" }
compadd() { local name=${@[-1]}; print -rl -- "${(@P)name}" }
_files() { print -rl -- *(N) }
_arguments() {
    local spec last=$words[CURRENT-1]
    [[ $words[CURRENT] == --*=* ]] && last=${words[CURRENT]%%=*}
    for spec; do
        if [[ ${${spec%%\\[*}%=} == $last && $spec == *\\]:* ]]; then
            local action=${spec##*:}
            case $action in
            \\(*) print -rl -- ${=${action#\\(}%\\)}; return ;;
            _files*) _files; return ;;
            _values*) ${=action}; return ;;
            _ispctl_chips) _ispctl_chips; return ;;
            esac
            return
        fi
    done
    offer "$@"
}
. $file
"""


def run(program, *arguments, **options):
    return subprocess.run([program, *arguments], capture_output=True, text=True, check=False, **options)


def bare(done, typed):
    """What is offered, without what is typed already before a value."""
    words = {line.split("\t")[0].strip() for line in done.stdout.splitlines()}
    given = typed[-1][:max(typed[-1].rfind("="), typed[-1].rfind(",")) + 1]
    return {word.removeprefix(given).removeprefix(given.partition("=")[2]).rstrip("=") for word in words}


def offered_by_bash(folder, typed, place):
    words = [part for word in typed for part in re.split("(=)", word) if part or not word]
    whole = run("bash", "-c", BASH, "bash", folder / "completion/ispctl", *typed, cwd=place)
    broken = run("bash", "-c", BASH, "bash", folder / "completion/ispctl", *words, cwd=place)
    # Whether readline splits at "=" depends on COMP_WORDBREAKS.
    if bare(whole, typed) != bare(broken, typed):
        whole.stderr += f"with the words {words}: {broken.stdout}{broken.stderr}"
    return whole


def offered_by_zsh(folder, typed, place):
    return run("zsh", "-f", "-c", ZSH, "zsh", folder / "completion/_ispctl", *typed, cwd=place)


def offered_by_fish(folder, typed, place):
    return run("fish", "--no-config", "-c",
               'source $argv[1]; complete -C "$argv[2]"', folder / "completion/ispctl.fish", " ".join(typed),
               cwd=place)


SHELLS = {"bash": offered_by_bash, "zsh": offered_by_zsh, "fish": offered_by_fish}


def problems_of(shell, folder, place):
    for typed, wanted, unwanted in CASES + (CASES_OF_ARGS if shell != "fish" else []):
        done = SHELLS[shell](folder, typed, place)
        words = bare(done, typed)
        if shell == "zsh":
            words = {word for word in words if word.startswith(re.split("[=,]", typed[-1])[-1])}
        if shell == "fish":
            # fish offers options only after a dash, and files beside them
            wanted = {word for word in wanted if typed[-1].startswith("-") or not word.startswith("-")}
        if done.stderr or wanted - words or unwanted & words:
            yield (f"{shell}: {typed}: missing {sorted(wanted - words)}, "
                   f"wrong {sorted(unwanted & words)} {done.stderr}")


def problems_of_pages(folder):
    for page in sorted((folder / "man").glob("*.1")):
        done = run("mandoc", "-Tlint", "-Wwarning", page)
        if done.stdout or done.returncode:
            yield f"{page.name}: {done.stdout}"
        if len(run("mandoc", "-Tutf8", page).stdout) < 500:
            yield f"{page.name} shows next to nothing"


def main():
    folder = pathlib.Path(sys.argv[1]).resolve()
    lacking = [program for program in ("mandoc", *SHELLS) if shutil.which(program) is None]
    if lacking:
        print("not here:", *lacking)
        return SKIPPED
    place = pathlib.Path.cwd() / "completion"
    place.mkdir(exist_ok=True)
    (place / "monitor.bin").write_bytes(b"")
    for chip in ("panel27", "panel32", "$(touch hit)"):
        (place / "my chips" / chip).mkdir(parents=True, exist_ok=True)
    (place / "my chips/notes.txt").write_bytes(b"")
    program = place / "ispctl"
    program.write_text(PATHS)
    program.chmod(0o755)
    os.environ["PATH"] = f"{place}:{os.environ['PATH']}"
    problems = [*problems_of_pages(folder)]
    for shell in SHELLS:
        problems += problems_of(shell, folder, place)
    if (place / "hit").exists():
        problems.append("the name of a chip was run as a command")
    print(*problems, sep="\n")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
