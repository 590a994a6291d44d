"""Completion of ispctl for bash, zsh and fish, from the tree of its commands.

What a value is follows from the word that stands for it: FILE, OUT, LIB and DIR are paths, a|b|c are choices,
anything else is left to the user. --chip gets the names that are there when it is completed; the values of a
library option are its keywords or what its form lists.
"""

import re

# A form with more numbers than these is no list to choose from.
MAX_NUMBERS = 20


def commands_of(tree):
    """(words, command) of each command that takes arguments: subcommands below their command."""
    for command in tree["command"]["commands"]:
        for below in command["commands"]:
            yield (command["name"], below["name"]), command, below
        if not command["commands"]:
            yield (command["name"],), command, command


def library_rows(tree):
    """The options of the library in the form of a command's own."""
    for row in tree["library options"]:
        value = ("|".join(row["keywords"]) or row["form"] or "VALUE") if row["value"] else ""
        yield {"names": ["--" + row["name"]], "value": "FILE" if value == "file" else value,
               "choices": row["keywords"] or words_of_form(row["form"]), "description": row["meaning"]}


def words_of_form(form):
    """The values that a form such as "`auto`, `prefix`", "1 to 4" or "0, 1 or 2" lists."""
    if words := re.findall(r"`(\w+)`", form):
        return words
    if between := re.fullmatch(r"(\d+) to (\d+)", form):
        numbers = range(int(between[1]), int(between[2]) + 1)
        return [str(number) for number in numbers] if len(numbers) <= MAX_NUMBERS else []
    return re.findall(r"\d+", form) if re.fullmatch(r"[\d, or]+", form) else []


def rows_of(tree, command, leaf):
    """Every option that may follow the words of a command."""
    rows = list(leaf["options"])
    if command["takes library options"]:
        rows += library_rows(tree)
    return rows


def choices_of(tree, row):
    if row["names"] == ["--allow"]:
        return tree["findings"]
    if "choices" in row:
        return row["choices"]
    return row["value"].split("|") if "|" in row["value"] else []


def is_list(row):
    """Whether the value is several choices, separated by commas."""
    return row["value"].endswith(",...")


def own_names(leaf, with_value):
    """The options of a command itself that take a value, or that take none."""
    return " ".join(name for row in leaf["options"] for name in row["names"]
                    if bool(row["value"]) == with_value)


def is_path(word):
    return word.rstrip(".") in ("FILE", "DIR", "FILES", "LIB", "OUT") or word.startswith("FILE")


def is_chip(row):
    return row["names"] == ["--chip"]


def takes_files(leaf):
    return any(is_path(row["name"]) for row in leaf["arguments"])


def names_of(commands):
    return " ".join(row["name"] for row in commands)


def with_commands_below(tree):
    return [row for row in tree["command"]["commands"] if row["commands"]]


# ---- bash


# The names are never expanded: anybody may have made the directories.
BASH_FUNCTIONS = """\
# The functions share with _ispctl: current, what is typed of a word or of the value after a "="; last, the
# option or word before it; before, what each reply has to begin with.

# Readline makes a word of its own of a "=", unless COMP_WORDBREAKS lacks it.
_ispctl_split() {
    local -i at=COMP_CWORD
    current=${COMP_WORDS[at]} before=
    if [ "$current" = = ]; then
        current=
    elif [ "${COMP_WORDS[at - 1]}" = = ]; then
        ((at -= 1))
    elif [[ $current == --*=* ]]; then
        last=${current%%=*} before=$last= current=${current#*=}
        return
    fi
    last=${COMP_WORDS[at - 1]}
}

# Sets COMPREPLY to those of the words in $1 that begin with what is typed.
_ispctl_offer() {
    mapfile -t COMPREPLY < <(compgen -P "$before" -W "$1" -- "$current")
}

# The same for a list with commas.
_ispctl_offer_list() {
    before+=${current%"${current##*,}"} current=${current##*,}
    compopt -o nospace 2>/dev/null
    _ispctl_offer "$1"
}

_ispctl_paths() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -P "$before" "$1" -- "$current")
}

# Sets COMPREPLY to the names of chips, each of which is a directory.
_ispctl_chips() {
    local root chip
    compopt -o filenames 2>/dev/null
    while IFS= read -r root; do
        for chip in "$root"/"$current"*/; do
            chip=${chip%/}
            [ -d "$chip" ] && COMPREPLY+=("$before${chip##*/}")
        done
    done < <("${COMP_WORDS[0]}" paths 2>/dev/null | sed -n 's/^chips  *yes  *//p')
}

# Whether a word before the current one belongs to ARGS, where options of ispctl itself are refused. They are
# in $1, and in $2 those with a value.
_ispctl_args_begun() {
    local -i at=2
    local word
    while [ "$at" -lt "$COMP_CWORD" ]; do
        word=${COMP_WORDS[at]}
        if [[ " $1 " == *" $word "* ]]; then
            at+=1
        elif [[ " $2 " == *" ${word%%=*} "* ]]; then
            [ "${COMP_WORDS[at + 1]}" = = ] && at+=1
            [ "$word" != "${word%%=*}" ] || at+=1
            at+=1
        else
            return 0
        fi
    done
    return 1
}
"""


