"""One's own data: an object that tells which tables there are becomes a data source.

What it says is turned into the rows that the library asks for. Everything it may say is in `Provider`; an object of any
other class that has a method `tables` will do as well, and what it lacks is as in `Provider`.
"""

import datetime
import decimal
import itertools
import logging
import threading
import uuid
from collections.abc import Mapping
from ctypes import byref, c_uint64, c_void_p, cast, sizeof

from . import Error, Object, _check, _fill_all, _lib
from . import _library as _c

_log = logging.getLogger("zrqrybld")

# Numbers of errors: a kind of rows that the source does not know; an exception of Python.
_NOT_SUPPORTED, _EXCEPTION = 3251, 440

# Bits of a column's flags.
_WRITABLE, _NULLABLE, _LONG = 0x04, 0x60, 0x80

# Types of columns: name, number, size, what stands before and behind a literal, whether values are long; other names.
_TYPES = (
    ("smallint", 2, 5, "", "", False, "int2 year"),
    ("integer", 3, 10, "", "", False, "int int4 mediumint serial"),
    ("bigint", 20, 19, "", "", False, "int8 bigserial long"),
    ("real", 4, 7, "", "", False, "float4 single"),
    ("double", 5, 15, "", "", False, "float float8 double_precision"),
    ("boolean", 11, 1, "", "", False, "bool bit"),
    ("tinyint", 16, 3, "", "", False, "int1"),
    ("numeric", 131, 38, "", "", False, "decimal dec number money currency"),
    ("uuid", 72, 36, "'", "'", False, "guid uniqueidentifier"),
    ("binary", 128, 0, "X'", "'", False, ""),
    ("char", 130, 0, "'", "'", False, "character nchar bpchar"),
    ("date", 133, 10, "'", "'", False, ""),
    ("time", 134, 8, "'", "'", False, "timetz"),
    ("timestamp", 135, 19, "'", "'", False, "datetime datetime2 smalldatetime timestamptz"),
    ("varchar", 202, 0, "'", "'", False, "nvarchar varchar2 nvarchar2 character_varying string"),
    ("text", 203, 0, "'", "'", True, "clob ntext longtext mediumtext memo json jsonb xml"),
    ("varbinary", 204, 0, "X'", "'", False, ""),
    ("blob", 205, 0, "X'", "'", True, "bytea image longblob"),
)
_CODES = {name.replace("_", " "): row[1] for row in _TYPES for name in (row[0], *row[6].split())}
_CODES.update({bool: 11, int: 20, float: 5, str: 202, bytes: 204, decimal.Decimal: 131, uuid.UUID: 72,
               datetime.date: 133, datetime.time: 134, datetime.datetime: 135})
_LONG_CODES = {row[1] for row in _TYPES if row[5]}

_QUOTES = {"mysql": "``", "access": "[]", "mssql": "[]", "sqlserver": "[]"}


class Provider:
    """A data source of one's own: give an object of a derived class to a designer, `qb.Connection = Store()`.

    A table, a column and a foreign key is a name, a tuple of what stands first in the list, or a dict by these names:

    - table: `name`, `schema`, `type` ("TABLE", or "VIEW"), `description`, `catalog`
    - column: `name`, `type`, `nullable`, `description`, `size`, `precision`, `scale`, `default`, `primary_key`,
      `writable`. The type is a name ("varchar(20)"), a type of Python (`int`, `datetime.date`) or a type number.
    - foreign key: `table`, `column`, `parent`, `parent_column`, `schema`, `parent_schema`, `name`. Several columns are
      lists of the same length.

    An exception that a method raises becomes the designer's error with its words, and its cause; `NotImplementedError`
    says that the source does not know the answer.
    """

    #: The value of `Provider=` in connection strings; the name of the class when there is none.
    name = ""
    #: What the source speaks, by the name of a product or a dialect: "PostgreSQL". The designer follows it when its
    #: `AutoSyntax` says so, as with any source.
    dialect = ""
    #: The product's version, where the dialect depends on it.
    version = ""
    #: What stands around a quoted name: one character, or two; None for what the dialect takes.
    quote = None
    #: What stands between schema and table.
    separator = "."

    def open(self, connection_string, user, password):
        """The source is opened. Returns the object to be asked from now on; None for this one."""

    def close(self):
        """The source is closed."""

    def tables(self):
        """The tables and views."""
        raise NotImplementedError

    def columns(self, table):
        """The columns of a table, in order. `table` is its name, a text with the attributes `schema` and `catalog`."""
        raise NotImplementedError

    def primary_key(self, table):
        """The names of the columns of a table's primary key; those that say so themselves unless told."""
        raise NotImplementedError

    def foreign_keys(self):
        """The foreign keys of the whole source."""
        return ()

    def keywords(self):
        """Words that must be quoted as names, besides those that the designer knows."""
        return ()

    def types(self):
        """The types of columns as tuples: name, number, size, literal prefix, literal suffix, whether values are long."""
        return [row[:6] for row in _TYPES]

    def literals(self):
        """Further facts about names and literals, by their name: {"LIKE_PERCENT": "*"}."""
        return {}


