"""Result codes of the library, exit statuses of ispctl and its findings as tables for the pages."""

import ast
import re

from tracked_files import ROOT

STRING = r'"(?:[^"\\]|\\.)*"'
CODE = re.compile(rf"X\((SCALER_ISP_\w+), (-?\w+), ({STRING}), *\\\n *({STRING}), *\\\n *({STRING})\)")
STATUS = re.compile(rf"X\(kExit\w+, (\d+), ({STRING})\)")
FINDING = re.compile(rf"^ISPCTL_FINDING\(({STRING}), (\w+),\s+({STRING}),\s+({STRING})\)", re.MULTILINE)

DOCTOR_FINDING = re.compile(rf"^ISPCTL_DOCTOR_FINDING\(\w+, ({STRING}), (\w+),\s+({STRING}(?:\s+{STRING})*),",
                            re.MULTILINE)
EDID_FINDING = re.compile(rf"^ISPCTL_EDID_FINDING\(\w+, ({STRING}),\s+({STRING})\)", re.MULTILINE)


def text_of(name):
    return (ROOT / name).read_text()


def result_codes():
    yield "| code | name | meaning | likely cause | remedy |\n|---|---|---|---|---|\n"
    for name, value, *texts in CODE.findall(text_of("scaler_isp/abi/ResultCodes.h")):
        number = int(value, 0)
        shown = str(number) if number <= 0 else f"0x{number:X}"
        meaning, cause, remedy = map(ast.literal_eval, texts)
        yield f"| {shown} | `{name}` | {meaning} | {cause} | {remedy} |\n"


def exit_statuses():
    yield "| status | meaning |\n|---|---|\n"
    for value, meaning in STATUS.findall(text_of("ispctl/ExitStatus.h")):
        yield f"| {value} | {ast.literal_eval(meaning)} |\n"


def shown_message(message):
    """What differs from line to line appears as …"""
    shown = re.sub(r"\{[^}]*\}", "…", ast.literal_eval(f"({message})")).replace("|", "\\|")
    return "(the reason)" if shown == "…" else shown


def findings():
    yield "| name | class | message |\n|---|---|---|\n"
    for name, kind, message, _ in FINDING.findall(text_of("ispctl/line/findings.def")):
        yield f"| `{ast.literal_eval(name)}` | {kind.lower()} | {shown_message(message)} |\n"


def doctor_findings():
    yield "| name | class | message |\n|---|---|---|\n"
    for name, kind, message in DOCTOR_FINDING.findall(text_of("ispctl/doctor/findings.def")):
        yield f"| `{ast.literal_eval(name)}` | {kind.lower()} | {shown_message(message)} |\n"


def edid_findings():
    """Problems first: the table names them before the comment that begins the remarks."""
    yield "| name | class | message |\n|---|---|---|\n"
    problems, remarks = text_of("ispctl/edid/findings.def").split("// Remarks", 1)
    for kind, text in (("problem", problems), ("remark", remarks)):
        for name, message in EDID_FINDING.findall(text):
            yield f"| `{ast.literal_eval(name)}` | {kind} | {shown_message(message)} |\n"


TABLES = {"result codes": result_codes, "exit statuses": exit_statuses, "findings": findings,
          "doctor findings": doctor_findings, "edid findings": edid_findings}
