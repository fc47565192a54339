// What the operations beyond the contracts share: a statement whose rowset, if it gives one, is
// closed unread, and the descriptions of their arguments for the registry.
#pragma once

#include <string>
#include <utility>

#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

// Runs sql through the gateway and closes the recordset when it is open.
void runStatement(const std::u16string& sql);

// Runs sql on a connection of its own, opened with sConnect exactly as given: no built-in default,
// no APP, no quoted-identifier statement, no audit id, the driver's own cursor and time-out; any
// rowset is dropped unread. True when every step went well; False, with nothing raised and the
// failure's number and text dropped, when any step failed (the connection then goes unclosed).
bool postOnOwnConnection(const std::u16string& sConnect, const std::u16string& sql);

inline ArgInfo stringArg(std::string name, bool byRef = true) {
  return ArgInfo{std::move(name), ValueType::String, byRef};
}
inline ArgInfo longArg(std::string name, bool byRef = true) {
  return ArgInfo{std::move(name), ValueType::Long, byRef};
}
inline ArgInfo booleanArg(std::string name, bool byRef = true) {
  return ArgInfo{std::move(name), ValueType::Boolean, byRef};
}
inline ArgInfo dateArg(std::string name, bool byRef = true) {
  return ArgInfo{std::move(name), ValueType::Date, byRef};
}

}  // namespace vrdppo
VRDPPO_PUBLIC_END
