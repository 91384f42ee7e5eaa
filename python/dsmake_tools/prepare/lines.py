"""The lines of a file as text."""
import codecs
import io

from . import Fault
from ..shown import shown

HEAD_BYTES = 1 << 16
MARKS = ((codecs.BOM_UTF8, "utf-8-sig"), (codecs.BOM_UTF32_LE, "utf-32"),
         (codecs.BOM_UTF32_BE, "utf-32"), (codecs.BOM_UTF16_LE, "utf-16"),
         (codecs.BOM_UTF16_BE, "utf-16"))


class Lines:
    """Yields the lines, each with its LF. When nobody said which encoding it is, a line that is no
    UTF-8 is Windows-1252: a table that was put together from both comes out right."""

    def __init__(self, file, encoding, report):
        self.file = file
        self.report = report
        self.number = 0
        head = file.read(HEAD_BYTES)
        file.seek(0)
        self.is_said = encoding is not None
        self.name, self.encoding = find_encoding(encoding, head)
        # As spreadsheets of old ended their lines.
        self.end = "\r" if b"\r" in head and b"\n" not in head else "\n"
        if self.end == "\r":
            report.say("its lines end with CR alone")

    def __iter__(self):
        is_one_byte = "\n".encode(self.encoding.removesuffix("-sig")) == b"\n"
        return self.by_line() if is_one_byte and self.end == "\n" else self.by_file()

    def by_file(self):
        text = io.TextIOWrapper(self.file, self.encoding, newline=self.end)
        try:
            for line in text:
                self.number += 1
                yield line[:-1] + "\n" if line.endswith(self.end) else line
        except UnicodeError as fault:
            raise Fault(f"behind line {self.number}: no {self.name}") from fault
        finally:
            text.detach()

    def by_line(self):
        encoding = self.encoding
        for line in self.file:
            self.number += 1
            try:
                yield line.decode(encoding)
            except UnicodeDecodeError as fault:
                if self.is_said:
                    raise Fault(f"line {self.number}: no {self.name}") from fault
                text = line.decode("cp1252", "surrogateescape")
                self.report.tell("encoding", self.number, shown(text.strip(), 60))
                yield text
            encoding = encoding.removesuffix("-sig")  # the mark stands in the first line


def find_encoding(wanted, head):
    """The encoding as messages call it, and Python's codec."""
    if wanted is not None:
        try:
            "\n".encode(wanted)  # LookupError also for what encodes no text
            return shown(wanted), codecs.lookup(wanted).name
        except (LookupError, UnicodeError) as fault:
            raise Fault(f"no encoding is called {shown(wanted)}") from fault
    for mark, name in MARKS:
        if head.startswith(mark):
            return f"{name.upper().removesuffix('-SIG')} by its byte order mark", name
    for name, zero in (("utf-16-le", 1), ("utf-16-be", 0)):
        if head[zero:2000:2].count(0) * 2 > len(head[:2000:2]):  # no text has so many
            return f"{name.upper()} (a guess: every other byte is 0)", name
    return "UTF-8", "utf-8"
