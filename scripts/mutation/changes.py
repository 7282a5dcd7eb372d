"""The small changes that can be made to a source text, one at a time."""

import random
import re
from dataclasses import dataclass

RELATION = {"<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
            "==": ("!=",), "!=": ("==",)}
LOGIC = {"&&": "||", "||": "&&"}
ARITHMETIC = {"+": "-", "-": "+", "*": "+", "/": "*", "%": "/", "<<": ">>", ">>": "<<",
              "&": "|", "|": "&", "+=": "-=", "-=": "+=", "|=": "&=", "&=": "|="}
FLIPPED = {"true": "false", "false": "true", "break": "continue", "continue": "break"}

NO_STATEMENT = {"return", "using", "typedef", "template", "namespace", "static_assert", "else",
                "case", "default", "struct", "class", "enum", "union", "public", "private", "goto",
                "extern", "friend", "static", "const", "constexpr", "inline", "auto", "delete"}
# Calls whose arguments reach the log alone: only the call as a whole is changed.
LOG_CALL = re.compile(r"^(?:return\s+)?(?:log[A-Z]\w*|utlWriteLogMsg|memoryError|"
                      r"read\w*Error)\s*\(")
TRACE_CALL = re.compile(r"^trace[A-Z]\w*\s*\(|^const Trace \w+\(")
EXPRESSION = re.compile(
    r"(?:\+\+|--|\*)?(?P<first>[A-Za-z_]\w*)(?:::\w+|->\w+|\.\w+|\[[^\]]*\]|\([^;]*?\))*\s*"
    r"(?:=(?!=)|[-+*/|&^%]=|<<=|>>=|\+\+;|--;|\(|;)")
DECLARED = re.compile(r"^(?:const\s+)?[\w:]+(?:<.*>)?\s*[&*]*\s+[&*]*\w+(?:\s*=.*)?$", re.S)


@dataclass(frozen=True)
class Change:
    path: str  # of the source file, below the root of the tree
    start: int  # of the bytes to replace
    end: int
    text: str
    kind: str
    line: int  # 1-based
    before: str  # the changed lines as one, without indentation
    after: str

    def apply(self, source):
        return source[:self.start] + self.text + source[self.end:]


def mask(source):
    """The source with comments, literals of text and preprocessor lines blanked, byte for byte."""
    pattern = re.compile(
        r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|(?<![0-9A-Fa-f])'(?:\\.|[^'\\\n])*'|"
        r"^[ \t]*#(?:\\\n|[^\n])*", re.S | re.M)
    return pattern.sub(lambda m: re.sub(r"[^\n]", " ", m.group()), source)


def closing(masked, opened):
    """The position of the bracket that closes the one at `opened`, -1 when there is none."""
    depth = 0
    for at in range(opened, len(masked)):
        if masked[at] in "([{":
            depth += 1
        elif masked[at] in ")]}":
            depth -= 1
            if depth == 0:
                return at
    return -1


def statements(masked):
    """Spans of the statements that end in a semicolon; a block within brackets has its own."""
    depths, depth, start = [], 0, 0
    for at, char in enumerate(masked):
        if char in "([":
            depth += 1
        elif char in ")]":
            depth -= 1
        elif char == "{":
            depths.append(depth)
            depth, start = 0, at + 1
        elif char == "}":
            depth = depths.pop() if depths else 0
            start = at + 1
        elif char == ";" and depth == 0:
            yield start, at + 1
            start = at + 1


def inner(masked, start, end):
    """Where the statement begins behind its conditions and labels."""
    while True:
        prefix = re.compile(r"\s*(?:else\b|do\b|(?:case\b[^:;?]*(?:::\w+)*|default)\s*:(?!:)|"
                            r"(?P<head>(?:if|for|while|switch)\s*(?:constexpr\s*)?\())").match(
                                masked, start, end)
        if not prefix:
            return start + len(masked[start:end]) - len(masked[start:end].lstrip())
        if prefix.group("head"):
            close = closing(masked, prefix.end() - 1)
            if close < 0 or close >= end:
                return end
            start = close + 1
        else:
            start = prefix.end()


