#include "seam.hpp"

#include <sql.h>
#include <sqlext.h>
#include <sqlite3.h>

#include <atomic>
#include <cstring>

namespace vrdppo::faults {

namespace {

long gArmedAt = 0;
long gCalls = 0;
bool gCounting = false;
std::string gFailed;
const char* gArmedCall = nullptr;
std::atomic<long> gConnections{0}, gStatements{0}, gOdbcHandles{0}, gOdbcConnected{0};

// Counts a call that can fail; true when this one must.
bool fails(const char* name) {
  if (!gCounting) return false;
  if (gArmedCall) {
    if (std::strcmp(gArmedCall, name) != 0 || !gFailed.empty()) return false;
    gFailed = name;
    return true;
  }
  if (++gCalls != gArmedAt) return false;
  gFailed = name;
  return true;
}

}  // namespace

void arm(long k) {
  gArmedCall = nullptr;
  gArmedAt = k;
  gCalls = 0;
  gFailed.clear();
  gCounting = true;
}

void armCall(const char* name) {
  arm(0);
  gArmedCall = name;
}

long disarm() {
  gCounting = false;
  gArmedCall = nullptr;
  return gCalls;
}

const std::string& failed() {
  return gFailed;
}

long sqliteConnections() {
  return gConnections;
}
long sqliteStatements() {
  return gStatements;
}
long odbcHandles() {
  return gOdbcHandles;
}
long odbcConnected() {
  return gOdbcConnected;
}

}  // namespace vrdppo::faults

using vrdppo::faults::fails;
using vrdppo::faults::gConnections;
using vrdppo::faults::gOdbcConnected;
using vrdppo::faults::gOdbcHandles;
using vrdppo::faults::gStatements;

