"""The two records as tables of their fields, for docs/records.md.

Offsets, sizes and defaults come from abi/*_fields.def, types and meanings from the headers: the comment
after a member ("///<"), or else the comment in front of the enumeration that is its type.
"""

import re

from tracked_files import ROOT

HEADERS = ("CommandSetting.h", "DigitalSignArgs.h", "CommTypes.h")
STRUCT = re.compile(r"^typedef struct (\w+) \{\n(.*?)^\} \1;", re.DOTALL | re.MULTILINE)
MEMBER = re.compile(r"^ {4}(\w+) (\w+)(\[\w+\])?;(?:\s*///<\s*(.*))?$")
ENUMERATION = re.compile(r"(?P<comment>(?:^/// [^\n]*\n)+)^SCALER_ISP_ENUM_TYPE\((?P<name>\w+)\);\n"
                         r"enum SCALER_ISP_ENUM_VALUES\(\w+\) \{(?P<values>.*?)\};", re.DOTALL | re.MULTILINE)
VALUE = re.compile(r"(\w+) = (\d+)")
ROW = re.compile(r"^SCALER_ISP_(SIGN_FIELD|FIELD|BANK_FIELD|PADDING|BANK_PADDING|BANK_ENTRIES)\((.*)\)$",
                 re.MULTILINE)
COMMAND_RECORD = "STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING"
SIGN_RECORD = "STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS"
BANK_ENTRY = "STRUCT_C_STYLE_FW_BANK_SETTING"


def header_text():
    return "\n".join((ROOT / "scaler_isp/abi" / name).read_text() for name in HEADERS)


def structs():
    """{struct: {member: (type, array or "", comment or "")}}"""
    return {name: {match[2]: (match[1], match[3] or "", match[4] or "")
                   for match in map(MEMBER.match, body.splitlines()) if match}
            for name, body in STRUCT.findall(header_text())}


def enumerations():
    """{type: (comment, [(enumerator, value)])}"""
    found = {}
    for match in ENUMERATION.finditer(header_text()):
        comment = " ".join(line[4:] for line in match["comment"].splitlines())
        found[match["name"]] = (comment, VALUE.findall(match["values"]))
    return found


def field_of(known, record, path):
    """(type, array, comment) of a member such as stMapFw.ulFwCount."""
    *outer, last = path.split(".")
    for member in outer:
        record = known[record][member][0]
    return known[record][last]


def field_row(known, enums, record, path, offset, width, default):
    kind, array, meaning = field_of(known, record, path)
    if not meaning and kind in enums:
        meaning = enums[kind][0].rstrip(".")
        meaning = meaning[:1].lower() + meaning[1:]
    if not meaning:
        raise SystemExit(f"tools/record_tables.py: {path} has no comment in its header")
    return (f"| {offset} | 0x{int(offset):X} | {width} | `{kind}{array}` | `{path}` | {default} "
            f"| {meaning.replace('|', '/')} |\n")


def rows_of(name):
    text = (ROOT / "scaler_isp/abi" / name).read_text()
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)
    return [(kind, [item.strip() for item in row.split(",")]) for kind, row in ROW.findall(text)]


HEAD = ("| offset | hex | size | type | name | default | meaning |\n"
        "|---|---|---|---|---|---|---|\n")


def record(name, wanted):
    """Rows of one .def file: "fields" of the record, or of one "bank" entry."""
    known, enums = structs(), enumerations()
    yield HEAD
    for kind, row in rows_of(name):
        if kind.startswith("BANK_") == (wanted == "fields") and kind != "BANK_ENTRIES":
            continue
        if kind == "BANK_ENTRIES" and wanted == "fields":
            yield (f"| {row[0]} | 0x{int(row[0]):X} | {row[1]} | `{BANK_ENTRY}[512]` | `stMapFw.stFwBank` | "
                   "| one entry per bank, see below |\n")
        elif kind.endswith("PADDING"):
            yield f"| {row[0]} | 0x{int(row[0]):X} | {row[1]} | | padding | | belongs to no field |\n"
        elif kind == "SIGN_FIELD":
            yield field_row(known, enums, SIGN_RECORD, *row[1:4], "0")
        elif kind != "BANK_ENTRIES":
            yield field_row(known, enums, BANK_ENTRY if wanted == "bank" else COMMAND_RECORD, *row[1:5])


def values():
    """The named values of the enumerations in both records."""
    yield "| type | value | name |\n|---|---|---|\n"
    used = {kind for members in structs().values() for kind, _, _ in members.values()}
    for name, (_, rows) in enumerations().items():
        if name in used:
            for enumerator, value in rows:
                yield f"| `{name}` | {value} | `{enumerator}` |\n"


TABLES = {
    "command record": lambda: record("command_setting_fields.def", "fields"),
    "bank entry": lambda: record("command_setting_fields.def", "bank"),
    "sign record": lambda: record("digital_sign_fields.def", "fields"),
    "record values": values,
}
