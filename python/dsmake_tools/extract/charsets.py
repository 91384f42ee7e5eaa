"""Bytes to text, as mail programs and browsers do it."""
import codecs

from .kinds import mark_of

# What the names stand for in practice: each of these holds the one that is named.
WIDER = {"iso8859-1": "cp1252", "iso8859-9": "cp1254", "iso8859-11": "cp874",
         "gb2312": "gb18030", "gbk": "gb18030", "shift_jis": "cp932", "euc_kr": "cp949"}
GUESSED = frozenset(["", "us-ascii", "ascii", "unknown-8bit", "x-unknown", "8bit", "binary"])
# No encodings of texts, and two that take time by the square of the length.
REFUSED = frozenset(["idna", "punycode", "undefined", "unicode-escape", "raw-unicode-escape"])


def find_codec(charset):
    """The name of Python's codec for it; None when it is to be guessed. LookupError: unknown."""
    wanted = (charset or "").strip().lower()
    if wanted in GUESSED:
        return None
    name = codecs.lookup(wanted).name
    if name in REFUSED:
        raise LookupError(charset)
    "\n".encode(name)  # LookupError for what is no encoding of texts
    return WIDER.get(name, name)


def decode(data, charset=None, unknown=None):
    """A byte order mark counts more than `charset`. Without both: UTF-8, or else Windows-1252.
    `unknown` is called with a charset that nobody knows, when it makes a difference."""
    mark, encoding = mark_of(data)
    if encoding:
        return data[len(mark):].decode(encoding, "replace" if len(mark) == 2 else "surrogateescape")
    try:
        encoding = find_codec(charset)
    except (LookupError, ValueError):
        if unknown and not data.isascii():
            unknown(charset)
    if encoding is None:
        return guess(data)
    try:
        return data.decode(encoding, "surrogateescape")
    except UnicodeError:  # not every codec can keep a byte
        return data.decode(encoding, "replace")


def guess(data):
    try:
        return data.decode("utf-8")
    except UnicodeDecodeError:
        return data.decode("cp1252", "surrogateescape")