// Each wrapper fails before the real call, so a failure changes nothing underneath, as when the
// engine refuses at once (out of memory, an I/O error, a lock).
extern "C" {

// --- SQLite ---
int __real_sqlite3_open_v2(const char*, sqlite3**, int, const char*);
int __wrap_sqlite3_open_v2(const char* name, sqlite3** db, int flags, const char* vfs) {
  if (fails("sqlite3_open_v2")) {
    *db = nullptr;  // as SQLite leaves it when it cannot even allocate the handle
    return SQLITE_CANTOPEN;
  }
  const int rc = __real_sqlite3_open_v2(name, db, flags, vfs);
  if (*db) ++gConnections;
  return rc;
}

int __real_sqlite3_close_v2(sqlite3*);
int __wrap_sqlite3_close_v2(sqlite3* db) {
  // Closing never fails; it is only counted.
  if (db) --gConnections;
  return __real_sqlite3_close_v2(db);
}

int __real_sqlite3_prepare_v2(sqlite3*, const char*, int, sqlite3_stmt**, const char**);
int __wrap_sqlite3_prepare_v2(sqlite3* db, const char* sql, int n, sqlite3_stmt** st,
                              const char** tail) {
  if (fails("sqlite3_prepare_v2")) {
    *st = nullptr;
    return SQLITE_NOMEM;
  }
  const int rc = __real_sqlite3_prepare_v2(db, sql, n, st, tail);
  if (*st) ++gStatements;
  return rc;
}

int __real_sqlite3_prepare_v3(sqlite3*, const char*, int, unsigned, sqlite3_stmt**, const char**);
int __wrap_sqlite3_prepare_v3(sqlite3* db, const char* sql, int n, unsigned flags,
                              sqlite3_stmt** st, const char** tail) {
  if (fails("sqlite3_prepare_v3")) {
    *st = nullptr;
    return SQLITE_NOMEM;
  }
  const int rc = __real_sqlite3_prepare_v3(db, sql, n, flags, st, tail);
  if (*st) ++gStatements;
  return rc;
}

int __real_sqlite3_finalize(sqlite3_stmt*);
int __wrap_sqlite3_finalize(sqlite3_stmt* st) {
  if (st) --gStatements;
  return __real_sqlite3_finalize(st);
}

int __real_sqlite3_step(sqlite3_stmt*);
int __wrap_sqlite3_step(sqlite3_stmt* st) {
  return fails("sqlite3_step") ? SQLITE_IOERR : __real_sqlite3_step(st);
}

int __real_sqlite3_exec(sqlite3*, const char*, int (*)(void*, int, char**, char**), void*, char**);
int __wrap_sqlite3_exec(sqlite3* db, const char* sql, int (*cb)(void*, int, char**, char**),
                        void* arg, char** error) {
  if (fails("sqlite3_exec")) {
    if (error) *error = nullptr;
    return SQLITE_IOERR;
  }
  return __real_sqlite3_exec(db, sql, cb, arg, error);
}

int __real_sqlite3_bind_text(sqlite3_stmt*, int, const char*, int, void (*)(void*));
int __wrap_sqlite3_bind_text(sqlite3_stmt* st, int i, const char* s, int n, void (*d)(void*)) {
  return fails("sqlite3_bind_text") ? SQLITE_NOMEM : __real_sqlite3_bind_text(st, i, s, n, d);
}
int __real_sqlite3_bind_int(sqlite3_stmt*, int, int);
int __wrap_sqlite3_bind_int(sqlite3_stmt* st, int i, int v) {
  return fails("sqlite3_bind_int") ? SQLITE_RANGE : __real_sqlite3_bind_int(st, i, v);
}
int __real_sqlite3_bind_int64(sqlite3_stmt*, int, sqlite3_int64);
int __wrap_sqlite3_bind_int64(sqlite3_stmt* st, int i, sqlite3_int64 v) {
  return fails("sqlite3_bind_int64") ? SQLITE_RANGE : __real_sqlite3_bind_int64(st, i, v);
}
int __real_sqlite3_bind_double(sqlite3_stmt*, int, double);
int __wrap_sqlite3_bind_double(sqlite3_stmt* st, int i, double v) {
  return fails("sqlite3_bind_double") ? SQLITE_RANGE : __real_sqlite3_bind_double(st, i, v);
}
int __real_sqlite3_bind_null(sqlite3_stmt*, int);
int __wrap_sqlite3_bind_null(sqlite3_stmt* st, int i) {
  return fails("sqlite3_bind_null") ? SQLITE_RANGE : __real_sqlite3_bind_null(st, i);
}

int __real_sqlite3_busy_timeout(sqlite3*, int);
int __wrap_sqlite3_busy_timeout(sqlite3* db, int ms) {
  return fails("sqlite3_busy_timeout") ? SQLITE_MISUSE : __real_sqlite3_busy_timeout(db, ms);
}
int __real_sqlite3_extended_result_codes(sqlite3*, int);
int __wrap_sqlite3_extended_result_codes(sqlite3* db, int on) {
  return fails("sqlite3_extended_result_codes") ? SQLITE_MISUSE
                                                : __real_sqlite3_extended_result_codes(db, on);
}
// Variadic: the library passes (int, int*) after the operation, and nothing else.
int __real_sqlite3_db_config(sqlite3*, int, ...);
int __wrap_sqlite3_db_config(sqlite3* db, int op, int value, int* out) {
  return fails("sqlite3_db_config") ? SQLITE_ERROR : __real_sqlite3_db_config(db, op, value, out);
}
int __real_sqlite3_create_function_v2(sqlite3*, const char*, int, int, void*,
                                      void (*)(sqlite3_context*, int, sqlite3_value**),
                                      void (*)(sqlite3_context*, int, sqlite3_value**),
                                      void (*)(sqlite3_context*), void (*)(void*));
int __wrap_sqlite3_create_function_v2(sqlite3* db, const char* name, int n, int flags, void* data,
                                      void (*fn)(sqlite3_context*, int, sqlite3_value**),
                                      void (*step)(sqlite3_context*, int, sqlite3_value**),
                                      void (*final)(sqlite3_context*), void (*destroy)(void*)) {
  if (fails("sqlite3_create_function_v2")) return SQLITE_NOMEM;
  return __real_sqlite3_create_function_v2(db, name, n, flags, data, fn, step, final, destroy);
}
int __real_sqlite3_create_collation_v2(sqlite3*, const char*, int, void*,
                                       int (*)(void*, int, const void*, int, const void*),
                                       void (*)(void*));
int __wrap_sqlite3_create_collation_v2(sqlite3* db, const char* name, int rep, void* arg,
                                       int (*cmp)(void*, int, const void*, int, const void*),
                                       void (*destroy)(void*)) {
  if (fails("sqlite3_create_collation_v2")) return SQLITE_NOMEM;
  return __real_sqlite3_create_collation_v2(db, name, rep, arg, cmp, destroy);
}
int __real_sqlite3_set_authorizer(
    sqlite3*, int (*)(void*, int, const char*, const char*, const char*, const char*), void*);
int __wrap_sqlite3_set_authorizer(sqlite3* db,
                                  int (*fn)(void*, int, const char*, const char*, const char*,
                                            const char*),
                                  void* arg) {
  return fails("sqlite3_set_authorizer") ? SQLITE_MISUSE
                                         : __real_sqlite3_set_authorizer(db, fn, arg);
}

// --- the driver manager ---
SQLRETURN __real_SQLAllocHandle(SQLSMALLINT, SQLHANDLE, SQLHANDLE*);
SQLRETURN __wrap_SQLAllocHandle(SQLSMALLINT type, SQLHANDLE parent, SQLHANDLE* out) {
  if (fails("SQLAllocHandle")) {
    *out = SQL_NULL_HANDLE;
    return SQL_ERROR;
  }
  const SQLRETURN rc = __real_SQLAllocHandle(type, parent, out);
  if (SQL_SUCCEEDED(rc) && type != SQL_HANDLE_ENV) ++gOdbcHandles;
  return rc;
}
SQLRETURN __real_SQLFreeHandle(SQLSMALLINT, SQLHANDLE);
SQLRETURN __wrap_SQLFreeHandle(SQLSMALLINT type, SQLHANDLE h) {
  const SQLRETURN rc = __real_SQLFreeHandle(type, h);
  if (SQL_SUCCEEDED(rc) && type != SQL_HANDLE_ENV) --gOdbcHandles;
  return rc;
}
SQLRETURN __real_SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER);
SQLRETURN __wrap_SQLSetEnvAttr(SQLHENV h, SQLINTEGER a, SQLPOINTER v, SQLINTEGER n) {
  return fails("SQLSetEnvAttr") ? SQL_ERROR : __real_SQLSetEnvAttr(h, a, v, n);
}
SQLRETURN __real_SQLDriverConnectW(SQLHDBC, SQLHWND, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
                                   SQLSMALLINT*, SQLUSMALLINT);
