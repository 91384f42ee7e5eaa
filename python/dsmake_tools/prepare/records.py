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
                yield number, self.quoted(line)
            else:
                yield self.number, without_end(line).split(self.delimiter)

    def take(self):
        line = self.waiting.popleft() if self.waiting else next(self.lines, None)
        self.number += line is not None
        return line

    def quoted(self, line):
        text, fields, at = line, [], 0
        while at is not None:
            place = self.skip_blanks(text, at)
            value = None
            if text.startswith('"', place):
                text, end = self.closing(text, place + 1)
                if end is not None:
                    value = text[place + 1:end].replace('""', '"')
                    place = end + 1
            end = text.find(self.delimiter, place)
            rest = text[place:end] if end >= 0 else without_end(text[place:])
            # Behind a closing quote nothing but blanks should stand; what does is kept.
            fields.append(text[at:place] + rest if value is None else value + rest.rstrip(" "))
            at = None if end < 0 else end + 1
        return fields

    def skip_blanks(self, text, at):
        """In front of a quote; else they belong to the value."""
        place = at
        while text.startswith(" ", place):
            place += 1
        return place if text.startswith('"', place) else at

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
        if self.report:
            self.report.tell("quote", self.number, "")


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
