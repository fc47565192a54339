#include "vrdppo/error.hpp"

namespace vrdppo {

Error::Error(std::int32_t number, std::string description, std::string source, std::string sqlState,
             std::int32_t nativeError)
    : std::runtime_error(description),
      number_(number),
      description_(std::move(description)),
      source_(std::move(source)),
      sqlState_(std::move(sqlState)),
      nativeError_(nativeError) {}

const char* standardErrorText(std::int32_t number) noexcept {
  switch (number) {
    case err::kInvalidCall:
      return "Invalid procedure call or argument";
    case err::kOverflow:
      return "Overflow";
    case err::kOutOfMemory:
      return "Out of memory";
    case err::kDivisionByZero:
      return "Division by zero";
    case err::kTypeMismatch:
      return "Type mismatch";
    case err::kInvalidUseOfNull:
      return "Invalid use of Null";
    case err::kMemberNotFound:
      return "Object doesn't support this property or method";
    case err::kCannotCreate:
      return "ActiveX component can't create object";
    case err::kArgumentNotOptional:
      return "Argument not optional";
    case err::kNoCurrentRecord:
      return "Either BOF or EOF is True, or the current record has been deleted. Requested "
             "operation requires a current record.";
    case err::kItemNotFound:
      return "Item cannot be found in the collection corresponding to the requested name or "
             "ordinal.";
    case err::kObjectClosed:
      return "Operation is not allowed when the object is closed.";
    default:
      return "";
  }
}

Error Error::runtime(std::int32_t number) {
  return Error(number, standardErrorText(number));
}

}  // namespace vrdppo
