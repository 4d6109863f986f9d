"""The shared library and its C interface."""

import ctypes
import os
import sys
from ctypes import POINTER, c_char_p, c_double, c_int32, c_int64, c_size_t, c_uint64, c_void_p
from pathlib import Path

ABI = 1

# What a value holds.
EMPTY, NULL, MISSING, BOOLEAN, INT16, INT32, INT64, SINGLE, DOUBLE, DATE, STRING, OBJECT, ARRAY = range(13)

# What a provider is asked for.
KEYWORDS, COLUMNS, TABLES, TYPES, FOREIGN_KEYS, PRIMARY_KEYS, LITERALS = 0, 4, 20, 22, 27, 28, 31

# What can be done with a member.
GET, LET, SET, CALL, EVENT = 1, 2, 4, 8, 16


class Value(ctypes.Structure):
    """One value of any kind."""


class _Text(ctypes.Structure):
    _fields_ = [("data", c_void_p), ("length", c_size_t)]


class _Array(ctypes.Structure):
    _fields_ = [("items", POINTER(Value)), ("count", c_size_t)]


class _Content(ctypes.Union):
    _fields_ = [("integer", c_int64), ("number", c_double), ("object", c_uint64), ("text", _Text), ("array", _Array)]


Value._anonymous_ = ("content",)
Value._fields_ = [("type", c_int32), ("reserved", c_int32), ("content", _Content)]


class Argument(ctypes.Structure):
    _fields_ = [("name", c_char_p), ("type", c_char_p), ("optional", c_int32), ("by_reference", c_int32)]


class MemberRecord(ctypes.Structure):
    _fields_ = [("name", c_char_p), ("type", c_char_p), ("kinds", c_int32), ("is_default", c_int32),
                ("arguments", POINTER(Argument)), ("argument_count", c_size_t)]


# These take the interpreter's lock, which a window's events and other threads' calls do not hold.
Handler = ctypes.CFUNCTYPE(None, c_void_p, POINTER(Value), c_size_t)
Ended = ctypes.CFUNCTYPE(None, c_void_p)


class Wanted(ctypes.Structure):
    """Which rows a provider is asked for."""
    _fields_ = [("catalog", c_char_p), ("schema", c_char_p), ("table", c_char_p)]


Open = ctypes.CFUNCTYPE(c_int32, c_void_p, c_char_p, c_char_p, c_char_p, POINTER(c_void_p))
Rows = ctypes.CFUNCTYPE(c_int32, c_void_p, c_void_p, c_int32, POINTER(Wanted))
Close = ctypes.CFUNCTYPE(None, c_void_p, c_void_p)


class ProviderRecord(ctypes.Structure):
    """A provider's functions."""
    _fields_ = [("size", c_size_t), ("name", c_char_p), ("open", Open), ("rows", Rows), ("close", Close),
                ("ended", Ended)]


# Python's ways to Qt. A program that has one of them gets the library with the window.
BINDINGS = ("PyQt6", "PySide6")


def _names(stem):
    """What the system calls a shared library: the second where only what runs is installed, not what links."""
    return {"win32": (f"{stem}.dll", f"lib{stem}.dll"),
            "darwin": (f"lib{stem}.dylib", f"lib{stem}.{ABI}.dylib")}.get(sys.platform, (f"lib{stem}.so", f"lib{stem}.so.{ABI}"))


def _candidates():
    """Where the library may be, the best guess first."""
    if named := os.environ.get("ZRQRYBLD_LIBRARY"):
        yield named
        return
    here = Path(__file__).resolve().parent
    folders = [here, *(here.parents[2] / "build" / build for build in ("release", "run", "dev"))]  # a source tree
    with_window = ("zrQryBldQt",) if any(binding in sys.modules for binding in BINDINGS) else ()
    for stem in (*with_window, "zrQryBld"):
        names = _names(stem)
        yield from (str(folder / name) for folder in folders for name in names)
        yield from names


def load():
    """Loads the library. Calls let go of the interpreter's lock: one that waits for another's must not hold it."""
    failures = []
    for path in _candidates():
        if os.sep in path and not os.path.exists(path):
            failures.append(f"{path}: no such file")
            continue
        try:
            library = ctypes.CDLL(path)
            break
        except OSError as error:
            failures.append(str(error))
    else:
        raise ImportError(f"The zrQryBld library was not found; set ZRQRYBLD_LIBRARY to {_names('zrQryBld')[0]}.\n  "
                          + "\n  ".join(failures))
    library.failures = failures
    signatures = {
        "zrq_create": [c_char_p, POINTER(c_uint64)],
        "zrq_retain": [c_uint64],
        "zrq_release": [c_uint64],
        "zrq_class": [c_uint64, POINTER(c_char_p)],
        "zrq_get": [c_uint64, c_char_p, POINTER(Value), c_size_t, POINTER(Value)],
        "zrq_let": [c_uint64, c_char_p, POINTER(Value), c_size_t, POINTER(Value)],
        "zrq_call": [c_uint64, c_char_p, POINTER(Value), c_size_t, POINTER(Value), POINTER(Value)],
        "zrq_subscribe": [c_uint64, c_char_p, Handler, Ended, c_void_p, POINTER(c_uint64)],
        "zrq_unsubscribe": [c_uint64],
        "zrq_end_subscriptions": [],
        "zrq_write": [c_size_t, POINTER(Value)],
        "zrq_connection": [POINTER(ProviderRecord), c_void_p, POINTER(c_uint64)],
        "zrq_register": [POINTER(ProviderRecord), c_void_p],
        "zrq_row": [POINTER(Value), c_size_t],
        "zrq_fail": [c_int32, c_char_p],
        "zrq_last_error": [POINTER(c_char_p)],
        "zrq_member_at": [c_char_p, c_size_t, POINTER(MemberRecord)],
        "zrq_constant_at": [c_size_t, POINTER(c_char_p), POINTER(c_char_p), POINTER(c_int32)],
        "zrq_abi": [],
    }
    for name, arguments in signatures.items():
        function = getattr(library, name)
        function.argtypes, function.restype = arguments, c_int32
    library.zrq_clear.argtypes, library.zrq_clear.restype = [POINTER(Value)], None
    library.zrq_version.argtypes, library.zrq_version.restype = [], c_char_p
    if hasattr(library, "zrq_widget"):
        library.zrq_widget.argtypes = [c_void_p, POINTER(c_void_p), POINTER(c_uint64)]
        library.zrq_widget.restype = c_int32
        library.zrq_qt_version.argtypes, library.zrq_qt_version.restype = [], c_char_p
    library.zrq_class_at.argtypes, library.zrq_class_at.restype = [c_size_t], c_char_p
    if library.zrq_abi() != ABI:
        raise ImportError(f"{path} speaks version {library.zrq_abi()} of the interface, this package version {ABI}.")
    return library
