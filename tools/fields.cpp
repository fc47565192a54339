#include "fields.hpp"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>
#include <stdexcept>

#include <fmt/format.h>

#include "vrdppo/error.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::cli {

namespace {

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Blanks, tabs and the line ends a file or a terminal leaves around a value.
std::string_view trimmed(std::string_view s) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const auto first = s.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return s.substr(first, s.find_last_not_of(kBlanks) - first + 1);
}

// A NaN's bits are part of the state: it is written as "nan:" and its 16 hex digits, so that
// any NaN (and not only the one "nan" reads as) comes back unchanged.
constexpr std::string_view kNanPrefix = "nan:";

std::optional<double> nanOf(std::string_view s) {
  if (s.size() != kNanPrefix.size() + 16 || s.substr(0, kNanPrefix.size()) != kNanPrefix) {
    return std::nullopt;
  }
  std::uint64_t bits = 0;
  const auto digits = s.substr(kNanPrefix.size());
  const auto r = std::from_chars(digits.data(), digits.data() + digits.size(), bits, 16);
  if (r.ec != std::errc() || r.ptr != digits.data() + digits.size()) return std::nullopt;
  const double v = std::bit_cast<double>(bits);
  if (!std::isnan(v)) return std::nullopt;
  return v;
}

std::string shortestDouble(double v) {
  if (std::isnan(v)) {
    return fmt::format("{}{:016x}", kNanPrefix, std::bit_cast<std::uint64_t>(v));
  }
  char buf[64];
  const auto r = std::to_chars(buf, buf + sizeof buf, v);
  return std::string(buf, r.ptr);
}

double parseDouble(std::string_view s) {
  if (const auto nan = nanOf(s)) return *nan;
  double v = 0;
  const auto r = std::from_chars(s.data(), s.data() + s.size(), v);
  if (r.ec != std::errc() || r.ptr != s.data() + s.size()) {
    throw std::invalid_argument("not a number: " + std::string(s));
  }
  return v;
}

bool looksLikeNumber(std::string_view s) {
  if (nanOf(s)) return true;
  double v = 0;
  const auto r = std::from_chars(s.data(), s.data() + s.size(), v);
  return r.ec == std::errc() && r.ptr == s.data() + s.size();
}

std::vector<bool> coveredBytes(const RecordLayout& layout) {
  std::vector<bool> covered(layout.bytes, false);
  const auto mark = [&](std::uint16_t offset, std::size_t size) {
    for (std::size_t i = 0; i < size && offset + i < covered.size(); ++i)
      covered[offset + i] = true;
  };
  for (const Column& c : layout.columns) {
    mark(c.offset, c.type == FieldType::String ? 2u * c.length
                   : c.type == FieldType::Long ? 4u
                                               : 8u);
  }
  mark(layout.trailing.offset, std::size_t{2} * layout.trailing.length);
  return covered;
}

}  // namespace

std::string escapeState(std::u16string_view state) {
  std::string out;
  out.reserve(state.size());
  for (std::size_t i = 0; i < state.size(); ++i) {
    const char16_t c = state[i];
    // A blank at either end is escaped too: whoever reads the text back may trim it.
    const bool blankAtEnd = c == u' ' && (i == 0 || i + 1 == state.size());
    // A leading '-' would make the text look like an option on a command line.
    const bool leadingDash = c == u'-' && i == 0;
    if (c == u'\\') {
      out += "\\\\";
    } else if (c == u'"') {
      out += "\\\"";
    } else if (c >= 0x20 && c < 0x7F && !blankAtEnd && !leadingDash) {
      out += static_cast<char>(c);
    } else {
      out += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    }
  }
  return out;
}

