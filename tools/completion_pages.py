"""Completion of ispctl for bash, zsh and fish, from the tree of its commands.

What a value is follows from the word that stands for it: FILE and DIR are paths, a|b|c are choices, anything
else is left to the user.
"""


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
               "description": row["meaning"]}


def rows_of(tree, command, leaf):
    """Every option that may follow the words of a command."""
    rows = list(leaf["options"])
    if command["takes library options"]:
        rows += library_rows(tree)
    return rows


def choices_of(tree, row):
    if row["names"] == ["--allow"]:
        return tree["findings"]
    return row["value"].split("|") if "|" in row["value"] else []


def is_path(word):
    return word.rstrip(".") in ("FILE", "DIR", "FILES") or word.startswith("FILE")


def takes_files(leaf):
    return any(is_path(row["name"]) for row in leaf["arguments"])


# ---- bash


def bash_case(label, words):
    return f'    {label}) set -- {" ".join(words)} ;;'


def bash(tree):
    yield "# Completion of ispctl for bash."
    yield "# shellcheck shell=bash"
    yield ""
    yield "# Sets COMPREPLY to those of the words in $1 that begin with what is typed."
    yield "_ispctl_offer() {"
    yield "    mapfile -t COMPREPLY < <(compgen -W \"$1\" -- \"${COMP_WORDS[COMP_CWORD]}\")"
    yield "}"
    yield ""
    yield "_ispctl_paths() {"
    yield "    compopt -o filenames 2>/dev/null"
    yield "    mapfile -t COMPREPLY < <(compgen \"$1\" -- \"${COMP_WORDS[COMP_CWORD]}\")"
    yield "}"
    yield ""
    yield "_ispctl() {"
    yield "    local command=${COMP_WORDS[1]} last=${COMP_WORDS[COMP_CWORD - 1]}"
    yield "    COMPREPLY=()"
    yield "    if [ \"$COMP_CWORD\" -eq 1 ]; then"
    names = [row["name"] for row in tree["command"]["commands"]]
    options = [name for row in tree["command"]["options"] for name in row["names"]]
    yield f'        _ispctl_offer "{" ".join(names + options)}"'
    yield "        return"
    yield "    fi"
    yield "    case $command in"
    for command in tree["command"]["commands"]:
        if command["commands"]:
            below = " ".join(row["name"] for row in command["commands"])
            yield f'    {command["name"]})'
            yield "        if [ \"$COMP_CWORD\" -eq 2 ]; then"
            yield f'            _ispctl_offer "{below} --help"'
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
                yield f'    {" | ".join(labels)}) _ispctl_offer "{" ".join(choices)}" && return ;;'
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
        offered = " ".join(name for row in rows_of(tree, command, leaf) for name in row["names"])
        yield f'    "{" ".join(words)}") _ispctl_offer "{offered}" ;;'
    yield "    esac"
    with_files = [f'"{" ".join(words)}"' for words, _, leaf in commands_of(tree) if takes_files(leaf)]
    yield "    case ${COMP_WORDS[COMP_CWORD]} in"
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
        spec = f"{name}[{zsh_text(row['description'])}]"
        if row["value"]:
            action = " "
            if choices:
                action = f"({' '.join(choices)})"
            elif row["value"] == "DIR":
                action = "_files -/"
            elif is_path(row["value"]):
                action = "_files"
            spec += f":{zsh_text(row['value'].split('|')[0] if choices else row['value'])}:{action}"
        yield f"'{spec}'"


def zsh_commands(rows, indent):
    for row in rows:
        yield f"{indent}'{row['name']}:{zsh_text(row['description'])}'"


def zsh(tree):
    yield "#compdef ispctl"
    yield "# Completion of ispctl for zsh."
    yield ""
    yield "_ispctl() {"
    yield "    local -a commands"
    yield "    if (( CURRENT == 2 )); then"
    yield "        commands=("
    yield from zsh_commands(tree["command"]["commands"], " " * 12)
    yield "        )"
    yield "        _describe command commands"
    yield "        return"
    yield "    fi"
    yield "    local command=$words[2]"
    yield "    case $command in"
    for command in tree["command"]["commands"]:
        if command["commands"]:
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
        yield "        _arguments \\"
        for row in rows_of(tree, command, leaf):
            for spec in zsh_row(tree, row):
                yield f"            {spec} \\"
        yield f"            '*:argument:{'_files' if takes_files(leaf) else ' '}'"
        yield "        ;;"
    yield "    esac"
    yield "}"
    yield ""
    yield '_ispctl "$@"'


# ---- fish


def fish_text(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def fish(tree):
    yield "# Completion of ispctl for fish."
    yield ""
    yield "complete -c ispctl -f"
    for row in tree["command"]["options"]:
        yield from fish_row(tree, "__fish_use_subcommand", row)
    for command in tree["command"]["commands"]:
        yield (f"complete -c ispctl -n __fish_use_subcommand -a {command['name']} "
               f"-d {fish_text(command['description'])}")
        below = " ".join(row["name"] for row in command["commands"])
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
    if choices:
        line += f" -x -a {fish_text(' '.join(choices))}"
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
