"""Token values, as a build stores them, from the project's shared library."""
import ctypes
from array import array

from dsmake import _library

from . import Fault


def load():
    try:
        library = _library.load()
        library.dsmake_tokeniser_open.restype = ctypes.c_void_p
        library.dsmake_tokeniser_open.argtypes = [ctypes.POINTER(ctypes.c_char_p), ctypes.c_size_t]
        library.dsmake_tokeniser_close.restype = None
        library.dsmake_tokeniser_close.argtypes = [ctypes.c_void_p]
        library.dsmake_line_values.restype = ctypes.c_int64
        library.dsmake_line_values.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_size_t,
                                               ctypes.POINTER(ctypes.c_void_p)]
    except (OSError, AttributeError) as fault:
        raise Fault(f"{fault}; DSMAKE_LIBRARY may name another library") from fault
    return library


class RecordValues:
    """Makes the token values of records with fields of these types."""

    def __init__(self, types):
        library = load()
        names = (ctypes.c_char_p * len(types))(*(name.encode() for name in types))
        self.close = library.dsmake_tokeniser_close
        self.handle = ctypes.c_void_p(library.dsmake_tokeniser_open(names, len(types)))
        if not self.handle:
            raise MemoryError
        self.line_values = library.dsmake_line_values
        self.place = ctypes.c_void_p()
        self.where = ctypes.byref(self.place)

    def __del__(self):
        if getattr(self, "handle", None):
            self.close(self.handle)

    def of(self, line):
        """For each field the number of its values, then these: 8 bytes each."""
        total = self.line_values(self.handle, line, len(line), self.where)
        if total < 0:
            raise Fault("the library cannot make token values: there is not enough memory, or a "
                        "value has more than 15,000,000 words and marks")
        return ctypes.string_at(self.place, 8 * total)


def counts_of(values):
    """How many values each field has, of what RecordValues.of gave."""
    numbers, at = array("Q", values), 0
    while at < len(numbers):
        yield numbers[at]
        at += 1 + numbers[at]
