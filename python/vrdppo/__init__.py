"""The plant's persistence classes from Python.

    import vrdppo
    stems = vrdppo.create("cStemsPersist")
    state = stems.Load(sCriteria="ProductionRunId = 77", sConnect=connect)
    for row in stems.layout.decode_buffer(state):
        print(row["StemsId"], row["TotalNetWeight"])

States are the library's own strings (UTF-16 code units, a record's numbers inside them); a
class's `layout` turns them into dicts and dicts back into states. The library's errors are
raised as `vrdppo.Error`.
"""

import ctypes
import datetime
import decimal
import math
import struct

from . import _capi
from ._capi import T

__all__ = ["Error", "MISSING", "Layout", "Persist", "classes", "create", "layout", "session",
           "set_session", "embedded_connect_string", "open_store", "release_store", "version"]

_lib = _capi.load()
_EPOCH = datetime.datetime(1899, 12, 30)


class Error(Exception):
    """An error of the library: its number (a provider's HRESULT is negative), description,
    source, SQLSTATE, native error and the statement that failed, if one did."""

    def __init__(self, number, description, source="", sql_state="", native_error=0,
                 statement=""):
        super().__init__(f"error {number & 0xFFFFFFFF:#x}: {description}" if number < 0
                         else f"error {number}: {description}")
        self.number = number
        self.description = description
        self.source = source
        self.sql_state = sql_state
        self.native_error = native_error
        self.statement = statement


class _Missing:
    def __repr__(self):
        return "vrdppo.MISSING"


MISSING = _Missing()  # an optional argument left out, where later ones are given


def _text(p):
    return p.decode("utf-8", "replace") if p else ""


def _check(call, *args):
    status = _capi.Status()
    number = call(*args, ctypes.byref(status))
    if number != 0:
        e = Error(number, _text(status.description), _text(status.source),
                  _text(status.sql_state), status.native_error, _text(status.statement))
        _lib.vrdppo_status_clear(ctypes.byref(status))
        raise e


# Dates are days since 1899-12-30; before it, the fraction still counts forward from midnight.
def _date_from_days(days):
    if not math.isfinite(days):
        return days
    whole = math.trunc(days)
    try:
        return _EPOCH + datetime.timedelta(days=whole) + datetime.timedelta(
            days=abs(days - whole))
    except OverflowError:
        return days


def _days_from_date(value):
    if isinstance(value, datetime.datetime):
        delta = value.replace(tzinfo=None) - _EPOCH
    else:
        delta = datetime.datetime(value.year, value.month, value.day) - _EPOCH
    fraction = (delta.seconds + delta.microseconds / 1e6) / 86400
    return delta.days - fraction if delta.days < 0 else delta.days + fraction


def _utf16(s):
    return s.encode("utf-16-le", "surrogatepass")


def _str16(p, length):
    return ctypes.string_at(p, 2 * length).decode("utf-16-le", "surrogatepass")


def _to_value(v, keep):
    """A C value of a Python one; `keep` holds the buffers it points into."""
    out = _capi.Value()
    if v is MISSING:
        out.type = T.MISSING
    elif v is None:
        out.type = T.NULL
    elif isinstance(v, bool):
        out.type, out.u.boolean = T.BOOLEAN, int(v)
    elif isinstance(v, int):
        if -2**31 <= v < 2**31:
            out.type, out.u.lng = T.LONG, v
        else:
            out.type, out.u.i64 = T.LONGLONG, v
    elif isinstance(v, float):
        out.type, out.u.dbl = T.DOUBLE, v
    elif isinstance(v, decimal.Decimal):
        text = format(v, "f").encode()
        keep.append(text)
        out.type, out.length, out.u.str8 = T.DECIMAL, len(text), text
    elif isinstance(v, (datetime.datetime, datetime.date)):
        out.type, out.u.dbl = T.DATE, _days_from_date(v)
    elif isinstance(v, str):
        data = _utf16(v)
        buf = ctypes.create_string_buffer(data, len(data) + 2)
        keep.append(buf)
        out.type, out.length = T.STRING16, len(data) // 2
        out.u.str16 = ctypes.cast(buf, ctypes.POINTER(ctypes.c_uint16))
    else:
        raise TypeError(f"vrdppo cannot pass a {type(v).__name__}")
    return out


def _from_value(v):
    t = v.type
    if t == T.STRING16:
        return _str16(v.u.str16, v.length)
    if t == T.BOOLEAN:
        return bool(v.u.boolean)
    if t == T.LONG:
        return v.u.lng
    if t == T.DOUBLE:
        return v.u.dbl
    if t == T.DATE:
        return _date_from_days(v.u.dbl)
    if t == T.CURRENCY:
        return decimal.Decimal(v.u.i64).scaleb(-4)
    if t == T.LONGLONG:
        return v.u.i64
    if t in (T.STRING8, T.DECIMAL):
        text = ctypes.string_at(v.u.str8, v.length).decode("utf-8")
        return decimal.Decimal(text) if t == T.DECIMAL else text
    return None  # Empty, Null, Missing


