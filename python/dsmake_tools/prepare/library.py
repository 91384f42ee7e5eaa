"""Token values, as a build stores them, from the project's shared library."""
import ctypes
import os
from itertools import accumulate

from . import Fault

NAME = "libdsmake.so.22"


def load():
    name = os.environ.get("DSMAKE_LIBRARY") or NAME
    try:
        library = ctypes.CDLL(name)
        library.dsmake_record_values.restype = ctypes.c_int64
        library.dsmake_record_values.argtypes = [
            ctypes.POINTER(ctypes.c_char_p), ctypes.c_size_t, ctypes.c_char_p, ctypes.c_size_t,
            ctypes.c_void_p, ctypes.c_size_t, ctypes.c_void_p, ctypes.c_size_t]
    except (OSError, AttributeError) as fault:
        raise Fault(f"{fault}; DSMAKE_LIBRARY may name another library") from fault
    return library


class RecordValues:
    """Makes the token values of blocks of records with fields of these types."""

    def __init__(self, types):
        self.library = load()
        self.types = (ctypes.c_char_p * len(types))(*(name.encode() for name in types))
        self.values = (ctypes.c_uint64 * 0)()

    def of(self, text, lines):
        """How many values each field has, line by line; for each line a view of its values."""
        width = len(self.types)
        if len(self.values) < len(text):  # there are never more values than bytes
            self.values = (ctypes.c_uint64 * (2 * len(text)))()
        counts = (ctypes.c_uint32 * (lines * width))()
        total = self.library.dsmake_record_values(self.types, width, text, len(text), self.values,
                                                  len(self.values), counts, len(counts))
        if total < 0:
            raise Fault("the library cannot make token values: there is not enough memory, or a "
                        "value has more than 15,000,000 words and marks")
        view = memoryview(self.values).cast("B")
        ends = list(accumulate(counts))[width - 1::width]
        return counts, [view[8 * begin:8 * end] for begin, end in zip([0, *ends], ends)]
