"""Open data sets, and the finds of scans."""
from __future__ import annotations

import collections
import contextlib
import ctypes
import operator
import os
from dataclasses import dataclass
from typing import Any, Callable, Iterator, Optional, Sequence, Union

from . import _library
from ._texts import Text, check, pieces_of, to_bytes, to_str


class Error(Exception):
    """A data set cannot be opened, looked up or scanned. Its text begins with the file's name."""

    def __init__(self, message: str, code: int, filename: str) -> None:
        super().__init__(message, code, filename)  # all three, so that it can be pickled
        self.code = code  # as dsmake.h has it: of the library's message, or a small number
        self.filename = filename

    def __str__(self) -> str:
        return str(self.args[0])


@dataclass(frozen=True)
class Find:
    """A record that a text holds, at the first place that will do.

    Bytes of the text that are no UTF-8 are lone surrogates in `quote`.
    """
    line: int  # of the occurrence's first character, from 1
    place: int  # of that character: bytes from the front of the text's UTF-8
    length: int  # bytes of the occurrence
    key: str  # the field that occurs there
    quote: str  # the occurrence as written, its first 1,000 characters
    fields: tuple[str, ...]  # the fields that occur near enough, the key among them
    of: int  # how many fields records have
    record: int  # the record's offset in the file


def version() -> str:
    """The version of the library."""
    return str(_library.library().dsmake_version().decode())


class _Listener:
    """Keeps what a scan tells until it is asked for."""

    def __init__(self, names: Sequence[str]) -> None:
        self._names = names
        self._finds: collections.deque[Find] = collections.deque()
        self._fault: Optional[BaseException] = None
        self.function = _library.LISTENER(self._take)

    def told(self) -> Iterator[Find]:
        while self._finds:
            yield self._finds.popleft()
        if self._fault is not None:
            raise self._fault

    # What is raised in a function that the library calls would be printed and forgotten, an
    # interrupt from the keyboard too: it is kept and ends the scan.
    def _take(self, _: object, find: Any) -> int:
        try:
            self._finds.append(self._find_of(find.contents))
            return 1
        except BaseException as fault:  # pylint: disable=broad-exception-caught
            self._fault = fault
            return 0

    def _find_of(self, find: _library.FindInText) -> Find:
        names = self._names
        return Find(
            line=find.line, place=find.place, length=find.length, key=names[find.key],
            quote=to_str(ctypes.string_at(find.quote.bytes, find.quote.size)),
            fields=tuple(names[field] for field in find.fields[:find.field_count]),
            of=len(names), record=find.record)


