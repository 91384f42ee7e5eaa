"""Where the text goes, and the bounds of what one file may give.

A small archive can stand for a huge text, so that two things are counted: the bytes that are
written, and the bytes that are unpacked or gone through again on the way. The second bound is the
first one for each level that archives may be nested, since each byte may come through them all.
"""

MOST_ARCHIVES = 8
MIB = 1 << 20


class Full(Exception):
    """No more may come out of this file."""


class Output:
    """Takes texts and bytes, and keeps what was wrong with them."""

    def __init__(self, stream, mebibytes):
        self.stream = stream
        self.mebibytes = mebibytes
        self.limit = self.left = mebibytes * MIB
        self.work = self.limit * MOST_ARCHIVES
        self.ends_line = True
        self.faults = {}  # how often each was met, in the order of the first time

    def write(self, data):
        """Bytes as they stand."""
        if len(data) > self.left:
            data, self.left = data[:self.left], 0
            self.stream.write(data)
            raise Full
        if data:
            self.stream.write(data)
            self.left -= len(data)
            self.ends_line = data[-1:] == b"\n"

    def write_text(self, text):
        """As UTF-8; a byte that could not be decoded comes out as it was."""
        try:
            self.write(text.encode("utf-8", "surrogateescape"))
        except UnicodeEncodeError:  # another half of a pair
            self.write(text.encode("utf-8", "replace"))

    def end_line(self):
        """What follows is a text of its own."""
        if not self.ends_line:
            self.write(b"\n")

    def spend(self, count):
        """Counts bytes that were unpacked or gone through."""
        self.work -= count
        if self.work < 0:
            raise Full

    def too_much(self):
        """Said once, whatever how many things are left out."""
        self.faults[f"more than {self.mebibytes} MiB come out of it; the rest is left out"] = 1

    def fault(self, text):
        self.faults[text] = self.faults.get(text, 0) + 1

    def fault_lines(self):
        for text, count in self.faults.items():
            yield text if count == 1 else f"{text} ({count} times)"
