#include "providers/embedded/literals.hpp"

#include <cerrno>
#include <cmath>
#include <cstdlib>

#include "providers/embedded/errors.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

void refuseFloatOutOfRange(std::u16string_view text) {
  if (text.find_first_of(u"eE") == std::u16string_view::npos) return;
  const std::string ascii = toUtf8(text);
  errno = 0;
  const double value = std::strtod(ascii.c_str(), nullptr);
  if (!std::isinf(value) && errno != ERANGE) return;
  // An underflow is a zero on a server too.
  if (std::fabs(value) < 1.0) return;
  throw storeError(err::kCommandError,
                   "The floating point value '" + ascii +
                       "' is out of the range of computer representation (8 bytes).",
                   "42000", native::kFloatOutOfRange);
}

std::string exactDecimal(std::u16string_view text, bool negative) {
  if (text.find_first_of(u"eE") != std::u16string_view::npos) return {};
  std::string digits;
  int exponent = 0;
  bool point = false;
  for (char16_t c : text) {
    if (c == u'.') {
      point = true;
    } else {
      if (!(digits.empty() && c == u'0')) digits += static_cast<char>(c);
      if (point) --exponent;
    }
  }
  while (!digits.empty() && digits.back() == '0') {
    digits.pop_back();
    ++exponent;
  }
  // An integer literal is an exact integer to SQLite already, or a float for a server too.
  if (!point || digits.size() <= 15) return {};
  return (negative ? "-" : "") + digits + "e" + std::to_string(exponent);
}

namespace {

// The text between two quotes, each quote inside it doubled.
void appendQuoted(std::u16string& out, std::u16string_view text, char16_t quote) {
  out += quote;
  for (char16_t c : text) {
    if (c == quote) out += quote;
    out += c;
  }
  out += quote;
}

}  // namespace

void appendStringLiteral(std::u16string& out, std::u16string_view value) {
  appendQuoted(out, value, u'\'');
}

void appendIdentifier(std::u16string& out, std::u16string_view name) {
  appendQuoted(out, name, u'"');
}

void appendBlob(std::u16string& out, std::string_view bytes) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  out += u"X'";
  for (unsigned char c : bytes) {
    out += static_cast<char16_t>(kHex[c >> 4]);
    out += static_cast<char16_t>(kHex[c & 15]);
  }
  out += u'\'';
}

}  // namespace vrdppo::embedded
