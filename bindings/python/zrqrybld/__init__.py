"""The objects of the zrQryBld query designer, without any window.

    from zrqrybld import create, Ref

    qb = create("qbQueryBuilder")
    qb.DiagramPane, qb.GridPane, qb.SQLPane = create("qbDiagramPane"), create("qbGridPane"), create("qbSQLPane")
    qb.Connect("Provider=SQLite;Data Source=store.db")
    orders = qb.AddTable("Orders")
    orders.Items["OrderID"].Checked = True
    print(qb.SQLPane.SQLStatement)

Properties are attributes, methods are called, collections are indexed from 1 or by key, iterated and measured with
`len`. A property with arguments is read like a call or with brackets, `grid.Value(1, 2)`, and written with brackets,
`grid.Value[1, 2] = "x"`, or with `grid.let("Value", "x", 1, 2)`. Nothing is `None`. Names of members are found in any
letter case. `Ref(value)` passes an argument by reference; `obj.on(event, handler)` listens to an event.

The named numbers of the library are attributes of this module: `zrqrybld.SQLSyntaxOracle`.
"""

import atexit as _atexit
import ctypes as _ctypes
import datetime as _datetime
import functools as _functools
import itertools as _itertools
from ctypes import byref as _byref
from typing import NamedTuple as _NamedTuple

from . import _library as _c

__all__ = ["Argument", "Error", "Member", "Null", "Object", "Provider", "Ref", "Subscription", "TableName", "classes",
           "connection", "constants", "create", "members", "register", "toolkit", "version", "widget"]

_lib = _c.load()
_Value = _c.Value
_EPOCH = _datetime.datetime(1899, 12, 30)


# --- Errors and values ------------------------------------------------------------------------------------------------

class Error(Exception):
    """An error of the library: `number` and `description`."""

    def __init__(self, number, description):
        super().__init__(f"[{number}] {description}")
        self.number = number
        self.description = description


class NoSuchMember(Error, AttributeError):
    """The object has no such member, or it cannot do what is asked (number 438)."""


class NoSuchItem(Error, LookupError):
    """A collection has no item at the position or with the key (number 9)."""


class _NullType:
    """A database null."""

    def __repr__(self):
        return "Null"

    def __bool__(self):
        return False


Null = _NullType()


class Ref:
    """An argument by reference: `value` goes in, and holds what came out."""

    __slots__ = ("value",)

    def __init__(self, value=None):
        self.value = value

    def __repr__(self):
        return f"Ref({self.value!r})"


def _check(status):
    if status:
        text = _ctypes.c_char_p()
        _lib.zrq_last_error(_byref(text))
        description = (text.value or b"").decode("utf-8", "replace")
        error = {9: NoSuchItem, 438: NoSuchMember}.get(status, Error)(status, description)
        raise error from _provider.cause_of(description)


def _fill(to, value, keep):
    """Writes a Python value into a C value. `keep` holds what must live as long as the C value."""
    if value is None:
        to.type = _c.EMPTY
    elif value is True or value is False:
        to.type, to.integer = _c.BOOLEAN, value
    elif isinstance(value, str):
        data = value.encode("utf-8")
        keep.append(data)
        to.type = _c.STRING
        to.text.data = _ctypes.cast(_ctypes.c_char_p(data), _ctypes.c_void_p)
        to.text.length = len(data)
    elif isinstance(value, int):
        if -2**31 <= value < 2**31:
            to.type = _c.INT32
        elif -2**63 <= value < 2**63:
            to.type = _c.INT64
        else:
            raise Error(6, f"{value} is too large.")
        to.integer = value
    elif isinstance(value, float):
        to.type, to.number = _c.DOUBLE, value
    elif isinstance(value, Object):
        to.type, to.object = _c.OBJECT, value._handle
    elif value is Null:
        to.type = _c.NULL
    elif isinstance(value, Ref):
        _fill(to, value.value, keep)
    elif isinstance(value, _datetime.datetime):
        to.type, to.number = _c.DATE, (value.replace(tzinfo=None) - _EPOCH) / _datetime.timedelta(days=1)
    elif isinstance(value, _datetime.date):
        to.type, to.number = _c.DATE, (_datetime.datetime(value.year, value.month, value.day) - _EPOCH).days
    elif isinstance(value, (list, tuple)):
        items = _fill_all(value, keep)
        to.type = _c.ARRAY
        to.array.items, to.array.count = items, len(value)
    elif _provider.is_provider(value):
        keep.append(_provider.opened(value))
        _fill(to, keep[-1], keep)
    elif hasattr(value, "__index__"):
        _fill(to, value.__index__(), keep)
    elif hasattr(value, "__float__"):
        _fill(to, float(value), keep)
    else:
        raise Error(13, f"Type mismatch: {type(value).__name__} cannot be passed.")


