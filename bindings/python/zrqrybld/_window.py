"""The designer as a widget of the Qt binding that the program uses."""

import importlib
import sys
from ctypes import byref, c_uint64, c_void_p

from . import Error, Object, _check, _lib
from . import _library as _c

_CANNOT_CREATE = 429


def _binding(parent):
    """The binding that the parent is of, or the one that the program has imported."""
    if parent is not None:
        names = [cls.__module__.partition(".")[0] for cls in type(parent).__mro__]
        found = next((name for name in _c.BINDINGS if name in names), None)
        if found is None:
            raise Error(13, f"Type mismatch: a widget of {' or '.join(_c.BINDINGS)} wanted, {type(parent).__name__} given.")
        return found
    found = next((name for name in _c.BINDINGS if name in sys.modules), None)
    if found is None:
        raise Error(_CANNOT_CREATE, f"A widget needs {' or '.join(_c.BINDINGS)}: import it before zrqrybld.")
    return found


def _require_same_qt(binding):
    """Two copies of Qt in one process know nothing of each other's objects."""
    if not hasattr(_lib, "zrq_widget"):
        raise Error(_CANNOT_CREATE, f"{_lib._name} was built without a window. Import {binding} before zrqrybld, or set "
                    f"ZRQRYBLD_LIBRARY to {_c._names('zrQryBldQt')[0]}.\n  " + "\n  ".join(_lib.failures))
    core = importlib.import_module(f"{binding}.QtCore")
    ours, theirs = _lib.zrq_qt_version().decode(), core.qVersion()
    if ours != theirs:
        raise Error(_CANNOT_CREATE, f"{_lib._name} uses Qt {ours}, {binding} uses another, {theirs}.")


def _make_pyqt(parent, widgets):
    sip = importlib.import_module("PyQt6.sip")
    address, hub = _make(sip.unwrapinstance(parent) if parent is not None else None)
    made = sip.wrapinstance(address, widgets.QSplitter)
    if parent is None:
        sip.transferback(made)
    else:
        sip.transferto(made, parent)
    return made, hub


def _make_pyside(parent, widgets):
    shiboken = importlib.import_module("shiboken6")
    address, hub = _make(shiboken.getCppPointer(parent)[0] if parent is not None else None)
    return shiboken.wrapInstance(address, widgets.QSplitter), hub


def _make(parent):
    address, handle = c_void_p(), c_uint64()
    _check(_lib.zrq_widget(parent, byref(address), byref(handle)))
    return address.value, Object(handle.value)


def make(parent):
    """See `zrqrybld.widget`."""
    binding = _binding(parent)
    _require_same_qt(binding)
    widgets = importlib.import_module(f"{binding}.QtWidgets")
    made, made.QueryBuilder = (_make_pyqt if binding == "PyQt6" else _make_pyside)(parent, widgets)
    return made
