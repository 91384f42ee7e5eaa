"""From a file to its text, through whatever it is wrapped in."""
import io

from .archives import extract_gzip
from .kinds import HEAD_BYTES, kind_of, mark_of
from .mail import extract_html, extract_mail, extract_mailbox
from .office import extract_zip
from .output import MOST_ARCHIVES
from .pdf import extract_pdf

CHUNK = 1 << 16


class Work:
    """One file, or what was found in one; `depth` is how many archives and mails are around it."""

    def __init__(self, output, depth=0):
        self.output = output
        self.depth = depth

    def add(self, data):
        """Extracts what was unpacked, by what it is."""
        self.inner(kind_of(data[:HEAD_BYTES]), data)

    def inner(self, kind, data):
        Work(self.output, self.depth + 1).extract(kind, io.BytesIO(data))

    def extract(self, kind, source):
        wraps = kind in ("gzip", "zip", "mail", "mailbox")
        if wraps and self.depth >= MOST_ARCHIVES:
            self.output.fault(f"archives in archives, more than {MOST_ARCHIVES} deep")
        elif kind == "gzip":
            extract_gzip(self, source)
        elif kind == "zip":
            extract_zip(self, source)
        elif kind == "pdf":
            extract_pdf(self, source)
        elif kind == "mailbox":
            extract_mailbox(self, source)
        elif kind == "mail":
            extract_mail(self, self.read(source))
        elif kind == "html":
            extract_html(self, self.read(source))
        elif self.depth > 0:
            self.plain(source.read())
        else:
            self.copy(source)

    def read(self, source):
        """A mail is longer than what comes out of it."""
        data = source.read(2 * self.output.limit + 1)
        if len(data) > 2 * self.output.limit:
            self.output.too_much()
        return data

    def plain(self, data):
        """As it stands; but in the midst of UTF-8 no other encoding can be told."""
        mark, encoding = mark_of(data)
        if encoding and encoding != "utf-8":
            self.output.write_text(data[len(mark):].decode(encoding, "replace"))
        else:
            self.output.write(data[len(mark):])

    def copy(self, source):
        for chunk in iter(lambda: source.read(CHUNK), b""):
            self.output.write(chunk)


def extract_file(source, output):
    kind = kind_of(source.read(HEAD_BYTES))
    source.seek(0)
    Work(output).extract(kind, source)
