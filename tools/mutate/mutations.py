"""The changes that are made, one at a time: operators, bounds, constants, texts, statements."""

import dataclasses
import difflib
import re

from cpp_tokens import closing, tokens_of

# clang-format sets a binary operator off on both sides, and never a bracket of a template.
BINARY = {
    "==": ("operator", "!="), "!=": ("operator", "=="), "&&": ("operator", "||"),
    "||": ("operator", "&&"), "+": ("operator", "-"), "-": ("operator", "+"), "*": ("operator", "/"),
    "/": ("operator", "*"), "%": ("operator", "*"), "&": ("operator", "|"), "|": ("operator", "&"),
    "^": ("operator", "|"), ">>": ("operator", "<<"), "<<": ("operator", ">>"),
    "+=": ("operator", "-="), "-=": ("operator", "+="), "|=": ("operator", "&="),
    "&=": ("operator", "|="),
    "<": ("bound", "<="), "<=": ("bound", "<"), ">": ("bound", ">="), ">=": ("bound", ">"),
}
UNARY = {"!": "", "~": "", "++": "--", "--": "++"}
WORDS = {"true": "false", "false": "true"}
# The longest word of a text is replaced, but none that belongs to an escape sequence or a format.
WORD = re.compile(r"(?<![\\%{:])(?<!\\x)\b[A-Za-z]{2,}\b(?![^{}]*\})")
NUMBER = re.compile(r"(0[xX])?([\da-fA-F']+)([uUlLzZ]*)$")
NAMED_BY = {"operator", "::"}  # what follows is a name: an operator's, a destructor's
ENDS = {";", "{", "}"}
NO_STATEMENT = {
    "return", "throw", "case", "default", "using", "namespace", "class", "struct", "enum", "template",
    "typedef", "public", "private", "protected", "if", "for", "while", "do", "switch", "else", "try", "catch",
    "const", "constexpr", "static", "auto", "extern", "inline", "virtual", "explicit", "friend", "operator",
    "goto", "unsigned", "signed", "int", "bool", "char", "long", "short", "float", "double", "void",
    "wchar_t",
}


@dataclasses.dataclass(frozen=True)
class Mutation:
    """A change of one source: what is replaced in it by what."""

    path: str
    kind: str
    start: int
    end: int
    replacement: str
    source: str = dataclasses.field(repr=False, compare=False)

    def changed(self):
        return self.source[:self.start] + self.replacement + self.source[self.end:]

    def key(self):
        """What names the change wherever its lines move: the file, and the lines before and after."""
        first = self.source.rfind("\n", 0, self.start) + 1
        last = self.source.find("\n", self.end)
        last = len(self.source) if last < 0 else last
        before = self.source[first:last]
        after = self.source[first:self.start] + self.replacement + self.source[self.end:last]
        return self.path, " ".join(before.split()), " ".join(after.split())

    def line(self):
        return self.source.count("\n", 0, self.start) + 1

    def diff(self):
        return "\n".join(difflib.unified_diff(
            self.source.splitlines(), self.changed().splitlines(), self.path, self.path, lineterm="", n=2))


def changed_text(text):
    """A text that a reader would notice."""
    opening = text.index('"')
    if text[opening:] == '""':
        return text[:opening] + '"~"'
    words = sorted(WORD.finditer(text, opening + 1, len(text) - 1), key=lambda each: -len(each[0]))
    if words:
        return text[:words[0].start()] + "~" + text[words[0].end():]
    if "R" in text[:opening]:
        return None
    return text[:opening + 1] + "~" + text[opening + 1:]


def changed_number(text):
    found = NUMBER.match(text)
    if not found:
        return None
    digits = found[2].replace("'", "")
    if found[1]:
        return f"{found[1]}{int(digits, 16) + 1:X}{found[3]}"
    if not digits.isdigit() or digits.startswith("0") and len(digits) > 1:
        return None
    return f"{int(digits) + 1}{found[3]}"


def literal_changes(token):
    if token.kind == "text":
        yield "text", changed_text(token.text)
    elif token.kind == "character":
        prefix = token.text[:token.text.index("'")]
        yield "constant", prefix + (r"'\x7f'" if token.text != r"'\x7f'" else "'a'")
    elif token.kind == "number":
        yield "constant", changed_number(token.text)
    elif token.text in WORDS:
        yield "constant", WORDS[token.text]


def sign_changes(source, token):
    before, after = source[token.start - 1:token.start], source[token.end:token.end + 1]
    if token.text in BINARY and before.isspace() and after.isspace():
        yield BINARY[token.text]
    elif token.text in UNARY:
        yield "operator", UNARY[token.text]


def is_declaration(tokens):
    """Whether a statement declares a name: two names follow one another before anything is called."""
    depth, former = 0, None
    for token in tokens:
        if token.text in ("=", "(", "{") and depth == 0:
            return False
        depth += {"<": 1, ">": -1, ">>": -2}.get(token.text, 0) if token.kind == "sign" else 0
        if token.kind == "word" and depth <= 0 and former in ("word", "*", "&", "&&", ">"):
            return True
        former = token.text if token.kind == "sign" else token.kind
    return False


def statement_changes(tokens, index):
    """Without the statement that begins at index, or with the opposite of the condition there."""
    if tokens[index].text in ("if", "while") and tokens[index + 1].text == "(":
        last = closing(tokens, index + 1)
        condition = tokens[index + 2:last]
        if not any(token.text in (";", "=") for token in condition):
            return "condition", tokens[index + 2].start, tokens[last].start
        return None
    starts = index == 0 or tokens[index - 1].text in ENDS | {":"}
    first = tokens[index]
    if not starts or first.text in NO_STATEMENT or first.kind not in ("word", "sign"):
        return None
    if first.kind == "sign" and first.text not in ("++", "--", "*", "::"):
        return None
    depth = 0
    for last in range(index, len(tokens)):
        text = tokens[last].text if tokens[last].kind == "sign" else ""
        depth += (text in ("(", "[", "{")) - (text in (")", "]", "}"))
        if depth < 0:
            return None
        if text == ";" and depth == 0:
            break
        if text == "," and depth == 0:
            return None  # rather a row, or a list of bases
    whole = tokens[index:last]
    acts = len(whole) == 1 and first.text in ("break", "continue") or any(
        token.text in ("=", "(", "++", "--") or token.text in BINARY and token.text.endswith("=")
        for token in whole)
    if not acts or is_declaration(whole) or whole[-1].text in ("default", "delete"):
        return None
    return "statement", first.start, tokens[last].start


def mutations_of(path, source):
    """All changes of a source, in its order."""
    tokens = tokens_of(source)
    for index, token in enumerate(tokens):
        changes = literal_changes(token) if token.kind != "sign" else sign_changes(source, token)
        for kind, replacement in changes:
            if replacement is not None and tokens[index - 1].text not in NAMED_BY:
                yield Mutation(path, kind, token.start, token.end, replacement, source)
        found = statement_changes(tokens, index)
        if found:
            kind, start, end = found
            replacement = f"!({source[start:end]})" if kind == "condition" else ""
            yield Mutation(path, kind, start, end, replacement, source)
