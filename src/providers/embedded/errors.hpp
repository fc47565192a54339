// The store's failures as the errors a client of a server would see: the provider's number, a
// SQLSTATE, a native number in the server's numbering where one fits, and the message.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "vrdppo/error.hpp"

struct sqlite3;

namespace vrdppo::embedded {

inline constexpr std::string_view kErrorPrefix = "[vrdppo.Embedded]";
inline constexpr const char* kErrorSource = "vrdppo.Embedded";

// Native numbers of the server for the failures the dialect itself detects.
namespace native {
inline constexpr std::int32_t kSyntax = 102;
inline constexpr std::int32_t kInvalidColumn = 207;
inline constexpr std::int32_t kInvalidObject = 208;
inline constexpr std::int32_t kAmbiguousColumn = 209;
inline constexpr std::int32_t kUnknownFunction = 195;
inline constexpr std::int32_t kMissingParameter = 201;
inline constexpr std::int32_t kTooManyArguments = 8144;
inline constexpr std::int32_t kUnknownProcedure = 2812;
inline constexpr std::int32_t kConversion = 241;
inline constexpr std::int32_t kPermissionDenied = 229;
inline constexpr std::int32_t kNestedTooDeeply = 191;
inline constexpr std::int32_t kTopNotInteger = 1060;
inline constexpr std::int32_t kTruncated = 8152;
inline constexpr std::int32_t kNonBoolean = 4145;
inline constexpr std::int32_t kCreateDenied = 262;
inline constexpr std::int32_t kDropDenied = 3701;
inline constexpr std::int32_t kAlterDenied = 1088;
inline constexpr std::int32_t kFloatOutOfRange = 168;
inline constexpr std::int32_t kDateOutOfRange = 242;
inline constexpr std::int32_t kReadOnlyDatabase = 3906;
}  // namespace native

// The name of the check that refuses a text longer than its column.
inline constexpr std::string_view kTruncatedConstraint = "vr_truncated";

// The function that refuses a date outside a datetime column's range, as a server does.
inline constexpr std::string_view kDateRangeFunction = "vr_datetime";
inline constexpr std::string_view kDateOutOfRangeMessage =
    "The conversion of a varchar data type to a datetime data type resulted in an out-of-range "
    "value.";

// An error of the store: the prefix, then the message.
Error storeError(std::int32_t number, std::string_view message, std::string sqlState,
                 std::int32_t nativeError);
// A statement the dialect cannot read: command error, SQLSTATE 42000, native 102.
Error syntaxError(std::u16string_view message);
// "Incorrect syntax near 'x'."
Error syntaxErrorNear(std::u16string_view text);
// The failure SQLite reported on db for result code rc, classified.
Error sqliteError(sqlite3* db, int rc);
// A store that cannot be opened or prepared for use.
Error openError(std::string_view message, int rc);

}  // namespace vrdppo::embedded
