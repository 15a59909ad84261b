"""The changes that can be made to a C++ file, one token, condition or statement at a time.

Not a parser: it uses a tokenizer, and relies on clang-format, which puts spaces around binary operators
but not around the brackets of templates.
"""

import re
from bisect import bisect_right
from collections import defaultdict
from collections.abc import Iterable, Iterator
from dataclasses import dataclass

TOKEN = re.compile(
    r"""
    (?P<skipped>//[^\n]*|/\*.*?\*/|^\#(?:[^\n]*\\\n)*[^\n]*)
  | (?P<raw>\bR"\(.*?\)")
  | (?P<string>"(?:\\.|[^"\\])*")
  | (?P<char>'(?:\\.|[^'\\])')
  | (?P<number>0[xX][\da-fA-F]+|\d+(?:'\d+)*(?:\.\d+)?(?:[eE][-+]?\d+)?)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign>->\*|\.\.\.|::|->|\+\+|--|[-+*/%&|^=!<>]=|&&|\|\||[^\s\w])
    """,
    re.VERBOSE | re.MULTILINE | re.DOTALL,
)

# Operators between two operands, and what replaces them.
BINARY = {
    "==": ("!=",),
    "!=": ("==",),
    "<": ("<=", ">="),
    "<=": ("<", ">"),
    ">": (">=", "<="),
    ">=": (">", "<"),
    "&&": ("||",),
    "||": ("&&",),
    "+": ("-",),
    "-": ("+",),
    "*": ("/",),
    "/": ("*",),
    "%": ("*",),
    "&": ("|",),
    "|": ("&",),
    "+=": ("-=",),
    "-=": ("+=",),
}
UNARY = {"++": "--", "--": "++", "!": ""}
ARITHMETIC = "+ - * / % & | += -= ++ --".split()

# What precedes an operand of && and ||, or a condition, and what follows it.
OPENERS = {"(", "[", "{", "}", ",", ";", "=", "+=", "-=", "return", "?", ":"}
CLOSERS = {")", "]", "}", ",", ";", "?", ":"}
DECLARATION = re.compile(
    r"(using|static_assert)\b"
    r"|((unsigned|const|constexpr) )*(?!delete\b)[\w:]+(<[^;=(]*>)?[*&]* \w+[ ;=({[]"
)
# Functions whose arguments may be exchanged, in the way we use them.
SYMMETRIC = {"min", "max", "strcmp"}
HEADED = {"if", "for", "while", "switch"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self) -> int:
        return self.start + len(self.text)


@dataclass(frozen=True)
class Mutant:
    """One change: the text from `start` to `end` of a file becomes `new`."""

    file: str
    kind: str
    start: int
    end: int
    new: str
    line: int
    """Where the change begins, counted from 1; for people only."""
    key: tuple[str, ...]
    """File, function, line before, lines removed, lines added: unaffected when lines move."""
    marked: str
    """The kind, and the line with the change in it: "integer: a = {1 -> 2};"."""

    def applied(self, text: str) -> str:
        return text[: self.start] + self.new + text[self.end :]

    def __str__(self) -> str:
        file, function, before, old, new = self.key
        lines = [f"{file}: {function}", " " + before]
        lines += ["-" + line for line in old.splitlines()]
        lines += ["+" + line for line in new.splitlines()]
        return "\n".join(lines)


def tokenize(text: str) -> list[Token]:
    found = TOKEN.finditer(text)
    return [Token(m.lastgroup, m[0], m.start()) for m in found if m.lastgroup != "skipped"]


def enumerators(text: str) -> Iterator[list[str]]:
    """The names of each enumeration."""
    for body in re.findall(r"^enum\b[^{;]*\{(.*?)\}", text, re.DOTALL | re.MULTILINE):
        yield re.findall(r"\b[A-Za-z_]\w*", re.sub(r"//.*|=[^,]*", "", body))


def constants(text: str) -> Iterator[list[str]]:
    """The names of the constants of a file, type by type."""
    by_type = defaultdict(list)
    found = re.findall(r"^constexpr ([^={;]*?)\b(c\w+)(\[\])? =", text, re.MULTILINE)
    for type_name, name, array in found:
        by_type[type_name + array].append(name)
    yield from by_type.values()


