/* The library's C interface: the classes by name, objects, late-bound calls with tagged values,
 * record layouts and the per-thread session. Plain C, for any language's foreign-function
 * interface. No function lets an exception or an abort through: a failure is a status.
 *
 * Who owns what:
 * - Strings handed in are the caller's; the library reads them during the call only.
 * - Strings handed out in a vrdppo_value or a vrdppo_status are the caller's to free, with
 *   vrdppo_value_clear and vrdppo_status_clear; vrdppo_value_text's with vrdppo_free. A status
 *   starts zeroed ({0}); the library frees what an earlier failure left in it.
 * - Objects are the caller's from vrdppo_create to vrdppo_release. Their handles are numbers the
 *   library checks: a released one is refused, never followed.
 * - Strings in the info structures belong to the library and live as long as the process. */
#ifndef VRDPPO_VRDPPO_H
#define VRDPPO_VRDPPO_H

#include <stdint.h>

#if defined(_WIN32)
#define VRDPPO_C_API
#else
#define VRDPPO_C_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The types of a value. A state string is UTF-16 and may hold any code unit (a record's numbers
 * travel inside it), so strings come back as VRDPPO_STRING16; either kind may be handed in. */
typedef enum vrdppo_type {
  VRDPPO_EMPTY = 0,
  VRDPPO_NULL = 1,
  VRDPPO_BOOLEAN = 2,  /* u.boolean: 0 or 1 */
  VRDPPO_LONG = 3,     /* u.lng */
  VRDPPO_DOUBLE = 4,   /* u.dbl */
  VRDPPO_CURRENCY = 5, /* u.i64: ten-thousandths */
  VRDPPO_DATE = 6,     /* u.dbl: days since 1899-12-30, the fraction being the time of day */
  VRDPPO_STRING16 = 7, /* u.str16 with length code units */
  VRDPPO_STRING8 = 8,  /* u.str8 with length bytes, UTF-8 */
  VRDPPO_LONGLONG = 9, /* u.i64 */
  VRDPPO_DECIMAL = 10, /* u.str8: the number's text, with a point */
  VRDPPO_MISSING = 11  /* an optional argument left out */
} vrdppo_type;

typedef struct vrdppo_value {
  int32_t type;   /* a vrdppo_type */
  int32_t length; /* of a string, in code units; ignored otherwise */
  union {
    int32_t boolean;
    int32_t lng;
    double dbl;
    int64_t i64;
    const uint16_t* str16;
    const char* str8;
  } u;
} vrdppo_value;

/* A failure: number 0 is success. The number is the library's error number (provider failures
 * carry the provider's HRESULT, a negative number). */
typedef struct vrdppo_status {
  int32_t number;
  int32_t native_error;
  char* description; /* UTF-8; NULL on success */
  char* source;
  char* sql_state;
  char* statement; /* the statement that failed, when one did */
  char* column;    /* the column of a row that would not go into a record; NULL otherwise */
  int64_t row;     /* that row, counted from 1 in the result; 0 otherwise */
} vrdppo_status;

typedef struct vrdppo_object vrdppo_object;

/* The types of arguments and results in the member metadata. */
typedef enum vrdppo_value_type {
  VRDPPO_VT_NONE = 0,
  VRDPPO_VT_STRING = 1,
  VRDPPO_VT_LONG = 2,
  VRDPPO_VT_BOOLEAN = 3,
  VRDPPO_VT_DOUBLE = 4,
  VRDPPO_VT_DATE = 5,
  VRDPPO_VT_VARIANT = 6,
  VRDPPO_VT_RECORDSET = 7
} vrdppo_value_type;

/* The types of a record's fields. */
typedef enum vrdppo_field_type {
  VRDPPO_FIELD_LONG = 0,     /* 4 bytes, little-endian */
  VRDPPO_FIELD_DOUBLE = 1,   /* 8 bytes */
  VRDPPO_FIELD_CURRENCY = 2, /* 8 bytes, ten-thousandths */
  VRDPPO_FIELD_DATE = 3,     /* 8 bytes, a double */
  VRDPPO_FIELD_STRING = 4    /* length UTF-16 code units, blank padded */
} vrdppo_field_type;

typedef struct vrdppo_class_info {
  const char* name;
  const char* class_id;     /* GUID text */
  const char* interface_id; /* of the default interface */
  const char* source;       /* the table or view */
  int32_t is_view;
  int32_t member_count; /* private members included: they count in the dispatch identifiers */
  int32_t column_count;
  int32_t record_bytes; /* R: the record image */
  int32_t state_chars;  /* C: UTF-16 code units of a record's state */
  int32_t trailing_offset;
  int32_t trailing_length;
  const char* trailing_literal; /* a table's key-name literal; "" for a view's blanks */
} vrdppo_class_info;

