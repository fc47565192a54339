#include "providers/embedded/errors.hpp"

#include <sqlite3.h>

#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

bool startsWith(std::string_view s, std::string_view prefix) noexcept {
  return s.substr(0, prefix.size()) == prefix;
}

struct Class {
  std::int32_t number;
  const char* sqlState;
  std::int32_t nativeError;
};

Class classify(int extended, std::string_view message) {
  switch (extended & 0xFF) {
    case SQLITE_ERROR:
      if (startsWith(message, "no such table"))
        return {err::kMissingTable, "42S02", native::kInvalidObject};
      if (startsWith(message, "no such column"))
        return {err::kCommandError, "42S22", native::kInvalidColumn};
      if (startsWith(message, "ambiguous column"))
        return {err::kCommandError, "42000", native::kAmbiguousColumn};
      if (startsWith(message, "no such function"))
        return {err::kCommandError, "42000", native::kUnknownFunction};
      if (startsWith(message, "not authorized"))  // a function the confinement refuses
        return {err::kCommandError, "42000", native::kPermissionDenied};
      if (startsWith(message, "parser stack overflow") ||
          startsWith(message, "Expression tree is too large"))
        return {err::kCommandError, "42000", native::kNestedTooDeeply};
      if (startsWith(message, kDateOutOfRangeMessage))
        return {err::kCommandError, "22007", native::kDateOutOfRange};
      if (startsWith(message, "Conversion failed"))
        return {err::kCommandError, "22018", native::kConversion};
      if (message.find("syntax error") != std::string_view::npos ||
          startsWith(message, "incomplete input") || startsWith(message, "unrecognized token")) {
        return {err::kCommandError, "42000", native::kSyntax};
      }
      return {err::kCommandError, "42000", 0};
    case SQLITE_CONSTRAINT:
      switch (extended) {
        case SQLITE_CONSTRAINT_NOTNULL:
          return {err::kCommandError, "23000", 515};
        case SQLITE_CONSTRAINT_CHECK:
          if (message.find(kTruncatedConstraint) != std::string_view::npos)
            return {err::kCommandError, "22001", native::kTruncated};
          return {err::kCommandError, "23000", 547};
        case SQLITE_CONSTRAINT_FOREIGNKEY:
          return {err::kCommandError, "23000", 547};
        default:
          return {err::kCommandError, "23000", 2627};
      }
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return {err::kCommandError, "HYT00", 1222};
    case SQLITE_MISMATCH:
      return {err::kCommandError, "22018", 245};
    case SQLITE_TOOBIG:
    case SQLITE_RANGE:
      return {err::kCommandError, "22001", 0};
    case SQLITE_INTERRUPT:
      return {err::kCommandError, "HY008", 0};
    case SQLITE_AUTH:
      // Refused by the store's confinement to its file: a permission the server denies.
      return {err::kCommandError, "42000", native::kPermissionDenied};
    case SQLITE_CANTOPEN:
    case SQLITE_NOTADB:
    case SQLITE_PERM:
      return {err::kProviderFailure, "08001", 0};
    case SQLITE_READONLY:
      return {err::kCommandError, "42000", native::kReadOnlyDatabase};
    case SQLITE_IOERR:
    case SQLITE_CORRUPT:
    case SQLITE_FULL:
    case SQLITE_NOMEM:
      return {err::kProviderFailure, "HY000", 0};
    default:
      return {err::kCommandError, "HY000", 0};
  }
}

}  // namespace

Error storeError(std::int32_t number, std::string_view message, std::string sqlState,
                 std::int32_t nativeError) {
  std::string text(kErrorPrefix);
  text += message;
  return Error(number, std::move(text), kErrorSource, std::move(sqlState), nativeError);
}

Error syntaxError(std::u16string_view message) {
  return storeError(err::kCommandError, toUtf8(message), "42000", native::kSyntax);
}

Error syntaxErrorNear(std::u16string_view text) {
  return syntaxError(u"Incorrect syntax near '" + std::u16string(text) + u"'.");
}

Error sqliteError(sqlite3* db, int rc) {
  std::string_view message = db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
  const int extended = db ? sqlite3_extended_errcode(db) : rc;
  const Class c = classify(extended, message);
  if (c.nativeError == native::kPermissionDenied) {
    message =
        "Permission denied: a statement may neither reach outside the store's file nor change "
        "its schema.";
  } else if (c.nativeError == native::kTruncated) {
    message = "String or binary data would be truncated.";
  }
  if (c.nativeError == native::kReadOnlyDatabase) {
    const char* file = db ? sqlite3_db_filename(db, "main") : nullptr;
    return storeError(c.number,
                      "Failed to update database \"" + std::string(file ? file : "") +
                          "\" because the database is read-only. (" + std::string(message) + ")",
                      c.sqlState, c.nativeError);
  }
  return storeError(c.number, message, c.sqlState, c.nativeError ? c.nativeError : extended);
}

Error openError(std::string_view message, int rc) {
  return storeError(err::kProviderFailure, message, "08001", rc);
}

}  // namespace vrdppo::embedded
