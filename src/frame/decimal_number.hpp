// An exact decimal read from text: the standard number parser's result, before it is coerced.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vrdppo {

__extension__ typedef __int128 Int128;

struct DecimalNumber {
  bool negative = false;
  std::string digits;  // no leading zeros; empty for zero
  int exponent10 = 0;  // value = digits x 10^exponent10

  // White space, a leading or trailing sign, parentheses, thousands separators after the first
  // digit, a decimal point, an exponent, &H and &O. Error 13 for anything else.
  static DecimalNumber parse(std::u16string_view text);
  static DecimalNumber fromInteger(std::int64_t v);

  double toDouble() const;
  std::optional<Int128> scaled(int scale) const;
};

}  // namespace vrdppo