class Column:
    def __init__(self, info):
        self.name = _text(info.read_name)
        self.write_name = _text(info.write_name)
        self.type = info.type
        self.offset = info.offset
        self.length = info.length

    def __repr__(self):
        return f"Column({self.name!r}, offset={self.offset})"


_FIXED = {_capi.FIELD_LONG: "<i", _capi.FIELD_DOUBLE: "<d", _capi.FIELD_CURRENCY: "<q",
          _capi.FIELD_DATE: "<d"}


class Layout:
    """A class's record: its columns, and states to dicts and back."""

    def __init__(self, index):
        info = _capi.ClassInfo()
        _check(_lib.vrdppo_class_info_get, index, ctypes.byref(info))
        self.index = index
        self.class_name = _text(info.name)
        self.source = _text(info.source)
        self.is_view = bool(info.is_view)
        self.record_bytes = info.record_bytes
        self.state_chars = info.state_chars
        self.columns = []
        for k in range(info.column_count):
            ci = _capi.ColumnInfo()
            _check(_lib.vrdppo_column_info_get, index, k, ctypes.byref(ci))
            self.columns.append(Column(ci))
        self._by_name = {c.name.lower(): c for c in self.columns}

    def decode(self, state):
        """A record state as a dict of its columns (strings without their trailing blanks)."""
        if len(state) != self.state_chars:
            raise ValueError(f"a {self.class_name} state has {self.state_chars} characters, "
                             f"not {len(state)}")
        return self._decode_bytes(_utf16(state))

    def _decode_bytes(self, data):
        row = {}
        for c in self.columns:
            if c.type == _capi.FIELD_STRING:
                raw = data[c.offset:c.offset + 2 * c.length]
                row[c.name] = raw.decode("utf-16-le", "surrogatepass").rstrip(" ")
                continue
            (value,) = struct.unpack_from(_FIXED[c.type], data, c.offset)
            if c.type == _capi.FIELD_CURRENCY:
                value = decimal.Decimal(value).scaleb(-4)
            elif c.type == _capi.FIELD_DATE:
                value = _date_from_days(value)
            row[c.name] = value
        return row

    def decode_buffer(self, state):
        """A Buffer state (what Load returns) as a list of dicts."""
        data = _utf16(state)
        if len(data) < 16:
            raise ValueError("a Buffer state has an eight-character header")
        length = struct.unpack_from("<h", data, 0)[0]
        count = struct.unpack_from("<i", data, 12)[0]
        if count == 0:
            return []
        if length != self.state_chars or len(state) != 9 + length * count:
            raise ValueError(f"not a Buffer state of {self.class_name} records")
        return [self._decode_bytes(data[16 + 2 * length * i:16 + 2 * length * (i + 1)])
                for i in range(count)]

    def encode(self, fields, base=None):
        """A record state from a dict: the columns it names over `base` (by default the state
        of a new object, as the class's initialiser leaves it)."""
        if base is None:
            base = Persist(self.class_name).GetState()
        data = bytearray(_utf16(base))
        for name, value in fields.items():
            c = self._by_name.get(name.lower())
            if c is None:
                raise KeyError(f"{self.class_name} has no column {name}")
            if c.type == _capi.FIELD_STRING:
                text = _utf16(str(value)[:c.length].ljust(c.length))
                data[c.offset:c.offset + len(text)] = text
            elif c.type == _capi.FIELD_CURRENCY:
                raw = int((decimal.Decimal(value) * 10000).to_integral_value(
                    rounding=decimal.ROUND_HALF_EVEN))
                struct.pack_into("<q", data, c.offset, raw)
            elif c.type == _capi.FIELD_DATE:
                days = value if isinstance(value, (int, float)) else _days_from_date(value)
                struct.pack_into("<d", data, c.offset, days)
            else:
                struct.pack_into(_FIXED[c.type], data, c.offset, value)
        return data.decode("utf-16-le", "surrogatepass")


