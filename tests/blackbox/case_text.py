"""Escapes and macros of the case files; run_cases.py describes them."""

import re

_NAMED = {"e": b"\x1b", "0": b"\0", "t": b"\t", "r": b"\r", "n": b"\n", "s": b" ", "\\": b"\\"}
_SHOWN = {0x1B: "\\e", 0: "\\0", 9: "\\t", 13: "\\r", 0x5C: "\\\\"}


def unescape(text):
    """The bytes that a text of a case file stands for. A final \\c is the caller's business."""
    out = bytearray()
    i = 0
    while i < len(text):
        if text[i] != "\\":
            out += text[i].encode("utf-8")
            i += 1
        elif text[i + 1 : i + 2] == "x":
            out.append(int(text[i + 2 : i + 4], 16))
            i += 4
        elif text[i + 1 : i + 2] in _NAMED:
            out += _NAMED[text[i + 1]]
            i += 2
        else:
            raise ValueError("unknown escape in: " + text)
    return bytes(out)


def block_bytes(lines):
    """Lines of a block to bytes: each ends with a line feed, unless it ends with \\c."""
    out = b""
    for line in lines:
        out += unescape(line[:-2]) if line.endswith("\\c") else unescape(line) + b"\n"
    return out


def escape_line(data):
    """One line of output, visible; bytes that are no UTF-8 as \\xHH, a final space as \\s."""
    text = ""
    for char in data.decode("utf-8", "surrogateescape"):
        code = ord(char)
        if 0xDC80 <= code <= 0xDCFF:
            text += "\\x%02x" % (code - 0xDC00)
        elif code in _SHOWN:
            text += _SHOWN[code]
        elif code < 0x20 or code == 0x7F:
            text += "\\x%02x" % code
        else:
            text += char
    return text[:-1] + "\\s" if text.endswith(" ") else text


def escape_block(data):
    """Bytes to the lines of a block."""
    if not data:
        return []
    pieces = data.split(b"\n")
    last = pieces.pop()
    lines = [escape_line(piece) for piece in pieces]
    return lines + [escape_line(last) + "\\c"] if last else lines


_REPEAT = re.compile(r"@REPEAT:(\d+):([^@]*)@")
_SEQ = re.compile(r"@SEQ:(\d+):(\d+):([^@]*)@")
_PAD = re.compile(r"@PAD:(\d+)@")
_FILL = re.compile(r"@FILL-LINE:(\d+)@")


def _sequence(match):
    return match[3].join(str(n) for n in range(int(match[1]), int(match[2]) + 1))


def _pad(text):
    """Each @PAD:n@ becomes letters p, so that the word it ends has n bytes."""
    while True:
        match = _PAD.search(text)
        if not match:
            return text
        before = text[: match.start()]
        word = re.split(r'[ ="]', before)[-1]
        missing = int(match[1]) - len(word.encode("utf-8"))
        if missing < 0:
            raise ValueError("nothing to pad: %s is longer than %s bytes" % (word, match[1]))
        text = before + "p" * missing + text[match.end() :]


def expand(text, macros):
    """Replaces the macros of one line. @ANY@ stays for the comparison."""
    for _ in range(4):  # a definition may use others
        for name, value in macros.items():
            text = text.replace("@" + name + "@", value)
    text = _SEQ.sub(_sequence, text)
    text = _REPEAT.sub(lambda match: match[2] * int(match[1]), text)
    text = _pad(text)
    match = _FILL.search(text)
    if match:
        rest = (text[: match.start()] + text[match.end() :]).removeprefix("call ")
        text = text.replace(match[0], "p" * (int(match[1]) - len(unescape(rest))))
    return text


def _split_fields(line):
    """The words of a journal line, separated by spaces; spaces inside quotes do not separate."""
    return re.findall(r'(?:[^ "]|"(?:[^"\\]|\\.)*")+', line)


def usual_order(line):
    """A journal line with its fields sorted: their order carries no meaning."""
    words = _split_fields(line)
    if len(words) < 2 or "=" not in words[1]:
        return line
    return " ".join(words[:1] + sorted(words[1:]))


def matches(expected, actual):
    """Whether a line is the expected one; @ANY@ stands for any text within the line."""
    if "@ANY@" not in expected:
        return expected == actual
    pattern = ".*".join(re.escape(piece) for piece in expected.split("@ANY@"))
    return re.fullmatch(pattern, actual) is not None
