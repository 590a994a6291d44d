"""Manual pages of ispctl in man(7), from the tree of its commands."""

DATE = "2026-11-22"  # of the release
ENVIRONMENT = [
    ("LC_ALL, LC_CTYPE, LANG", "The encoding of file names and of what is printed."),
    ("NO_COLOR, TERM", "If NO_COLOR is not empty or TERM is dumb, nothing is printed in colour."),
    ("SCALER_ISP_CHIPS", "Directories, separated by colons, in which --chip looks for a chip."),
    ("SCALER_ISP_VIRTUAL_DEVICE", "The directory that holds the state of the virtual scaler."),
    ("TMPDIR", "Where private copies of files are made."),
]


def escaped(text):
    """Text as roff shows it: no escapes, and no line that would be a request."""
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return "\n".join("\\&" + line if line.startswith((".", "'")) else line for line in text.split("\n"))


def bold(text):
    return f"\\fB{escaped(text)}\\fR"


def italic(text):
    return f"\\fI{escaped(text)}\\fR"


def sentence(text):
    """A description as it stands after a term: capital, full stop."""
    text = text.strip()
    text = text[:1].upper() + text[1:] if text else ""
    return text if text.endswith((".", "?", "!", ":")) else text + "."


def option_term(option):
    names = ", ".join(bold(name) for name in option["names"])
    return names + (" " + italic(option["value"]) if option["value"] else "")


def items(rows):
    """Terms with their descriptions."""
    for term, text in rows:
        yield ".TP"
        yield term
        yield escaped(text)


def example_block(text):
    yield ".nf"
    yield escaped(text.strip("\n"))
    yield ".fi"


def heading(name, version, title):
    yield f'.TH {name.upper().replace("-", chr(92) + "-")} 1 "{DATE}" "{version}" "{title}"'
    yield ".nh"
    yield ".ad l"


def synopsis(words, command):
    line = bold(" ".join(words))
    if command["options"]:
        line += " [" + italic("OPTIONS") + "]"
    for argument in command["arguments"]:
        shown = italic(argument["name"]) + ("..." if argument["many"] else "")
        line += " " + (shown if argument["required"] else f"[{shown}]")
    if command["commands"]:
        line += " " + italic("COMMAND")
    return line


def command_part(words, command):
    """Options, arguments and examples of one command, with those below it as sections of their own."""
    if command["arguments"] or command["options"]:
        yield ".SH OPTIONS"
        yield from items([(italic(row["name"]), sentence(row["description"]))
                          for row in command["arguments"]])
        yield from items([(option_term(row), sentence(row["description"])) for row in command["options"]])
    if command["examples"]:
        yield ".SH EXAMPLES"
        yield from example_block(command["examples"])
    for below in command["commands"]:
        yield f'.SH "COMMAND {below["name"].upper()}"'
        yield synopsis(words + [below["name"]], below)
        yield ".PP"
        yield escaped(sentence(below["description"]))
        if below["notes"]:
            yield ".PP"
            yield escaped(below["notes"])
        yield from items([(italic(row["name"]), sentence(row["description"])) for row in below["arguments"]])
        yield from items([(option_term(row), sentence(row["description"])) for row in below["options"]])
        if below["examples"]:
            yield ".PP"
            yield "Examples:"
            yield ".PP"
            yield from example_block(below["examples"])


def library_options(tree):
    """The options of the library, by section; they are valid in ARGS."""
    yield ".SH OPTIONS OF THE LIBRARY"
    yield escaped("ARGS consist of one action and its options. A name begins with two dashes; a unique "
                  "abbreviation of it is accepted with a warning.")
    for section in dict.fromkeys(row["section"] for row in tree["library options"]):
        yield f'.SS "{section[:1].upper()}{section[1:]}"'
        for row in tree["library options"]:
            if row["section"] != section:
                continue
            value = "|".join(row["keywords"]) or (row["form"] if row["value"] else "")
            yield ".TP"
            yield bold("--" + row["name"]) + (" " + italic(value or "VALUE") if row["value"] else "")
            yield escaped(sentence(row["meaning"]))


def exit_statuses(tree):
    yield ".SH EXIT STATUS"
    yield from items([(bold(str(row["value"])), sentence(row["meaning"])) for row in tree["exit statuses"]])


def see_also(names):
    yield ".SH SEE ALSO"
    yield ", ".join(f"\\fB{escaped(name)}\\fR(1)" for name in names)


def command_page(tree, command):
    name = "ispctl-" + command["name"]
    yield from heading(name, tree["version"], "ispctl")
    yield ".SH NAME"
    yield f"{escaped(name)} \\- {escaped(command['description'].strip().rstrip('.'))}"
    yield ".SH SYNOPSIS"
    if command["commands"]:
        yield "\n.br\n".join([synopsis(["ispctl", command["name"], below["name"]], below)
                              for below in command["commands"]])
    else:
        yield synopsis(["ispctl", command["name"]], command)
    yield ".SH DESCRIPTION"
    yield escaped(sentence(command["description"]))
    if command["notes"]:
        yield ".PP"
        yield escaped(command["notes"])
    yield from command_part(["ispctl", command["name"]], command)
    if command["takes library options"]:
        yield from library_options(tree)
    yield from exit_statuses(tree)
    yield from see_also(["ispctl"])


def main_page(tree):
    yield from heading("ispctl", tree["version"], "ispctl")
    yield ".SH NAME"
    yield "ispctl \\- programs the firmware of display scalers through the ScalerIsp library"
    yield ".SH SYNOPSIS"
    yield synopsis(["ispctl"], tree["command"])
    yield ".SH DESCRIPTION"
    yield escaped(sentence(tree["command"]["description"]))
    yield ".SH COMMANDS"
    yield from items([(bold(row["name"]), sentence(row["description"]))
                      for row in tree["command"]["commands"]])
    yield from command_part(["ispctl"], {**tree["command"], "commands": []})
    yield ".SH ENVIRONMENT"
    yield from items([(bold(name), text) for name, text in ENVIRONMENT])
    yield from exit_statuses(tree)
    yield from see_also(["ispctl-" + row["name"] for row in tree["command"]["commands"]])


def pages(tree):
    """{file name: text}"""
    made = {"ispctl.1": main_page(tree)}
    for command in tree["command"]["commands"]:
        made[f"ispctl-{command['name']}.1"] = command_page(tree, command)
    return {name: "\n".join(lines) + "\n" for name, lines in made.items()}
