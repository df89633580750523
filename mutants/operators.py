"""The bugs that can be planted: each operator finds its places in a file, and the replacements there."""

import pathlib
import re

from source import Source

# The constants that bound tiles, bands and arrays.
BOUNDS = frozenset(re.findall(r'(?:Length\(|\{)"(k\w+)", "[^"]*", ', pathlib.Path(
    __file__).parent.parent.joinpath("tests/support/Bounds.cpp").read_text()))

# A binary operator becomes another one. Each stands between blanks.
OPERATORS = {
    "<": ("lt-le", "<="), "<=": ("le-lt", "<"), ">": ("gt-ge", ">="), ">=": ("ge-gt", ">"),
    "==": ("eq-ne", "!="), "!=": ("ne-eq", "=="), "&&": ("and-or", "||"), "||": ("or-and", "&&"),
    "+": ("add-sub", "-"), "-": ("sub-add", "+"), "*": ("mul-div", "/"), "/": ("div-mul", "*"), "%": ("mod-div", "/"),
    "<<": ("shl-shr", ">>"), ">>": ("shr-shl", "<<"), "&": ("band-bor", "|"), "|": ("bor-band", "&"),
    "^": ("xor-bor", "|"), "+=": ("addto-subfrom", "-="), "-=": ("subfrom-addto", "+="),
}


def pairs(text):
    return [tuple(pair.split()) for pair in text.split(",")]


def both_ways(text):
    return pairs(text) + [(b, a) for a, b in pairs(text)]


# Names that are easily confused. A name is replaced only where the other one occurs in the same
# function.
NAMES = both_ways(
    "width height, left top, begin end, x0 x1, y0 y1, x0 y0, x y, red green, green blue, first last, first second, from to,"
    "source destination, source result, at_ end_, p tq, saturation brightness, saturation value, before pixel, high low,"
    "upper lower, even odd, rows columns, bitsPerPixel bytesPerPixel, perSource perDestination, firstLine begin, step count")

# Names that can be used everywhere.
GLOBAL_NAMES = both_ways(
    "true false, min max, Min Max, floor ceil, sin cos, Alpha Blue, Red Green, kForward kBackward, kDown kUp,"
    "kContextForm kBufferForm, ContextForm BufferForm, ReadBuffer ReadContext, WriteBuffer WriteContext")

# Parts of the names of vector functions that a kernel could confuse.
VECTOR_PARTS = both_ways(
    "Add Sub, MulLow MulHigh, Low High, AndNot And, And Or, Or Xor, Min Max, Left Right, Even Odd, Equal Greater") + pairs(
        "Average Max, SubSaturated Sub, AddSaturated Add")
INTRINSIC_PARTS = both_ways(
    "add sub, mullo mulhi, min max, slli srli, unpacklo unpackhi, shufflelo shufflehi, and or, or xor, cmpeq cmpgt,"
    "packus packs, testz testc") + pairs("adds add, subs sub, avg max")

BRANCHES = ("if", "while", "for")


class Mutant:
    """A replacement in a file. Its name is file:line:operator, with #n for the nth of that name on the line."""

    def __init__(self, file, source, operator, start, end, text):
        self.file, self.operator, self.start, self.end, self.text = file, operator, start, end, text
        self.line = source.line_of(start)
        self.name = ""
        first = source.text.rfind("\n", 0, start) + 1
        last = source.text.find("\n", end)
        self.before = source.text[first:last]
        self.after = source.text[first:start] + text + source.text[end:last]
        self.code = self.before.split("\n")[0].strip()

    def planted(self, text):
        return text[:self.start] + self.text + text[self.end:]


def enumerate_mutants(file, text):
    """All mutants of a file, in the order of their places, named."""
    source = Source(text)
    finds = (_operators, _names, _vector_names, _numbers, _unary, _terms, _conditions, _drops, _chains, _guards, _codes,
             _bounds, _halves, _yields, _forms)
    places = {place for find in finds for place in find(source)}
    mutants = [Mutant(file, source, operator, start, end, replacement)
               for start, end, operator, replacement in sorted(places) if text[start:end] != replacement]
    seen = {}
    for mutant in mutants:
        key = f"{mutant.file}:{mutant.line}:{mutant.operator}"
        seen[key] = seen.get(key, 0) + 1
        mutant.name = key if seen[key] == 1 else f"{key}#{seen[key]}"
    return mutants


def _tokens(source, kind):
    return [(i, token) for i, token in enumerate(source.tokens) if token.kind == kind and i not in source.skipped]


def _operators(source):
    for i, token in _tokens(source, "mark"):
        if token.text in OPERATORS and source.spaced(i):
            name, other = OPERATORS[token.text]
            yield token.start, token.end, name, other


def _is_declared(source, i):
    """Whether this token declares a parameter, member or variable."""
    before, after = source.tokens[i - 1], source.tokens[i + 1]
    if before.kind == "name":
        return before.text not in ("return", "case", "else", "const")
    return before.text in ("*", "&", ">") and after.text in (",", ")", ";", "=", "[") and not source.spaced(i - 1)


