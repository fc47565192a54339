"""The plant's persistence classes from Python.

    import vrdppo
    stems = vrdppo.create("cStemsPersist")        # or vrdppo.cStemsPersist()
    state = stems.Load(sCriteria="ProductionRunId = 77", sConnect=connect)
    for row in stems.layout.decode_buffer(state):
        print(row["StemsId"], row["TotalNetWeight"])

States are `vrdppo.State`: the library's UTF-16 code units, kept as they are (a record's numbers
travel inside them). A class's `layout` turns them into dicts and dicts back into states, field by
field, refusing what a field cannot hold. The library's errors are raised as `vrdppo.Error`.
"""

import _thread
import atexit as _atexit
import ctypes as _ctypes
import dataclasses as _dataclasses
import json as _json
import datetime as _datetime
import decimal as _decimal
import difflib as _difflib
import inspect as _inspect
import math as _math
import struct as _struct

from . import _capi
from ._capi import T as _T
from ._state import State
from ._version import __version__

State.__module__ = __name__

__all__ = ["Error", "UnknownClass", "UnknownColumn", "MissingArgument", "MISSING", "State", "Layout", "Persist",
           "classes", "create", "layout", "session", "set_session", "last_records_affected",
           "embedded_connect_string", "open_store", "release_store", "check", "criteria",
           "StatementEvent", "SessionEvent", "set_observer", "pool_figures", "version",
           "__version__"]

_lib = _capi.load()
_EPOCH = _datetime.datetime(1899, 12, 30)
_INT32 = (-2**31, 2**31 - 1)
_INT64 = (-2**63, 2**63 - 1)


class Error(Exception):
    """An error of the library: its number (a provider's HRESULT is negative), description,
    source, SQLSTATE, native error and the statement that failed, if one did; for a row that
    would not go into a record, the column and the row (from 1), else "" and 0."""

    def __init__(self, number, description, source="", sql_state="", native_error=0,
                 statement="", column="", row=0):
        super().__init__(f"error {number & 0xFFFFFFFF:#x}: {description}" if number < 0
                         else f"error {number}: {description}")
        self.number = number
        self.description = description
        self.source = source
        self.sql_state = sql_state
        self.native_error = native_error
        self.statement = statement
        self.column = column
        self.row = row


class UnknownClass(Error, LookupError):
    """No class has the name (the library's error 429); `suggestions` holds the nearest."""

    def __init__(self, name, suggestions):
        hint = f"; did you mean {', '.join(suggestions)}?" if suggestions else ""
        super().__init__(429, f"no class {name!r}{hint}")
        self.suggestions = suggestions


class MissingArgument(Error, TypeError):
    """A required argument left out (the library's error 449), named."""

    def __init__(self, where, argument):
        super().__init__(449, f"{where}: argument {argument} is missing")
        self.argument = argument


class _Missing:
    def __repr__(self):
        return "vrdppo.MISSING"


MISSING = _Missing()  # an optional argument left out, where later ones are given


def _text(p):
    return p.decode("utf-8", "replace") if p else ""


def _check(call, *args):
    status = _capi.Status()
    number = call(*args, _ctypes.byref(status))
    if number != 0:
        e = Error(number, _text(status.description), _text(status.source),
                  _text(status.sql_state), status.native_error, _text(status.statement),
                  _text(status.column), status.row)
        _lib.vrdppo_status_clear(_ctypes.byref(status))
        raise e


# Dates are days since 1899-12-30; before it, the fraction still counts forward from midnight.
def _date_from_days(days):
    if not _math.isfinite(days):
        return days
    whole = _math.trunc(days)
    try:
        return _EPOCH + _datetime.timedelta(days=whole) + _datetime.timedelta(
            days=abs(days - whole))
    except OverflowError:
        return days


def _days_from_date(value):
    if isinstance(value, _datetime.datetime):
        delta = value.replace(tzinfo=None) - _EPOCH
    else:
        delta = _datetime.datetime(value.year, value.month, value.day) - _EPOCH
    fraction = (delta.seconds + delta.microseconds / 1e6) / 86400
    return delta.days - fraction if delta.days < 0 else delta.days + fraction


def _is_int(v):
    return isinstance(v, int) and not isinstance(v, bool)


def _units(data, keep):
    buf = _ctypes.create_string_buffer(data, len(data) + 2)
    keep.append(buf)
    return _ctypes.cast(buf, _ctypes.POINTER(_ctypes.c_uint16))


