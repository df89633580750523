"""Reads C++ as far as mutants need it: the tokens and statements of a file. Nothing is planted in comments,
preprocessor lines and string literals, so these are left out."""

import collections
import re

Token = collections.namedtuple("Token", "kind text start end")

LEXEMES = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<preprocessor>^[ ]*\#(?:[^\n]*\\\n)*[^\n]*)
      | (?P<string>"(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)*')
      | (?P<number>\d(?:[\w.]|(?<=[eEpP])[+-])*)
      | (?P<name>[A-Za-z_]\w*)
      | (?P<mark><<=|>>=|\.\.\.|->|::|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|\S)""",
    re.X | re.M | re.S)

# Words with which a statement begins that is not an expression.
NO_EXPRESSION = frozenset(
    "return using const static constexpr template typedef struct class enum union case default break continue else do "
    "namespace extern public private protected auto goto throw explicit friend operator static_assert virtual inline "
    "unsigned signed long int double bool void try catch switch".split())


class Source:
    """A file's text, its tokens without comments and the like, and the places where its lines begin."""

    def __init__(self, text):
        self.text = text
        self.tokens = [Token(match.lastgroup, match.group(), match.start(), match.end())
                       for match in LEXEMES.finditer(text) if match.lastgroup not in ("comment", "preprocessor")]
        self.partner = self._partners()
        self.skipped = self._skipped()

    def line_of(self, position):
        return self.text.count("\n", 0, position) + 1

    def spaced(self, i):
        """Whether the token stands between blanks, as clang-format sets binary operators and no brackets."""
        token = self.tokens[i]
        return self.text[token.start - 1].isspace() and self.text[token.end].isspace()

    def _partners(self):
        """For each bracket, the index of its partner."""
        partner, open_brackets = {}, []
        for i, token in enumerate(self.tokens):
            if token.text in ("(", "[", "{"):
                open_brackets.append(i)
            elif token.text in (")", "]", "}") and open_brackets:
                partner[i] = open_brackets.pop()
                partner[partner[i]] = i
        return partner

    def _skipped(self):
        """Tokens of template heads, of static_asserts, and of declared lengths of arrays: a longer array is no
        bug."""
        skipped = set()
        for i, token in enumerate(self.tokens):
            if token.text == "template" and self.tokens[i + 1].text == "<":
                depth, j = 0, i + 1
                while True:
                    depth += {"<": 1, ">": -1, ">>": -2}.get(self.tokens[j].text, 0)
                    skipped.add(j)
                    if depth == 0:
                        break
                    j += 1
            elif token.text == "static_assert":
                skipped.update(range(i, self.partner[i + 1] + 1))
            elif token.text == "[" and i >= 2 and self.tokens[i - 1].kind == "name":
                before = self.tokens[i - 2]
                if (before.kind == "name" and before.text != "return") or before.text in ("*", ">", "]"):
                    j = i
                    while self.tokens[j].text == "[":
                        skipped.update(range(j, self.partner[j] + 1))
                        j = self.partner[j] + 1
        return skipped

    def statements(self):
        """(first, last) of each simple statement: from after ; { } or a label to its semicolon, with no braces."""
        start = 0
        i = 0
        while i < len(self.tokens):
            text = self.tokens[i].text
            if text in ("(", "["):
                i = self.partner.get(i, i)
            elif text == ";":
                if start < i:
                    yield start, i
                start = i + 1
            elif text in ("{", "}"):
                start = i + 1
            elif text == ":" and start < i and self.tokens[start].text in ("case", "default", "public", "private"):
                start = i + 1
            i += 1

    def is_expression(self, first, last):
        """Whether the statement is an expression, not a declaration or a jump."""
        tokens = self.tokens
        head = tokens[first]
        if head.text in NO_EXPRESSION:
            return False
        if head.text in ("++", "--", "*"):
            return True
        if head.kind != "name" or tokens[last - 1].text in ("default", "delete", "override", "const", "noexcept"):
            return False
        i = first + 1
        while tokens[i].text == "::":
            i += 2
        if tokens[i].text == "<":
            while tokens[i].text not in (">", ";"):
                i += 1
            i += 1
        while tokens[i].text in ("*", "&", "&&"):
            i += 1
        return tokens[i].kind != "name" and i < last
