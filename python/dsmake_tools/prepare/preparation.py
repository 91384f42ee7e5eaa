"""One table's way: what it is, what its records are, and whether a build can take them."""
import os
import shlex
import time
from itertools import chain, islice

from . import Fault, schema
from ..shown import shown
from .checks import Checks
from .lines import Lines
from .records import DELIMITERS, find_delimiter, Records

SAMPLE_LINES = 200
SAMPLE_RECORDS = 5000
SAMPLE_CHARACTERS = 1 << 22


def take_sample(records):
    sample, size = [], 0
    for record in islice(records, SAMPLE_RECORDS):
        sample.append(record)
        size += sum(map(len, record[1]))
        if size > SAMPLE_CHARACTERS:
            break
    return sample


def take_delimiter(lines, wanted, report):
    """What stands between fields, and all lines but one that says so, as spreadsheets write it."""
    begin = list(islice(lines, SAMPLE_LINES))
    skipped = 0
    if begin and begin[0].lower().startswith("sep=") and len(begin[0].strip()) == 5:
        wanted, skipped = wanted or begin[0][4], 1
        report.say("its first line, which names the delimiter, is left out")
    if wanted in ("\\t", "TAB"):
        wanted = "\t"
    return wanted or find_delimiter(begin[skipped:]), chain(begin[skipped:], lines), skipped


class Preparation:
    """One table's way."""

    def __init__(self, options, file, report):
        self.options = options
        self.report = report
        lines = Lines(file, options.encoding, report)
        delimiter, rest, skipped = take_delimiter(iter(lines), options.delimiter, report)
        if len(delimiter) != 1 or delimiter in '"\r\n':
            raise Fault("--delimiter: one character, no quotation mark")
        records = Records(rest, delimiter, report)
        records.number = skipped
        self.all_records = iter(records)
        self.sample = take_sample(self.all_records)
        while self.sample and self.sample[0][1] == [""]:
            report.tell("blank line", self.sample.pop(0)[0], "")
        if not self.sample:
            raise Fault("holds no record")
        self.has_header = self.find_header()
        header = self.sample.pop(0)[1] if self.has_header else None
        self.columns = self.find_columns(header)
        self.keys = schema.parse_keys(options.keys, self.columns) if options.keys else []
        report.say(f"{lines.name}, {DELIMITERS.get(delimiter, repr(delimiter))} between fields, "
                   f"{'with' if self.has_header else 'without'} a header")

    def find_header(self):
        if self.options.header:
            return self.options.header == "yes"
        rows = [fields for _, fields in self.sample]
        return schema.has_header(rows[0], rows[1:])

    def find_columns(self, header):
        rows = [fields for _, fields in self.sample]
        if self.options.schema:
            return schema.parse_schema(self.options.schema)
        widths = [len(row) for row in rows if row != [""]]
        width = len(header) if header else max(widths, key=widths.count, default=1)
        names = schema.mend_names(header or [""] * width, self.report) if header else [
            f"Column{place}" for place in range(1, width + 1)]
        return schema.propose(names, [row for row in rows if len(row) == width])

    def run(self, file, write):
        """Checks all records; false when a build would fail or lose something."""
        checks = Checks(self.columns, self.keys, self.report, write, self.options.drop)
        checks.add_all(self.with_progress(chain(self.sample, self.all_records), file))
        self.report.clear()
        if not self.keys:
            self.keys = schema.propose_keys(self.columns)
        self.report.total()
        self.tell_schema()
        return self.is_good(checks.records)

    def with_progress(self, records, file):
        size, begin = os.fstat(file.fileno()).st_size, time.monotonic()
        for number, record in enumerate(records):
            if self.report.shows_progress and number % 65536 == 0 and time.monotonic() - begin > 1:
                self.report.progress(file.tell() / size if size else 1)
            yield record

    def tell_schema(self):
        for column in self.columns:
            is_key = ", a key" if column.name in self.keys else ""
            blank = ", with blanks" if column.has_blank else ""
            self.report.say(f"field {shown(column.name)}: {column.type}{is_key}{blank}")

    def is_good(self, records):
        counts = self.report.counts
        if not self.keys:
            self.report.say("no field without blanks, so none can be a key: name one with --keys, and "
                            "say --drop to leave out the records where it is blank")
        elif records == 0:
            self.report.say("no record is left")
        elif self.options.drop:
            return self.tell_dropped()
        elif counts["equal"] and len(self.keys) > 1:
            self.report.say("a file of several keys with equal records cannot be read: say --drop, or "
                            "take one key with --keys")
        elif counts["fields"] or counts["blank key"] or counts["words"]:
            self.report.say("nothing is written; mend the table, or say --drop to leave these out")
        else:
            return True
        return False

    def tell_dropped(self):
        dropped = sum(self.report.counts[kind] for kind in ("fields", "blank key", "words", "equal"))
        self.report.say(f"{dropped:,} record{'' if dropped == 1 else 's'} left out")
        return True

    def command(self, path):
        out = os.path.splitext(path)[0] + ".ds"
        if os.path.lexists(out):
            self.report.say(f"{shown(out)} is there already: name another with -o")
        keys = [word for key in self.keys for word in ("-k", key)]
        fields = ";".join(f"{column.name},{column.type}" for column in self.columns)
        return shlex.join(["dsmake", *keys, "-s", fields, "-i", path, "-o", out])
