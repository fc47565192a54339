// Small pieces the operations beyond the contract share: running a statement whose rowset, if
// any, is closed unread, and the argument descriptions of their registry entries.
#pragma once

#include <string>
#include <utility>

#include "vrdppo/dbhelp.hpp"
#include "vrdppo/registry.hpp"

namespace vrdppo::ops {

inline void runAndClose(const std::u16string& sql) {
  const auto rs = dbHelp::OpenRecordset(sql);
  if (rs->State() == adStateOpen) rs->Close();
}

inline ArgInfo str(std::string name, bool byRef = true) {
  return ArgInfo{std::move(name), ValueType::String, byRef};
}
inline ArgInfo lng(std::string name, bool byRef = true) {
  return ArgInfo{std::move(name), ValueType::Long, byRef};
}
inline ArgInfo boolean(std::string name, bool byRef = true) {
  return ArgInfo{std::move(name), ValueType::Boolean, byRef};
}
inline ArgInfo date(std::string name, bool byRef = true) {
  return ArgInfo{std::move(name), ValueType::Date, byRef};
}

}  // namespace vrdppo::ops
