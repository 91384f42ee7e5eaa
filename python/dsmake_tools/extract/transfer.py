"""What mail does to bytes on their way, undone."""
import binascii
import re

OTHERS = bytes(set(range(256)) - set(b"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                     b"0123456789+/"))
WORD = re.compile(r"=\?([^?\s]{1,60})\?([bBqQ])\?([^?]*)\?=")


def from_base64(data):
    """The bytes, whether the last one was whole, and what stands behind the padding: servers of
    mailing lists add their lines there."""
    end = data.find(b"=")
    behind = b"" if end < 0 else data[end:].lstrip(b"= \t\r\n")
    digits = (data if end < 0 else data[:end]).translate(None, OTHERS)
    is_whole = len(digits) % 4 != 1
    digits = digits if is_whole else digits[:-1]
    return binascii.a2b_base64(digits + b"=" * (-len(digits) % 4)), is_whole, behind


def decode_words(value, decode):
    """The encoded words of a header field's value. `decode` makes text of bytes and a charset."""
    text, run, at = [], [], 0
    for word in WORD.finditer(value):
        between = value[at:word.start()]
        if between.strip() or not run:  # white space between two words is not meant
            text += [flush(run, decode), between]
            run = []
        charset = word[1].partition("*")[0].lower()  # behind it a language may stand
        if run and run[-1][0] != charset:
            text.append(flush(run, decode))
            run = []
        run.append((charset, bytes_of(word[2], word[3])))
        at = word.end()
    return "".join(text) + flush(run, decode) + value[at:]


def bytes_of(encoding, content):
    raw = content.encode("utf-8", "surrogateescape")
    if encoding in "bB":
        return from_base64(raw)[0]
    return binascii.a2b_qp(raw, header=True)


def flush(run, decode):
    """Words of one charset are put together first: a character may begin in one and end in the
    next."""
    return decode(b"".join(content for _, content in run), run[0][0]) if run else ""