def next_names(groups: Iterable[list[str]]) -> dict[str, str]:
    """Each name's neighbour: the next one in its group, or the previous one for the last."""
    neighbours = {}
    for names in groups:
        for place, name in enumerate(names):
            if len(names) > 1:
                neighbours[name] = names[place + 1] if name != names[-1] else names[-2]
    return neighbours


def changed_text(literal: str) -> str:
    """The literal with one change: in the last letter or digit that is not part of a conversion."""
    body = literal[1:-1]
    # Conversions and escapes must not change.
    plain = re.sub(r"\\.|%[-0-9.]*[a-z]", lambda m: "\0" * len(m[0]), body)
    candidates = re.findall(r"[A-Za-z0-9]", plain) or re.findall(r"[^\0 ]", plain)
    if not candidates:
        return f'"x{body}"'
    old = candidates[-1]
    place = plain.rindex(old)
    if old.isalnum():
        new = {"z": "a", "Z": "A", "9": "0"}.get(old, chr(ord(old) + 1))
    else:
        new = "x"
    return f'"{body[:place]}{new}{body[place + 1:]}"'


class File:
    """All that can be changed in one file."""

    def __init__(self, name: str, text: str, neighbours: dict[str, str] | None = None):
        """`neighbours`: the enumerators known from other files, see next_names."""
        self.name = name
        self.text = text
        self.tokens = tokenize(text)
        self.neighbours = {
            **(neighbours or {}),
            **next_names(enumerators(text)),
            **next_names(constants(text)),
        }
        self.match = self._match_brackets()
        self.blocks = {i for i, token in enumerate(self.tokens) if self._opens_block(i)}
        self.fixed = self._fixed()
        self.line_starts = [0] + [m.end() for m in re.finditer("\n", text)]

    def mutants(self) -> list[Mutant]:
        """In the order of the text, without duplicates."""
        changes = [
            *self._tokens(),
            *self._operands(),
            *self._conditions(),
            *self._statements(),
            *self._elements(),
            *self._arguments(),
        ]
        found = {}
        for kind, start, end, new in sorted(changes, key=lambda change: change[1:]):
            fixed = any(first <= start < last for first, last in self.fixed)
            if new != self.text[start:end] and not fixed:
                mutant = self._mutant(kind, start, end, new)
                found.setdefault(mutant.applied(self.text), mutant)
        return list(found.values())

    def _mutant(self, kind: str, start: int, end: int, new: str) -> Mutant:
        first = self.line_starts[bisect_right(self.line_starts, start) - 1]
        last = self.text.find("\n", max(start, end - 1))
        last = len(self.text) if last < 0 else last
        function = ""
        for m in re.finditer(r"^(?!namespace\b|public:|private:|protected:)\w.*", self.text, re.M):
            if m.start() > first:
                break
            function = m[0]
        before = self.text[:first].rstrip().rpartition("\n")[2]
        old = self.text[first:last]
        changed = self.text[first:start] + new + self.text[end:last]
        key = (self.name, function, *(_trimmed(part) for part in (before, old, changed)))
        line = self.text.count("\n", 0, start) + 1
        change = "{" + self.text[start:end] + " -> " + new + "}"
        marked = self.text[first:start] + change + self.text[end:last]
        marked = f"{kind}: {_trimmed(marked)}".replace("\n", " ")
        return Mutant(self.name, kind, start, end, new, line, key, marked)

    # --- the shape of the file ---

    def _match_brackets(self) -> dict[int, int]:
        match = {}
        open_places = []
        for i, token in enumerate(self.tokens):
            if token.kind == "sign" and token.text in "([{":
                open_places.append(i)
            elif token.kind == "sign" and token.text in ")]}":
                match[i] = open_places.pop()
                match[match[i]] = i
        return match

    def _at(self, i: int) -> str:
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def _opens_block(self, i: int) -> bool:
        """Whether a bracket opens a block of statements; a block after a case does not count."""
        return self._at(i) == "{" and self._at(i - 1) in {")", "const", "override", "else", "do"}

    def _fixed(self) -> list[tuple[int, int]]:
        """Spans of text in which a change shows only at compile time: assertions, and the heads of
        templates."""
        fixed = []
        for i, token in enumerate(self.tokens):
            if token.text == "static_assert":
                fixed.append((token.start, self.tokens[self.match[i + 1]].end))
            elif token.text == "template" and self._at(i + 1) == "<":
                fixed.append((token.start, self.tokens[self._right(i, {">"}) + 1].end))
        return fixed

    def _is_binary(self, i: int) -> bool:
        token = self.tokens[i]
        around = self.text[token.start - 1] + self.text[token.end]
        return token.text in BINARY and around.isspace()

    # --- the changes, each a kind, a start, an end and a new text ---

    def _tokens(self) -> Iterator[tuple[str, int, int, str]]:
        for i, token in enumerate(self.tokens):
            if token.kind == "raw":
                yield from self._of_raw(token)
            for kind, new in self._of_token(i, token):
                yield kind, token.start, token.end, new

    def _of_raw(self, token: Token) -> Iterator[tuple[str, int, int, str]]:
        """A raw string contains JSON: its texts and numbers are changed."""
        start = token.start + len('R"(')
        for inner in tokenize(token.text[len('R"(') : -len(')"')]):
            if inner.kind in {"string", "number"}:
                for kind, new in self._of_token(-1, inner):
                    yield kind, start + inner.start, start + inner.end, new

    def _of_token(self, i: int, token: Token) -> Iterator[tuple[str, str]]:
        if token.kind == "number":
            yield from self._of_number(token.text)
        elif token.kind == "char":
            other = chr(ord(token.text[-2]) + 1)
            yield "character", token.text[:-2] + other + "'"
        elif token.kind == "string":
            yield "text", changed_text(token.text)
            if token.text.endswith('\\n"'):
                yield "text", token.text[:-3] + '"'
        elif token.text in {"true", "false"}:
            yield "boolean", "false" if token.text == "true" else "true"
        elif token.kind == "word":
            yield from self._of_name(i, token.text)
        elif self._is_binary(i):
            kind = "logic" if token.text in {"&&", "||"} else "comparison"
            kind = "arithmetic" if token.text in ARITHMETIC else kind
            for new in BINARY[token.text]:
                yield kind, new
        elif token.text in UNARY:
            yield "logic" if token.text == "!" else "arithmetic", UNARY[token.text]
        elif token.text == "-" and self.tokens[i + 1].kind == "number":
            yield "arithmetic", ""

    @staticmethod
    def _of_number(text: str) -> Iterator[tuple[str, str]]:
        text = text.replace("'", "")
        if re.fullmatch("0[0-7]+", text):
            for value in (int(text, 8) + 1, int(text, 8) - 1):
                yield "integer", f"0{value:o}"
        elif text.startswith(("0x", "0X")) or text.isdigit():
            for value in (int(text, 0) + 1, int(text, 0) - 1):
                yield "integer", str(value)
        else:
            for value in (float(text) + 1, float(text) - 1):
                yield "real", str(value)

    def _of_name(self, i: int, name: str) -> Iterator[tuple[str, str]]:
        # In its own definition, changing a name would only rename it.
        defined = self._at(i + 1) in {"=", "["} and self._at(i - 1) != "return"
        listed = self._at(i + 1) in {",", "}"} and self._in_enumeration(i)
        if name in self.neighbours and not defined and not listed:
            yield "name", self.neighbours[name]

    def _in_enumeration(self, i: int) -> bool:
        opened = max((j for j in self.match if j < i < self.match[j]), default=-1)
        return self._at(opened) == "{" and "enum" in (self._at(opened - n) for n in range(2, 7))

    def _operands(self) -> Iterator[tuple[str, int, int, str]]:
        """Removes each operand of && and ||."""
        for i, token in enumerate(self.tokens):
            if token.text not in {"&&", "||"} or not self._is_binary(i):
                continue
            weaker = {"||"} if token.text == "&&" else set()
            left = self._left(i, OPENERS | weaker | {token.text})
            right = self._right(i, CLOSERS | weaker | {token.text})
            yield "operand", self.tokens[i - 1].end, self.tokens[right].end, ""
            if self._at(left - 1) != token.text:
                yield "operand", self.tokens[left].start, self.tokens[i + 1].start, ""

    def _left(self, i: int, stops: set[str]) -> int:
        """The first token of the expression that ends before token i."""
        i -= 1
        while self._at(i) not in stops:
            i = self.match.get(i, i) - 1
        return i + 1

    def _right(self, i: int, stops: set[str]) -> int:
        """The last token of the expression that begins after token i."""
        i += 1
        while self._at(i) not in stops:
            i = self.match.get(i, i) + 1
        return i - 1

    def _conditions(self) -> Iterator[tuple[str, int, int, str]]:
        """Replaces each condition by true and by false; that of a loop only by false, which ends it."""
        for i, token in enumerate(self.tokens):
            if token.text == "?":
                first = self._left(i, OPENERS)
                yield from self._condition(first, i - 1, ("true", "false"))
            elif token.text in {"if", "while"} and self._at(i + 1) == "(":
                values = ("true", "false") if token.text == "if" else ("false",)
                yield from self._condition(i + 2, self.match[i + 1] - 1, values)
            elif token.text == "for" and self._at(i + 1) == "(":
                first = self._right(i + 1, {";", ")"}) + 2
                if first < self.match[i + 1]:
                    yield from self._condition(first, self._right(first, {";"}), ("false",))

    def _condition(
        self, first: int, last: int, values: tuple[str, ...]
    ) -> Iterator[tuple[str, int, int, str]]:
        start, end = self.tokens[first].start, self.tokens[last].end
        declares = any(self._at(i) == "=" for i in range(first, last))
        for value in values:
            yield "condition", start, end, f"{self.text[start:end]}; {value}" if declares else value

    def _statements(self) -> Iterator[tuple[str, int, int, str]]:
        """Removes each statement that is not a declaration."""
        for block in self.blocks:
            i = block + 1
            while i < self.match[block]:
                i = self._skip_head(i)
                if self._at(i) == "{":
                    i = self.match[i] + 1
                    continue
                last = self._right(i - 1, {";", "}"}) + 1
                if self._at(last) == ";" and self._may_go(i, last):
                    yield "statement", self.tokens[i].start, self.tokens[last].end, ";"
                i = last + 1

    def _skip_head(self, i: int) -> int:
        """Skips what may precede a statement: if (...), else, case ...: and the like."""
        while True:
            if self._at(i) in HEADED:
                i = self.match[i + 1] + 1
            elif self._at(i) in {"else", "do"}:
                i += 1
            elif self._at(i) in {"case", "default"}:
                i = self._right(i, {":"}) + 2
            else:
                return i

    def _may_go(self, first: int, last: int) -> bool:
        if self._at(first) == "return":
            # Reaching the end of a function without its return is undefined.
            block = self.match.get(last + 1, -1)
            return not (block in self.blocks and self._is_function(block))
        statement = self.text[self.tokens[first].start : self.tokens[last].end]
        return first < last and not DECLARATION.match(statement)

    def _is_function(self, block: int) -> bool:
        if self._at(block - 1) == ")":
            return self._at(self.match[block - 1] - 1) not in HEADED
        return self._at(block - 1) not in {"else", "do"}

    def _elements(self) -> Iterator[tuple[str, int, int, str]]:
        """Exchanges neighbouring elements of an array."""
        for i in range(len(self.tokens)):
            if self._at(i) == "{" and self._at(i - 1) == "=" and self._at(i - 2) == "]":
                yield from self._exchanged("row", self._split(i))

    def _arguments(self) -> Iterator[tuple[str, int, int, str]]:
        """Exchanges neighbouring arguments of a call."""
        inside = {i for block in self.blocks for i in range(block, self.match[block])}
        for i in sorted(inside):
            called = self.tokens[i - 1].kind == "word" or self._at(i - 1) == ">"
            if self._at(i) == "(" and called and self._at(i - 1) not in HEADED | SYMMETRIC:
                yield from self._exchanged("argument", self._split(i))

    def _split(self, opening: int) -> list[tuple[int, int]]:
        """The spans of text between the commas in a bracket."""
        spans = []
        i = opening
        while i + 1 < self.match[opening]:
            last = self._right(i, {",", ")", "}", ";"})
            spans.append((self.tokens[i + 1].start, self.tokens[last].end))
            i = last + 1
        return spans

    def _exchanged(
        self, kind: str, spans: list[tuple[int, int]]
    ) -> Iterator[tuple[str, int, int, str]]:
        for (start, end), (next_start, next_end) in zip(spans, spans[1:]):
            between = self.text[end:next_start]
            new = self.text[next_start:next_end] + between + self.text[start:end]
            yield kind, start, next_end, new


def _trimmed(lines: str) -> str:
    return "\n".join(line.strip() for line in lines.splitlines())


def find_mutants(files: dict[str, str]) -> list[Mutant]:
    """All mutants of the files, given as names and texts."""
    known = next_names(names for text in files.values() for names in enumerators(text))
    return [m for name, text in files.items() for m in File(name, text, known).mutants()]
