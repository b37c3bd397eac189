"""What can be changed in a source, found by its tokens; and the source with all changes woven in, each behind its number.

A change is woven in so that nothing else moves: no line is added, no operand is evaluated twice or too early, no sign binds
otherwise.

    statement;   if (mutation::is(17)) {} else statement;
    a < b        a < mutation::Sign{17} < b
    !a           mutation::Negation{17} ->* a
    a && b       (((bool(a) != mutation::is(17)) && (bool(b) != mutation::is(17))) != mutation::is(17))
    5            (mutation::is(17) ? 6 : 5)
"""

import dataclasses
import difflib
import re
from collections.abc import Iterator

TOKEN = re.compile(
    r"""(?P<skip>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n]*\\\n)*[^\n]*)
    |(?P<text>R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|(?:u8|[uUL])?"(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)+')
    |(?P<number>(?:0[xX][0-9a-fA-F']+|\d[\d']*(?:\.\d+)?(?:[eE][+-]?\d+)?)[uUlLzZfF]*)
    |(?P<word>[A-Za-z_]\w*)
    |(?P<sign>->\*|<=>|->|::|<<=|>>=|<<|>>|<=|>=|==|!=|&&|\|\||\+\+|--|[-+*/%&|^]=|.)""",
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)
SIGNS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "+": "-", "-": "+"}
JOINTS = {"&&": "||", "||": "&&"}
TRUTHS = {"true": "false", "false": "true"}
LEAVING = {"return", "co_return", "throw", "continue", "break"}
CONTROL = {"if", "else", "for", "while", "do", "switch", "case", "default", "try", "using", "namespace", "template"}
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "|=", "&=", "^=", "++", "--"}
OPEN, CLOSE = {"(", "{", "["}, {")", "}", "]"}
# What no operand of && or || reaches beyond.
BOUNDS = ASSIGNMENTS | {";", ",", "?", ":", "return", "co_return", "co_yield", "throw", "case", "requires"}


@dataclasses.dataclass(frozen=True)
class Token:
    kind: str
    text: str
    begin: int
    end: int


@dataclasses.dataclass(frozen=True)
class Insertion:
    """What is written in the place of a piece of the source, mostly of nothing. Of several in one place, the one that belongs
    to the widest change is outermost."""

    begin: int
    end: int
    text: str
    width: int
    is_closing: bool = False

    def order(self) -> tuple:
        return self.begin, not self.is_closing, self.width if self.is_closing else -self.width, self.end


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str
    # The line as it is written, and what becomes of it: by these an explanation knows it.
    line: str
    what: str
    # As one would change it by hand; and how it is woven in, behind its number.
    begin: int
    end: int
    instead: str
    number: int
    weaves: tuple[Insertion, ...]

    @property
    def key(self) -> tuple[str, str, str]:
        return self.file, self.line, self.what

    @property
    def is_constant(self) -> bool:
        """It decides once, for all tests that come later."""
        return any(weave.text == "const" for weave in self.weaves)

    def diff(self, source: str) -> str:
        changed = source[: self.begin] + self.instead + source[self.end :]
        lines = difflib.unified_diff(source.splitlines(True), changed.splitlines(True), self.file, self.file, n=3)
        return f"{self.what}\n{''.join(lines)}"


def tokens(source: str) -> list[Token]:
    found = [Token(m.lastgroup, m[0], m.start(), m.end()) for m in TOKEN.finditer(source)]
    return [dataclasses.replace(token, kind="text" if token.kind == "mark" else token.kind) for token in found
            if token.kind != "skip"]  # fmt: skip


def end_of_statement(all_tokens: list[Token], first: int) -> int | None:
    """The semicolon that ends what begins there."""
    depth = 0
    for index in range(first, len(all_tokens)):
        text = all_tokens[index].text
        depth += (text in OPEN) - (text in CLOSE)
        if depth < 0:
            return None
        if text == ";" and depth == 0:
            return index
    return None


def is_action(statement: list[Token]) -> bool:
    """A call or an assignment: names that are joined, and then a parenthesis or a sign. Two names side by side declare."""
    if statement[0].text in CONTROL:
        return False
    if statement[0].text in {"co_await", "emit"}:
        statement = statement[1:]
    depth = 0
    for before, token in zip(statement, statement[1:]):
        if depth == 0 and before.kind == "word" and token.kind == "word":
            return False
        if depth == 0 and token.text in ASSIGNMENTS:
            return True
        # A type's arguments begin a declaration, too.
        if depth == 0 and token.text in {"<", "*", "&"}:
            return False
        depth += (token.text in OPEN) - (token.text in CLOSE)
    return len(statement) > 2 and statement[-1].text == ")"


def is_spaced(source: str, token: Token) -> bool:
    """The formatter sets signs between two values apart, and no others: not those of templates, references and signs
    of numbers."""
    return source[token.begin - 1] in " \n" and source[token.end] in " \n"


def operands(all_tokens: list[Token], at: int) -> tuple[int, int]:
    """Where the left one of && or || begins, and where the right one ends."""
    bounds = BOUNDS | ({"||"} if all_tokens[at].text == "&&" else set())
    depth, left = 0, at - 1
    while left >= 0:
        text = all_tokens[left].text
        depth += (text in CLOSE) - (text in OPEN)
        if depth < 0 or (depth == 0 and text in bounds):
            break
        left -= 1
    depth, right = 0, at + 1
    while right < len(all_tokens):
        text = all_tokens[right].text
        depth += (text in OPEN) - (text in CLOSE)
        if depth < 0 or (depth == 0 and text in bounds | {all_tokens[at].text}):
            break
        right += 1
    return all_tokens[left + 1].begin, all_tokens[right - 1].end