def arguments(masked, opened):
    """Spans of the arguments of the call whose parenthesis is at `opened`."""
    close = closing(masked, opened)
    spans, depth, start = [], 0, opened + 1
    for at in range(opened + 1, max(close, opened + 1)):
        if masked[at] in "([{":
            depth += 1
        elif masked[at] in ")]}":
            depth -= 1
        elif masked[at] == "," and depth == 0:
            spans.append((start, at))
            start = at + 1
    spans.append((start, close))
    return [(a + len(masked[a:b]) - len(masked[a:b].lstrip()), a + len(masked[a:b].rstrip()))
            for a, b in spans]


class Names:
    """The fields of the record types and the values of the enumerations, to mistake one another."""

    def __init__(self, sources):
        self.fields, self.values, self.texts = {}, {}, set()
        for source in sources:
            text = mask(source)
            self.texts.update(re.findall(r"\bchar (k[A-Z]\w*)\[", text))
            for record in re.finditer(r"struct (\w+) : Row<\d+> \{", text):
                body = text[record.end():closing(text, record.end() - 1)]
                self.fields[record.group(1)] = re.findall(
                    r"constexpr (Num|Text)<\d+, (\d+)> (\w+)", body)
            for values in re.finditer(r"\benum\b[^;{]*\{([^}]*)\}", text):
                names = re.findall(r"\b(k[A-Z]\w*)", values.group(1))
                for at, name in enumerate(names):
                    self.values[name] = [n for n in (names[at - 1:at] + names[at + 1:at + 2])]

    def like(self, record, field):
        fields = self.fields.get(record, [])
        form = next((f[:2] for f in fields if f[2] == field), None)
        return [f[2] for f in fields if f[:2] == form and f[2] != field]