typedef struct vrdppo_member_info {
  const char* name;
  int32_t dispatch_id;
  int32_t is_public;
  int32_t invocable;   /* 0 where an argument or the result cannot travel as a value */
  int32_t result_type; /* a vrdppo_value_type */
  int32_t arg_count;
} vrdppo_member_info;

typedef struct vrdppo_arg_info {
  const char* name;
  int32_t type; /* a vrdppo_value_type */
  int32_t by_ref;
  int32_t optional;
  vrdppo_value default_value; /* VRDPPO_EMPTY when it has none; strings owned by the library */
} vrdppo_arg_info;

typedef struct vrdppo_column_info {
  const char* read_name;  /* how a row names it */
  const char* write_name; /* how the statements name it */
  int32_t type;           /* a vrdppo_field_type */
  int32_t offset;         /* bytes from the record's start */
  int32_t length;         /* code units of a string field; 0 otherwise */
} vrdppo_column_info;

/* The per-thread session values. */
typedef enum vrdppo_session_key {
  VRDPPO_SESSION_CONNECT_STRING = 0, /* a string */
  VRDPPO_SESSION_APP_NAME = 1,       /* a string */
  VRDPPO_SESSION_AUDIT_TRAIL_ID = 2  /* a long */
} vrdppo_session_key;

VRDPPO_C_API const char* vrdppo_version(void);

/* The classes, in the order the library lists them. */
VRDPPO_C_API int32_t vrdppo_class_count(void);
VRDPPO_C_API int32_t vrdppo_class_find(const char* name); /* without regard to case; -1 if none */
VRDPPO_C_API int32_t vrdppo_class_info_get(int32_t class_index, vrdppo_class_info* out,
                                           vrdppo_status* status);
VRDPPO_C_API int32_t vrdppo_member_info_get(int32_t class_index, int32_t member_index,
                                            vrdppo_member_info* out, vrdppo_status* status);
VRDPPO_C_API int32_t vrdppo_arg_info_get(int32_t class_index, int32_t member_index,
                                         int32_t arg_index, vrdppo_arg_info* out,
                                         vrdppo_status* status);
VRDPPO_C_API int32_t vrdppo_column_info_get(int32_t class_index, int32_t column_index,
                                            vrdppo_column_info* out, vrdppo_status* status);

/* Objects. vrdppo_create fails with 429 for a name no class has. A new object's record is the
 * class's initialised one (blank strings, a table's key-name literal), as vrdppo_record_new
 * gives it. */
VRDPPO_C_API int32_t vrdppo_create(const char* class_name, vrdppo_object** out,
                                   vrdppo_status* status);
VRDPPO_C_API int32_t vrdppo_object_class(const vrdppo_object* object); /* its class index */
/* Releases the object. A handle released before, or not made by vrdppo_create, is refused with
 * a status (so is any call on it), never followed. */
VRDPPO_C_API int32_t vrdppo_release(vrdppo_object* object, vrdppo_status* status);

/* Late-bound calls: arguments in the member's order, optional ones as VRDPPO_MISSING or left off
 * the end. The result is written to *result (which may be NULL), to be cleared by the caller
 * (it is overwritten, not freed, so clear a value before reusing it).
 * Each returns the status's number. An object may be shared between threads: calls on it run one
 * at a time (a second waits for the first to end), and its record is the last call's. */
VRDPPO_C_API int32_t vrdppo_invoke(vrdppo_object* object, const char* member,
                                   const vrdppo_value* args, int32_t arg_count,
                                   vrdppo_value* result, vrdppo_status* status);
VRDPPO_C_API int32_t vrdppo_invoke_id(vrdppo_object* object, int32_t dispatch_id,
                                      const vrdppo_value* args, int32_t arg_count,
                                      vrdppo_value* result, vrdppo_status* status);

/* vrdppo_invoke_id that also writes to *records_affected (unless NULL) the rows the call's
 * statement touched, taken before the call returns: the figure of this call even where the
 * caller's runtime may run code of its own on the thread before it could ask
 * vrdppo_last_records_affected (a signal handler, a finaliser). -1 as that function says. */
VRDPPO_C_API int32_t vrdppo_invoke_id_counted(vrdppo_object* object, int32_t dispatch_id,
                                              const vrdppo_value* args, int32_t arg_count,
                                              vrdppo_value* result, int64_t* records_affected,
                                              vrdppo_status* status);

