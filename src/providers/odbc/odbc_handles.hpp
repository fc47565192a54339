// ODBC handles that free themselves, the diagnostics of a handle as the library's error, and
// UTF-16 text in and out of the wide-character calls.
#pragma once

#ifdef _WIN32
// The platform's sql.h takes its basic types from windows.h without including it.
#include <windows.h>
#endif

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "vrdppo/error.hpp"

namespace vrdppo::odbc {

inline constexpr const char* kErrorSource = "vrdppo.odbc";

// One environment, connection or statement handle, counted in liveHandles while allocated.
class Handle {
 public:
  Handle() = default;
  // Allocates under parent (SQL_NULL_HANDLE for an environment); a failure raises the parent's
  // diagnostics.
  Handle(SQLSMALLINT type, SQLHANDLE parent);
  ~Handle() { reset(); }
  Handle(Handle&& other) noexcept;
  Handle& operator=(Handle&& other) noexcept;
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  SQLHANDLE get() const noexcept { return handle_; }
  SQLSMALLINT type() const noexcept { return type_; }
  explicit operator bool() const noexcept { return handle_ != SQL_NULL_HANDLE; }
  void reset() noexcept;

 private:
  SQLSMALLINT type_ = 0;
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

// Every diagnostic record of the handle as one error: the messages joined by newlines, the
// SQLSTATE and native error of the first record that is not a mere warning (of the first record
// when all are). `call` names the failed call for the rare driver that leaves no record.
Error diagnosticError(SQLSMALLINT type, SQLHANDLE handle, std::string_view call);
[[noreturn]] void fail(const Handle& handle, std::string_view call);
// Fails on an error, and on a success with information that holds an error rather than a mere
// warning: a driver that fetches rows in blocks reports a server error on a later row of a block
// that way, with the rows before it, and then no more rows.
void check(SQLRETURN rc, const Handle& handle, std::string_view call);
// The driver's native numbers for a link to the server that failed under a statement (FreeTDS:
// a read or write that failed, an unexpected end of the stream, a token out of place).
inline bool isLinkNative(std::int32_t native) noexcept {
  return native == 20004 || native == 20006 || native == 20017 || native == 20020;
}

// The SQLSTATE of the handle's first diagnostic record, empty when there is none.
std::string firstSqlState(const Handle& handle);

// A null-terminated copy for the wide calls (SQLWCHAR is 16-bit but not char16_t).
std::vector<SQLWCHAR> wide(std::u16string_view text);
std::u16string fromWide(const SQLWCHAR* text, std::size_t length);

// A length the driver reported, cut to what the buffer holds; a negative one counts as none.
inline std::size_t fitted(SQLLEN reported, std::size_t capacity) noexcept {
  return reported <= 0 ? 0 : std::min(static_cast<std::size_t>(reported), capacity);
}

}  // namespace vrdppo::odbc
