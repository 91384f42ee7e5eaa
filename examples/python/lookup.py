#!/usr/bin/env python3
"""lookup.py FILE KEY VALUE: looks a value up in a data set file, by the library's C interface.

Prints how many records have the value in the key field, and at which offsets they stand in the file.
White space around the value does not count. The exit status is 0 when it was found, 1 when not, 2
after a fault.

The shared library (cmake -DBUILD_SHARED_LIBS=ON) is the one that the environment variable
DSMAKE_LIBRARY names, or else the system's.
"""
import ctypes
import ctypes.util
import os
import sys

HOLD_IN_MEMORY = 1  # of no use for one lookup, but for many in a row


def load_library():
    name = os.environ.get("DSMAKE_LIBRARY") or ctypes.util.find_library("dsmake")
    if name is None:
        raise OSError("libdsmake: not found; name the file by DSMAKE_LIBRARY")
    library = ctypes.CDLL(name)
    handle = ctypes.c_void_p
    library.dsmake_open.restype = handle
    library.dsmake_open.argtypes = [ctypes.c_char_p, ctypes.c_uint]
    library.dsmake_find.restype = ctypes.c_int64
    library.dsmake_find.argtypes = [handle, ctypes.c_char_p, ctypes.c_char_p]
    library.dsmake_offsets.restype = ctypes.POINTER(ctypes.c_int64)
    library.dsmake_offsets.argtypes = [handle]
    library.dsmake_message.restype = ctypes.c_char_p
    library.dsmake_message.argtypes = [handle]
    library.dsmake_close.restype = None
    library.dsmake_close.argtypes = [handle]
    return library


def shown(text):
    """Control characters, and bytes that were no UTF-8, as \\xNN: nothing steers a terminal."""
    def one(character):
        code = ord(character)
        if 0xDC80 <= code <= 0xDCFF:  # how Python keeps such a byte
            code -= 0xDC00
        is_byte = code != ord(character)
        is_control = code < 0x20 or 0x7F <= code < 0xA0
        return f"\\x{code:02X}" if is_byte or is_control else character

    return "".join(map(one, text))


class DataSet:
    """A data set file that is open; faults are raised as OSError, whose text names the file."""

    def __init__(self, path, flags=0):
        self.library = load_library()
        self.handle = self.library.dsmake_open(os.fsencode(path), flags)
        try:
            self.check()
        except OSError:
            self.library.dsmake_close(self.handle)
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.library.dsmake_close(self.handle)

    def check(self):
        message = self.library.dsmake_message(self.handle)
        if message:
            raise OSError(os.fsdecode(message))

    def find(self, key, value):
        """The offsets of all records that have the value in the key field."""
        count = self.library.dsmake_find(self.handle, os.fsencode(key), os.fsencode(value))
        self.check()
        return self.library.dsmake_offsets(self.handle)[:count]


def main(arguments):
    if len(arguments) != 3:
        raise OSError("usage: lookup.py FILE KEY VALUE")
    path, key, value = arguments
    value = value.strip()
    with DataSet(path) as data_set:
        offsets = data_set.find(key, value)
    line = f'{shown(key)} "{shown(value)}": {len(offsets)} record{"" if len(offsets) == 1 else "s"}'
    if offsets:
        line += f' ({" ".join(map(str, offsets))})'
    print(line, flush=True)
    return 0 if offsets else 1


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except OSError as fault:
        print(fault, file=sys.stderr)
        sys.exit(2)
