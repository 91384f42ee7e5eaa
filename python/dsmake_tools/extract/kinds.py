"""What a file is, told by how it begins: names and declared types may say anything."""
import re

HEAD_BYTES = 1 << 16

FIELD = re.compile(rb"([!-9;-~]+)[ \t]*:[^\n]*(?:\n[ \t][^\n]*)*(?:\n|\Z)")
# A text that happens to begin with a word and a colon is no mail: two of these must be there.
MAIL_FIELDS = frozenset(
    b"from to cc bcc subject date sender reply-to message-id received return-path delivered-to "
    b"mime-version content-type content-transfer-encoding in-reply-to references".split())
HTML = re.compile(rb"\s*(?:<\?xml[^>]*>\s*)?(?:(?><!--.{0,2000}?-->)\s*)*+"  # tries each only once
                  rb"<(?:!doctype\s+html|html|head|body|meta|title|table|div|p)\b", re.I | re.S)
MARKS = {b"\xef\xbb\xbf": "utf-8", b"\xff\xfe": "utf-16-le", b"\xfe\xff": "utf-16-be"}


def mark_of(data):
    """The byte order mark at the front and its encoding, or none of both."""
    for mark, encoding in MARKS.items():
        if data.startswith(mark):
            return mark, encoding
    return b"", None


def kind_of(head):
    """One of gzip, zip, pdf, mailbox, mail, html and plain."""
    if head.startswith(b"\x1f\x8b\x08"):
        return "gzip"
    if head.startswith((b"PK\x03\x04", b"PK\x05\x06")):
        return "zip"
    if head.startswith(b"%PDF-"):
        return "pdf"
    mark, encoding = mark_of(head)
    if encoding and encoding.startswith("utf-16"):
        head = head[2:].decode(encoding, "replace").encode("ascii", "replace")
    else:
        head = head[len(mark):]
    if HTML.match(head):
        return "html"
    return kind_of_mail(head)


def kind_of_mail(head):
    if head.startswith(b"From ") and FIELD.match(head, head.find(b"\n") + 1):
        return "mailbox"
    known, at = set(), 0
    while field := FIELD.match(head, at):
        known.add(field[1].lower())
        at = field.end()
    ends_well = head[at:].startswith((b"\n", b"\r\n")) or b"\n" not in head[at:]
    return "mail" if ends_well and len(known & MAIL_FIELDS) >= 2 else "plain"