def bash(tree):
    yield "# Completion of ispctl for bash."
    yield "# shellcheck shell=bash"
    yield ""
    yield BASH_FUNCTIONS
    yield "_ispctl() {"
    yield "    local command=${COMP_WORDS[1]} current last before"
    yield "    _ispctl_split"
    yield "    COMPREPLY=()"
    yield "    if [ \"$COMP_CWORD\" -eq 1 ]; then"
    names = names_of(tree["command"]["commands"])
    options = [name for row in tree["command"]["options"] for name in row["names"]]
    yield f'        _ispctl_offer "{" ".join([names, *options])}"'
    yield "        return"
    yield "    fi"
    yield "    case $command in"
    yield "    help)"
    yield "        case $COMP_CWORD,$last in"
    yield f'        2,*) _ispctl_offer "{names} --help" ;;'
    for command in with_commands_below(tree):
        yield f'        3,{command["name"]}) _ispctl_offer "{names_of(command["commands"])}" ;;'
    yield "        esac"
    yield "        return"
    yield "        ;;"
    for command in with_commands_below(tree):
        yield f'    {command["name"]})'
        yield "        if [ \"$COMP_CWORD\" -eq 2 ]; then"
        yield f'            _ispctl_offer "{names_of(command["commands"])} --help"'
        yield "            return"
        yield "        fi"
        yield '        command="$command ${COMP_WORDS[2]}"'
        yield "        ;;"
    yield "    esac"
    yield "    case \"$command $last\" in"
    for words, command, leaf in commands_of(tree):
        files, folders = [], []
        for row in rows_of(tree, command, leaf):
            labels = [f'"{" ".join(words)} {name}"' for name in row["names"]]
            choices = choices_of(tree, row)
            if choices:
                offer = "_ispctl_offer_list" if is_list(row) else "_ispctl_offer"
                yield f'    {" | ".join(labels)}) {offer} "{" ".join(choices)}" && return ;;'
            elif is_chip(row):
                yield f'    {" | ".join(labels)}) _ispctl_chips && return ;;'
            elif row["value"] == "DIR":
                folders += labels
            elif is_path(row["value"]):
                files += labels
            elif row["value"]:
                yield f'    {" | ".join(labels)}) return ;;'
        if files:
            yield f'    {" | ".join(files)}) _ispctl_paths -f && return ;;'
        if folders:
            yield f'    {" | ".join(folders)}) _ispctl_paths -d && return ;;'
    yield "    esac"
    yield "    case $command in"
    for words, command, leaf in commands_of(tree):
        yield f'    "{" ".join(words)}")'
        if command["takes library options"]:
            library = " ".join(name for row in library_rows(tree) for name in row["names"])
            yield f'        _ispctl_offer "{library}"'
            yield (f'        _ispctl_args_begun "{own_names(leaf, False)}" "{own_names(leaf, True)}" ||')
            yield f'            _ispctl_offer "{own_names(leaf, False)} {own_names(leaf, True)} {library}"'
        else:
            yield f'        _ispctl_offer "{own_names(leaf, False)} {own_names(leaf, True)}"'
        yield "        ;;"
    yield "    esac"
    with_files = [f'"{" ".join(words)}"' for words, _, leaf in commands_of(tree) if takes_files(leaf)]
    yield "    case $current in"
    yield "    -*) ;;"
    yield "    *)"
    yield "        case $command in"
    yield f'        {" | ".join(with_files)}) _ispctl_paths -f ;;'
    yield "        esac"
    yield "        ;;"
    yield "    esac"
    yield "}"
    yield "complete -F _ispctl ispctl"


