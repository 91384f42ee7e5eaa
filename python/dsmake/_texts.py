"""What may be given as a text, and how it becomes bytes."""
from __future__ import annotations

import io
import re
from typing import BinaryIO, Iterator, TextIO, Union

Text = Union[str, bytes, bytearray, memoryview, BinaryIO, TextIO]

PIECE = 1 << 18  # large enough that a call's cost does not show
_ESCAPED_BYTES = re.compile("[\udc80-\udcff]+")
_SURROGATES = re.compile("[\ud800-\udfff]")


def to_bytes(text: str) -> bytes:
    """UTF-8. Lone surrogates that Python made of bytes become these again, others U+FFFD."""
    try:
        return text.encode()
    except UnicodeEncodeError:
        text = _SURROGATES.sub(
            lambda found: found[0] if _ESCAPED_BYTES.match(found[0]) else "\ufffd", text)
        return text.encode("utf-8", "surrogateescape")


def to_str(text: bytes) -> str:
    """The other way; bytes that are no UTF-8 become lone surrogates."""
    return text.decode("utf-8", "surrogateescape")


def pieces_of(text: Text) -> Iterator[bytes]:
    """The bytes of a text, piece by piece; a file is read as far as is asked for."""
    if isinstance(text, str):
        # Not all at once: what a listener is told early needs no copy of the rest.
        for start in range(0, len(text), PIECE):
            yield to_bytes(text[start:start + PIECE])
    elif isinstance(text, (bytes, bytearray, memoryview)):
        view = memoryview(text).cast("B")
        for start in range(0, len(view), PIECE):
            yield bytes(view[start:start + PIECE])
    else:
        yield from _pieces_of_file(text)


def check(text: Text) -> None:
    """A TypeError for what is no text."""
    if isinstance(text, (str, bytes, bytearray, memoryview)) or hasattr(text, "read"):
        return
    raise TypeError(f"a str, bytes or a file is needed, not {type(text).__name__}")


def _pieces_of_file(file: Union[BinaryIO, TextIO]) -> Iterator[bytes]:
    # A pipe's read1 gives what has come, so that finds need not wait for the end.
    read = getattr(file, "read1", file.read) if not isinstance(file, io.TextIOBase) else file.read
    while piece := read(PIECE):
        if isinstance(piece, str):
            piece = to_bytes(piece)
        elif not isinstance(piece, bytes):
            raise TypeError(f"a file of str or bytes is needed, not of {type(piece).__name__}")
        yield piece