def constant(all_tokens: list[Token], at: int) -> list[tuple]:
    """What makes a constant of the statement, which a value that depends on a number is not."""
    for token in reversed(all_tokens[:at]):
        if token.text in {";", "{", "}"}:
            break
        if token.text == "constexpr":
            return [(token.begin, token.end, "const", False)]
    return []


def bracketed(operand: str) -> str:
    return f"({operand})" if "&&" in operand or "||" in operand else operand


def statement_gone(begin: int, end: int, what: str) -> tuple:
    return begin, what, (begin, end, "{}"), [(begin, begin, "if (mutation::is({0})) {{}} else ", False)]


def found(source: str) -> Iterator[tuple]:
    """Where it is; what becomes of it; from where to where one would write what; and what is woven in, with {0} for its number."""
    all_tokens = tokens(source)
    inside: list[str] = []
    for index, token in enumerate(all_tokens):
        if token.text in OPEN:
            inside.append(token.text)
        elif token.text in CLOSE and inside:
            inside.pop()
        before = all_tokens[index - 1].text if index else ""
        after = all_tokens[index + 1].text if index + 1 < len(all_tokens) else ""
        here = (token.begin, token.end)
        # A base class's, a default's, a template's: no decision.
        if before in {"template", "operator", "explicit"}:
            continue
        if token.text in SIGNS and is_spaced(source, token):
            # Nothing can be taken from a text.
            if token.text == "+" and '"' in (before[-1], after[0]):
                continue
            other = SIGNS[token.text]
            weave = [(token.begin, token.begin, f"{token.text} mutation::Sign{{{{{{0}}}}}} ", False)]
            yield token.begin, f"{token.text} becomes {other}", (*here, other), weave
        elif token.text in JOINTS and is_spaced(source, token):
            other = JOINTS[token.text]
            begin, end = operands(all_tokens, index)
            weave = [
                (begin, begin, "(((bool(", False),
                (*here, f") != mutation::is({{0}})) {token.text} (bool(", False),
                (end, end, ") != mutation::is({0}))) != mutation::is({0}))", True),
            ]
            left, right = (bracketed(text) for text in (source[begin : token.begin].rstrip(), source[token.end : end].lstrip()))
            yield token.begin, f"{token.text} becomes {other}", (begin, end, f"({left} {other} {right})"), weave
        elif token.text in TRUTHS:
            other = TRUTHS[token.text]
            weave = [(*here, f"(mutation::is({{0}}) ? {other} : {token.text})", False), *constant(all_tokens, index)]
            yield token.begin, f"{token.text} becomes {other}", (*here, other), weave
        elif token.text == "!" and "!" not in (before, after):
            weave = [(*here, "mutation::Negation{{{0}}} ->* ", False)]
            yield token.begin, "a negation is gone", (*here, ""), weave
        elif token.kind == "number" and re.fullmatch(r"\d[\d']*[uUlL]*", token.text):
            digits = re.match(r"[\d']+", token.text)[0]
            if digits.startswith("0") and len(digits) > 1:
                continue
            for step in (1, -1):
                value = int(digits.replace("'", "")) + step
                if value >= 0:
                    instead = str(value) + token.text[len(digits) :]
                    weave = [(token.begin, token.begin, f"(mutation::is({{0}}) ? {instead} : ", False),
                             (token.end, token.end, ")", True), *constant(all_tokens, index)]  # fmt: skip
                    yield token.begin, f"{token.text} becomes {instead}", (*here, instead), weave
        # No statement is in the head of a loop.
        elif token.kind == "word" and before in {";", "{", "}", ")", "else"} and inside[-1:] in ([], ["{"]):
            last = end_of_statement(all_tokens, index)
            if last is None:
                continue
            end = all_tokens[last].end
            if token.text in LEAVING:
                if before == ")":
                    yield statement_gone(token.begin, end, f"no {token.text} here")
            elif is_action(all_tokens[index:last]):
                yield statement_gone(token.begin, end, "a statement is gone")


def mutants_of(file: str, source: str, first: int) -> list[Mutant]:
    """All of a source, in order, with numbers from that one on."""
    all_of_it: list[Mutant] = []
    on_line: dict[tuple[int, str], int] = {}
    for number, (place, what, (begin, end, instead), weave) in enumerate(found(source), first):
        start = source.rfind("\n", 0, place) + 1
        line = " ".join(source[start : source.index("\n", place)].split())
        on_line[start, what] = on_line.get((start, what), 0) + 1
        if on_line[start, what] > 1:
            what += f" ({on_line[start, what]})"
        weaves = tuple(Insertion(a, b, text.format(number), end - begin, closes) for a, b, text, closes in weave)
        all_of_it.append(Mutant(file, line, what, begin, end, instead, number, weaves))
    return all_of_it


def woven(source: str, mutants: list[Mutant], header: str) -> str:
    """The source with all of these behind their numbers, and each line where it was."""
    if not mutants:
        return source
    pieces, at = [f'#include "{header}"\n#line 1\n'], 0
    for each in sorted((weave for mutant in mutants for weave in mutant.weaves), key=Insertion.order):
        if each.begin < at:
            # Several are of one constant.
            continue
        pieces += [source[at : each.begin], each.text]
        at = each.end
    return "".join([*pieces, source[at:]])
