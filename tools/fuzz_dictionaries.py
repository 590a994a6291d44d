"""The words that a fuzzer puts into its inputs, taken from the tables of the project.

A word that a table gains is in the dictionary of the next run; nothing is listed twice.
"""

import re
import string

from tracked_files import ROOT

OPTION = re.compile(r'^\s*SCALER_ISP_(?:OPTION|ACTION)(?:_LIKE)?\("(\w+)"', re.MULTILINE)
KEYWORDS = re.compile(r'Keyword\(\d+, &Args::\w+, "([^"]+)"')
OPCODE = re.compile(r'^SCALER_ISP_OPCODE\((\d+), (\w+), \w+, "([^"]*)"', re.MULTILINE)
FIELD = re.compile(r'^SCALER_ISP_\w+_KEY\("(\w+)", (\w+)', re.MULTILINE)
WIDE = re.compile(r'L"(\w+)"')


def text_of(name):
    return (ROOT / name).read_text(encoding="utf-8")


def options():
    """Options as they are typed, and the keywords of their values."""
    tables = text_of("scaler_isp/args/actions.def") + text_of("scaler_isp/args/options.def")
    names = OPTION.findall(tables)
    assert len(names) > 80, f"only {len(names)} options were found in their tables"
    words = [word for group in KEYWORDS.findall(tables) for word in group.split()]
    return [f" --{name}" for name in names] + [f"--{name}=" for name in names] + words


def lines():
    files = [" @fw.bin", " @g.bin", " @s.sig", " @k.pem", " @IspSetting.ini", " @empty.bin"]
    values = ["auto", "prefix", "userdefined", "0x", "0xffffffff", "4294967296", " 010", '"', " -- "]
    return options() + files + values


def statements():
    """Names and codes of the opcodes, names of their operands, and the other words of a script text."""
    rows = OPCODE.findall(text_of("scaler_isp/common/script/script_opcodes.def"))
    assert len(rows) > 20, f"only {len(rows)} opcodes were found in their table"
    operands = {operand.split(":")[1] + " = " for _, _, names in rows for operand in names.split()}
    codes = [chr(int(code)) for code, _, _ in rows]
    return ([f"{name} " for _, name, _ in rows] + sorted(operands) + codes
            + ["const ", "bytes {", "ddc get ", "ddc set ", "data = {", "/*", "*/", "//", "0x"])


def keys(*sources):
    """The names of sections and keys in the code that reads them."""
    found = {word for source in sources for word in WIDE.findall(text_of(source))}
    assert found, f"no name was found in {sources}"
    return [f"{word}=" for word in sorted(found)] + [f"[{word}]\n" for word in sorted(found)]


def setting_names():
    fields = FIELD.findall(text_of("scaler_isp/settings/setting_keys.def"))
    assert fields, "no setting was found in its table"
    sections = {section for section, _ in fields}
    return [f"[{section}]\n" for section in sorted(sections)] + [f"{key}=" for _, key in fields]


def edid_words():
    return ["\x00\xff\xff\xff\xff\xff\xff\x00", "\x02\x03", "\x00\x00\x00\xfc\x00", "\x00\x00\x00\xfd\x00",
            "\x70\x12", "EDID:\n", "edid-decode (hex):\n", "00000000: ", "0000000 ", "*\n", "0x", "{", "}",
            "00 ff ff ff ff ff ff 00 ", "\\xff", "/*", "*/"]


DICTIONARIES = {
    "banks": lambda: ["f0", "f1", "b0", "b1", "0x", "\n", "r\xff"],
    "command_text": lambda: ["0x", "0X", "/*", "*/", "//", "{", "}", "#define ", "4294967296"],
    "edid": edid_words,
    "encoding": lambda: ["\xc3\xa4", "\xe2\x82\xac", "\xf0\x9f\x92\xbe", "\xed\xa0\x80", "\xc0\x80"],
    "engine": lambda: ["--", "-", "--ab", "--abc", "--ac", "--xa", "--x", "=", "::", "\n"],
    "json": lambda: ["\x1b[31m", "\x1b[m", "\xe2\x80\xae", "\xc2\x85", "\xf3\xa0\x80\x81", "&", "<"],
    "line": lines,
    "record": lambda: setting_names() + ["fwFileCount=", "_TargetBank=", "_Path=", "0xffffffff "],
    "script": statements,
    "settings": lambda: setting_names() + ["[S]\n", "K=", "=", "\\n", "\\0", "\r\n"],
    "split": lambda: ['"', '""', " ", '" "', ' "', '" '],
    "user_defined": lambda: keys("scaler_isp/args/FirmwareSearch.cpp") + ["[UserDefinedInfo]\n", "0x", "bin"],
}


def escaped(word):
    """In a dictionary a word is bytes; here a character is one byte."""
    plain = frozenset(string.ascii_letters + string.digits + " -_=.@[]{}:#")
    return "".join(c if c in plain else f"\\x{ord(c):02x}" for c in word)


def write_dictionary(target, path):
    words = DICTIONARIES[target]()
    path.write_text("".join(f'"{escaped(word)}"\n' for word in dict.fromkeys(words)), encoding="ascii")
    return len(words)
