// The T-SQL functions, the T-SQL LIKE and the date collation, as SQLite functions of a
// connection.
#pragma once

#include <cstdint>
#include <string_view>

struct sqlite3;
struct sqlite3_context;
struct sqlite3_value;

namespace vrdppo::embedded {

// What audittrailid() answers: `read(context)`, asked each time it runs.
struct AuditTrailSource {
  std::int32_t (*read)(const void* context) noexcept;
  const void* context;
};

// Registers everything the dialect's translations call on db; `auditTrail` outlives db.
// Returns SQLite's result code.
int registerFunctions(sqlite3* db, const AuditTrailSource* auditTrail);
// The date and conversion functions (GETDATE, DATEADD, CONVERT, ...).
int registerDateFunctions(sqlite3* db);

// A value's text as SQLite gives it, as a view (empty for NULL).
std::string_view textOf(sqlite3_value* v);
// Ends a function call with the server's kind of error text.
void resultError(sqlite3_context* ctx, std::string_view message);

}  // namespace vrdppo::embedded