class DataSet:
    """A data set file of version 2 that is open. Any number of threads may use it at a time; it is
    closed when none does."""

    def __init__(self, path: Union[str, bytes, "os.PathLike[Any]"]) -> None:
        name = os.fsencode(path)
        if b"\0" in name:
            raise ValueError("a path holds no zero character")
        self._filename = os.fsdecode(name)
        self._library = _library.library()
        # Handles that nobody uses just now. A list's append and pop are one step for all threads.
        self._idle: list[int] = []
        self._scans: dict[tuple[int, int], list[int]] = collections.defaultdict(list)
        self._set = self._library.dsmake_open(name, _library.HOLD_IN_MEMORY)
        try:
            self._check(self._set)
        except Error:
            self.close()
            raise
        library, handle = self._library, self._set
        self._fields = tuple(
            (to_str(library.dsmake_field_name(handle, i)), library.dsmake_field_type(handle, i).decode())
            for i in range(library.dsmake_field_count(handle)))
        self._keys = tuple(to_str(library.dsmake_key_name(handle, i))
                           for i in range(library.dsmake_key_count(handle)))

    def __enter__(self) -> DataSet:
        self._handle()
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        if hasattr(self, "_set"):
            self.close()

    def close(self) -> None:
        """Lets the file go; once is enough. Scans that were begun go on to their end."""
        handle, self._set = self._set, None
        self._library.dsmake_close(handle)
        while self._idle:
            self._library.dsmake_close(self._idle.pop())
        for scans in self._scans.values():
            while scans:
                self._library.dsmake_scan_close(scans.pop())

    @property
    def fields(self) -> Sequence[tuple[str, str]]:
        """Names and types of the fields, in the file's order; a type is "" when it is not known."""
        return self._fields

    @property
    def keys(self) -> Sequence[str]:
        """The names of the keys, in the file's order."""
        return self._keys

    def find(self, key: str, value: Union[str, bytes]) -> list[int]:
        """The offsets of the records that have the value in a key, ascending.

        The value is brought into the form of the key's type, but white space in front counts.
        """
        handle = self._handle()
        if not isinstance(key, str):
            raise TypeError(f"a key's name is a str, not {type(key).__name__}")
        if not isinstance(value, (str, bytes)):
            raise TypeError(f"a value is a str or bytes, not {type(value).__name__}")
        if key not in self._keys:
            raise ValueError(f"no such key: {key!r}; the keys are {', '.join(map(repr, self._keys))}")
        text = to_bytes(value) if isinstance(value, str) else value
        with self._borrowed(self._idle, lambda: self._library.dsmake_share(handle)) as own:
            count = self._library.dsmake_find_text(own, self._keys.index(key), text, len(text))
            if count < 0:
                self._check(own)
            return self._library.dsmake_offsets(own)[:count] if count else []

    def scan(self, text: Text, least: int = 2, within: Optional[int] = 100) -> Iterator[Find]:
        """Yields the records that a text, or an open file, holds, as they come.

        A record is found where a key of it occurs and, with this one, at least `least` of its fields,
        the others within `within` words of it, or anywhere for None. A `least` of 2 counts as 1
        where records have one field. A str is taken as its UTF-8.
        """
        handle = self._handle()
        check(text)
        least, within = self._bounds(least, within)
        # From here on a generator: what was wrong in the call is told by the call itself.
        return self._finds(handle, text, least, within)

    def _bounds(self, least: int, within: Optional[int]) -> tuple[int, int]:
        least = operator.index(least)  # a TypeError for what is no whole number
        if least == 2:
            least = min(least, len(self._fields))
        if not 1 <= least <= len(self._fields):
            raise ValueError(f"least is {least}, and records have {len(self._fields)} fields")
        if within is None:
            return least, _library.ANY_DISTANCE
        within = operator.index(within)
        if within < 0:
            raise ValueError(f"within is {within}, which is below 0")
        return least, min(within, _library.ANY_DISTANCE - 1)

    def _finds(self, handle: int, text: Text, least: int, within: int) -> Iterator[Find]:
        listener = _Listener([name for name, _ in self._fields])
        library = self._library
        with self._borrowed(self._scans[least, within],
                            lambda: self._open_scan(handle, least, within)) as scan:
            self._check_step(scan, library.dsmake_scan_start(scan, listener.function, None))
            for piece in pieces_of(text):
                result = library.dsmake_scan_feed(scan, piece, len(piece))
                yield from listener.told()
                self._check_step(scan, result)
            result = library.dsmake_scan_finish(scan)
            yield from listener.told()
            self._check_step(scan, result)

    def _check_step(self, scan: int, result: int) -> None:
        if result < 0:
            self._check_scan(scan)

    def _handle(self) -> int:
        if self._set is None:
            raise ValueError(f"{self._filename}: the data set is closed")
        return self._set

    def _open_scan(self, handle: int, least: int, within: int) -> int:
        self._handle()  # a generator may begin after close()
        scan = self._library.dsmake_scan_open(handle, least, within)
        try:
            self._check_scan(scan)
        except Error:
            self._library.dsmake_scan_close(scan)
            raise
        return scan

    @contextlib.contextmanager
    def _borrowed(self, idle: list[int], make: Callable[[], int]) -> Iterator[int]:
        """A handle for one thread: an idle one, or a new one, which is kept for the next."""
        try:
            handle = idle.pop()
        except IndexError:
            handle = make()
        try:
            yield handle
        finally:
            # Kept also after close(), whose last act is to empty the list: see there and __del__.
            idle.append(handle)
            if self._set is None:
                self.close()

    def _check(self, handle: Optional[int]) -> None:
        self._raise(self._library.dsmake_code(handle), self._library.dsmake_message(handle))

    def _check_scan(self, scan: Optional[int]) -> None:
        self._raise(self._library.dsmake_scan_code(scan), self._library.dsmake_scan_message(scan))

    def _raise(self, code: int, message: bytes) -> None:
        if not code:
            return
        if code == _library.NO_MEMORY:
            raise MemoryError(to_str(message))
        raise Error(to_str(message), code, self._filename)