def _fill_all(values, keep):
    items = (_Value * len(values))()
    for item, value in zip(items, values):
        _fill(item, value, keep)
    keep.append(items)
    return items


def _read(value):
    """The Python value of a C value. Handles in it are counted once more."""
    kind = value.type
    if kind == _c.STRING:
        return _ctypes.string_at(value.text.data, value.text.length).decode("utf-8", "replace")
    if kind in (_c.INT32, _c.INT16, _c.INT64):
        return value.integer
    if kind == _c.BOOLEAN:
        return value.integer != 0
    if kind == _c.OBJECT:
        _lib.zrq_retain(value.object)
        return Object(value.object)
    if kind in (_c.DOUBLE, _c.SINGLE):
        return value.number
    if kind == _c.NULL:
        return Null
    if kind == _c.DATE:
        try:
            return _EPOCH + _datetime.timedelta(days=value.number)
        except OverflowError:
            return value.number
    if kind == _c.ARRAY:
        return [_read(value.array.items[i]) for i in range(value.array.count)]
    return None


def _take(value):
    """Reads a value that the library filled in, and frees it."""
    kind = value.type
    if kind in (_c.INT32, _c.INT16, _c.INT64):
        return value.integer
    if kind == _c.BOOLEAN:
        return value.integer != 0
    if kind == _c.OBJECT:
        return Object(value.object)  # takes over the handle
    if kind == _c.EMPTY:
        return None
    try:
        return _read(value)
    finally:
        _lib.zrq_clear(_byref(value))


# --- Members -----------------------------------------------------------------------------------------------------------

class Argument(_NamedTuple):
    """One argument of a member."""
    name: str
    type: str
    optional: bool
    by_reference: bool


class Member(_NamedTuple):
    """One member of a class. `kind` is "property", "method" or "event"; `access` says "get", "let", "set" for one."""
    name: str
    kind: str
    access: tuple
    type: str
    arguments: tuple
    is_default: bool


def _describe(record):
    kinds = record.kinds
    kind = "event" if kinds & _c.EVENT else "method" if kinds & _c.CALL else "property"
    access = tuple(word for word, bit in (("get", _c.GET), ("let", _c.LET), ("set", _c.SET)) if kinds & bit)
    arguments = tuple(Argument(a.name.decode(), a.type.decode(), bool(a.optional), bool(a.by_reference))
                      for a in record.arguments[:record.argument_count])
    return Member(record.name.decode(), kind, access, record.type.decode(), arguments, bool(record.is_default))


@_functools.lru_cache(maxsize=None)
def _members(class_name):
    name, record, found = class_name.encode(), _c.MemberRecord(), []
    for index in _itertools.count():
        status = _lib.zrq_member_at(name, index, _byref(record))
        if status == 9:
            return tuple(found)
        _check(status)
        found.append(_describe(record))


def members(what):
    """The members of a class, or of an object's class, in interface order."""
    return list(_members(type_name(what) if isinstance(what, Object) else what))


def classes():
    """The names of the public classes."""
    return [name.decode() for name in iter(map(_lib.zrq_class_at, _itertools.count()).__next__, None)]


class _Class:
    """What is looked up in a class at every access."""

    def __init__(self, name):
        self.name = name
        self.members = {}
        # A class whose default member hands out objects: nothing is no item.
        self.holds_objects = any(member.is_default and member.name == "Item" and member.type in classes()
                                 for member in _members(name))
        for member in _members(name):
            simple = member.kind == "property" and not member.arguments
            self.members[member.name] = self.members[member.name.lower()] = (member, member.name.encode(), simple)

    def find(self, name):
        """(member, encoded name, whether it is a plain property), or None."""
        return self.members.get(name) or self.members.get(name.lower())


_classes = {}


def _class_of(handle):
    name = _ctypes.c_char_p()
    _check(_lib.zrq_class(handle, _byref(name)))
    known = _classes.get(name.value)
    if known is None:
        known = _classes[name.value] = _Class(name.value.decode())
    return known


# --- Objects -----------------------------------------------------------------------------------------------------------

def _get(handle, name, arguments=()):
    result, keep = _Value(), []
    values = _fill_all(arguments, keep) if arguments else None
    _check(_lib.zrq_get(handle, name, values, len(arguments), _byref(result)))
    return _take(result)