# ---- zsh


def zsh_text(text):
    for character in "\\[]:'":
        text = text.replace(character, "'\\''" if character == "'" else "\\" + character)
    return text


def zsh_row(tree, row):
    choices = choices_of(tree, row)
    for name in row["names"]:
        # With "=" the value may be in the same word.
        equals = "=" if row["value"] and name.startswith("--") else ""
        spec = f"{name}{equals}[{zsh_text(row['description'])}]"
        if row["value"]:
            action = " "
            if is_list(row):
                action = f"_values -s , name {' '.join(choices)}"
            elif choices:
                action = f"({' '.join(choices)})"
            elif is_chip(row):
                action = "_ispctl_chips"
            elif row["value"] == "DIR":
                action = "_files -/"
            elif is_path(row["value"]):
                action = "_files"
            spec += f":{zsh_text(row['value'].split('|')[0] if choices else row['value'])}:{action}"
        yield f"'{spec}'"


def zsh_commands(rows, indent):
    for row in rows:
        yield f"{indent}'{row['name']}:{zsh_text(row['description'])}'"


ZSH_CHIPS = """\
# Offers the names of chips, each of which is a directory.
_ispctl_chips() {
    local root
    local -a chips
    for root in ${(f)"$($program paths 2>/dev/null | sed -n 's/^chips  *yes  *//p')"}; do
        chips+=($root/*(N/:t))
    done
    compadd "$@" -a chips
}
"""

FILES_OF_ZSH = " '*:argument:_files'"
ZSH_ARGS_BEGUN = """\
# Whether a word before the current one belongs to ARGS, where options of ispctl itself are refused. They are
# in $1, and in $2 those with a value.
_ispctl_args_begun() {
    local -a flags=(${=1}) valued=(${=2})
    local -i at=2
    while (( at < CURRENT )); do
        if (( flags[(Ie)$words[at]] )); then
            (( at += 1 ))
        elif (( valued[(Ie)$words[at]] )); then
            (( at += 2 ))
        elif (( valued[(Ie)${words[at]%%=*}] )); then
            (( at += 1 ))
        else
            return 0
        fi
    done
    return 1
}
"""


def zsh(tree):
    yield "#compdef ispctl"
    yield "# Completion of ispctl for zsh."
    yield ""
    yield ZSH_CHIPS
    yield ZSH_ARGS_BEGUN
    yield "_ispctl() {"
    yield "    local -a commands specs"
    yield "    local program=$words[1]"
    yield "    if [[ $words[2] == help ]] && (( CURRENT > 2 )); then"
    yield "        shift words"
    yield "        (( CURRENT-- ))"
    parents = names_of(with_commands_below(tree)).replace(" ", "|")
    yield f"        if (( CURRENT > 2 )) && [[ $words[2] != ({parents}) ]]; then"
    yield "            return"
    yield "        fi"
    yield "    fi"
    yield "    if (( CURRENT == 2 )); then"
    yield "        commands=("
    yield from zsh_commands(tree["command"]["commands"], " " * 12)
    yield "        )"
    yield "        _describe command commands"
    yield "        return"
    yield "    fi"
    yield "    local command=$words[2]"
    yield "    case $command in"
    for command in with_commands_below(tree):
        yield f"    {command['name']})"
        yield "        if (( CURRENT == 3 )); then"
        yield "            commands=("
        yield from zsh_commands(command["commands"], " " * 16)
        yield "            )"
        yield "            _describe command commands"
        yield "            return"
        yield "        fi"
        yield '        command="$command $words[3]"'
        yield "        shift words"
        yield "        (( CURRENT-- ))"
        yield "        ;;"
    yield "    esac"
    yield "    shift words"
    yield "    (( CURRENT-- ))"
    yield "    case $command in"
    for words, command, leaf in commands_of(tree):
        yield f"    '{' '.join(words)}')"
        yield "        specs=("
        for row in leaf["options"]:
            for spec in zsh_row(tree, row):
                yield f"            {spec}"
        yield "        )"
        if command["takes library options"]:
            own = f"'{own_names(leaf, False)}' '{own_names(leaf, True)}'"
            yield f"        _ispctl_args_begun {own} && specs=()"
            yield "        specs+=("
            for row in library_rows(tree):
                for spec in zsh_row(tree, row):
                    yield f"            {spec}"
            yield "        )"
        # An argument of which nothing is known would be a message, which keeps zsh from inserting an option.
        yield f"        _arguments $specs{FILES_OF_ZSH if takes_files(leaf) else ''}"
        yield "        ;;"
    yield "    esac"
    yield "}"
    yield ""
    yield '_ispctl "$@"'