std::u16string unescapeState(std::string_view text) {
  text = trimmed(text);
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
    text = text.substr(1, text.size() - 2);
  }
  std::u16string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c != '\\') {
      // Raw UTF-8 is accepted too.
      std::size_t j = i;
      while (j < text.size() && text[j] != '\\') ++j;
      out += fromUtf8(text.substr(i, j - i));
      i = j - 1;
      continue;
    }
    if (++i >= text.size()) throw std::invalid_argument("a state text ends in a backslash");
    switch (text[i]) {
      case '\\':
        out += u'\\';
        break;
      case '"':
        out += u'"';
        break;
      case '/':
        out += u'/';
        break;
      case 'n':
        out += u'\n';
        break;
      case 't':
        out += u'\t';
        break;
      case 'r':
        out += u'\r';
        break;
      case 'b':
        out += u'\b';
        break;
      case 'f':
        out += u'\f';
        break;
      case 'u': {
        unsigned v = 0;
        for (int k = 1; k <= 4; ++k) {
          const int h = i + k < text.size() ? hexValue(text[i + k]) : -1;
          if (h < 0) throw std::invalid_argument("\\u needs four hex digits");
          v = v * 16 + static_cast<unsigned>(h);
        }
        out += static_cast<char16_t>(v);
        i += 4;
        break;
      }
      default:
        throw std::invalid_argument(std::string("unknown escape \\") + text[i]);
    }
  }
  return out;
}

std::string typeText(const Column& c) {
  if (c.type == FieldType::String) return fmt::format("String*{}", c.length);
  return fieldTypeText(c.type);
}

std::string fieldText(const Column& c, const std::byte* record) {
  switch (c.type) {
    case FieldType::Long:
      return std::to_string(readField<Long>(record, c.offset));
    case FieldType::Double:
      return shortestDouble(readField<Double>(record, c.offset));
    case FieldType::Currency: {
      std::string s = toUtf8(currencyText(readField<Currency>(record, c.offset)));
      for (auto& ch : s) {
        if (ch == ',') ch = '.';
      }
      return s;
    }
    case FieldType::Date: {
      const Date d = readField<Date>(record, c.offset);
      try {
        const DateParts p = splitDate(d);
        // Exact to the bit: -0 compares equal to the 0 the calendar form reads back as.
        const double back = makeDate(p.year, p.month, p.day, p.hour, p.minute, p.second).days;
        if (std::bit_cast<std::uint64_t>(back) == std::bit_cast<std::uint64_t>(d.days)) {
          return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", p.year, p.month, p.day, p.hour,
                             p.minute, p.second);
        }
      } catch (const Error&) {
      }
      return shortestDouble(d.days);
    }
    case FieldType::String: {
      std::u16string_view s(reinterpret_cast<const char16_t*>(record + c.offset), c.length);
      while (!s.empty() && s.back() == u' ') s.remove_suffix(1);
      return escapeState(s);
    }
  }
  return {};
}

void setFieldText(const Column& c, std::byte* record, std::string_view text) {
  const std::string_view t = c.type == FieldType::String ? text : trimmed(text);
  try {
    switch (c.type) {
      case FieldType::Long:
        writeField<Long>(record, c.offset, toLong(Variant(fromUtf8(t))));
        break;
      case FieldType::Double:
        writeField<Double>(record, c.offset, parseDouble(t));
        break;
      case FieldType::Currency:
        writeField<Currency>(record, c.offset, toCurrency(Variant(fromUtf8(t))));
        break;
      case FieldType::Date:
        writeField<Date>(record, c.offset,
                         looksLikeNumber(t) ? Date{parseDouble(t)} : parseDate(fromUtf8(t)));
        break;
      case FieldType::String: {
        const std::u16string s = unescapeState(t);
        if (s.size() > c.length) {
          throw std::invalid_argument(
              fmt::format("{} holds {} characters, not {}", toUtf8(c.read), c.length, s.size()));
        }
        auto* field = reinterpret_cast<char16_t*>(record + c.offset);
        std::fill(field, field + c.length, u' ');
        std::copy(s.begin(), s.end(), field);
        break;
      }
    }
  } catch (const Error& e) {
    throw std::invalid_argument(
        fmt::format("{}: \"{}\" is no {}: {}", toUtf8(c.read), text, typeText(c), e.what()));
  }
}

