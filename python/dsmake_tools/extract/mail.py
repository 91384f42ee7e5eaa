"""Mails and mailboxes."""
import binascii
import re

from . import charsets, html_text, transfer
from .kinds import FIELD, kind_of, HEAD_BYTES
from .mime import Part, split

SHOWN = ("from", "to", "cc", "bcc", "reply-to", "sender", "subject")
MOST_NESTED = 32  # parts in parts


def extract_mail(work, data):
    """First who and what about, then the text, and last what only programs read: it must not stand
    between a name above and one in the text."""
    mail = Part(data)
    fields = [(name, decode_field(work, value)) for name, value in mail.fields]
    shown = [field for wanted in SHOWN for field in fields if field[0].lower() == wanted]
    write_fields(work, shown)
    extract_part(work, mail, 0)
    work.output.end_line()
    write_fields(work, [field for field in fields if field[0].lower() not in SHOWN])


def write_fields(work, fields):
    for name, value in fields:
        work.output.write_text(f"{name}: {value}\n")


def decode_field(work, value):
    return transfer.decode_words(value, lambda raw, charset: decode(work, raw, charset))


def decode(work, data, charset):
    return charsets.decode(data, charset, lambda _: work.output.fault("a charset that is unknown"))


def extract_part(work, part, nested):
    if nested > 0 and (name := part.file_name()):
        work.output.write_text(f"{decode_field(work, name)}\n")
    if part.type().startswith("multipart/"):
        extract_parts(work, part, nested)
    else:
        extract_leaf(work, part)


def extract_parts(work, part, nested):
    work.output.spend(len(part.body))
    # As bytes again: the parameter's text may hold stray ones.
    boundary = str(part.parameter("boundary")).encode("utf-8", "surrogateescape")
    if not boundary or nested == MOST_NESTED:
        work.output.fault("a mail's parts cannot be told from each other")
        return extract_text(work, part, part.body)
    parts, around, closed = split(part.body, boundary)
    if not closed:
        work.output.fault("a mail is cut short")
    default = "message/rfc822" if part.type() == "multipart/digest" else "text/plain"
    for piece in parts:
        work.output.end_line()
        if piece:
            extract_part(work, Part(piece, default), nested + 1)
    for piece in around:
        work.output.end_line()
        work.output.write(piece.strip())


def extract_leaf(work, part):
    encoding = part.field("Content-Transfer-Encoding").strip().lower()
    data, behind = part.body, b""
    if encoding == "quoted-printable":
        data = binascii.a2b_qp(data)
    elif encoding == "base64":
        data, is_whole, behind = transfer.from_base64(data)
        if not is_whole:
            work.output.fault("an attachment is cut short")
    if part.type() == "message/rfc822":
        work.inner("mail", data)
    elif kind_of(data[:HEAD_BYTES]) in ("plain", "html"):
        extract_text(work, part, data)
    else:
        work.inner(kind_of(data[:HEAD_BYTES]), data)
    work.output.end_line()
    work.output.write(behind)


def extract_text(work, part, data):
    """HTML that is declared to be plain text is shown as it stands by mail programs."""
    kind = part.type()
    is_html = kind in ("text/html", "application/xhtml+xml") or (
        kind != "text/plain" and kind_of(data[:HEAD_BYTES]) == "html")
    if is_html:
        extract_html(work, data, part.charset())
    elif kind.startswith("text/"):
        work.output.write_text(decode(work, data, part.charset()))
    else:
        work.plain(data)


def extract_html(work, data, charset=None):
    text = decode(work, data, charset or html_text.charset_of(data[:4096]))
    for piece in html_text.HtmlText(text).pieces():
        work.output.write_text(piece)


def mails_of(source, longest):
    """The mails of a mailbox. One begins with a line `From ` behind a blank one and a header field
    behind that: texts have such lines, too, and not all programs mark those."""
    mail, was_blank, waiting = bytearray(), True, b""
    for line in iter(lambda: source.readline(1 << 20), b""):
        if waiting:
            if FIELD.match(line) or line.startswith(b">From "):
                yield bytes(mail), False
                mail.clear()
            else:
                mail += waiting
            waiting = b""
        if was_blank and line.startswith(b"From "):
            waiting = line
            continue
        was_blank = line in (b"\n", b"\r\n")
        mail += re.sub(rb"^>(>*From )", rb"\1", line)
        if len(mail) > longest:
            yield bytes(mail), True
            mail.clear()
    yield bytes(mail + waiting), False


def extract_mailbox(work, source):
    for mail, is_cut in mails_of(source, 2 * work.output.limit):
        if is_cut:
            work.output.fault("a mail that is too long is taken apart")
        if mail.strip():
            work.output.end_line()
            work.output.spend(len(mail))
            extract_mail(work, mail)