class _Member:
    def __init__(self, class_index, member_index):
        info = _capi.MemberInfo()
        _check(_lib.vrdppo_member_info_get, class_index, member_index, ctypes.byref(info))
        self.name = _text(info.name)
        self.dispatch_id = info.dispatch_id
        self.callable = bool(info.is_public and info.invocable)
        self.args = []
        for a in range(info.arg_count):
            ai = _capi.ArgInfo()
            _check(_lib.vrdppo_arg_info_get, class_index, member_index, a, ctypes.byref(ai))
            self.args.append((_text(ai.name), bool(ai.optional)))

    def arguments(self, args, kwargs):
        """Positional and keyword arguments in the member's order, gaps left missing."""
        if len(args) > len(self.args):
            raise TypeError(f"{self.name} takes {len(self.args)} arguments, not {len(args)}")
        out = list(args) + [MISSING] * (len(self.args) - len(args))
        names = [n.lower() for n, _ in self.args]
        for key, value in kwargs.items():
            if key.lower() not in names:
                raise TypeError(f"{self.name} has no argument {key}")
            at = names.index(key.lower())
            if at < len(args):
                raise TypeError(f"{self.name} got {key} twice")
            out[at] = value
        while out and out[-1] is MISSING:
            out.pop()
        return out


_classes = {}


class _Class:
    def __init__(self, index):
        self.layout = Layout(index)
        info = _capi.ClassInfo()
        _check(_lib.vrdppo_class_info_get, index, ctypes.byref(info))
        self.members = {}
        for m in range(info.member_count):
            member = _Member(index, m)
            if member.callable:
                self.members[member.name.lower()] = member


def _class(name):
    index = _lib.vrdppo_class_find(name.encode())
    if index < 0:
        raise Error(429, "ActiveX component can't create object")
    if index not in _classes:
        _classes[index] = _Class(index)
    return _classes[index]


class Persist:
    """An object of one of the library's classes; its public members are its methods."""

    def __init__(self, class_name):
        self._class = _class(class_name)
        handle = ctypes.c_void_p()
        _check(_lib.vrdppo_create, class_name.encode(), ctypes.byref(handle))
        self._handle = handle

    @property
    def layout(self):
        return self._class.layout

    @property
    def members(self):
        return [m.name for m in self._class.members.values()]

    def __getattr__(self, name):
        member = self.__dict__.get("_class") and self._class.members.get(name.lower())
        if not member:
            raise AttributeError(f"{type(self).__name__} has no member {name}")

        def call(*args, **kwargs):
            return self.invoke(member, member.arguments(args, kwargs))

        call.__name__ = member.name
        return call

    def invoke(self, member, args):
        keep = []
        values = (_capi.Value * max(len(args), 1))(*[_to_value(a, keep) for a in args])
        result = _capi.Value()
        _check(_lib.vrdppo_invoke_id, self._handle, member.dispatch_id, values, len(args),
               ctypes.byref(result))
        try:
            return _from_value(result)
        finally:
            _lib.vrdppo_value_clear(ctypes.byref(result), None)

    def close(self):
        if self.__dict__.get("_handle"):
            _lib.vrdppo_release(self._handle, None)
            self._handle = None

    def __del__(self):
        self.close()

    def __repr__(self):
        return f"<vrdppo {self.layout.class_name}>"


def version():
    return _lib.vrdppo_version().decode()


def classes():
    """Every class's name, in the library's order."""
    names = []
    for i in range(_lib.vrdppo_class_count()):
        info = _capi.ClassInfo()
        _check(_lib.vrdppo_class_info_get, i, ctypes.byref(info))
        names.append(_text(info.name))
    return names


def create(class_name):
    return Persist(class_name)


def layout(class_name):
    return _class(class_name).layout


_SESSION = {"connect_string": _capi.SESSION_CONNECT_STRING,
            "app_name": _capi.SESSION_APP_NAME,
            "audit_trail_id": _capi.SESSION_AUDIT_TRAIL_ID}


def set_session(**values):
    """Sets the calling thread's connect_string, app_name or audit_trail_id."""
    for name, value in values.items():
        if name not in _SESSION:
            raise TypeError(f"no session value {name}")
        keep = []
        v = _to_value(value, keep)
        _check(_lib.vrdppo_session_set, _SESSION[name], ctypes.byref(v))


def session():
    """The calling thread's session values."""
    out = {}
    for name, key in _SESSION.items():
        v = _capi.Value()
        _check(_lib.vrdppo_session_get, key, ctypes.byref(v))
        out[name] = _from_value(v)
        _lib.vrdppo_value_clear(ctypes.byref(v), None)
    return out


def embedded_connect_string(path):
    """The connection string of an embedded store file."""
    v = _capi.Value()
    _check(_lib.vrdppo_embedded_connect_string, str(path).encode(), ctypes.byref(v))
    try:
        return _from_value(v)
    finally:
        _lib.vrdppo_value_clear(ctypes.byref(v), None)


def open_store(path):
    """Creates an embedded store file with its schema now rather than on first use."""
    _check(_lib.vrdppo_embedded_open, str(path).encode())


def release_store(path):
    """Lets go of what the process keeps open on a store file."""
    _lib.vrdppo_embedded_release(str(path).encode())
