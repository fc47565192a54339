"""The C interface of libvrdppo, declared for ctypes."""

import ctypes
import ctypes.util
import os
import pathlib


class T:
    """The tags of a value."""
    EMPTY, NULL, BOOLEAN, LONG, DOUBLE, CURRENCY, DATE = range(7)
    STRING16, STRING8, LONGLONG, DECIMAL, MISSING = range(7, 12)


SESSION_CONNECT_STRING, SESSION_APP_NAME, SESSION_AUDIT_TRAIL_ID = 0, 1, 2
FIELD_LONG, FIELD_DOUBLE, FIELD_CURRENCY, FIELD_DATE, FIELD_STRING = range(5)
VT_NONE, VT_STRING, VT_LONG, VT_BOOLEAN, VT_DOUBLE, VT_DATE, VT_VARIANT, VT_RECORDSET = range(8)


class _Union(ctypes.Union):
    _fields_ = [("boolean", ctypes.c_int32), ("lng", ctypes.c_int32), ("dbl", ctypes.c_double),
                ("i64", ctypes.c_int64), ("str16", ctypes.POINTER(ctypes.c_uint16)),
                ("str8", ctypes.c_char_p)]


class Value(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int32), ("length", ctypes.c_int32), ("u", _Union)]


class Status(ctypes.Structure):
    _fields_ = [("number", ctypes.c_int32), ("native_error", ctypes.c_int32),
                ("description", ctypes.c_char_p), ("source", ctypes.c_char_p),
                ("sql_state", ctypes.c_char_p), ("statement", ctypes.c_char_p),
                ("column", ctypes.c_char_p), ("row", ctypes.c_int64)]


class ClassInfo(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("class_id", ctypes.c_char_p),
                ("interface_id", ctypes.c_char_p), ("source", ctypes.c_char_p),
                ("is_view", ctypes.c_int32), ("member_count", ctypes.c_int32),
                ("column_count", ctypes.c_int32), ("record_bytes", ctypes.c_int32),
                ("state_chars", ctypes.c_int32), ("trailing_offset", ctypes.c_int32),
                ("trailing_length", ctypes.c_int32), ("trailing_literal", ctypes.c_char_p)]


class MemberInfo(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("dispatch_id", ctypes.c_int32),
                ("is_public", ctypes.c_int32), ("invocable", ctypes.c_int32),
                ("result_type", ctypes.c_int32), ("arg_count", ctypes.c_int32)]


class ArgInfo(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("type", ctypes.c_int32), ("by_ref", ctypes.c_int32),
                ("optional", ctypes.c_int32), ("default_value", Value)]


class ColumnInfo(ctypes.Structure):
    _fields_ = [("read_name", ctypes.c_char_p), ("write_name", ctypes.c_char_p),
                ("type", ctypes.c_int32), ("offset", ctypes.c_int32), ("length", ctypes.c_int32)]


OBSERVE_PROCESS, OBSERVE_THREAD = 0, 1
ORIGINS = {0: None, 1: "fresh", 2: "kept"}
EVENT_KINDS = {0: "login", 1: "reuse", 2: "logout"}
_TARGET = [("db_system_name", ctypes.c_char_p), ("server_address", ctypes.c_char_p),
           ("server_port", ctypes.c_int32), ("db_namespace", ctypes.c_char_p),
           ("connection", ctypes.c_char_p)]
_ERROR = [("error_number", ctypes.c_int32), ("error_native", ctypes.c_int32),
          ("error_sql_state", ctypes.c_char_p), ("error_description", ctypes.c_char_p),
          ("error_source", ctypes.c_char_p)]


class StatementEvent(ctypes.Structure):
    _fields_ = _TARGET + [("db_query_text", ctypes.c_char_p),
                          ("db_operation_name", ctypes.c_char_p),
                          ("returned_rows", ctypes.c_int64), ("affected_rows", ctypes.c_int64),
                          ("duration_ns", ctypes.c_int64), ("session", ctypes.c_int32)] + _ERROR


