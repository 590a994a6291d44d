"""Reads the options of the command line from args/OptionTable.cpp: the rows, and the comments that
say what they mean:

    // Options: dump                                        the purpose of the rows from here on
    // number | first address, else 0 | --dumpflash         value | meaning | with
    TextRow("dumpaddr", 50, &Args::strDumpAddr),
    EntryRow("fw2", 19, Firmware, 2), // like --fw1         told in the row of --fw1

A row without a value, or with keywords, has no value in its comment; the last part may be missing.
"""

import re

from tracked import ROOT

TABLE = "scaler_isp/args/OptionTable.cpp"
ROWS = re.compile(r"kOptions = \{\{\n(.*?)^\}\};", re.DOTALL | re.MULTILINE)
# One comment of whole lines, or one row with what stands behind it.
ITEM = re.compile(
    r"(?P<comment>(?:^ *//.*\n)+)"
    r"|^ *(?P<kind>\w+)Row\(\"(?P<name>\w+)\"(?P<rest>[^;]*?)\),(?: *// like --(?P<like>\w+))?\n",
    re.MULTILINE)
KEYWORDS = re.compile(r"OptionKeyword (\w+)\[\] =\s*\{(.*?)\};", re.DOTALL)
CONSOLE = re.compile(r'add_(?:option|flag)\(\s*"--(\w+)"')
BLOCKS = re.compile(r"<!-- table: options [^\n]*-->\n(.*?)<!-- end of table -->", re.DOTALL)
NAME = re.compile(r"--([A-Za-z0-9]+)")


class Entry:
    """One line of a table: the options it is about, and the texts of the other columns."""

    def __init__(self, name, purpose, value, meaning, also):
        self.names, self.purpose = [name], purpose
        self.value, self.meaning, self.also = value, meaning, also


def coded(text):
    """Options in a text set as code."""
    return re.sub(r"(--\w+(?: (?:--\w+|\d))*)", r"`\1`", text)


def read(source, count):
    """(entries in the order of the table, problems) of a source with so many rows."""
    words = {name: re.findall(r'\{"(\w+)"', body) for name, body in KEYWORDS.findall(source)}
    body = ROWS.search(source)[1]
    entries, rows, problems = {}, 0, []
    purpose, comment = "", ""
    for item in ITEM.finditer(body):
        if item["comment"]:
            lines = re.sub(r"^ *// ?", "", item["comment"], flags=re.MULTILINE).splitlines()
            if lines[0].startswith("Options: "):
                purpose = lines.pop(0).removeprefix("Options: ")
            comment = " ".join(lines)
            continue
        rows += 1
        name, kind = item["name"], item["kind"]
        if item["like"] in entries:
            entries[item["like"]].names.append(name)
            if comment:
                problems.append(f"{TABLE}: --{name} has two comments")
        else:
            takes_value = kind in ("Text", "Entry") or item["rest"].endswith(", true")
            parts = comment.split(" | ")
            keywords = next((listed for array, listed in words.items() if array in item["rest"]), [])
            value = parts.pop(0) if takes_value else ", ".join(f"`{word}`" for word in keywords)
            if len(parts) not in (1, 2) or not purpose or not all(parts):
                problems.append(f"{TABLE}: --{name} has no comment of the form value | meaning | with")
            parts += ["", ""]
            entries[name] = Entry(name, purpose, value, coded(parts[0]), coded(parts[1]))
        comment = ""
    if rows != count:
        problems.append(f"{TABLE}: {rows} rows are understood, there are {count}")
    return list(entries.values()), problems


def all_options():
    """read() of the library's table."""
    header = (ROOT / TABLE).with_suffix(".h").read_text()
    count = re.search(r"kOptionCount = (\d+)", header)[1]
    return read((ROOT / TABLE).read_text(), int(count))


def console_options():
    """Names of the console's own options."""
    return set(CONSOLE.findall((ROOT / "host/main.cpp").read_text()))


def problems_of_page(name, text, options, others):
    """Options that the page does not explain in a table, and names on it that are neither option nor
    one of the others."""
    explained = {option for block in BLOCKS.findall(text) for line in block.splitlines()
                 for option in NAME.findall(line.split(" | ")[0])}
    problems = [f"{name}: no table explains --{option}" for option in options
                if option not in explained]
    for number, line in enumerate(text.splitlines(), 1):
        short = "abbreviat" in line  # only there a name may lack its end
        for word in NAME.findall(line):
            if word in options or word in others:
                continue
            if not (short and any(option.startswith(word) for option in options)):
                problems.append(f"{name}:{number}: there is no option --{word}")
    return problems