# ---- fish


def fish_text(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


FISH_CHIPS = """\
# The names of chips, each of which is a directory.
function __ispctl_chips
    set -l program (commandline -opc)[1]
    for root in ($program paths 2>/dev/null | string replace -rf '^chips +yes +' '')
        for chip in $root/*/
            basename $chip
        end
    end
end
"""


def fish(tree):
    yield "# Completion of ispctl for fish."
    yield ""
    yield FISH_CHIPS
    yield "complete -c ispctl -f"
    for row in tree["command"]["options"]:
        yield from fish_row(tree, "__fish_use_subcommand", row)
    others = " ".join(row["name"] for row in tree["command"]["commands"] if row["name"] != "help")
    of_help = fish_text("__fish_seen_subcommand_from help; "
                        f"and not __fish_seen_subcommand_from {others}")
    for command in tree["command"]["commands"]:
        for condition in ("__fish_use_subcommand", of_help):
            yield (f"complete -c ispctl -n {condition} -a {command['name']} "
                   f"-d {fish_text(command['description'])}")
        below = names_of(command["commands"])
        for row in command["commands"]:
            condition = fish_text(f"__fish_seen_subcommand_from {command['name']}; "
                                  f"and not __fish_seen_subcommand_from {below}")
            yield (f"complete -c ispctl -n {condition} -a {row['name']} "
                   f"-d {fish_text(row['description'])}")
    for words, command, leaf in commands_of(tree):
        condition = fish_text(fish_condition(tree, words))
        if takes_files(leaf):
            yield f"complete -c ispctl -n {condition} -F"
        for row in rows_of(tree, command, leaf):
            yield from fish_row(tree, condition, row)


def fish_condition(tree, words):
    """All words are there; a command that is also called like a subcommand is not that subcommand."""
    parents = [row["name"] for row in tree["command"]["commands"]
               if len(words) == 1 and words[0] in [below["name"] for below in row["commands"]]]
    return "; and ".join([f"__fish_seen_subcommand_from {word}" for word in words]
                         + [f"not __fish_seen_subcommand_from {parent}" for parent in parents])


def fish_row(tree, condition, row):
    line = f"complete -c ispctl -n {condition}"
    for name in row["names"]:
        line += f" -l {name[2:]}" if name.startswith("--") else f" -s {name[1:]}"
    choices = choices_of(tree, row)
    if is_list(row):
        line += f" -x -a '(__fish_append , {' '.join(choices)})'"
    elif choices:
        line += f" -x -a {fish_text(' '.join(choices))}"
    elif is_chip(row):
        line += " -x -a '(__ispctl_chips)'"
    elif row["value"] == "DIR":
        line += " -x -a '(__fish_complete_directories)'"
    elif is_path(row["value"]):
        line += " -r -F"
    elif row["value"]:
        line += " -x"
    yield f"{line} -d {fish_text(row['description'])}"


def pages(tree):
    """{file name: text}, named as each shell looks for them."""
    made = {"ispctl": bash(tree), "_ispctl": zsh(tree), "ispctl.fish": fish(tree)}
    return {name: "\n".join(lines) + "\n" for name, lines in made.items()}