SQLRETURN __wrap_SQLDriverConnectW(SQLHDBC h, SQLHWND w, SQLWCHAR* in, SQLSMALLINT inLength,
                                   SQLWCHAR* out, SQLSMALLINT outMax, SQLSMALLINT* outLength,
                                   SQLUSMALLINT completion) {
  if (fails("SQLDriverConnectW")) return SQL_ERROR;
  const SQLRETURN rc =
      __real_SQLDriverConnectW(h, w, in, inLength, out, outMax, outLength, completion);
  if (SQL_SUCCEEDED(rc)) ++gOdbcConnected;
  return rc;
}
SQLRETURN __real_SQLDisconnect(SQLHDBC);
SQLRETURN __wrap_SQLDisconnect(SQLHDBC h) {
  if (fails("SQLDisconnect")) return SQL_ERROR;
  const SQLRETURN rc = __real_SQLDisconnect(h);
  if (SQL_SUCCEEDED(rc)) --gOdbcConnected;
  return rc;
}
SQLRETURN __real_SQLSetStmtAttrW(SQLHSTMT, SQLINTEGER, SQLPOINTER, SQLINTEGER);
SQLRETURN __wrap_SQLSetStmtAttrW(SQLHSTMT h, SQLINTEGER a, SQLPOINTER v, SQLINTEGER n) {
  return fails("SQLSetStmtAttrW") ? SQL_ERROR : __real_SQLSetStmtAttrW(h, a, v, n);
}
SQLRETURN __real_SQLGetStmtAttrW(SQLHSTMT, SQLINTEGER, SQLPOINTER, SQLINTEGER, SQLINTEGER*);
SQLRETURN __wrap_SQLGetStmtAttrW(SQLHSTMT h, SQLINTEGER a, SQLPOINTER v, SQLINTEGER n,
                                 SQLINTEGER* len) {
  return fails("SQLGetStmtAttrW") ? SQL_ERROR : __real_SQLGetStmtAttrW(h, a, v, n, len);
}
SQLRETURN __real_SQLExecDirectW(SQLHSTMT, SQLWCHAR*, SQLINTEGER);
SQLRETURN __wrap_SQLExecDirectW(SQLHSTMT h, SQLWCHAR* text, SQLINTEGER n) {
  return fails("SQLExecDirectW") ? SQL_ERROR : __real_SQLExecDirectW(h, text, n);
}
SQLRETURN __real_SQLNumResultCols(SQLHSTMT, SQLSMALLINT*);
SQLRETURN __wrap_SQLNumResultCols(SQLHSTMT h, SQLSMALLINT* n) {
  return fails("SQLNumResultCols") ? SQL_ERROR : __real_SQLNumResultCols(h, n);
}
SQLRETURN __real_SQLDescribeColW(SQLHSTMT, SQLUSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLSMALLINT*,
                                 SQLSMALLINT*, SQLULEN*, SQLSMALLINT*, SQLSMALLINT*);