const Column* findColumn(const RecordLayout& layout, std::string_view name) {
  const std::u16string n = fromUtf8(name);
  for (const Column& c : layout.columns) {
    if (equalsNoCase(c.read, n) || equalsNoCase(c.write, n)) return &c;
  }
  return nullptr;
}

std::string trailingText(const RecordLayout& layout, const std::byte* record) {
  const Column c{
      u"",          u"", FieldType::String, layout.trailing.offset, layout.trailing.length,
      Render::None, u""};
  return fieldText(c, record);
}

void setTrailingText(const RecordLayout& layout, std::byte* record, std::string_view text) {
  const Column c{
      u"(trailing)", u"", FieldType::String, layout.trailing.offset, layout.trailing.length,
      Render::None,  u""};
  setFieldText(c, record, text);
}

std::string unusedText(const RecordLayout& layout, std::u16string_view state) {
  const auto covered = coveredBytes(layout);
  std::string hex;
  bool any = false;
  for (std::size_t b = 0; b < 2u * state.size(); ++b) {
    if (b < covered.size() && covered[b]) continue;
    const auto byte = static_cast<unsigned>((state[b / 2] >> (8 * (b % 2))) & 0xFF);
    any = any || byte != 0;
    hex += fmt::format("{:02x}", byte);
  }
  return any ? hex : std::string();
}

Assignment parseAssignment(std::string_view text, std::string_view option) {
  const auto eq = text.find('=');
  if (eq == std::string_view::npos || trimmed(text.substr(0, eq)).empty()) {
    throw std::invalid_argument((option.empty() ? std::string() : std::string(option) + ": ") +
                                "expected NAME=VALUE, got \"" + std::string(text) + "\"");
  }
  return {std::string(trimmed(text.substr(0, eq))), std::string(text.substr(eq + 1))};
}

std::u16string buildState(const RecordLayout& layout, const std::vector<Assignment>& sets) {
  std::vector<std::byte> record(layout.bytes, std::byte{0});
  initialiseRecord(layout, record.data());
  std::string unused;
  for (const auto& a : sets) {
    if (a.name == "(trailing)") {
      setTrailingText(layout, record.data(), a.value);
    } else if (a.name == "(unused)") {
      unused = std::string(trimmed(a.value));
    } else if (const Column* c = findColumn(layout, a.name)) {
      setFieldText(*c, record.data(), a.value);
    } else {
      throw std::invalid_argument("no field \"" + a.name + "\"");
    }
  }
  std::u16string state = recordState(layout, record.data());
  if (!unused.empty()) {
    const auto covered = coveredBytes(layout);
    std::size_t h = 0;
    for (std::size_t b = 0; b < 2u * state.size(); ++b) {
      if (b < covered.size() && covered[b]) continue;
      if (h + 2 > unused.size()) throw std::invalid_argument("(unused) is too short");
      const int hi = hexValue(unused[h]);
      const int lo = hexValue(unused[h + 1]);
      if (hi < 0 || lo < 0) throw std::invalid_argument("(unused) is not hex");
      h += 2;
      const auto byte = static_cast<char16_t>(hi * 16 + lo);
      char16_t& unit = state[b / 2];
      unit = b % 2 == 0 ? static_cast<char16_t>((unit & 0xFF00) | byte)
                        : static_cast<char16_t>((unit & 0x00FF) | (byte << 8));
    }
  }
  return state;
}

std::string errorText(const Error& e) {
  std::string out = "error ";
  // Runtime errors are small numbers; a provider's are HRESULTs, negative as 32-bit integers.
  out += e.number() < 0 ? fmt::format("0x{:08X}", static_cast<std::uint32_t>(e.number()))
                        : std::to_string(e.number());
  out += ": " + e.description();
  if (!e.sqlState().empty()) {
    out += fmt::format(" (SQLSTATE {}, native {})", e.sqlState(), e.nativeError());
  }
  out += "\n";
  if (!e.statement().empty()) out += "  in the statement: " + toUtf8(e.statement()) + "\n";
  if (e.row() != 0) {
    out += fmt::format("  in the column: {}, on row {}\n", toUtf8(e.column()), e.row());
  }
  return out;
}

}  // namespace vrdppo::cli