def _to_value(v, keep):
    """A C value of a Python one; `keep` holds the buffers it points into."""
    out = _capi.Value()
    if v is MISSING:
        out.type = _T.MISSING
    elif v is None:
        out.type = _T.NULL
    elif isinstance(v, bool):
        out.type, out.u.boolean = _T.BOOLEAN, int(v)
    elif isinstance(v, int):
        if _INT32[0] <= v <= _INT32[1]:
            out.type, out.u.lng = _T.LONG, v
        elif _INT64[0] <= v <= _INT64[1]:
            out.type, out.u.i64 = _T.LONGLONG, v
        else:
            raise ValueError(f"{v} does not fit in 64 bits")
    elif isinstance(v, float):
        out.type, out.u.dbl = _T.DOUBLE, v
    elif isinstance(v, _decimal.Decimal):
        text = format(v, "f").encode()
        keep.append(text)
        out.type, out.length, out.u.str8 = _T.DECIMAL, len(text), text
    elif isinstance(v, (_datetime.datetime, _datetime.date)):
        out.type, out.u.dbl = _T.DATE, _days_from_date(v)
    elif isinstance(v, (str, State)):
        data = bytes(State(v))
        out.type, out.length, out.u.str16 = _T.STRING16, len(data) // 2, _units(data, keep)
    else:
        raise TypeError(f"vrdppo cannot pass a {type(v).__name__}")
    return out


def _from_value(v, state=False):
    t = v.type
    if t == _T.STRING16:
        data = _ctypes.string_at(v.u.str16, 2 * v.length)
        return State._of(data) if state else data.decode("utf-16-le", "surrogatepass")
    if t == _T.BOOLEAN:
        return bool(v.u.boolean)
    if t == _T.LONG:
        return v.u.lng
    if t == _T.DOUBLE:
        return v.u.dbl
    if t == _T.DATE:
        return _date_from_days(v.u.dbl)
    if t == _T.CURRENCY:
        return _decimal.Decimal(v.u.i64).scaleb(-4)
    if t == _T.LONGLONG:
        return v.u.i64
    if t in (_T.STRING8, _T.DECIMAL):
        text = _ctypes.string_at(v.u.str8, v.length).decode("utf-8")
        return _decimal.Decimal(text) if t == _T.DECIMAL else text
    return None  # Empty, Null, Missing


def _owned(call, *args, state=False):
    """The value a call hands out, converted and cleared."""
    v = _capi.Value()
    _check(call, *args, _ctypes.byref(v))
    try:
        return _from_value(v, state)
    finally:
        _lib.vrdppo_value_clear(_ctypes.byref(v), None)


def _as_state(value, where):
    if isinstance(value, State):
        return value
    if isinstance(value, (str, bytes, bytearray, memoryview)):
        return State(value)
    raise TypeError(f"{where}: a state is a vrdppo.State (or its UTF-16-LE bytes), not "
                    f"{type(value).__name__}")


_TYPE_NAMES = {_capi.FIELD_LONG: "Long", _capi.FIELD_DOUBLE: "Double",
               _capi.FIELD_CURRENCY: "Currency", _capi.FIELD_DATE: "Date"}


class UnknownColumn(ValueError, KeyError):
    """A field name the class's record does not have: a ValueError, as every refused field is,
    and a KeyError, as a missing name in a dict is."""

    def __str__(self):
        return str(self.args[0]) if self.args else ""


class Column:
    def __init__(self, info):
        self.name = _text(info.read_name)
        self.write_name = _text(info.write_name)
        self.type = info.type
        self.offset = info.offset
        self.length = info.length

    @property
    def type_name(self):
        if self.type == _capi.FIELD_STRING:
            return f"String*{self.length}"
        return _TYPE_NAMES[self.type]

    def __repr__(self):
        return f"Column({self.name!r}, {self.type_name}, offset={self.offset})"


_FIXED = {_capi.FIELD_LONG: "<i", _capi.FIELD_DOUBLE: "<d", _capi.FIELD_CURRENCY: "<q",
          _capi.FIELD_DATE: "<d"}


