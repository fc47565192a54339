#include "vrdppo/text.hpp"

namespace vrdppo {

std::string toUtf8(std::u16string_view s) {
  // Statements and names are nearly always ASCII: a leading run of it is copied as it stands.
  std::size_t plain = 0;
  while (plain < s.size() && s[plain] < 0x80) ++plain;
  std::string out(s.begin(), s.begin() + static_cast<std::ptrdiff_t>(plain));
  if (plain == s.size()) return out;
  out.reserve(s.size() + (s.size() - plain) * 2);
  for (std::size_t i = plain; i < s.size(); ++i) {
    char32_t c = s[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < s.size() && s[i + 1] >= 0xDC00 &&
        s[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (s[i + 1] - 0xDC00);
      ++i;
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0x800) {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += static_cast<char>(0xE0 | (c >> 12));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (c >> 18));
      out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}

std::u16string fromUtf8(std::string_view s) {
  std::u16string out;
  out.reserve(s.size());
  std::size_t i = 0;
  while (i < s.size()) {
    const auto b = static_cast<unsigned char>(s[i]);
    char32_t c = 0xFFFD;
    std::size_t len = 1;
    if (b < 0x80) {
      c = b;
    } else if ((b & 0xE0) == 0xC0) {
      len = 2;
    } else if ((b & 0xF0) == 0xE0) {
      len = 3;
    } else if ((b & 0xF8) == 0xF0) {
      len = 4;
    }
    if (len > 1) {
      if (i + len > s.size()) {
        len = 1;
      } else {
        c = b & (0x7F >> len);
        for (std::size_t k = 1; k < len; ++k) {
          const auto cb = static_cast<unsigned char>(s[i + k]);
          if ((cb & 0xC0) != 0x80) {
            c = 0xFFFD;
            len = 1;
            break;
          }
          c = (c << 6) | (cb & 0x3F);
        }
      }
    }
    if (c >= 0x10000 && c <= 0x10FFFF) {
      c -= 0x10000;
      out += static_cast<char16_t>(0xD800 + (c >> 10));
      out += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
    } else if (c > 0x10FFFF) {
      out += u'\uFFFD';
    } else {
      out += static_cast<char16_t>(c);
    }
    i += len;
  }
  return out;
}

std::u16string ascii(std::string_view s) {
  return {s.begin(), s.end()};
}

std::u16string_view trimBlanks(std::u16string_view s) noexcept {
  const auto first = s.find_first_not_of(u' ');
  if (first == std::u16string_view::npos) return {};
  const auto last = s.find_last_not_of(u' ');
  return s.substr(first, last - first + 1);
}

namespace {

template <class S>
S upperOf(S s) {
  for (auto& c : s) {
    if (c >= 'a' && c <= 'z') c = static_cast<typename S::value_type>(c - 32);
  }
  return s;
}

}  // namespace

void appendJsonString(std::string& out, std::string_view utf8) {
  static constexpr char kHex[] = "0123456789abcdef";
  out += '"';
  for (const char c : utf8) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (c == '\n') {
      out += "\\n";
    } else if (u < 0x20) {
      out += "\\u00";
      out += kHex[u >> 4U];
      out += kHex[u & 0xFU];
    } else {
      out += c;
    }
  }
  out += '"';
}

std::u16string upperAscii(std::u16string_view s) {
  return upperOf(std::u16string(s));
}

std::string upperAscii(std::string_view s) {
  return upperOf(std::string(s));
}

bool equalsNoCase(std::u16string_view a, std::u16string_view b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    char16_t x = a[i];
    char16_t y = b[i];
    if (x >= u'a' && x <= u'z') x = static_cast<char16_t>(x - 32);
    if (y >= u'a' && y <= u'z') y = static_cast<char16_t>(y - 32);
    if (x != y) return false;
  }
  return true;
}

}  // namespace vrdppo