def _let(handle, name, arguments, value):
    keep, wanted = [], _Value()
    _fill(wanted, value, keep)
    values = _fill_all(arguments, keep) if arguments else None
    _check(_lib.zrq_let(handle, name, values, len(arguments), _byref(wanted)))


def _call(handle, name, arguments):
    count, result, keep = len(arguments), _Value(), []
    values = _fill_all(arguments, keep) if count else None
    if not any(isinstance(argument, Ref) for argument in arguments):
        _check(_lib.zrq_call(handle, name, values, count, _byref(result), None))
        return _take(result)
    written = (_Value * count)()
    _check(_lib.zrq_call(handle, name, values, count, _byref(result), written))
    for argument, value in zip(arguments, written):
        if isinstance(argument, Ref) and value.type != _c.MISSING:
            argument.value = _take(value)
        else:
            _lib.zrq_clear(_byref(value))
    return _take(result)


def _order(member, positional, named):
    """The arguments of a call in the member's order; named ones stand where they belong."""
    if not named:
        return positional
    names = [argument.name.lower() for argument in member.arguments]
    values = list(positional) + [None] * max(0, len(names) - len(positional))
    for name, value in named.items():
        if name.lower() not in names or names.index(name.lower()) < len(positional):
            raise Error(448, f"{member.name} has no argument {name} to be named.")
        values[names.index(name.lower())] = value
    while values and values[-1] is None and len(values) > len(positional):
        values.pop()
    return values


class _Bound:
    """A method, or a property with arguments, of one object."""

    __slots__ = ("_object", "_member", "_name")

    def __init__(self, obj, member, name):
        self._object, self._member, self._name = obj, member, name

    def __call__(self, *arguments, **named):
        return _call(self._object._handle, self._name, _order(self._member, arguments, named))

    def __getitem__(self, index):
        return _get(self._object._handle, self._name, index if isinstance(index, tuple) else (index,))

    def __setitem__(self, index, value):
        _let(self._object._handle, self._name, index if isinstance(index, tuple) else (index,), value)

    def __repr__(self):
        return f"<{self._member.kind} {self._object._class.name}.{self._member.name}>"


class Object:
    """An object of the library; see the module's text."""

    __slots__ = ("_handle", "_class", "__weakref__")

    def __init__(self, handle):
        object.__setattr__(self, "_handle", handle)
        object.__setattr__(self, "_class", _class_of(handle))

    def __del__(self, _release=_lib.zrq_release):
        _release(self._handle)

    def _require(self, name):
        found = self._class.find(name)
        if found is None:
            raise NoSuchMember(438, f"There is no member {self._class.name}.{name}.")
        return found

    def __getattr__(self, name):
        member, encoded, simple = self._require(name)
        if simple:
            result = _Value()
            status = _lib.zrq_get(self._handle, encoded, None, 0, _byref(result))
            if status:
                _check(status)
            return _take(result)
        if member.kind == "event":
            raise NoSuchMember(438, f"{self._class.name}.{member.name} is an event: listen with on().")
        return _Bound(self, member, encoded)

    def __setattr__(self, name, value):
        _let(self._handle, self._require(name)[1], (), value)

    def __dir__(self):
        return [*super().__dir__(), *(member.name for member in _members(self._class.name))]

    def let(self, name, value, *arguments):
        """Writes a property that may have arguments."""
        _let(self._handle, self._require(name)[1], arguments, value)

    def get(self, name, *arguments):
        """Reads a property that may have arguments."""
        return _get(self._handle, self._require(name)[1], arguments)

    def on(self, event, handler):
        """Calls `handler` with the event's arguments; those by reference are `Ref` objects, which it may set.

        An exception in a handler is reported through `sys.unraisablehook` and does not stop the library. The
        subscription lasts until its `off` is called or the object ends.
        """
        return Subscription(self, event, handler)

    # --- Default members and collections ---

    def __call__(self, *arguments):
        return _get(self._handle, b"", arguments)

    def __getitem__(self, index):
        item = _get(self._handle, b"", index if isinstance(index, tuple) else (index,))
        if item is None and self._class.holds_objects:
            raise NoSuchItem(9, f"{self._class.name} has no item {index!r}.")
        return item

    def __setitem__(self, index, value):
        _let(self._handle, b"", index if isinstance(index, tuple) else (index,), value)

    def __len__(self):
        if self._class.find("Count") is None:
            raise TypeError(f"{self._class.name} is no collection")
        return self.Count

    def __bool__(self):
        return True

    def __iter__(self):
        if self._class.find("Count") is None:
            raise TypeError(f"{self._class.name} is no collection")
        position = 1
        while position <= self.Count:
            yield self[position]
            position += 1

    def __eq__(self, other):
        return self._handle == other._handle if isinstance(other, Object) else NotImplemented

    def __hash__(self):
        return hash(self._handle)

    def __repr__(self):
        return f"<{self._class.name} {self._handle & 0xFFFFFFFF}>"


