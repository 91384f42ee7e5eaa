"""What is said of the table, on standard error."""
import sys

from ..shown import shown

FEW = 5

# What is wrong with a record or was changed in it: one of them, and several.
TEXTS = {
    "fields": ("line with another number of fields", "lines with another number of fields"),
    "blank key": ("blank key", "blank keys"),
    "words": ("value of more than 65,535 words", "values of more than 65,535 words"),
    "equal": ("record equal to another", "records equal to others"),
    "no word": ("value without a word", "values without a word"),
    "not found": ("value that a scan does not find where a text writes it so",
                  "values that a scan does not find where a text writes them so"),
    "encoding": ("line that is no UTF-8, taken as Windows-1252 (--encoding NAME says otherwise)",
                 "lines that are no UTF-8, taken as Windows-1252 (--encoding NAME says otherwise)"),
    "quote": ("quotation mark that holds no whole value, taken as it stands",
              "quotation marks that hold no whole value, taken as they stand"),
    "blank line": ("blank line, left out", "blank lines, left out"),
    "blank": ("record with a TAB, CR or line end in a value, now a blank",
              "records with a TAB, CR or line end in a value, now a blank"),
    "apostrophe": ("record with ’ in a name, now '", "records with ’ in a name, now '"),
    "missing": (r"record with \N for a missing value, now blank",
                r"records with \N for a missing value, now blank"),
    "mark": ("record with a byte order mark in it, taken out",
             "records with byte order marks in them, taken out"),
}


class Report:
    """Tells a few of each kind as they are met, and in the end how many there were."""

    def __init__(self, name, stream=sys.stderr):
        self.name = shown(name)
        self.stream = stream
        self.counts = dict.fromkeys(TEXTS, 0)
        self.shows_progress = stream.isatty()

    def say(self, text):
        self.clear()
        print(f"{self.name}: {text}", file=self.stream)

    def tell(self, kind, line, detail):
        self.counts[kind] += 1
        if self.counts[kind] <= FEW:
            self.clear()
            colon = ": " if detail else ""
            print(f"{self.name}:{line}: {TEXTS[kind][0]}{colon}{detail}", file=self.stream)

    def total(self):
        for kind, count in self.counts.items():
            if count:
                self.say(f"{count:,} {TEXTS[kind][count > 1]}")

    def progress(self, share):
        if self.shows_progress:
            print(f"\r{share:4.0%}", end="", file=self.stream, flush=True)

    def clear(self):
        if self.shows_progress:
            print("\r\x1b[K", end="", file=self.stream)
