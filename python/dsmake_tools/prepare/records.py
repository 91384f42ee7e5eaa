"""The records of a table in quoted, delimited text."""
from collections import Counter, deque

DELIMITERS = {"\t": "TAB", ";": "semicolon", "|": "bar", ",": "comma"}
# Of a value in quotes. One that nothing closes must not swallow the table.
MOST_LINES = 1000
MOST_CHARACTERS = 1 << 20


class Records:
    """Yields the line at which a record begins, from 1, and its fields. Line ends within quotes stay
    in the values."""

    def __init__(self, lines, delimiter, report=None):
        self.lines = iter(lines)
        self.delimiter = delimiter
        self.report = report
        self.number = 0  # of the line that was taken last
        self.waiting = deque()  # lines that were looked at, but belong to no record yet

    def __iter__(self):
        while (line := self.take()) is not None:
            if '"' in line:
                number = self.number
                yield number, self.all_quoted(line) or self.quoted(line)
            else:
                yield self.number, without_end(line).split(self.delimiter)

    def take(self):
        line = self.waiting.popleft() if self.waiting else next(self.lines, None)
        self.number += line is not None
        return line

    def all_quoted(self, line):
        """The quick way for a line of nothing but values in quotes, none of which holds one."""
        body = without_end(line)
        fields = body[1:-1].split(f'"{self.delimiter}"')
        is_plain = len(body) > 1 and body[0] == body[-1] == '"'
        return fields if is_plain and body.count('"') == 2 * len(fields) else None

    def quoted(self, line):
        text, fields, at = line, [], 0
        while at is not None:
            begin = self.quote_at(text, at)
            if begin is not None:
                text, end = self.closing(text, begin + 1)
                if end is not None:
                    rest, following = self.up_to_delimiter(text, end + 1)
                    if not rest.strip(" "):
                        fields.append(text[begin + 1:end].replace('""', '"'))
                        at = following
                        continue
                self.tell_quote()
            value, at = self.up_to_delimiter(text, at)
            fields.append(value)
        return fields

    def up_to_delimiter(self, text, at):
        """What stands there, and where the next field begins, if one does."""
        end = text.find(self.delimiter, at)
        return (without_end(text[at:]), None) if end < 0 else (text[at:end], end + 1)

    @staticmethod
    def quote_at(text, at):
        """A quote in front of a value; blanks may stand in front of that."""
        while text.startswith(" ", at):
            at += 1
        return at if text.startswith('"', at) else None

    def tell_quote(self):
        if self.report:
            self.report.tell("quote", self.number, "")

    def closing(self, text, at):
        """Where the quote is closed, and the text with as many lines as that needs. None when it is
        not; those lines are then looked at again."""
        taken, size = [], len(text)
        while (end := find_quote(text if not taken else taken[-1], at)) < 0:
            line = self.take()
            if line is None or len(taken) == MOST_LINES or size > MOST_CHARACTERS:
                self.give_back(taken if line is None else [*taken, line])
                return text, None
            taken.append(line)
            size += len(line)
            at = 0
        # On a later line this may as well be a quote that opens: it closes only where a field ends.
        if taken and not taken[-1].startswith((self.delimiter, "\n", "\r\n"), end + 1):
            self.give_back(taken)
            return text, None
        whole = "".join([text, *taken])
        return whole, end + len(whole) - len(taken[-1] if taken else whole)

    def give_back(self, lines):
        self.waiting.extendleft(reversed(lines))
        self.number -= len(lines)


def find_quote(text, at):
    """The quote that closes: one that no second follows."""
    while (place := text.find('"', at)) >= 0 and text.startswith('"', place + 1):
        at = place + 2
    return place


def without_end(line):
    return line.removesuffix("\n").removesuffix("\r")


def find_delimiter(lines):
    """The one by which most of the records have as many fields, more than one."""
    best, best_score = ",", (0, 0)
    for delimiter in DELIMITERS:
        counts = Counter(len(fields) for _, fields in Records(lines, delimiter)
                         if fields != [""])
        if counts:
            width, records = counts.most_common(1)[0]
            score = (records if width > 1 else 0, width)
            if score > best_score:
                best, best_score = delimiter, score
    return best
