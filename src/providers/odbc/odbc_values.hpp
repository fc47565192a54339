// Conversions of the ODBC provider that need no driver: SQLSTATEs to error numbers and the
// driver's decimal text to the library's values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vrdppo/variant.hpp"

namespace vrdppo::odbc {

// The provider HRESULT a client sees for a diagnostic of this SQLSTATE.
std::int32_t errorNumberFor(std::string_view sqlState) noexcept;

// A driver's rendering of an exact number ("-.5000", "1,25", "1.5E+3", " 12 ") as plain digits
// with a point ("-0.5000", "1.25", "1500", "12"); nullopt when the text is no number.
std::optional<std::string> normaliseDecimal(std::u16string_view text);

// Plain decimal text, as normaliseDecimal gives it, as Currency: half to even beyond four
// places, error 6 out of range.
Currency currencyFromDecimal(std::string_view plain);

// Bytes as upper-case hexadecimal digits.
std::u16string hexText(const unsigned char* data, std::size_t size);

}  // namespace vrdppo::odbc