class SessionEvent(ctypes.Structure):
    _fields_ = [("kind", ctypes.c_int32), ("cause", ctypes.c_int32),
                ("cause_name", ctypes.c_char_p)] + _TARGET + [
                    ("duration_ns", ctypes.c_int64)] + _ERROR


StatementObserver = ctypes.CFUNCTYPE(None, ctypes.POINTER(StatementEvent), ctypes.c_void_p)
SessionObserver = ctypes.CFUNCTYPE(None, ctypes.POINTER(SessionEvent), ctypes.c_void_p)

def _candidates():
    """VRDPPO_LIBRARY first, then libvrdppo.so beside the package or in a lib folder above it
    (where `cmake --install` and `pip install --target PREFIX/lib/python` put them), then the
    dynamic linker's search."""
    explicit = os.environ.get("VRDPPO_LIBRARY")
    if explicit:
        yield explicit
        return
    here = pathlib.Path(__file__).resolve().parent
    for folder in (here, *here.parents):
        for sub in ("", "lib", "lib64"):
            candidate = folder / sub / "libvrdppo.so"
            if candidate.exists():
                yield str(candidate)
    found = ctypes.util.find_library("vrdppo")
    if found:
        yield found
    yield "libvrdppo.so"


def load():
    errors = []
    for path in _candidates():
        try:
            lib = ctypes.CDLL(path)
            break
        except OSError as e:
            errors.append(str(e))
    else:
        raise ImportError("libvrdppo.so not found (set VRDPPO_LIBRARY to its path): "
                          + "; ".join(errors))
    _declare(lib)
    return lib


def _declare(lib):
    i32, p = ctypes.c_int32, ctypes.POINTER
    status = p(Status)
    signatures = {
        "vrdppo_version": (ctypes.c_char_p, []),
        "vrdppo_class_count": (i32, []),
        "vrdppo_class_find": (i32, [ctypes.c_char_p]),
        "vrdppo_class_info_get": (i32, [i32, p(ClassInfo), status]),
        "vrdppo_member_info_get": (i32, [i32, i32, p(MemberInfo), status]),
        "vrdppo_arg_info_get": (i32, [i32, i32, i32, p(ArgInfo), status]),
        "vrdppo_column_info_get": (i32, [i32, i32, p(ColumnInfo), status]),
        "vrdppo_create": (i32, [ctypes.c_char_p, p(ctypes.c_void_p), status]),
        "vrdppo_release": (i32, [ctypes.c_void_p, status]),
        "vrdppo_invoke_id": (i32, [ctypes.c_void_p, i32, p(Value), i32, p(Value), status]),
        "vrdppo_invoke_id_counted": (i32, [ctypes.c_void_p, i32, p(Value), i32, p(Value),
                                           p(ctypes.c_int64), status]),
        "vrdppo_session_set": (i32, [i32, p(Value), status]),
        "vrdppo_session_get": (i32, [i32, p(Value), status]),
        "vrdppo_last_records_affected": (ctypes.c_int64, []),
        "vrdppo_record_new": (i32, [i32, p(Value), status]),
        "vrdppo_embedded_connect_string": (i32, [ctypes.c_char_p, p(Value), status]),
        "vrdppo_embedded_open": (i32, [ctypes.c_char_p, status]),
        "vrdppo_embedded_release": (None, [ctypes.c_char_p]),
        "vrdppo_value_clear": (i32, [p(Value), status]),
        "vrdppo_status_clear": (None, [status]),
        "vrdppo_check_schema": (i32, [ctypes.c_char_p, i32, p(ctypes.c_void_p), p(i32), status]),
        "vrdppo_criteria": (i32, [ctypes.c_char_p, p(Value), i32, p(ctypes.c_void_p), status]),
        "vrdppo_observer_set": (i32, [i32, StatementObserver, SessionObserver, ctypes.c_void_p,
                                      status]),
        "vrdppo_pool_figures": (i32, [p(ctypes.c_void_p), status]),
        "vrdppo_free": (None, [ctypes.c_void_p]),
    }
    for name, (restype, argtypes) in signatures.items():
        f = getattr(lib, name)
        f.restype = restype
        f.argtypes = argtypes
