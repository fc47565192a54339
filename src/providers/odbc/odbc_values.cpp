#include "providers/odbc/odbc_values.hpp"

#include <limits>

#include "vrdppo/error.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::odbc {

std::int32_t errorNumberFor(std::string_view sqlState) noexcept {
  // S0002 is the ODBC 2 spelling of 42S02, which a driver manager may pass through.
  if (sqlState == "42S02" || sqlState == "S0002") return err::kMissingTable;
  const std::string_view cls = sqlState.substr(0, 2);
  if (cls == "42" || cls == "22" || cls == "23" || sqlState == "37000" ||
      sqlState.starts_with("S00")) {
    return err::kCommandError;
  }
  return err::kProviderFailure;
}

namespace {

bool isDigit(char16_t c) noexcept {
  return c >= u'0' && c <= u'9';
}

// An exponent beyond this gives no amount a database column holds.
constexpr long kMaxExponent = 4000;

}  // namespace

std::optional<std::string> normaliseDecimal(std::u16string_view text) {
  text = trimBlanks(text);
  std::size_t i = 0;
  bool negative = false;
  if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) negative = text[i++] == u'-';

  std::string digits;
  std::size_t intDigits = 0;
  bool seenPoint = false;
  for (; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (isDigit(c)) {
      digits += static_cast<char>(c);
    } else if ((c == u'.' || c == u',') && !seenPoint) {
      seenPoint = true;
      intDigits = digits.size();
    } else {
      break;
    }
  }
  if (digits.empty()) return std::nullopt;
  if (!seenPoint) intDigits = digits.size();

  long exponent = 0;
  if (i < text.size() && (text[i] == u'e' || text[i] == u'E')) {
    ++i;
    bool expNegative = false;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) expNegative = text[i++] == u'-';
    const std::size_t start = i;
    for (; i < text.size() && isDigit(text[i]); ++i) {
      exponent = exponent * 10 + (text[i] - u'0');
      if (exponent > kMaxExponent) return std::nullopt;
    }
    if (i == start) return std::nullopt;
    if (expNegative) exponent = -exponent;
  }
  if (i != text.size()) return std::nullopt;

  const long point = static_cast<long>(intDigits) + exponent;
  const long count = static_cast<long>(digits.size());
  std::string intPart;
  std::string fracPart;
  if (point <= 0) {
    intPart = "0";
    fracPart = std::string(static_cast<std::size_t>(-point), '0') + digits;
  } else if (point >= count) {
    intPart = digits + std::string(static_cast<std::size_t>(point - count), '0');
  } else {
    intPart = digits.substr(0, static_cast<std::size_t>(point));
    fracPart = digits.substr(static_cast<std::size_t>(point));
  }
  const std::size_t firstSignificant = intPart.find_first_not_of('0');
  intPart = firstSignificant == std::string::npos ? "0" : intPart.substr(firstSignificant);

  const bool zero = digits.find_first_not_of('0') == std::string::npos;
  std::string out = negative && !zero ? "-" : "";
  out += intPart;
  if (!fracPart.empty()) out += '.' + fracPart;
  return out;
}

Currency currencyFromDecimal(std::string_view plain) {
  const bool negative = plain.starts_with('-');
  if (negative) plain.remove_prefix(1);
  const std::size_t dot = plain.find('.');
  const std::string_view whole = plain.substr(0, dot);
  const std::string_view frac = dot == std::string_view::npos ? "" : plain.substr(dot + 1);

  const auto overflow = [] { return Error::runtime(err::kOverflow); };
  unsigned long long magnitude = 0;
  const auto push = [&](char digit) {
    if (__builtin_mul_overflow(magnitude, 10ULL, &magnitude) ||
        __builtin_add_overflow(magnitude, static_cast<unsigned long long>(digit - '0'),
                               &magnitude)) {
      throw overflow();
    }
  };
  for (char c : whole) push(c);
  for (std::size_t k = 0; k < 4; ++k) push(k < frac.size() ? frac[k] : '0');

  // Half to even on what lies beyond the fourth place.
  if (frac.size() > 4) {
    const char next = frac[4];
    const bool rest = frac.find_first_not_of('0', 5) != std::string_view::npos;
    if (next > '5' || (next == '5' && (rest || (magnitude & 1U) != 0))) {
      if (__builtin_add_overflow(magnitude, 1ULL, &magnitude)) throw overflow();
    }
  }

  constexpr auto kMax = static_cast<unsigned long long>(std::numeric_limits<std::int64_t>::max());
  if (magnitude > kMax + (negative ? 1 : 0)) throw overflow();
  if (!negative) return Currency{static_cast<std::int64_t>(magnitude)};
  if (magnitude == kMax + 1) return Currency{std::numeric_limits<std::int64_t>::min()};
  return Currency{-static_cast<std::int64_t>(magnitude)};
}

std::u16string hexText(const unsigned char* data, std::size_t size) {
  static constexpr char16_t kDigits[] = u"0123456789ABCDEF";
  std::u16string out;
  out.reserve(size * 2);
  for (std::size_t i = 0; i < size; ++i) {
    out += kDigits[data[i] >> 4];
    out += kDigits[data[i] & 0x0F];
  }
  return out;
}

}  // namespace vrdppo::odbc