SQLRETURN __wrap_SQLDescribeColW(SQLHSTMT h, SQLUSMALLINT c, SQLWCHAR* name, SQLSMALLINT max,
                                 SQLSMALLINT* len, SQLSMALLINT* type, SQLULEN* size,
                                 SQLSMALLINT* digits, SQLSMALLINT* nullable) {
  if (fails("SQLDescribeColW")) return SQL_ERROR;
  return __real_SQLDescribeColW(h, c, name, max, len, type, size, digits, nullable);
}
SQLRETURN __real_SQLColAttributeW(SQLHSTMT, SQLUSMALLINT, SQLUSMALLINT, SQLPOINTER, SQLSMALLINT,
                                  SQLSMALLINT*, SQLLEN*);
SQLRETURN __wrap_SQLColAttributeW(SQLHSTMT h, SQLUSMALLINT c, SQLUSMALLINT f, SQLPOINTER p,
                                  SQLSMALLINT n, SQLSMALLINT* len, SQLLEN* num) {
  return fails("SQLColAttributeW") ? SQL_ERROR : __real_SQLColAttributeW(h, c, f, p, n, len, num);
}
SQLRETURN __real_SQLBindCol(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT, SQLPOINTER, SQLLEN, SQLLEN*);
SQLRETURN __wrap_SQLBindCol(SQLHSTMT h, SQLUSMALLINT c, SQLSMALLINT t, SQLPOINTER p, SQLLEN n,
                            SQLLEN* ind) {
  return fails("SQLBindCol") ? SQL_ERROR : __real_SQLBindCol(h, c, t, p, n, ind);
}
SQLRETURN __real_SQLFetch(SQLHSTMT);
SQLRETURN __wrap_SQLFetch(SQLHSTMT h) {
  return fails("SQLFetch") ? SQL_ERROR : __real_SQLFetch(h);
}
SQLRETURN __real_SQLGetData(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT, SQLPOINTER, SQLLEN, SQLLEN*);
SQLRETURN __wrap_SQLGetData(SQLHSTMT h, SQLUSMALLINT c, SQLSMALLINT t, SQLPOINTER p, SQLLEN n,
                            SQLLEN* ind) {
  return fails("SQLGetData") ? SQL_ERROR : __real_SQLGetData(h, c, t, p, n, ind);
}
SQLRETURN __real_SQLFreeStmt(SQLHSTMT, SQLUSMALLINT);
SQLRETURN __wrap_SQLFreeStmt(SQLHSTMT h, SQLUSMALLINT option) {
  return fails("SQLFreeStmt") ? SQL_ERROR : __real_SQLFreeStmt(h, option);
}

}  // extern "C"
