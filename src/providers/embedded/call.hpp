// Procedure calls: `EXEC name args`, `exec name`, or a bare `name args`, with arguments by
// position or by @name.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "tokenizer.hpp"
#include "vrdppo/variant.hpp"

namespace vrdppo::embedded {

struct ProcArg {
  std::u16string name;  // without the "@"; empty for an argument given by position
  Variant value;        // Long, LongLong, Double, String or Null; Empty for DEFAULT
};

class ProcArgs {
 public:
  ProcArgs() = default;
  explicit ProcArgs(std::u16string procedure) : procedure_(std::move(procedure)) {}

  const std::u16string& procedure() const noexcept { return procedure_; }
  std::size_t size() const noexcept { return args_.size(); }
  const ProcArg& operator[](std::size_t i) const { return args_[i]; }
  void add(std::u16string name, Variant value);

  // The argument given as @name (name without "@", compared without regard to case), else the
  // one at 0-based `position` when it was given by position; nullptr when neither (DEFAULT
  // counts as not given).
  const Variant* find(std::size_t position, std::u16string_view name) const;
  // As find, but a missing argument raises the server's "expects parameter" error.
  const Variant& get(std::size_t position, std::u16string_view name) const;
  // Raises the server's errors for more arguments than the parameters named here, or for an
  // @name that is none of them.
  void expect(const std::vector<std::u16string>& parameters) const;

 private:
  std::u16string procedure_;
  std::vector<ProcArg> args_;
};

// Parses a call whose procedure name stands at token `at` (after any EXEC keyword): the name
// called, without a schema prefix, and the arguments. Raises the store's syntax error when the
// text is no call.
ProcArgs parseCall(const Tokens& tokens, std::size_t at, std::size_t end);

}  // namespace vrdppo::embedded
