// The stored procedures the classes call beyond their inserts, with the arguments they pass:
// by name (the names written in the call) or by position (how many).
#pragma once

#include <string_view>
#include <vector>

namespace vrdppo::check {

struct ProcedureCall {
  std::u16string_view procedure;
  std::string_view caller;  // the class whose operation sends it; empty for the gateway
  std::vector<std::u16string_view> named;  // without "@"
  int positional = 0;
};

const std::vector<ProcedureCall>& procedureCalls();

}  // namespace vrdppo::check