def edits(source, names):
    """All changes of a text as (start, end, text, kind)."""
    masked = mask(source)
    found = []
    log_spans, trace_spans, loops = [], [], []
    for start, end in statements(masked):
        body = inner(masked, start, end)
        text = masked[body:end]
        if LOG_CALL.match(text):
            log_spans.append((body, end))
        if TRACE_CALL.match(text):
            trace_spans.append((body, end))
        match = EXPRESSION.match(text)
        word = re.match(r"\w+", text)
        if match and match.group("first") not in NO_STATEMENT and len(text) > 1:
            found.append((body, end, ";", "dropped statement"))
        elif word and word.group() in ("return", "break", "continue"):
            found.append((body, end, ";", "dropped " + word.group()))
    for head in re.finditer(r"\b(if|while|for)\s*(constexpr\s*)?\(", masked):
        close = closing(masked, head.end() - 1)
        if head.group(1) == "for":
            loops.append((head.end(), close))
            continue
        condition = masked[head.end():close]
        start = head.end() + condition.rfind(";") + 1
        start += len(masked[start:close]) - len(masked[start:close].lstrip())
        if ";" in condition or not re.match(r"(?:const\s|auto\b|[\w:]+[*&]?\s+\w+\s*=[^=])",
                                            condition):
            found.append((start, close, "!(" + source[start:close] + ")", "flipped condition"))
    for sign in re.finditer(r"!(?=[\w(:])", masked):
        found.append((sign.start(), sign.end(), "", "flipped condition"))
    for sign in re.finditer(r"(?<=\s)(<=|>=|==|!=|<|>|&&|\|\||\+=|-=|\|=|&=|<<|>>|[-+*/%&|])(?=\s)",
                            masked):
        span, sign = (sign.start(), sign.end()), sign.group()
        found += [(*span, text, "flipped comparison") for text in RELATION.get(sign, ())]
        if sign in LOGIC:
            found.append((*span, LOGIC[sign], "flipped logic"))
        if sign in ARITHMETIC:
            found.append((*span, ARITHMETIC[sign], "wrong operator"))
    for step in re.finditer(r"\+\+|--", masked):
        if not any(a <= step.start() < b for a, b in loops):
            found.append((step.start(), step.end(), "--" if step.group() == "++" else "++",
                          "wrong operator"))
    for word in re.finditer(r"\b(?:true|false|break|continue)\b", masked):
        found.append((word.start(), word.end(), FLIPPED[word.group()], "wrong value"))
    for number in re.finditer(r"(?<![\w.])(0[xX][\da-fA-F']+|\d[\d']*)([uUlL]*)(?![\w.'])", masked):
        value = int(number.group(1).replace("'", ""), 0 if number.group(1)[:2] in ("0x", "0X")
                    else 10)
        for other in (value + 1, value - 1):
            if other >= 0:
                found.append((number.start(), number.end(), str(other) + number.group(2),
                              "off by one"))
    for name in re.finditer(r"(?<![:\w])k[A-Z]\w*\b(?!\s*[{=(\[]|::)", masked):
        values = names.values.get(name.group())
        if values:
            found += [(name.start(), name.end(), value, "wrong value") for value in values]
        elif name.group() not in names.texts:
            found.append((name.start(), name.end(), "(" + name.group() + " + 1)", "off by one"))
    alias = dict(re.findall(r"\busing (\w+) = (\w+);", masked))
    for field in re.finditer(r"\b(\w+)::(\w+)\b", masked):
        record = alias.get(field.group(1), field.group(1))
        found += [(field.start(2), field.end(2), other, "wrong field")
                  for other in names.like(record, field.group(2))]
    for call in re.finditer(r"\b(\w+)(?:<[^<>;]*>)?\(", masked):
        if call.group(1) in ("if", "for", "while", "switch", "return", "sizeof"):
            continue
        spans = arguments(masked, call.end() - 1)
        if any(DECLARED.match(masked[a:b]) for a, b in spans):
            continue
        for (a, b), (c, d) in zip(spans, spans[1:]):
            if masked[a:b].strip() and masked[c:d].strip() and source[a:b] != source[c:d]:
                found.append((a, d, source[c:d] + source[b:c] + source[a:b], "swapped arguments"))

    def kept(edit):
        if any(a <= edit[0] and edit[1] <= b for a, b in trace_spans):
            return False
        return edit[3].startswith("dropped") or not any(a <= edit[0] and edit[1] <= b
                                                        for a, b in log_spans)
    return [edit for edit in found if kept(edit)]


def changes(path, source, names):
    """All changes of a source file, with the lines as they stand before and after."""
    found = []
    for start, end, text, kind in sorted(set(edits(source, names))):
        first = source.rfind("\n", 0, start) + 1
        last = source.find("\n", end)
        last = len(source) if last < 0 else last
        before = " ".join(source[first:last].split())
        after = " ".join((source[first:start] + text + source[end:last]).split())
        if before != after:
            found.append(Change(path, start, end, text, kind, source.count("\n", 0, start) + 1,
                                before, after))
    return found


def draw(by_file, seed):
    """Endless distinct changes in an order that the seed decides: every line of code that can be
    changed is as likely as any other, then each kind of change that it takes."""
    chance = random.Random(seed)
    lines = {}
    for path in sorted(by_file):
        for change in by_file[path]:
            lines.setdefault((path, change.line), {}).setdefault(change.kind, []).append(change)
    keys = sorted(lines)
    while keys:
        key = chance.choice(keys)
        kinds = lines[key]
        kind = chance.choice(sorted(kinds))
        change = kinds[kind].pop(chance.randrange(len(kinds[kind])))
        if not kinds[kind]:
            del kinds[kind]
        if not kinds:
            keys.remove(key)
        yield change
