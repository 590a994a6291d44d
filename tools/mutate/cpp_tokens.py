"""The tokens of a C++ source that are compiled here, and may be changed one at a time."""

import dataclasses
import re

TOKEN = re.compile(r"""
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<directive>^[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<text>(?:u8|[uUL])?R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|(?:u8|[uUL])?"(?:\\.|[^"\\\n])*")
  | (?P<character>(?:u8|[uUL])?'(?:\\.[^']*|[^'\\\n])')
  | (?P<number>\.?\d(?:'?[\w.])*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign><<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|\[\[|\]\]|[^\s\w])
""", re.VERBOSE | re.DOTALL | re.MULTILINE)
CONDITION = re.compile(r"#\s*(if|ifdef|ifndef|elif|else|endif)\b(.*)", re.DOTALL)
ELSEWHERE = ("__APPLE__", "_WIN32")


@dataclasses.dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


class CompiledHere:
    """Follows #if, as far as it asks for the system: what another one compiles, no test here can see."""

    def __init__(self):
        self.states = []

    def follow(self, directive):
        found = CONDITION.match(directive.strip())
        if not found:
            return
        word, rest = found[1], found[2]
        if word == "endif":
            self.states.pop()
        elif word == "else":
            self.states[-1] = {True: False, False: True, None: None}[self.states[-1]]
        elif word == "elif":
            self.states[-1] = None if self.states[-1] is None else not self.states[-1]
        elif any(name in rest for name in ELSEWHERE):
            self.states.append((word == "ifndef") or "!" in rest)
        else:
            self.states.append(None)  # not known: taken as compiled

    def __bool__(self):
        return False not in self.states


def all_tokens(source):
    here = CompiledHere()
    for found in TOKEN.finditer(source):
        kind = found.lastgroup if found.lastgroup != "mark" else "text"
        if kind == "directive":
            here.follow(found[0])
        elif kind != "comment" and here:
            yield Token(kind, found[0], found.start(), found.end())


def closing(tokens, index):
    """Index of the bracket that closes the one at index."""
    pairs = {"(": ")", "{": "}", "[": "]", "[[": "]]"}
    opening, depth = tokens[index].text, 0
    for position in range(index, len(tokens)):
        if tokens[position].kind != "sign":
            continue
        if tokens[position].text == opening:
            depth += 1
        elif tokens[position].text == pairs[opening]:
            depth -= 1
            if depth == 0:
                return position
    return len(tokens) - 1


def tokens_of(source):
    """Without what is no behaviour: attributes, static_assert, linkage."""
    tokens = list(all_tokens(source))
    kept, index = [], 0
    while index < len(tokens):
        token = tokens[index]
        if token.text == "[[":
            index = closing(tokens, index)
        elif token.text == "static_assert":
            index = closing(tokens, index + 1)
        elif not (token.kind == "text" and kept and kept[-1].text == "extern"):
            kept.append(token)
        index += 1
    return kept
