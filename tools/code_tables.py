"""Result codes of the library, exit statuses of ispctl and its findings as tables for the pages."""

import ast
import re

from tracked_files import ROOT

STRING = r'"(?:[^"\\]|\\.)*"'
CODE = re.compile(rf"X\((SCALER_ISP_\w+), (-?\w+), ({STRING}), *\\\n *({STRING}), *\\\n *({STRING})\)")
STATUS = re.compile(rf"X\(kExit\w+, (\d+), ({STRING})\)")
FINDING = re.compile(rf"^ISPCTL_FINDING\(({STRING}), (\w+),\s+({STRING}),\s+({STRING})\)", re.MULTILINE)


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


def findings():
    """Names with what they say; what differs from line to line appears as …"""
    yield "| name | class | message |\n|---|---|---|\n"
    for name, kind, message, _ in FINDING.findall(text_of("ispctl/line/findings.def")):
        shown = re.sub(r"\{\w+\}", "…", ast.literal_eval(message)).replace("|", "\\|")
        yield f"| `{ast.literal_eval(name)}` | {kind.lower()} | {shown} |\n"


TABLES = {"result codes": result_codes, "exit statuses": exit_statuses, "findings": findings}
