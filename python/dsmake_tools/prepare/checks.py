"""Looks at records one after another, and hands on those that a build takes.

Most records need one look by a few quick tests; only where one of these hits, it is found out what
it is. Blocks of records then go to the library, which makes their token values.
"""
import re
from hashlib import blake2b

from ..shown import shown
from .findable import is_found, PLAIN
from .library import counts_of, RecordValues

BLOCK_RECORDS = 4096
BLOCK_CHARACTERS = 1 << 20
MOST_WORDS = 65535
# The property White_Space, which a build trims; str.strip knows four more.
WHITE = "\t\n\v\f\r \x85\xa0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200a" \
        "\u2028\u2029\u202f\u205f\u3000"
UNUSUAL = re.compile("[\r\n\ufeff’\\\\]").search
BREAKS = re.compile("\r\n|[\t\r\n]")
WITHOUT_WORD = re.compile(r"^[^\w\t\n]+(?=[\t\n])|(?<=\t)[^\w\t\n]+(?=[\t\n])", re.M)


class Checks:
    """`write` gets the bytes of good records. `drops` leaves out what a build cannot take."""

    def __init__(self, columns, keys, report, write, drops):
        self.columns = columns
        self.report = report
        self.write = write
        self.drops = drops
        names = [column.name for column in columns]
        self.key_places = [names.index(key) for key in keys]
        self.numbers = [place for place, column in enumerate(columns) if column.type == "CCNUMBER"]
        self.library = RecordValues([column.type for column in columns])
        self.seen = {}  # the line of the first record with these values, by their digest
        self.rows, self.lines, self.size = [], [], 0
        self.records = 0

    def add_all(self, records):
        width, numbers = len(self.columns), self.numbers
        for line, fields in records:
            if len(fields) != width:
                self.tell_width(line, fields)
                continue
            row = "\t".join(fields)
            if UNUSUAL(row) or row.count("\t") >= width:
                fields = self.mended(line, fields)
                row = "\t".join(fields)
            if not all(map(str.strip, fields)) and not self.may_be_blank(line, fields):
                continue
            for place in numbers:
                if not PLAIN(fields[place]):
                    self.tell_not_found(line, fields[place], place)
            self.rows.append(row)
            self.lines.append(line)
            self.size += len(row)
            if len(self.rows) == BLOCK_RECORDS or self.size > BLOCK_CHARACTERS:
                self.flush()
        self.flush()

    def tell_width(self, line, fields):
        if len(fields) == 1 and not fields[0].strip(WHITE + "\ufeff"):
            return self.report.tell("blank line", line, "")
        begin = shown(" | ".join(fields), 60)
        self.report.tell("fields", line, f"{len(fields)}, not {len(self.columns)}: {begin}")

    def mended(self, line, fields):
        """What a build would refuse, drop or find nothing by, each told."""
        new = []
        for field, column in zip(fields, self.columns):
            value = self.changed(line, "mark", field, field.replace("\ufeff", ""))
            value = self.changed(line, "blank", value, BREAKS.sub(" ", value))
            value = self.changed(line, "missing", value, "" if value.strip() == r"\N" else value)
            if column.type != "CCNUMBER":
                value = self.changed(line, "apostrophe", value, value.replace("’", "'"))
            new.append(value)
        return new

    def changed(self, line, kind, old, new):
        if new != old:
            self.report.tell(kind, line, shown(old.strip(), 60))
        return new

    def may_be_blank(self, line, fields):
        """False for a blank line and a blank key, with which no record can be made."""
        blank = [place for place, field in enumerate(fields) if not field.strip(WHITE)]
        if blank and len(fields) == 1:
            self.report.tell("blank line", line, "")
            return False
        keys = [self.columns[place].name for place in blank if place in self.key_places]
        if keys:
            self.report.tell("blank key", line, shown(", ".join(keys)))
            return False
        for place in blank:
            self.columns[place].has_blank = True
        return True

    def tell_not_found(self, line, field, place):
        value = field.strip(WHITE)
        if not is_found(value):
            self.report.tell("not found", line, self.named(place, value))

    def named(self, place, value):
        column = self.columns[place]
        return f'{shown(column.name)} ({column.type}) "{shown(value, 60)}"'

    def flush(self):
        if not self.rows:
            return
        text = "\n".join(self.rows) + "\n"
        self.tell_without_word(text)
        rows = text.encode("utf-8", "surrogateescape").splitlines(keepends=True)
        kept = [row for row, line in zip(rows, self.lines) if self.stays(row, line)]
        self.records += len(kept)
        self.write(b"".join(kept))
        self.rows, self.lines, self.size = [], [], 0

    def tell_without_word(self, text):
        for found in WITHOUT_WORD.finditer(text):
            if value := found[0].strip(WHITE):
                index = text.count("\n", 0, found.start())
                begin = text.rfind("\n", 0, found.start()) + 1
                place = text.count("\t", begin, found.start())
                self.report.tell("no word", self.lines[index], self.named(place, value))

    def stays(self, row, line):
        """Whether the record is to be written. Digests of 128 bits tell equal ones: a table may have
        been written to make checksums meet."""
        values = self.library.of(row[:-1])
        if len(values) > 8 * MOST_WORDS and not self.has_few_words(values, line):
            return False
        key = int.from_bytes(blake2b(values, digest_size=16).digest(), "little")
        first = self.seen.setdefault(key, line)
        if first == line:
            return True
        self.report.tell("equal", line, f"that of line {first}")
        return not self.drops

    def has_few_words(self, values, line):
        long = [column.name for column, count in zip(self.columns, counts_of(values))
                if count > MOST_WORDS]
        if long:
            self.report.tell("words", line, shown(", ".join(long)))
        return not long
