"""The functions of dsmake.h, which says what they do, with their types."""
from __future__ import annotations

import ctypes
import functools
import os
import sysconfig
from ctypes import POINTER, c_char_p, c_int, c_int64, c_size_t, c_uint, c_uint32, c_uint64, c_void_p

NAME = "libdsmake.so.22"
HOLD_IN_MEMORY = 1
NO_MEMORY = 0xC2000001
ANY_DISTANCE = 2**64 - 1

# Of functions for errors; a data set or scan comes first.
_FUNCTIONS = {
    "dsmake_version": (c_char_p, []),
    "dsmake_open": (c_void_p, [c_char_p, c_uint]),
    "dsmake_share": (c_void_p, [c_void_p]),
    "dsmake_close": (None, [c_void_p]),
    "dsmake_code": (c_uint32, [c_void_p]),
    "dsmake_message": (c_char_p, [c_void_p]),
    "dsmake_field_count": (c_uint32, [c_void_p]),
    "dsmake_field_name": (c_char_p, [c_void_p, c_uint32]),
    "dsmake_field_type": (c_char_p, [c_void_p, c_uint32]),
    "dsmake_key_count": (c_uint32, [c_void_p]),
    "dsmake_key_name": (c_char_p, [c_void_p, c_uint32]),
    "dsmake_find_text": (c_int64, [c_void_p, c_uint32, c_char_p, c_size_t]),
    "dsmake_offsets": (POINTER(c_int64), [c_void_p]),
    "dsmake_scan_open": (c_void_p, [c_void_p, c_uint64, c_uint64]),
    "dsmake_scan_close": (None, [c_void_p]),
    "dsmake_scan_start": (c_int, [c_void_p, c_void_p, c_void_p]),
    "dsmake_scan_feed": (c_int, [c_void_p, c_char_p, c_size_t]),
    "dsmake_scan_finish": (c_int, [c_void_p]),
    "dsmake_scan_code": (c_uint32, [c_void_p]),
    "dsmake_scan_message": (c_char_p, [c_void_p]),
}


class TextView(ctypes.Structure):
    """dsmake_text"""
    _fields_ = [("bytes", c_void_p), ("size", c_size_t)]


class FindInText(ctypes.Structure):
    """dsmake_find_in_text"""
    _fields_ = [("line", c_uint64), ("place", c_uint64), ("length", c_uint64), ("record", c_int64),
                ("quote", TextView), ("quote_is_whole", c_int), ("key", c_uint32),
                ("fields", POINTER(c_uint32)), ("field_count", c_uint32)]


LISTENER = ctypes.CFUNCTYPE(c_int, c_void_p, POINTER(FindInText))


def _places() -> list[str]:
    """Folders that may hold the library that belongs to this module: under the same prefix, or where
    the checkout's run.sh builds. Nowhere else is looked, as other people may write there."""
    above, folder = os.path.split(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
    if folder == "python":
        return [os.path.join(above, "build/run")]
    if folder != "dist-packages":
        return []
    prefix = os.path.dirname(os.path.dirname(above))
    return [os.path.join(prefix, name) for name in
            ("lib", f"lib/{sysconfig.get_config_var('MULTIARCH')}", "lib64")]


def load() -> ctypes.CDLL:
    """The library that DSMAKE_LIBRARY names, the one that belongs to this module, or the system's.
    An OSError when there is none."""
    found = (path for place in _places() if os.path.exists(path := os.path.join(place, NAME)))
    # CDLL lets other threads of Python go on while a function runs.
    return ctypes.CDLL(os.environ.get("DSMAKE_LIBRARY") or next(found, NAME))


@functools.lru_cache(maxsize=None)
def library() -> ctypes.CDLL:
    """The library with the types of its functions, loaded when first asked for."""
    loaded = load()
    for name, (result, arguments) in _FUNCTIONS.items():
        function = getattr(loaded, name)
        function.restype = result
        function.argtypes = arguments
    return loaded