class Layout:
    """A class's record: its columns, and states to dicts and back, field by field."""

    def __init__(self, index):
        info = _capi.ClassInfo()
        _check(_lib.vrdppo_class_info_get, index, _ctypes.byref(info))
        self.index = index
        self.class_name = _text(info.name)
        self.source = _text(info.source)
        self.is_view = bool(info.is_view)
        self.record_bytes = info.record_bytes
        self.state_chars = info.state_chars
        self.columns = []
        for k in range(info.column_count):
            ci = _capi.ColumnInfo()
            _check(_lib.vrdppo_column_info_get, index, k, _ctypes.byref(ci))
            self.columns.append(Column(ci))
        self._by_name = {}
        for c in self.columns:
            self._by_name.setdefault(c.name.lower(), c)
            self._by_name.setdefault(c.write_name.lower(), c)
        self._new = None

    def new_state(self):
        """The state of a new record, as the class's initialiser leaves it (blank strings, a
        table's key-name literal): what `encode` builds on."""
        if self._new is None:
            self._new = _owned(_lib.vrdppo_record_new, self.index, state=True)
        return self._new

    def _record(self, state, where="decode"):
        state = _as_state(state, f"{self.class_name}.{where}")
        if len(state) != self.state_chars:
            raise ValueError(f"a {self.class_name} state has {self.state_chars} code units, "
                             f"not {len(state)}")
        return bytes(state)

    def decode(self, state):
        """A record state as a dict of its columns (strings without their trailing blanks)."""
        return self._decode_bytes(self._record(state))

    def _decode_bytes(self, data):
        row = {}
        for c in self.columns:
            if c.type == _capi.FIELD_STRING:
                raw = data[c.offset:c.offset + 2 * c.length]
                row[c.name] = raw.decode("utf-16-le", "surrogatepass").rstrip(" ")
                continue
            (value,) = _struct.unpack_from(_FIXED[c.type], data, c.offset)
            if c.type == _capi.FIELD_CURRENCY:
                value = _decimal.Decimal(value).scaleb(-4)
            elif c.type == _capi.FIELD_DATE:
                value = _date_from_days(value)
            row[c.name] = value
        return row

    def _buffer_count(self, data, where):
        """The records in a Buffer state's bytes, or ValueError saying why it is none."""
        units = len(data) // 2
        if units < 8:
            raise ValueError(f"{where}: a Buffer state has an eight-unit header; this one has "
                             f"{units} units")
        length = _struct.unpack_from("<H", data, 0)[0]
        count = _struct.unpack_from("<i", data, 12)[0]
        if length != self.state_chars or count < 0 or units not in (
                8 + length * count, 9 + length * count):
            raise ValueError(
                f"{where}: not a Buffer state of {self.class_name} records (its header says "
                f"{count} records of {length} units, in {units} units; a {self.class_name} "
                f"record has {self.state_chars})")
        return count

    def decode_buffer(self, state):
        """A Buffer state (what Load returns) as a list of dicts, one a record."""
        data = bytes(_as_state(state, f"{self.class_name}.decode_buffer"))
        count = self._buffer_count(data, f"{self.class_name}.decode_buffer")
        size = 2 * self.state_chars
        return [self._decode_bytes(data[16 + size * i:16 + size * (i + 1)])
                for i in range(count)]

    def dataframe(self, state):
        """A Buffer state as a pandas DataFrame, a column a field (pandas must be installed)."""
        try:
            import pandas
        except ImportError:
            raise ModuleNotFoundError(
                f"{self.class_name}.dataframe needs pandas, which is not installed "
                "(pip install pandas); decode_buffer gives the same rows as dicts",
                name="pandas") from None
        return pandas.DataFrame(self.decode_buffer(state),
                                columns=[c.name for c in self.columns])

    def encode(self, fields, base=None):
        """A record state from a dict: the columns it names (read or write names, without
        regard to case) over `base`, by default `new_state()`. A value a field cannot hold is
        refused with the class and the field named."""
        if not hasattr(fields, "items"):
            raise TypeError(f"{self.class_name}.encode takes a dict of fields, not "
                            f"{type(fields).__name__}")
        data = bytearray(self._record(self.new_state() if base is None else base, "encode"))
        for name, value in fields.items():
            c = self._by_name.get(str(name).lower())
            if c is None:
                raise UnknownColumn(f"{self.class_name} has no column {name}")
            self._put(c, data, value)
        return State._of(bytes(data))

    def _put(self, c, data, value):
        where = f"{self.class_name}: {c.name}"

        def refuse(kind=TypeError, why=""):
            shown = repr(value)
            shown = shown if len(shown) <= 40 else shown[:37] + "..."
            return kind(f"{where}: {shown} is no {c.type_name}{why}")

        if value is None:
            raise refuse(why=" (a record has no NULL; leave the field out to keep the new "
                             "record's value)")
        if c.type == _capi.FIELD_STRING:
            if not isinstance(value, str):
                raise refuse()
            # Counted in UTF-16 code units, as the record holds them: a character beyond the
            # Basic Multilingual Plane takes two.
            units = value.encode("utf-16-le", "surrogatepass")
            if len(units) // 2 > c.length:
                raise ValueError(f"{where} holds {c.length} characters, not {len(units) // 2}")
            blanks = " " * (c.length - len(units) // 2)
            data[c.offset:c.offset + 2 * c.length] = units + blanks.encode("utf-16-le")
        elif c.type == _capi.FIELD_LONG:
            if not _is_int(value):
                raise refuse()
            if not _INT32[0] <= value <= _INT32[1]:
                raise refuse(ValueError, f": a Long holds {_INT32[0]} to {_INT32[1]}")
            _struct.pack_into("<i", data, c.offset, value)
        elif c.type == _capi.FIELD_DOUBLE:
            if isinstance(value, bool) or not isinstance(
                    value, (int, float, _decimal.Decimal)):
                raise refuse()
            try:
                _struct.pack_into("<d", data, c.offset, float(value))
            except OverflowError:
                raise refuse(ValueError, ": too large for a Double") from None
        elif c.type == _capi.FIELD_CURRENCY:
            if isinstance(value, bool) or not isinstance(
                    value, (int, float, _decimal.Decimal)):
                raise refuse()
            number = _decimal.Decimal(value)
            if not number.is_finite():
                raise refuse(ValueError)
            raw = int((number * 10000).to_integral_value(rounding=_decimal.ROUND_HALF_EVEN))
            if not _INT64[0] <= raw <= _INT64[1]:
                raise refuse(ValueError, ": a Currency holds about 922 337 203 685 477 either "
                                         "side of 0")
            _struct.pack_into("<q", data, c.offset, raw)
        elif c.type == _capi.FIELD_DATE:
            if isinstance(value, (_datetime.datetime, _datetime.date)):
                days = _days_from_date(value)
            elif isinstance(value, (int, float)) and not isinstance(value, bool):
                days = float(value)
            else:
                raise refuse(why=" (a datetime, or days since 1899-12-30)")
            _struct.pack_into("<d", data, c.offset, days)


_VT_PYTHON = {_capi.VT_STRING: str, _capi.VT_LONG: int, _capi.VT_BOOLEAN: bool,
              _capi.VT_DOUBLE: float, _capi.VT_DATE: _datetime.datetime}
_VT_TEXT = {_capi.VT_STRING: "text (a str)", _capi.VT_LONG: "a Long (an int of 32 bits)",
            _capi.VT_BOOLEAN: "a bool", _capi.VT_DOUBLE: "a float",
            _capi.VT_DATE: "a datetime"}
# The arguments that carry a state, and the members that answer one.
_STATE_ARGS = {"sbuffer", "sstate"}
_STATE_RESULTS = {"getstate", "load"}
# The argument every operation opens its connection with.
_CONNECT_ARGS = {"sconnect", "sconnection"}


class _Arg:
    def __init__(self, info):
        self.name = _text(info.name)
        self.type = info.type
        self.optional = bool(info.optional)
        d = info.default_value
        self.default = _from_value(d) if d.type != _T.EMPTY else MISSING
        self.is_state = self.type == _capi.VT_STRING and self.name.lower() in _STATE_ARGS

    @property
    def python_type(self):
        return State if self.is_state else _VT_PYTHON.get(self.type, object)


class _Member:
    def __init__(self, class_index, member_index):
        info = _capi.MemberInfo()
        _check(_lib.vrdppo_member_info_get, class_index, member_index, _ctypes.byref(info))
        self.name = _text(info.name)
        self.dispatch_id = info.dispatch_id
        self.callable = bool(info.is_public and info.invocable)
        self.result_type = info.result_type
        self.args = []
        for a in range(info.arg_count):
            ai = _capi.ArgInfo()
            _check(_lib.vrdppo_arg_info_get, class_index, member_index, a, _ctypes.byref(ai))
            self.args.append(_Arg(ai))

    @property
    def result_python_type(self):
        if self.result_type == _capi.VT_STRING and self.name.lower() in _STATE_RESULTS:
            return State
        return _VT_PYTHON.get(self.result_type, type(None) if self.result_type == 0 else object)

    def signature(self):
        params = [_inspect.Parameter("self", _inspect.Parameter.POSITIONAL_OR_KEYWORD)]
        for a in self.args:
            params.append(_inspect.Parameter(
                a.name, _inspect.Parameter.POSITIONAL_OR_KEYWORD,
                default=a.default if a.optional else _inspect.Parameter.empty,
                annotation=a.python_type))
        return _inspect.Signature(params, return_annotation=self.result_python_type)

    def doc(self, layout):
        lines = [f"{layout.class_name}.{self.name}, a member of the library's class."]
        for a in self.args:
            kind = "a State" if a.is_state else _VT_TEXT.get(a.type, "any value")
            extra = f", optional (default {a.default!r})" if a.optional else ""
            lines.append(f"  {a.name}: {kind}{extra}")
        if any(a.is_state for a in self.args):
            lines.append(f"A state is a record of {layout.state_chars} code units "
                         f"(layout.encode builds one), or a Buffer state of them.")
        if any(a.name.lower() in _CONNECT_ARGS for a in self.args):
            lines.append("Without a connection string, the session's (vrdppo.set_session) is "
                         "used. The rows the statement touched: the object's records_affected.")
        if self.result_python_type is State:
            lines.append("Answers a vrdppo.State (layout.decode / decode_buffer read it).")
        return "\n".join(lines)

    def arguments(self, args, kwargs):
        """Positional and keyword arguments in the member's order, gaps left missing."""
        if len(args) > len(self.args):
            raise TypeError(f"{self.name} takes {len(self.args)} arguments, not {len(args)}")
        out = list(args) + [MISSING] * (len(self.args) - len(args))
        names = [a.name.lower() for a in self.args]
        for key, value in kwargs.items():
            if key.lower() not in names:
                raise TypeError(f"{self.name} has no argument {key}")
            at = names.index(key.lower())
            if at < len(args):
                raise TypeError(f"{self.name} got {key} twice")
            out[at] = value
        return out


class _Class:
    def __init__(self, index):
        self.layout = Layout(index)
        info = _capi.ClassInfo()
        _check(_lib.vrdppo_class_info_get, index, _ctypes.byref(info))
        self.members = {}
        for m in range(info.member_count):
            member = _Member(index, m)
            if member.callable:
                self.members[member.name.lower()] = member
        self.type = None


_classes = {}


def _near(name):
    names = classes()
    lower = {n.lower(): n for n in names}
    found = [n for n in names if name.lower() in n.lower()] if name else []
    for n in _difflib.get_close_matches(name.lower(), list(lower), n=3, cutoff=0.75):
        if lower[n] not in found:
            found.append(lower[n])
    return found[:5]


def _class(name):
    if not isinstance(name, str):
        raise TypeError(f"a class name is a str, not {type(name).__name__}")
    if "\0" in name:
        raise ValueError(f"a class name has no NUL character: {name!r}")
    index = _lib.vrdppo_class_find(name.encode())
    if index < 0:
        raise UnknownClass(name, _near(name))
    if index not in _classes:
        _classes[index] = _Class(index)
    return _classes[index]


def _method(member, layout):
    def call(self, *args, **kwargs):
        return self._invoke(member, member.arguments(args, kwargs))

    call.__name__ = member.name
    call.__qualname__ = f"{layout.class_name}.{member.name}"
    call.__signature__ = member.signature()
    call.__doc__ = member.doc(layout)
    return call


def _class_type(name):
    """The Python class of a library class: its members as methods."""
    c = _class(name)
    if c.type is None:
        what = "view" if c.layout.is_view else "table"
        namespace = {m.name: _method(m, c.layout) for m in c.members.values()}
        namespace["__doc__"] = (f"{c.layout.class_name}: the {what} {c.layout.source}, a record "
                                f"of {c.layout.state_chars} code units.")
        namespace["_info"] = c
        namespace["__module__"] = __name__
        c.type = type(c.layout.class_name, (Persist,), namespace)
        c.type.__signature__ = _inspect.Signature()  # made without arguments
    return c.type


class Persist:
    """An object of one of the library's classes; its public members are its methods.
    `Persist(name)` and `vrdppo.create(name)` make an object of the class named."""

    _info = None

    def __new__(cls, class_name=None):
        if cls is Persist:
            cls = _class_type(class_name)
        return super().__new__(cls)

    def __init__(self, class_name=None):
        self.records_affected = None
        handle = _ctypes.c_void_p()
        _check(_lib.vrdppo_create, self.layout.class_name.encode(), _ctypes.byref(handle))
        self._handle = handle

    @property
    def layout(self):
        return type(self)._info.layout

    @property
    def members(self):
        return [m.name for m in type(self)._info.members.values()]

    def __getattr__(self, name):
        # Members without regard to case, as the library finds them.
        info = type(self)._info
        member = info and info.members.get(name.lower())
        if not member:
            near = _difflib.get_close_matches(name, self.members, n=3)
            hint = f"; did you mean {', '.join(near)}?" if near else ""
            raise AttributeError(f"{type(self).__name__} has no member {name}{hint}")
        return getattr(self, member.name)

    def _argument(self, member, arg, value, keep):
        where = f"{self.layout.class_name}.{member.name}"
        if value is MISSING:
            if arg.optional:
                return _to_value(MISSING, keep)
            connect = session()["connect_string"] if arg.name.lower() in _CONNECT_ARGS else ""
            if not connect:
                raise MissingArgument(where, arg.name)
            value = connect
        if arg.is_state:
            state = _as_state(value, f"{where}: {arg.name}")
            if len(state) != self.layout.state_chars:
                try:
                    self.layout._buffer_count(bytes(state), f"{where}: {arg.name}")
                except ValueError:
                    raise ValueError(
                        f"{where}: {arg.name} is a {self.layout.class_name} state of "
                        f"{self.layout.state_chars} code units (or a Buffer state of them), "
                        f"not {len(state)} units") from None
            value = state
        elif arg.type == _capi.VT_STRING and isinstance(value, (bytes, bytearray)):
            raise TypeError(f"{where}: {arg.name} is text (a str), not {type(value).__name__}")
        if arg.type == _capi.VT_LONG and _is_int(value) and not (
                _INT32[0] <= value <= _INT32[1]):
            raise ValueError(f"{where}: {arg.name} is a Long ({_INT32[0]} to {_INT32[1]}), "
                             f"not {value}")
        try:
            return _to_value(value, keep)
        except (TypeError, ValueError) as e:
            raise type(e)(f"{where}: {arg.name}: {e}") from None

    def _invoke(self, member, args):
        keep = []
        values = [self._argument(member, a, v, keep) for a, v in zip(member.args, args)]
        while values and values[-1].type == _T.MISSING:
            values.pop()
        array = (_capi.Value * max(len(values), 1))(*values)
        result = _capi.Value()
        # The call's own figure, taken inside it: Python code that runs on this thread after the
        # call returns (a signal handler) may make calls of its own.
        affected = _ctypes.c_int64(-1)
        try:
            _check(_lib.vrdppo_invoke_id_counted, self._handle, member.dispatch_id, array,
                   len(values), _ctypes.byref(result), _ctypes.byref(affected))
        finally:
            self.records_affected = None if affected.value < 0 else affected.value
        try:
            return _from_value(result, member.result_python_type is State)
        finally:
            _lib.vrdppo_value_clear(_ctypes.byref(result), None)

    def invoke(self, member, args):
        """Calls a member (a name, or one of the class's members) with arguments in order."""
        if isinstance(member, str):
            found = type(self)._info.members.get(member.lower())
            if found is None:
                raise AttributeError(f"{type(self).__name__} has no member {member}")
            member = found
        return self._invoke(member, list(args) + [MISSING] * (len(member.args) - len(args)))

    def close(self):
        if self.__dict__.get("_handle"):
            _lib.vrdppo_release(self._handle, None)
            self._handle = None

    def __del__(self):
        self.close()

    def __dir__(self):
        return sorted(set(super().__dir__()) | set(self.members))

    def __repr__(self):
        return f"<vrdppo {self.layout.class_name}>"


def version():
    """The library's version."""
    return _lib.vrdppo_version().decode()


def classes():
    """Every class's name, in the library's order."""
    names = []
    for i in range(_lib.vrdppo_class_count()):
        info = _capi.ClassInfo()
        _check(_lib.vrdppo_class_info_get, i, _ctypes.byref(info))
        names.append(_text(info.name))
    return names


def create(class_name):
    """A new object of the class named (without regard to case); its record starts as the
    class's initialiser leaves it."""
    return _class_type(class_name)()


def layout(class_name):
    """The record layout of the class named."""
    return _class(class_name).layout


def last_records_affected():
    """The rows touched by the last statement this thread ran; None if the last call ran none
    (or the provider cannot count)."""
    n = _lib.vrdppo_last_records_affected()
    return None if n < 0 else n


_SESSION = {"connect_string": _capi.SESSION_CONNECT_STRING,
            "app_name": _capi.SESSION_APP_NAME,
            "audit_trail_id": _capi.SESSION_AUDIT_TRAIL_ID}


def set_session(**values):
    """Sets the calling thread's connect_string, app_name or audit_trail_id. A member called
    without its sConnect uses the connect_string set here."""
    for name, value in values.items():
        if name not in _SESSION:
            raise TypeError(f"no session value {name}")
        if name == "audit_trail_id":
            if not _is_int(value):
                raise TypeError(f"audit_trail_id is an int, not {type(value).__name__}")
            if not _INT32[0] <= value <= _INT32[1]:
                raise ValueError(f"audit_trail_id is a Long ({_INT32[0]} to {_INT32[1]}), "
                                 f"not {value}")
        elif not isinstance(value, str):
            raise TypeError(f"{name} is a str, not {type(value).__name__}")
        keep = []
        v = _to_value(value, keep)
        _check(_lib.vrdppo_session_set, _SESSION[name], _ctypes.byref(v))


def session():
    """The calling thread's session values."""
    out = {}
    for name, key in _SESSION.items():
        out[name] = _owned(_lib.vrdppo_session_get, key)
    return out


def embedded_connect_string(path):
    """The connection string of an embedded store file."""
    return _owned(_lib.vrdppo_embedded_connect_string, str(path).encode())


def open_store(path):
    """Creates an embedded store file with its schema now rather than on first use."""
    _check(_lib.vrdppo_embedded_open, str(path).encode())


def release_store(path):
    """Lets go of what the process keeps open on a store file."""
    _lib.vrdppo_embedded_release(str(path).encode())


def check(connect, text=False):
    """Whether the database `connect` names fits the classes: every table, view, column, key
    and procedure they use, read from its catalog (nothing is written). The report as a dict
    ("fits", "problems", "warnings", the counts, "seconds" and "findings", each with
    "severity", "class", "object", "needs" and "has"), or with text=True as the text the
    command-line tool prints. Raises Error where the database cannot be read."""
    report = _ctypes.c_void_p()
    problems = _ctypes.c_int32()
    _check(_lib.vrdppo_check_schema, str(connect).encode(), 0 if text else 1,
           _ctypes.byref(report), _ctypes.byref(problems))
    try:
        out = _ctypes.string_at(report.value).decode("utf-8") if report.value else ""
    finally:
        _lib.vrdppo_free(report)
    return out if text else _json.loads(out)


def criteria(template, *values):
    """A criteria text (a Load's or a CriteriaDelete's sCriteria) of a template whose "?"
    placeholders are replaced, in order, by the values, each written as the library's statements
    write a value of its kind, so that no value can change what the statement does:

        stems.Load(vrdppo.criteria("ProductionRunId = ? AND GradeCode = ?", 77, "A'B"), connect)

    Values go as a method's arguments do: int, float, decimal.Decimal, datetime or date, str,
    None (Null). Raises Error, number 5 and naming the placeholder, for too few or too many
    values, a value with no SQL form (a bool, a NaN, a date before 1753, a str holding NUL), or
    a template that is not one expression (a ";", a "--" comment, a second statement)."""
    if not isinstance(template, str):
        raise TypeError(f"a criteria template is a str, not {type(template).__name__}")
    if "\0" in template:
        raise ValueError("a criteria template has no NUL character")
    keep = []
    converted = []
    for number, value in enumerate(values, 1):
        try:
            converted.append(_to_value(value, keep))
        except (TypeError, ValueError) as e:
            raise type(e)(f"criteria: value {number}: {e}") from None
    array = (_capi.Value * max(len(converted), 1))(*converted)
    text = _ctypes.c_void_p()
    _check(_lib.vrdppo_criteria, template.encode(), array,
           len(converted), _ctypes.byref(text))
    try:
        return _ctypes.string_at(text.value).decode("utf-8")
    finally:
        _lib.vrdppo_free(text)


def _optional_text(p):
    return p.decode("utf-8", "replace") if p else None


def _event_error(e, statement=""):
    if e.error_number == 0:
        return None
    return Error(e.error_number, _text(e.error_description), _text(e.error_source),
                 _text(e.error_sql_state), e.error_native, statement)


def _target_attributes(event):
    out = {"db.system.name": event.db_system_name, "server.address": event.server_address,
           "server.port": event.server_port, "db.namespace": event.db_namespace}
    if event.error is not None:
        out["error.type"] = event.error.sql_state or type(event.error).__name__
        if event.error.native_error:
            out["db.response.status_code"] = str(event.error.native_error)
    return {k: v for k, v in out.items() if v is not None}


@_dataclasses.dataclass(frozen=True)
class StatementEvent:
    """A statement the library sent, told to the observer of `set_observer`: its target, text,
    rows, time (`duration`, in seconds), where its server session came from (`session`: "fresh",
    "kept", or None for a provider without logins) and its `error` (a vrdppo.Error) if it
    failed. Unknown values are None."""

    db_system_name: str
    server_address: "str | None"
    server_port: "int | None"
    db_namespace: "str | None"
    connection: str
    db_query_text: str
    db_operation_name: str
    db_response_returned_rows: "int | None"
    rows_affected: "int | None"
    duration: float
    session: "str | None"
    error: "Error | None"

    def attributes(self):
        """The attributes under the tracing conventions' names ("db.query.text", ...)."""
        out = _target_attributes(self)
        out["db.query.text"] = self.db_query_text
        if self.db_operation_name:
            out["db.operation.name"] = self.db_operation_name
        if self.db_response_returned_rows is not None:
            out["db.response.returned_rows"] = self.db_response_returned_rows
        return out


@_dataclasses.dataclass(frozen=True)
class SessionEvent:
    """What happened to a kept server session: `kind` "login", "reuse" or "logout", the logout's
    `cause` ("idle-life-ended", ...; None for the others), its target, a login's `duration` in
    seconds and a failed login's `error`."""

    kind: str
    cause: "str | None"
    db_system_name: str
    server_address: "str | None"
    server_port: "int | None"
    db_namespace: "str | None"
    connection: str
    duration: float
    error: "Error | None"

    def attributes(self):
        """The target's attributes under the tracing conventions' names."""
        return _target_attributes(self)


def _target(e):
    return dict(db_system_name=_text(e.db_system_name),
                server_address=_optional_text(e.server_address),
                server_port=e.server_port or None, db_namespace=_optional_text(e.db_namespace),
                connection=_text(e.connection))


def _statement_event(e):
    return StatementEvent(
        **_target(e), db_query_text=_text(e.db_query_text),
        db_operation_name=_text(e.db_operation_name),
        db_response_returned_rows=None if e.returned_rows < 0 else e.returned_rows,
        rows_affected=None if e.affected_rows < 0 else e.affected_rows,
        duration=e.duration_ns / 1e9, session=_capi.ORIGINS.get(e.session),
        error=_event_error(e, _text(e.db_query_text)))


def _session_event(e):
    return SessionEvent(kind=_capi.EVENT_KINDS.get(e.kind, str(e.kind)),
                        cause=_text(e.cause_name) if e.cause else None, **_target(e),
                        duration=e.duration_ns / 1e9, error=_event_error(e))


def _trampoline(prototype, convert, callback):
    if callback is None:
        return prototype()  # NULL
    if not callable(callback):
        raise TypeError(f"an observer is a callable, not {type(callback).__name__}")

    def call(event, _user):
        # Nothing an observer raises may reach the library's call or be printed by ctypes.
        try:
            callback(convert(event.contents))
        except KeyboardInterrupt:
            _thread.interrupt_main()  # raised again once the library's call returns
        except BaseException:  # noqa: B036
            pass

    return prototype(call)


# The C function objects of the observers installed, which the library calls until they are
# replaced: the process's, and each thread's by its ident. A thread's are kept past its end
# (until another thread with its ident replaces them) rather than freed while the library might
# still hold them.
_process_observer = None
_thread_observers = {}


def set_observer(on_statement, on_session=None, *, thread=False):
    """Installs `on_statement(StatementEvent)` and `on_session(SessionEvent)` (either may be None)
    for the process, or with thread=True for the calling thread only, replacing the observer
    there; both None removes it. They are called after each statement and at each kept server
    session's login, reuse and logout, on the thread that made the call (or, for sessions whose
    idle life ends, on the library's own thread, which only the process's observer hears of).
    What they raise is dropped: it changes nothing of the call, and nothing is printed."""
    global _process_observer
    installed = None
    if on_statement is not None or on_session is not None:
        installed = (_trampoline(_capi.StatementObserver, _statement_event, on_statement),
                     _trampoline(_capi.SessionObserver, _session_event, on_session))
    functions = installed or (_capi.StatementObserver(), _capi.SessionObserver())
    _check(_lib.vrdppo_observer_set, _capi.OBSERVE_THREAD if thread else _capi.OBSERVE_PROCESS,
           *functions, None)
    # Only now may the replaced functions go: the library has stopped calling them.
    if thread:
        _thread_observers[_thread.get_ident()] = installed
    else:
        _process_observer = installed


@_atexit.register
def _remove_observers():
    # No callback may run once the interpreter is finalising: the library may still send
    # statements from its own exit handlers or threads.
    if _process_observer is not None:
        set_observer(None)
    if _thread_observers.get(_thread.get_ident()) is not None:
        set_observer(None, thread=True)


def pool_figures():
    """What the kept server sessions are doing, and have done since the process began, as a
    dict: "idle" and "in_use" sessions, "connections" (a list of dicts of "connection", its
    passwords masked, "idle" and "in_use"), "logins", "failed_logins", "reuses", "logouts" (a
    dict by cause name) and "login_time_ns"."""
    text = _ctypes.c_void_p()
    _check(_lib.vrdppo_pool_figures, _ctypes.byref(text))
    try:
        return _json.loads(_ctypes.string_at(text.value).decode("utf-8"))
    finally:
        _lib.vrdppo_free(text)


def __getattr__(name):
    # The classes by their exact names: vrdppo.cStemsPersist() is create("cStemsPersist").
    if name.startswith("c") and _lib.vrdppo_class_find(name.encode()) >= 0 \
            and name in classes():
        return _class_type(name)
    raise AttributeError(f"module 'vrdppo' has no attribute {name!r}")


def __dir__():
    return sorted(set(__all__) | set(classes()))