def _functions(source):
    """For each token, the set of names in its function or class. These end with a bracket at the start of a line."""
    sets, names = [], set()
    for token in source.tokens:
        if token.kind == "name":
            names.add(token.text)
        sets.append(names)
        if token.text == "}" and source.text[token.start - 1] == "\n":
            names = set()
    return sets


def _names(source):
    functions = _functions(source)
    others = {}
    for names, is_global in ((NAMES, False), (GLOBAL_NAMES, True)):
        for a, b in names:
            others.setdefault(a, []).append((b, is_global))
    for i, token in _tokens(source, "name"):
        for other, is_global in others.get(token.text, ()):
            if (is_global or other in functions[i]) and not _is_declared(source, i):
                yield token.start, token.end, f"{token.text}-{other}", other


def _vector_names(source):
    for i, token in _tokens(source, "name"):
        if source.tokens[i - 1].text == "::" and source.tokens[i - 2].text == "Vector":
            parts, before, after = VECTOR_PARTS, "", "(?![a-z])"
        elif token.text.startswith("_mm"):
            parts, before, after = INTRINSIC_PARTS, "_", "(?![a-z0-9])"
        else:
            continue
        for part, other in parts:
            swapped = re.sub(before + part + after, before + other, token.text, count=1)
            if swapped != token.text:
                yield token.start, token.end, f"{part}-{other}", swapped


def _numbers(source):
    for i, token in _tokens(source, "number"):
        match = re.fullmatch(r"(0[xX][0-9A-Fa-f]+|\d+)(\.\d*)?([uUlL]*)", token.text)
        if not match or source.tokens[i - 1].text == ">>":
            continue
        digits, fraction, suffix = match.group(1), match.group(2) or "", match.group(3)
        is_hex = digits.lower().startswith("0x")
        value = int(digits, 16 if is_hex else 10)

        def written(n, digits=digits, is_hex=is_hex, fraction=fraction, suffix=suffix):
            return (f"0x{n:0{len(digits) - 2}X}" if is_hex else str(n)) + fraction + suffix

        yield token.start, token.end, "plus1", written(value + 1)
        if value > 1 and not (is_hex and value & (value + 1) == 0):
            yield token.start, token.end, "minus1", written(value - 1)
    for i, token in _tokens(source, "number"):
        if source.tokens[i - 1].text in (">>", "<<") and token.text.isdigit() and int(token.text) > 0:
            yield token.start, token.end, "shift-less", str(int(token.text) - 1)


UNARY = {"!": "drop-not", "~": "drop-complement", "-": "drop-minus"}


def _unary(source):
    for i, token in _tokens(source, "mark"):
        if token.text in ("!", "~", "-") and not source.text[token.end].isspace():
            is_destructor = token.text == "~" and source.tokens[i - 1].text in ("{", "}", ";", ":")
            if not is_destructor:
                yield token.start, token.end, UNARY[token.text], ""


def _terms(source):
    """Leaves out a number that is added or subtracted, such as a rounding term."""
    for i, token in _tokens(source, "number"):
        before = source.tokens[i - 1]
        if before.text in ("+", "-") and source.spaced(i - 1) and source.tokens[i + 1].text not in ("*", "/", "%"):
            yield source.tokens[i - 2].end, token.end, "drop-term", ""


def _conditions(source):
    for i, token in _tokens(source, "name"):
        if token.text in ("if", "while") and source.tokens[i + 1].text == "(":
            first, last = source.tokens[i + 1], source.tokens[source.partner[i + 1]]
            yield first.end, last.start, "negate", f"!({source.text[first.end:last.start]})"
    for first, last in source.statements():
        if source.tokens[first].text == "return" and last > first + 1:
            inner = range(first + 1, last)
            if any(source.tokens[i].text in ("&&", "||", "==", "!=", "<=", ">=") for i in inner) and not any(
                    source.tokens[i].text == "?" for i in inner):
                start, end = source.tokens[first + 1].start, source.tokens[last].start
                yield start, end, "negate", f"!({source.text[start:end]})"


def _drops(source):
    """Leaves out a statement: an expression, or a loop or conditional jump without braces."""
    tokens = source.tokens
    for first, last in source.statements():
        head = tokens[first].text
        if last + 1 < len(tokens) and tokens[last + 1].text == "else":
            continue
        if source.is_expression(first, last) or (head in BRANCHES and tokens[first + 1].text == "("):
            yield tokens[first].start, tokens[last].start, "drop", ""


def _split_chain(source, first, last):
    """The parts of `a ? b : c ? d : e`, as (start, end), or fewer than five if it is no such chain."""
    parts, start, i = [], source.tokens[first].start, first
    while i < last:
        token = source.tokens[i]
        if token.text in ("(", "[", "{"):
            i = source.partner.get(i, i)
        elif token.text in ("?", ":"):
            parts.append((start, source.tokens[i - 1].end))
            start = source.tokens[i + 1].start
        i += 1
    return parts + [(start, source.tokens[last - 1].end)]


