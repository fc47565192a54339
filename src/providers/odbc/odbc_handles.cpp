#include "providers/odbc/odbc_handles.hpp"

#include <atomic>
#include <cstdint>

#include <fmt/format.h>

#include "providers/odbc/odbc_provider.hpp"
#include "providers/odbc/odbc_values.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::odbc {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "the wide ODBC calls must take UTF-16");

namespace {

std::atomic<std::int64_t> gLiveHandles{0};

// The server's number for a login it refused.
constexpr SQLINTEGER kLoginFailed = 18456;

// A driver that keeps piling up records is cut off here.
constexpr SQLSMALLINT kMaxRecords = 64;

struct Record {
  std::string state;
  SQLINTEGER native = 0;
  std::u16string message;
};

bool readRecord(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT index, Record& out) {
  SQLWCHAR state[6] = {};
  std::vector<SQLWCHAR> message(512);
  SQLSMALLINT length = 0;
  SQLRETURN rc = SQLGetDiagRecW(type, handle, index, state, &out.native, message.data(),
                                static_cast<SQLSMALLINT>(message.size()), &length);
  if (rc == SQL_SUCCESS_WITH_INFO && length >= static_cast<SQLSMALLINT>(message.size())) {
    message.resize(static_cast<std::size_t>(length) + 1);
    rc = SQLGetDiagRecW(type, handle, index, state, &out.native, message.data(),
                        static_cast<SQLSMALLINT>(message.size()), &length);
  }
  if (!SQL_SUCCEEDED(rc)) return false;
  out.state = toUtf8(fromWide(state, 5));
  out.message = fromWide(message.data(), fitted(length, message.size() - 1));
  return true;
}

}  // namespace

std::int64_t liveHandles() noexcept {
  return gLiveHandles.load();
}

Handle::Handle(SQLSMALLINT type, SQLHANDLE parent) : type_(type) {
  SQLHANDLE made = SQL_NULL_HANDLE;
  const SQLRETURN rc = SQLAllocHandle(type, parent, &made);
  if (!SQL_SUCCEEDED(rc)) {
    if (parent == SQL_NULL_HANDLE) {
      throw Error(err::kProviderFailure, "[vrdppo.odbc] SQLAllocHandle failed", kErrorSource);
    }
    const SQLSMALLINT parentType = type == SQL_HANDLE_STMT ? SQL_HANDLE_DBC : SQL_HANDLE_ENV;
    throw diagnosticError(parentType, parent, "SQLAllocHandle");
  }
  handle_ = made;
  ++gLiveHandles;
}

Handle::Handle(Handle&& other) noexcept : type_(other.type_), handle_(other.handle_) {
  other.handle_ = SQL_NULL_HANDLE;
}

Handle& Handle::operator=(Handle&& other) noexcept {
  if (this != &other) {
    reset();
    type_ = other.type_;
    handle_ = other.handle_;
    other.handle_ = SQL_NULL_HANDLE;
  }
  return *this;
}

void Handle::reset() noexcept {
  if (handle_ == SQL_NULL_HANDLE) return;
  // A handle the driver manager refuses to free (a connection still connected) stays counted,
  // so that a leak shows.
  if (SQL_SUCCEEDED(SQLFreeHandle(type_, handle_))) --gLiveHandles;
  handle_ = SQL_NULL_HANDLE;
}

Error diagnosticError(SQLSMALLINT type, SQLHANDLE handle, std::string_view call) {
  std::string description;
  const Record* chosen = nullptr;
  std::vector<Record> records;
  for (SQLSMALLINT i = 1; i <= kMaxRecords; ++i) {
    Record r;
    if (!readRecord(type, handle, i, r)) break;
    records.push_back(std::move(r));
  }
  for (const Record& r : records) {
    if (!description.empty()) description += '\n';
    description += toUtf8(r.message);
    if (chosen == nullptr && !r.state.starts_with("01")) chosen = &r;
  }
  if (chosen == nullptr && !records.empty()) chosen = &records.front();
  if (chosen == nullptr) {
    return Error(err::kProviderFailure, fmt::format("[vrdppo.odbc] {} failed", call), kErrorSource);
  }
  // Some drivers report a lost link as a mere warning and a refused login as a command error;
  // a caller that retries on a lost link or tells a login from a statement needs the classes a
  // server's own client gives. The driver's text and native number stay.
  std::string state = chosen->state;
  if (isLinkNative(static_cast<std::int32_t>(chosen->native))) state = "08S01";
  if (chosen->native == kLoginFailed) state = "28000";
  const std::int32_t number = errorNumberFor(state);
  return Error(number, std::move(description), kErrorSource, std::move(state),
               static_cast<std::int32_t>(chosen->native));
}

void fail(const Handle& handle, std::string_view call) {
  throw diagnosticError(handle.type(), handle.get(), call);
}

void check(SQLRETURN rc, const Handle& handle, std::string_view call) {
  if (rc == SQL_SUCCESS) return;
  if (!SQL_SUCCEEDED(rc)) fail(handle, call);
  for (SQLSMALLINT i = 1; i <= kMaxRecords; ++i) {
    Record r;
    if (!readRecord(handle.type(), handle.get(), i, r)) return;
    if (!r.state.starts_with("01")) fail(handle, call);
  }
}

std::string firstSqlState(const Handle& handle) {
  Record r;
  return readRecord(handle.type(), handle.get(), 1, r) ? r.state : std::string();
}

std::vector<SQLWCHAR> wide(std::u16string_view text) {
  std::vector<SQLWCHAR> out(text.begin(), text.end());
  // A lone surrogate becomes U+FFFD, as the embedded store makes it: drivers that convert to
  // UTF-8 would otherwise pair it with whatever follows or refuse the text.
  for (std::size_t i = 0; i < out.size(); ++i) {
    const bool high = out[i] >= 0xD800 && out[i] <= 0xDBFF;
    const bool low = out[i] >= 0xDC00 && out[i] <= 0xDFFF;
    if (high && i + 1 < out.size() && out[i + 1] >= 0xDC00 && out[i + 1] <= 0xDFFF) {
      ++i;  // a pair
    } else if (high || low) {
      out[i] = 0xFFFD;
    }
  }
  out.push_back(0);
  return out;
}

std::u16string fromWide(const SQLWCHAR* text, std::size_t length) {
  return std::u16string(text, text + length);
}

}  // namespace vrdppo::odbc