/* The rows touched by the last statement the calling thread ran: after a Commit or Delete, how
 * many rows it wrote (its Boolean result does not tell). vrdppo_invoke and vrdppo_invoke_id set
 * it to -1 before the call, so -1 after one means it ran no statement (or the provider cannot
 * count). */
VRDPPO_C_API int64_t vrdppo_last_records_affected(void);

/* The state of a new record of the class, as its initialiser leaves it: how a caller starts a
 * record to insert (key 0) without a former Load. A VRDPPO_STRING16 value, cleared by the
 * caller. */
VRDPPO_C_API int32_t vrdppo_record_new(int32_t class_index, vrdppo_value* out,
                                       vrdppo_status* status);

/* The calling thread's session values. */
VRDPPO_C_API int32_t vrdppo_session_set(int32_t key, const vrdppo_value* value,
                                        vrdppo_status* status);
VRDPPO_C_API int32_t vrdppo_session_get(int32_t key, vrdppo_value* out, vrdppo_status* status);

/* The embedded store: the connection string of a file, and creating its schema up front. */
VRDPPO_C_API int32_t vrdppo_embedded_connect_string(const char* path, vrdppo_value* out,
                                                    vrdppo_status* status);
VRDPPO_C_API int32_t vrdppo_embedded_open(const char* path, vrdppo_status* status);
VRDPPO_C_API void vrdppo_embedded_release(const char* path);

/* Whether the database that connect names (UTF-8) fits the classes: every table, view, column,
 * key and procedure they use, read from its catalog; nothing is written. The report, as text or
 * (json nonzero) as one JSON object, UTF-8 and NUL-terminated, goes to *report, freed with
 * vrdppo_free; the count of problems to *problems (0: it fits; warnings are not counted). A
 * database that does not fit is not a failure: the status fails only where the database cannot
 * be read. Either out pointer may be NULL. */
VRDPPO_C_API int32_t vrdppo_check_schema(const char* connect, int32_t json, char** report,
                                         int32_t* problems, vrdppo_status* status);

/* Criteria built from values, for a Load's or a CriteriaDelete's sCriteria (text that goes into
 * the statement as it stands): the "?" placeholders of template_utf8 replaced, in order, by the
 * values, each written as the library's statements write a value of its kind (a string quoted
 * with its quotes doubled, a date as 'yyyy/MM/dd HH:MM:SS', a null as Null). A "?" inside a
 * quoted string, a bracketed name or a comment is not a placeholder. Values are read as
 * vrdppo_invoke reads its arguments. The text, UTF-8 and NUL-terminated, goes to
 * *criteria_utf8, freed with vrdppo_free. Refused with error 5 and *criteria_utf8 NULL, the
 * description naming the placeholder or what is wrong: too few or too many values; a value with
 * no SQL form (empty, missing, boolean, a date before 1753, a double that is not finite, a
 * string holding U+0000 or a lone surrogate); a template that is not one expression (a ";", a
 * word that begins another statement, a "--" comment, unbalanced parentheses or quotes). */
VRDPPO_C_API int32_t vrdppo_criteria(const char* template_utf8, const vrdppo_value* values,
                                     int32_t count, char** criteria_utf8, vrdppo_status* status);

/* What the library sends, told to an observer the caller installs (vrdppo_observer_set). The
 * names follow the common tracing conventions for database calls. Every string is UTF-8 and
 * lives only during the call that hands it over. */

/* Where the server session a statement ran on came from. */
typedef enum vrdppo_session_origin {
  VRDPPO_ORIGIN_NONE = 0,  /* the provider has no logins (the embedded store) */
  VRDPPO_ORIGIN_FRESH = 1, /* a login made for this connection */
  VRDPPO_ORIGIN_KEPT = 2   /* a server session kept from an earlier connection */
} vrdppo_session_origin;

/* One statement the library sent. */
typedef struct vrdppo_statement_event {
  const char* db_system_name;    /* "microsoft.sql_server", "sqlite", or the provider's name */
  const char* server_address;    /* "" where the connection string names none */
  int32_t server_port;           /* 0 where it names none */
  const char* db_namespace;      /* the database, or the store's file; "" for none */
  const char* connection;        /* the whole connection string, every password masked */
  const char* db_query_text;     /* exactly as sent */
  const char* db_operation_name; /* its first word in upper case ("SELECT", "EXEC") */
  int64_t returned_rows;         /* -1 when it gave no rows */
  int64_t affected_rows;         /* rows it inserted, updated or deleted; -1 when not known */
  int64_t duration_ns;
  int32_t session; /* a vrdppo_session_origin */
  /* The error of a statement that failed, as a vrdppo_status would carry it: number 0 and the
   * strings NULL when it succeeded. */
  int32_t error_number;
  int32_t error_native;
  const char* error_sql_state;
  const char* error_description;
  const char* error_source;
} vrdppo_statement_event;

