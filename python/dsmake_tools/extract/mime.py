"""The parts of a mail, found in broken ones as well."""
import re
from email.message import Message

from .charsets import guess
from .kinds import FIELD

LONGEST_VALUE = 8000  # of a field with parameters; reading them takes time by its square


class Part:
    """The header of a mail or of a part of one, and the bytes of its body."""

    def __init__(self, data, default_type="text/plain"):
        self.fields = []
        at = 0
        while field := FIELD.match(data, at):
            value = re.sub(rb"\r?\n(?=[ \t])", b"", field[0][len(field[1]):])
            value = value.lstrip(b" \t").removeprefix(b":").strip()
            self.fields.append((field[1].decode("ascii"), guess(value)))
            at = field.end()
        blank = re.compile(rb"\r?\n").match(data, at)
        self.body = data[blank.end() if blank else at:]
        self.message = Message()
        self.message.set_default_type(default_type)
        for name in ("Content-Type", "Content-Disposition"):
            if value := self.field(name):
                self.message[name] = value[:LONGEST_VALUE].encode("ascii", "replace").decode("ascii")

    def field(self, wanted):
        for name, value in self.fields:
            if name.lower() == wanted.lower():
                return value
        return ""

    def type(self):
        return self.message.get_content_type()

    def charset(self):
        return self.parameter("charset")

    def parameter(self, name):
        value = self.message.get_param(name, "")
        return value[2] if isinstance(value, tuple) else value

    def file_name(self):
        try:
            return self.message.get_filename("")
        except (LookupError, UnicodeError, ValueError):
            return ""


def split(body, boundary):
    """The parts between the lines of a boundary; what stands before and behind them; whether the
    closing line is there."""
    line = re.compile(rb"^--" + re.escape(boundary) + rb"(--)?[ \t]*\r?$", re.M)
    parts, around, begin, closed = [], [], 0, False
    for found in line.finditer(body):
        piece = body[begin:max(begin, found.start() - 1)].removesuffix(b"\r")
        (around if begin == 0 or closed else parts).append(piece)
        begin = found.end() + 1
        closed = found[1] is not None
        if closed:
            break
    (around if begin == 0 or closed else parts).append(body[begin:])
    return parts, around, closed
