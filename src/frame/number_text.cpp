// Numbers to text and text to numbers, as the platform's variant conversions do them.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include "frame/decimal_number.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/locale.hpp"
#include "vrdppo/variant.hpp"

namespace vrdppo {

LocaleSeparators& threadSeparators() noexcept {
  thread_local LocaleSeparators separators;
  return separators;
}

std::u16string longText(std::int32_t v) {
  const std::string s = std::to_string(v);
  return {s.begin(), s.end()};
}

std::u16string currencyText(Currency v) {
  const bool negative = v.raw < 0;
  const std::uint64_t magnitude =
      negative ? static_cast<std::uint64_t>(-(v.raw + 1)) + 1 : static_cast<std::uint64_t>(v.raw);
  std::string s = std::to_string(magnitude / 10000);
  std::string fraction = std::to_string(10000 + magnitude % 10000).substr(1);
  while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
  std::u16string out;
  if (negative) out += u'-';
  out.append(s.begin(), s.end());
  if (!fraction.empty()) {
    out += threadSeparators().decimal;
    out.append(fraction.begin(), fraction.end());
  }
  return out;
}

// Fifteen significant digits; the plain form while it needs at most fifteen places behind the
// point and fewer than sixteen before it, the exponent form otherwise.
std::u16string doubleText(double v) {
  if (!std::isfinite(v)) throw Error::runtime(err::kOverflow);
  if (v == 0) return u"0";
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.14e", v);
  const std::string s = buf;
  const bool negative = s[0] == '-';
  const std::size_t m = negative ? 1 : 0;
  std::string digits;
  digits += s[m];
  const std::size_t e = s.find('e');
  digits += s.substr(m + 2, e - m - 2);
  const int exponent = std::atoi(s.c_str() + e + 1);
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
  const int n = static_cast<int>(digits.size());
  const char16_t point = threadSeparators().decimal;

  std::u16string out;
  if (negative) out += u'-';
  if (exponent >= 15 || n - 1 - exponent > 15) {
    out += static_cast<char16_t>(digits[0]);
    if (n > 1) {
      out += point;
      out.append(digits.begin() + 1, digits.end());
    }
    out += u'E';
    out += exponent < 0 ? u'-' : u'+';
    std::string ex = std::to_string(std::abs(exponent));
    if (ex.size() < 2) ex.insert(0, "0");
    out.append(ex.begin(), ex.end());
    return out;
  }
  if (exponent >= 0) {
    const int whole = exponent + 1;
    for (int i = 0; i < whole; ++i) out += i < n ? static_cast<char16_t>(digits[i]) : u'0';
    if (n > whole) {
      out += point;
      out.append(digits.begin() + whole, digits.end());
    }
  } else {
    out += u'0';
    out += point;
    out.append(static_cast<std::size_t>(-exponent - 1), u'0');
    out.append(digits.begin(), digits.end());
  }
  return out;
}

namespace {

bool isSpace(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}
bool isDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

DecimalNumber parseRadix(std::u16string_view s, int radix) {
  std::uint64_t value = 0;
  if (s.empty()) throw Error::runtime(err::kTypeMismatch);
  for (char16_t c : s) {
    int d = -1;
    if (isDigit(c)) d = c - u'0';
    if (c >= u'a' && c <= u'f') d = c - u'a' + 10;
    if (c >= u'A' && c <= u'F') d = c - u'A' + 10;
    if (d < 0 || d >= radix) throw Error::runtime(err::kTypeMismatch);
    value = value * static_cast<unsigned>(radix) + static_cast<unsigned>(d);
    if (value > 0xFFFFFFFFu) throw Error::runtime(err::kOverflow);
  }
  // The bit pattern is kept: &HFFFFFFFF is -1.
  const auto pattern = static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
  return DecimalNumber::fromInteger(pattern);
}

}  // namespace

DecimalNumber DecimalNumber::fromInteger(std::int64_t v) {
  DecimalNumber d;
  d.negative = v < 0;
  const std::uint64_t m =
      d.negative ? static_cast<std::uint64_t>(-(v + 1)) + 1 : static_cast<std::uint64_t>(v);
  d.digits = std::to_string(m);
  return d;
}

DecimalNumber DecimalNumber::parse(std::u16string_view text) {
  std::size_t b = 0;
  std::size_t e = text.size();
  while (b < e && isSpace(text[b])) ++b;
  while (e > b && isSpace(text[e - 1])) --e;
  std::u16string_view s = text.substr(b, e - b);
  if (s.size() >= 2 && s[0] == u'&') {
    if (s[1] == u'H' || s[1] == u'h') return parseRadix(s.substr(2), 16);
    if (s[1] == u'O' || s[1] == u'o') return parseRadix(s.substr(2), 8);
  }
  DecimalNumber d;
  bool negative = false;
  if (!s.empty() && s.front() == u'(') {
    if (s.back() != u')') throw Error::runtime(err::kTypeMismatch);
    negative = true;
    s = s.substr(1, s.size() - 2);
  }
  if (!s.empty() && (s.front() == u'-' || s.front() == u'+')) {
    negative = negative != (s.front() == u'-');
    s = s.substr(1);
  } else if (!s.empty() && (s.back() == u'-' || s.back() == u'+')) {
    negative = negative != (s.back() == u'-');
    s = s.substr(0, s.size() - 1);
  }
  const char16_t point = threadSeparators().decimal;
  const char16_t thousands = point == u',' ? u'.' : u',';
  std::size_t i = 0;
  bool any = false;
  bool seenPoint = false;
  int scale = 0;
  for (; i < s.size(); ++i) {
    const char16_t c = s[i];
    if (isDigit(c)) {
      any = true;
      if (!(d.digits.empty() && c == u'0')) d.digits += static_cast<char>(c);
      if (seenPoint) ++scale;
    } else if (c == thousands && any && !seenPoint) {
      continue;
    } else if (c == point && !seenPoint) {
      seenPoint = true;
    } else {
      break;
    }
  }
  if (!any) throw Error::runtime(err::kTypeMismatch);
  int exponent = 0;
  if (i < s.size() && (s[i] == u'e' || s[i] == u'E' || s[i] == u'd' || s[i] == u'D')) {
    ++i;
    bool expNegative = false;
    if (i < s.size() && (s[i] == u'+' || s[i] == u'-')) expNegative = s[i++] == u'-';
    if (i >= s.size() || !isDigit(s[i])) throw Error::runtime(err::kTypeMismatch);
    for (; i < s.size() && isDigit(s[i]); ++i) {
      exponent = exponent * 10 + (s[i] - u'0');
      if (exponent > 100000) throw Error::runtime(err::kOverflow);
    }
    if (expNegative) exponent = -exponent;
  }
  if (i != s.size()) throw Error::runtime(err::kTypeMismatch);
  d.negative = negative && !d.digits.empty();
  // Leading zeros of the fraction were dropped with the others; the scale keeps the magnitude.
  d.exponent10 = exponent - scale;
  if (d.digits.empty()) d.exponent10 = 0;
  return d;
}

double DecimalNumber::toDouble() const {
  if (digits.empty()) return 0;
  const std::string text = (negative ? "-" : "") + digits + "e" + std::to_string(exponent10);
  const double v = std::strtod(text.c_str(), nullptr);
  if (!std::isfinite(v)) throw Error::runtime(err::kOverflow);
  return v;
}

// The value times 10^scale, rounded half to even; nullopt when it is beyond 38 digits.
std::optional<Int128> DecimalNumber::scaled(int scale) const {
  if (digits.empty()) return 0;
  const int shift = exponent10 + scale;
  const int intDigits = static_cast<int>(digits.size()) + shift;
  if (intDigits > 37) return std::nullopt;
  Int128 value = 0;
  bool roundUp = false;
  if (shift >= 0) {
    for (char c : digits) value = value * 10 + (c - '0');
    for (int k = 0; k < shift; ++k) value *= 10;
  } else {
    const int keep = static_cast<int>(digits.size()) + shift;  // may be <= 0
    for (int k = 0; k < keep; ++k) value = value * 10 + (digits[static_cast<std::size_t>(k)] - '0');
    const std::size_t first = keep < 0 ? 0 : static_cast<std::size_t>(keep);
    const char next = keep < 0 ? '0' : digits[first];
    bool restNonZero = false;
    for (std::size_t k = first + (keep < 0 ? 0 : 1); k < digits.size(); ++k) {
      if (digits[k] != '0') restNonZero = true;
    }
    if (keep < 0) {
      roundUp = false;  // below half of the last unit
    } else if (next > '5' || (next == '5' && restNonZero)) {
      roundUp = true;
    } else if (next == '5') {
      roundUp = (value % 2) != 0;
    }
  }
  if (roundUp) ++value;
  return negative ? -value : value;
}

double parseNumber(std::u16string_view s) {
  return DecimalNumber::parse(s).toDouble();
}

std::int32_t longFromDouble(double d) {
  if (!(d >= -2147483648.5 && d < 2147483647.5)) throw Error::runtime(err::kOverflow);
  const double r = std::nearbyint(d);  // the default rounding mode is to nearest, ties to even
  return static_cast<std::int32_t>(r);
}

Currency currencyFromDouble(double d) {
  const double scaled = std::nearbyint(d * 10000.0);
  if (!(scaled >= -9223372036854775808.0 && scaled < 9223372036854775808.0)) {
    throw Error::runtime(err::kOverflow);
  }
  return Currency{static_cast<std::int64_t>(scaled)};
}

}  // namespace vrdppo