class TableName(str):
    """The name of a table, with its `schema` and `catalog`, which may be None."""

    schema = catalog = None


_TABLE = ("name", "schema", "type", "description", "catalog")
_COLUMN = ("name", "type", "nullable", "description", "size", "precision", "scale", "default", "primary_key", "writable")
_KEY = ("table", "column", "parent", "parent_column", "schema", "parent_schema", "name")


# --- What a provider says, as rows ---

def _text(value, what):
    """A text, or one in the bytes of UTF-8; None stays."""
    if isinstance(value, (bytes, bytearray)):
        return bytes(value).decode("utf-8")
    if value is None or isinstance(value, str):
        return value
    raise TypeError(f"{what} is a text, not {type(value).__name__}")


def _named(given, what, names):
    """A table, column or key as a dict, however it is told."""
    if isinstance(given, (str, bytes, bytearray)):
        given = (given,)
    if isinstance(given, Mapping):
        unknown = [name for name in given if name not in names]
        if unknown:
            raise TypeError(f"{what} has no {unknown[0]!r}; there are {', '.join(names)}")
        return given
    if not isinstance(given, (tuple, list)) or len(given) > len(names):
        raise TypeError(f"{what} is a name, a tuple or a dict, not {given!r:.100}")
    return dict(zip(names, given))


def _ask(provider, what, *arguments):
    """What the provider's method answers; that of `Provider` for one it does not have."""
    method = getattr(provider, what, None)
    answer = method(*arguments) if method else getattr(Provider, what)(provider, *arguments)
    return () if answer is None else answer


def _fact(provider, what):
    return getattr(provider, what, None) or getattr(Provider, what)


def _tables(provider):
    for given in _ask(provider, "tables"):
        table = _named(given, "a table", _TABLE)
        yield {name: _text(table.get(name), f"a table's {name}") for name in _TABLE}


def _wanted_tables(provider, wanted):
    """The names of the tables that are asked for: all, or the one; equal in letter case, too, where there is such a one."""
    tables = list(_tables(provider))
    for form in (str, str.casefold) if wanted.table is not None else ():
        def fits(table, form=form):
            return all(asked is None or table[part] is not None and form(table[part]) == form(asked.decode())
                       for part, asked in (("name", wanted.table), ("schema", wanted.schema), ("catalog", wanted.catalog)))
        found = [table for table in tables if fits(table)][:1]
        if found:
            break
    else:
        found = [] if wanted.table is not None else tables
    for table in found:
        name = TableName(table["name"])
        name.schema, name.catalog = table["schema"], table["catalog"]
        yield name


def _table_rows(provider, _):
    for table in _tables(provider):
        yield table["catalog"], table["schema"], table["name"], table["type"] or "TABLE", table["description"]


def _code(kind):
    if kind is None or isinstance(kind, int):
        return kind
    if not isinstance(kind, (str, type)):
        raise TypeError(f"a column's type is a name, a type or a number, not {kind!r:.100}")
    if isinstance(kind, str):
        before, bracket, behind = kind.lower().partition("(")
        return _CODES.get(" ".join((before + behind.partition(")")[2] if bracket else before).split()), 0)
    return _CODES.get(kind, 0)


def _columns(provider, table):
    for given in _ask(provider, "columns", table):
        yield _named(given, "a column", _COLUMN)


def _column_rows(provider, wanted):
    for table in _wanted_tables(provider, wanted):
        for position, column in enumerate(_columns(provider, table), 1):
            code, nullable, default = _code(column.get("type")), column.get("nullable"), column.get("default")
            flags = ((_LONG if code in _LONG_CODES else 0) | (0 if nullable is False else _NULLABLE)
                     | (_WRITABLE if column.get("writable", True) else 0))
            yield (table.catalog, table.schema, str(table), _text(column.get("name"), "a column's name"), position,
                   default is not None, None if default is None else str(default), flags, nullable is not False, code,
                   column.get("size"), column.get("precision"), column.get("scale"),
                   _text(column.get("description"), "a column's description"))


def _primary_key(provider, table):
    method = getattr(provider, "primary_key", None)
    try:
        key = method(table) if method else None
    except NotImplementedError:
        key = None
    if key is None:
        return [column.get("name") for column in _columns(provider, table) if column.get("primary_key")]
    return [key] if isinstance(key, (str, bytes)) else key


def _primary_key_rows(provider, wanted):
    for table in _wanted_tables(provider, wanted):
        for position, column in enumerate(_primary_key(provider, table), 1):
            yield table.catalog, table.schema, str(table), _text(column, "a column's name"), position


