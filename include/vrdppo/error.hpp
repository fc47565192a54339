// The one exception type of the library: a numbered error as the platform's clients know it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

// Numbers of the runtime and recordset errors the library raises itself.
namespace err {
inline constexpr std::int32_t kInvalidCall = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;
inline constexpr std::int32_t kDivisionByZero = 11;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kInvalidUseOfNull = 94;
inline constexpr std::int32_t kNoCurrentRecord = 3021;
inline constexpr std::int32_t kItemNotFound = 3265;
inline constexpr std::int32_t kObjectClosed = 3704;
// Provider failures carry the provider's HRESULT as their number.
inline constexpr std::int32_t kCommandError = static_cast<std::int32_t>(0x80040E14u);
inline constexpr std::int32_t kMissingTable = static_cast<std::int32_t>(0x80040E37u);
inline constexpr std::int32_t kProviderFailure = static_cast<std::int32_t>(0x80004005u);
inline constexpr std::int32_t kNoCommandText = static_cast<std::int32_t>(0x80040E0Cu);
// Late-bound dispatch: member or class unknown, wrong argument count.
inline constexpr std::int32_t kMemberNotFound = 438;
inline constexpr std::int32_t kCannotCreate = 429;
inline constexpr std::int32_t kArgumentNotOptional = 449;
}  // namespace err

class Error : public std::runtime_error {
 public:
  Error(std::int32_t number, std::string description, std::string source = "vrdppo",
        std::string sqlState = {}, std::int32_t nativeError = 0);

  std::int32_t number() const noexcept { return number_; }
  const std::string& description() const noexcept { return description_; }
  const std::string& source() const noexcept { return source_; }
  const std::string& sqlState() const noexcept { return sqlState_; }
  std::int32_t nativeError() const noexcept { return nativeError_; }
  // The statement whose execution failed, as the connection was given it; empty for an error
  // that no statement raised.
  const std::u16string& statement() const noexcept { return statement_; }
  void setStatement(std::u16string statement) { statement_ = std::move(statement); }
  // Where a row failed to go into a record: the field's column, and the row, counted from 1 in
  // the result. Empty and 0 for any other error.
  const std::u16string& column() const noexcept { return column_; }
  void setColumn(std::u16string column) { column_ = std::move(column); }
  std::int64_t row() const noexcept { return row_; }
  void setRow(std::int64_t row) noexcept { row_ = row; }

  // The platform's standard error of that number, with its standard text.
  static Error runtime(std::int32_t number);

 private:
  std::int32_t number_;
  std::string description_;
  std::string source_;
  std::string sqlState_;
  std::int32_t nativeError_;
  std::u16string statement_;
  std::u16string column_;
  std::int64_t row_ = 0;
};

// The standard text of a runtime or recordset error number, empty when unknown.
const char* standardErrorText(std::int32_t number) noexcept;

}  // namespace vrdppo
VRDPPO_PUBLIC_END