def _chains(source):
    """Exchanges neighbouring tests of a chain, each with its outcome."""
    for first, last in source.statements():
        equals = next((i for i in range(first, last) if source.tokens[i].text == "="), None)
        if equals is None:
            continue
        parts = _split_chain(source, equals + 1, last)
        for i in range(0, len(parts) - 4, 2):
            (a0, a1), (b0, b1), (c0, c1), (d0, d1) = parts[i:i + 4]
            text = source.text
            swapped = text[c0:c1] + text[a1:b0] + text[d0:d1] + text[b1:c0] + text[a0:a1] + text[c1:d0] + text[b0:b1]
            yield a0, d1, "swap-tests", swapped


def _guards(source):
    """Exchanges two successive `if (...) return ...;`."""
    tokens = source.tokens
    guards = [(first, last) for first, last in source.statements() if tokens[first].text == "if"
              and tokens[source.partner[first + 1] + 1].text == "return"]
    for (a, b), (c, d) in zip(guards, guards[1:]):
        if c == b + 1:
            start, end = tokens[a].start, tokens[d].end
            yield (start, end, "swap-guards", source.text[tokens[c].start:end]
                   + source.text[tokens[b].end:tokens[c].start] + source.text[start:tokens[b].end])


CODES = ("kNoError kSourceIsNil kCantLockSource kCantLockIntermediate kCantLockResult kRotationOutOfBounds "
         "kShearOutOfBounds kWidthOutOfBounds kHeightOutOfBounds kInvalidSelection kInvalidTrimArea kRedOutOfBounds "
         "kGreenOutOfBounds kBlueOutOfBounds kDegreesOutOfBounds kSaturationOutOfBounds kBrightnessOutOfBounds").split()


def _codes(source):
    for i, token in _tokens(source, "name"):
        if token.text in CODES and source.tokens[i + 1].text != "=":
            yield token.start, token.end, "code", CODES[(CODES.index(token.text) + 1) % len(CODES)]


def _bounds(source):
    """Adds or subtracts 1 where a bound of tiles, bands or arrays is used."""
    for i, token in _tokens(source, "name"):
        if token.text in BOUNDS and source.tokens[i + 1].text not in ("=", "("):
            yield token.start, token.end, "bound-plus1", f"({token.text} + 1)"
            yield token.start, token.end, "bound-minus1", f"({token.text} - 1)"


def _operand(source, i, step, ends):
    """The last token of the operand that begins next to token i, to the right (1) or left (-1)."""
    opening, closing = ("([{", ")]}") if step > 0 else (")]}", "([{")
    at = i + step
    while True:
        if source.tokens[at].text in opening:
            at = source.partner.get(at, at)
        beside = source.tokens[at + step].text
        if beside in ends or beside in closing or beside in (",", ";", "?", ":", "=", "return"):
            return at
        at += step


def _halves(source):
    """Leaves out one of two joined conditions."""
    for i, token in _tokens(source, "mark"):
        if token.text not in ("&&", "||") or not source.spaced(i):
            continue
        ends = ("&&", "||") if token.text == "&&" else ("||",)
        first, last = _operand(source, i, -1, ends), _operand(source, i, 1, ends)
        yield source.tokens[i - 1].end, source.tokens[last].end, "drop-right", ""
        if source.tokens[first - 1].text != token.text:  # the other mutation has left it out already
            yield source.tokens[first].start, source.tokens[i + 1].start, "drop-left", ""


def _yields(source):
    """A call does not yield, or does not wait for the next yield."""
    for i, token in _tokens(source, "name"):
        before, after = source.tokens[i - 1].text, source.tokens[i + 1].text
        if token.text == "yield" and before in ("(", ",") and after in (")", ","):
            yield token.start, token.end, "no-yield", "0"
        if token.text == "BeginLines" and before == ".":
            last = source.partner[i + 1]
            comma = _operand(source, i + 1, 1, ()) + 1  # between the two arguments
            pace = source.tokens[i - 2]
            pixels = source.text[source.tokens[i + 1].end:source.tokens[comma].start]
            most = source.text[source.tokens[comma].end:source.tokens[last].start].strip()
            yield (pace.start, source.tokens[last].end, "no-pace",
                   f"({pace.text}.ReportLines({most}, {pixels}), {most})")


def _forms(source):
    """Ignores the storage form of a picture."""
    for i, token in _tokens(source, "name"):
        if token.text == "FormOf" and source.tokens[i + 1].text == "(" and source.tokens[i - 1].kind != "name":
            for form in ("kContextForm", "kBufferForm"):
                yield token.start, source.tokens[source.partner[i + 1]].end, f"form-{form}", form