def _foreign_key_rows(provider, _):
    for given in _ask(provider, "foreign_keys"):
        key = _named(given, "a foreign key", _KEY)
        pairs = [[names] if isinstance(names, (str, bytes)) or names is None else list(names)
                 for names in (key.get("column"), key.get("parent_column"))]
        if len(pairs[0]) != len(pairs[1]):
            raise ValueError("a foreign key has as many columns as its parent's key")
        parts = {name: _text(key.get(name), f"a foreign key's {name}")
                 for name in ("table", "parent", "schema", "parent_schema", "name")}
        for position, (column, parent) in enumerate(zip(*pairs), 1):
            yield (None, parts["parent_schema"], parts["parent"], _text(parent, "a column's name"), None, parts["schema"],
                   parts["table"], _text(column, "a column's name"), position, parts["name"])


def _type_rows(provider, _):
    return _ask(provider, "types")


def _keyword_rows(provider, _):
    return ((_text(word, "a keyword"),) for word in _ask(provider, "keywords"))


def _literal_rows(provider, _):
    dialect = _fact(provider, "dialect")
    quote = _fact(provider, "quote") or _QUOTES.get(dialect.lower(), '"')
    facts = {"SCHEMA_SEPARATOR": _fact(provider, "separator"), "QUOTE_PREFIX": quote[0], "QUOTE_SUFFIX": quote[-1],
             "LIKE_PERCENT": "%", "LIKE_UNDERSCORE": "_"}
    if dialect:
        facts["SOURCE_NAME"] = dialect
    if _fact(provider, "version"):
        facts["SOURCE_VERSION"] = str(provider.version)
    facts.update(_ask(provider, "literals") or {})
    return facts.items()


_ROWS = {_c.KEYWORDS: _keyword_rows, _c.COLUMNS: _column_rows, _c.TABLES: _table_rows, _c.TYPES: _type_rows,
         _c.FOREIGN_KEYS: _foreign_key_rows, _c.PRIMARY_KEYS: _primary_key_rows, _c.LITERALS: _literal_rows}


# --- The library's calls ---

_providers = {}  # by the context's number
_sessions = {}   # by the session's number: the object that is asked
_numbers = itertools.count(1)
_thread = threading.local()


def _fail(error):
    """Tells the library what an exception says, and returns the number of the error."""
    _thread.raised = error
    _log.debug("A provider has raised an exception.", exc_info=error)
    if isinstance(error, Error):
        number, words = error.number, error.description
    else:
        number = _NOT_SUPPORTED if isinstance(error, NotImplementedError) else _EXCEPTION
        words = f"{type(error).__name__}: {error}"
    return _lib.zrq_fail(number, words.replace("\0", " ").encode("utf-8", "backslashreplace"))


def cause_of(description):
    """The exception behind an error of the library, once; None when there is none."""
    raised, _thread.raised = getattr(_thread, "raised", None), None
    words = getattr(raised, "description", None) or str(raised)
    return raised if raised is not None and words in description else None


def _open(context, connection_string, user, password, session):
    try:
        provider = _providers[context]
        texts = [text.decode("utf-8", "replace") for text in (connection_string, user, password)]
        method = getattr(provider, "open", None)
        opened = method(*texts) if method else None
        number = next(_numbers)
        _sessions[number] = provider if opened is None else opened
        session[0] = number
        return 0
    except BaseException as error:
        return _fail(error)


def _rows(context, session, kind, wanted):
    try:
        for row in _ROWS[kind](_sessions[session], wanted[0]):
            keep = []
            row = tuple(row)
            _check(_lib.zrq_row(_fill_all(row, keep), len(row)))
        return 0
    except BaseException as error:
        return _fail(error)


def _close(context, session):
    provider = _sessions.pop(session, None)
    if hasattr(provider, "close"):
        provider.close()


def _ended(context, _providers=_providers):
    _providers.pop(context, None)


_functions = (_c.Open(_open), _c.Rows(_rows), _c.Close(_close), _c.Ended(_ended))


def is_provider(value):
    """Whether an object can be asked for tables."""
    return not isinstance(value, type) and callable(getattr(value, "tables", None))


def _hand_over(provider, call):
    """Hands the provider to the library by a call that takes its functions and its context."""
    if not is_provider(provider):
        raise Error(13, f"Type mismatch: a provider has a method \"tables\", {type(provider).__name__} has none.")
    context = next(_numbers)
    name = str(getattr(provider, "name", "") or type(provider).__name__).encode()
    _providers[context] = provider
    try:
        call(byref(_c.ProviderRecord(sizeof(_c.ProviderRecord), name, *_functions)), cast(context, c_void_p))
    except BaseException:
        _providers.pop(context, None)
        raise


def connection(provider):
    """A connection to a provider's data, not yet open. A designer opens it when it gets the provider itself."""
    handle = c_uint64()
    _hand_over(provider, lambda record, context: _check(_lib.zrq_connection(record, context, byref(handle))))
    return Object(handle.value)


def opened(provider):
    """The same, open."""
    made = connection(provider)
    made.Open()
    return made


def register(provider):
    """Makes a provider known by its name: `qb.Connect("Provider=Store;Year=2024")` asks it to `open`."""
    _hand_over(provider, lambda record, context: _check(_lib.zrq_register(record, context)))