typedef enum vrdppo_session_event_kind {
  VRDPPO_EVENT_LOGIN = 0, /* a fresh login, with its time (and its error when it failed) */
  VRDPPO_EVENT_REUSE = 1, /* a kept session handed to a connection */
  VRDPPO_EVENT_LOGOUT = 2 /* a session logged out, with the cause */
} vrdppo_session_event_kind;

/* Why a session was logged out. */
typedef enum vrdppo_logout_cause {
  VRDPPO_LOGOUT_NONE = 0,            /* not a logout */
  VRDPPO_LOGOUT_NOT_KEPT = 1,        /* the string or the environment keeps no sessions */
  VRDPPO_LOGOUT_SESSION_CHANGED = 2, /* a statement may have left something in the session */
  VRDPPO_LOGOUT_IDLE_LIFE_ENDED = 3, /* kept idle for longer than its life */
  VRDPPO_LOGOUT_LIMIT = 4,           /* the cap of idle sessions made room for a newer one */
  VRDPPO_LOGOUT_DEAD_LINK = 5,       /* its link to the server failed */
  VRDPPO_LOGOUT_NOT_ANSWERING = 6,   /* a kept session did not answer in time */
  VRDPPO_LOGOUT_RELEASED = 7         /* the caller released every idle session */
} vrdppo_logout_cause;

/* What happened to a kept server session. */
typedef struct vrdppo_session_event {
  int32_t kind;           /* a vrdppo_session_event_kind */
  int32_t cause;          /* a vrdppo_logout_cause */
  const char* cause_name; /* "idle-life-ended", as the pool figures name it; "none" */
  const char* db_system_name;
  const char* server_address;
  int32_t server_port;
  const char* db_namespace;
  const char* connection;
  int64_t duration_ns;  /* a login's time; 0 otherwise */
  int32_t error_number; /* a login that failed; 0 and NULLs otherwise */
  int32_t error_native;
  const char* error_sql_state;
  const char* error_description;
  const char* error_source;
} vrdppo_session_event;

typedef void (*vrdppo_statement_observer)(const vrdppo_statement_event* event, void* user);
typedef void (*vrdppo_session_observer)(const vrdppo_session_event* event, void* user);

typedef enum vrdppo_observe_scope {
  VRDPPO_OBSERVE_PROCESS = 0, /* every thread's statements, and the library's own thread's */
  VRDPPO_OBSERVE_THREAD = 1   /* the calling thread's, told before the process's observer */
} vrdppo_observe_scope;

/* Installs an observer for the process or the calling thread, replacing the one there: either
 * function may be NULL, and both NULL removes it. Each is called on the thread that made the
 * call (sessions whose idle life ends do so on a thread of the library's, which only the
 * process's observer hears of), with user as given, never for what it sends itself. It cannot
 * change what a call sends or returns. Once this returns, the observer it replaced is not called
 * again and no call of it is still running (except the caller's own, when an observer replaces
 * itself), so its user data may be freed. */
VRDPPO_C_API int32_t vrdppo_observer_set(int32_t scope, vrdppo_statement_observer on_statement,
                                         vrdppo_session_observer on_session, void* user,
                                         vrdppo_status* status);

/* What the kept server sessions are doing, and have done since the process began, as one JSON
 * object, UTF-8 and NUL-terminated, freed with vrdppo_free: "idle" and "in_use" sessions in all
 * and by connection string ("connections": [{"connection", "idle", "in_use"}], passwords
 * masked), "logins", "failed_logins", "reuses", "logouts" by cause name and "login_time_ns". */
VRDPPO_C_API int32_t vrdppo_pool_figures(char** json, vrdppo_status* status);

/* A value as the platform writes it as text, UTF-8, NUL-terminated; NULL on failure. Freed with
 * vrdppo_free. */
VRDPPO_C_API char* vrdppo_value_text(const vrdppo_value* value, vrdppo_status* status);

/* Frees the string of a value the library handed out and empties the value. A string the
 * caller made (or one cleared before) is refused with a status and left alone. */
VRDPPO_C_API int32_t vrdppo_value_clear(vrdppo_value* value, vrdppo_status* status);
VRDPPO_C_API void vrdppo_status_clear(vrdppo_status* status);
VRDPPO_C_API void vrdppo_free(void* p);

#ifdef __cplusplus
}
#endif

#endif