def type_name(obj):
    """The name of an object's class."""
    return obj._class.name


def create(class_name):
    """Makes an object of a public class, on the toolkit without windows."""
    handle = _ctypes.c_uint64()
    _check(_lib.zrq_create(class_name.encode(), _byref(handle)))
    return Object(handle.value)


from . import _provider, _window  # behind what they need of this module
from ._provider import Provider, TableName, connection, register


# --- Events ------------------------------------------------------------------------------------------------------------

_handlers = {}  # by the context's number: (handler, member)
_contexts = _itertools.count(1)


def _handle(context, arguments, count):
    # An exception that leaves this function is reported by ctypes through `sys.unraisablehook`; the library goes on.
    handler, member = _handlers[context]
    values = [_read(arguments[i]) for i in range(count)]
    references = []
    for place, argument in enumerate(member.arguments[:count]):
        if argument.by_reference:
            references.append((place, values[place]))
            values[place] = Ref(values[place])
    handler(*values)
    for place, before in references:
        if values[place].value is not before:
            keep, value = [], _Value()
            _fill(value, values[place].value, keep)
            _check(_lib.zrq_write(place, _byref(value)))


def _ended(context, _handlers=_handlers):
    _handlers.pop(context, None)


_c_handle = _c.Handler(_handle)
_c_ended = _c.Ended(_ended)
# The library's objects may outlive the interpreter; what they would call does not.
_atexit.register(_lib.zrq_end_subscriptions)


class Subscription:
    """A handler that listens to an event."""

    __slots__ = ("_number",)

    def __init__(self, obj, event, handler):
        if not callable(handler):
            raise TypeError("a handler must be callable")
        member, name, _ = obj._require(event)
        context = next(_contexts)
        number = _ctypes.c_uint64()
        _handlers[context] = (handler, member)
        try:
            _check(_lib.zrq_subscribe(obj._handle, name, _c_handle, _c_ended, context, _byref(number)))
        except Error:
            _handlers.pop(context, None)
            raise
        self._number = number.value

    def off(self):
        """Stops listening."""
        _check(_lib.zrq_unsubscribe(self._number))


def widget(parent=None):
    """The designer as a widget of PyQt6 or PySide6, a QSplitter with the attribute `QueryBuilder`.

    Import the binding before this module: the library that has the window is loaded then. A widget without a parent ends
    with its last reference in PyQt6; in PySide6 give it a parent or a layout. It belongs to the application's thread.
    """
    return _window.make(parent)


# --- The toolkit, and what else there is -------------------------------------------------------------------------------

class _Toolkit:
    """Answers dialogs and message boxes.

    `toolkit.on("MessageBox", handler)` hears messages; "ShowTables", "JoinProperties", "ConnectionPrompt", "Expression",
    "SaveFile", "TextPrompt" and "Parameters" answer the dialog they get. Without a handler a dialog is cancelled. `toolkit.messages` lists what was shown.
    """

    def __init__(self):
        self._object = create("Toolkit")

    @property
    def messages(self):
        return list(self._object.Messages)

    def clear(self):
        """Forgets the messages."""
        self._object.Messages.Clear()

    def on(self, event, handler):
        return self._object.on(event, handler)

    def __getattr__(self, name):
        return getattr(self._object, name)


toolkit = _Toolkit()


@_functools.lru_cache(maxsize=None)
def _constants():
    found = {}
    enumeration, name, value = _ctypes.c_char_p(), _ctypes.c_char_p(), _ctypes.c_int32()
    for index in _itertools.count():
        status = _lib.zrq_constant_at(index, _byref(enumeration), _byref(name), _byref(value))
        if status == 9:
            return found
        _check(status)
        found.setdefault(enumeration.value.decode(), {})[name.value.decode()] = value.value


def constants():
    """The library's named numbers: {enumeration: {name: number}}."""
    return {enumeration: dict(named) for enumeration, named in _constants().items()}


def __getattr__(name):
    for named in _constants().values():
        if name in named:
            return named[name]
    raise AttributeError(f"module {__name__!r} has no attribute {name!r}")


def version():
    """The product's version."""
    return _lib.zrq_version().decode()
