#include "providers/embedded/rows.hpp"

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <vector>

#include "providers/embedded/dates.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

// What a column's declared type makes of the values stored in it.
enum class Kind : std::uint8_t { Storage, Integer, Float, Money, Date, Text, Bit };

Kind kindOf(const char* declared) {
  if (!declared) return Kind::Storage;  // an expression: its value's own storage class
  std::string t;
  for (const char* p = declared; *p && *p != '('; ++p) {
    t += (*p >= 'a' && *p <= 'z') ? static_cast<char>(*p - 32) : *p;
  }
  const auto has = [&t](const char* s) { return t.find(s) != std::string::npos; };
  if (has("MONEY")) return Kind::Money;
  if (has("INT")) return Kind::Integer;
  if (has("DATE") || has("TIME")) return Kind::Date;
  if (has("CHAR") || has("TEXT") || has("CLOB")) return Kind::Text;
  // SQLite keeps DECIMAL and NUMERIC as binary floating point: they come back as Double.
  if (has("FLOA") || has("REAL") || has("DOUB") || has("DEC") || has("NUMERIC")) return Kind::Float;
  if (t == "BIT") return Kind::Bit;
  return Kind::Storage;
}

// UTF-8 text as UTF-16, with a plain widening loop for the ASCII that most texts are.
std::u16string widen(const unsigned char* p, int bytes) {
  const auto n = static_cast<std::size_t>(bytes);
  std::u16string s(n, u'\0');
  unsigned char high = 0;
  for (std::size_t i = 0; i < n; ++i) {
    high |= p[i];
    s[i] = p[i];
  }
  if (high & 0x80) return fromUtf8({reinterpret_cast<const char*>(p), n});
  return s;
}

Variant integerValue(std::int64_t v) {
  if (v >= INT32_MIN && v <= INT32_MAX) return Variant(static_cast<std::int32_t>(v));
  return Variant(v);
}

Variant cell(sqlite3_stmt* st, int i, Kind kind) {
  switch (sqlite3_column_type(st, i)) {
    case SQLITE_NULL:
      return Variant::null();
    case SQLITE_INTEGER: {
      const std::int64_t v = sqlite3_column_int64(st, i);
      switch (kind) {
        case Kind::Float:
          return Variant(static_cast<double>(v));
        case Kind::Money:
          if (v > INT64_MAX / 10000 || v < INT64_MIN / 10000)
            return Variant(static_cast<double>(v));
          return Variant(Currency{v * 10000});
        case Kind::Date:
          return Variant(Date{static_cast<double>(v)});
        case Kind::Bit:
          return Variant(v != 0);
        case Kind::Text:
          return Variant(ascii(std::to_string(v)));
        default:
          return integerValue(v);
      }
    }
    case SQLITE_FLOAT: {
      const double d = sqlite3_column_double(st, i);
      if (kind == Kind::Money) return Variant(currencyFromDouble(d));
      if (kind == Kind::Date) return Variant(Date{d});
      if (kind == Kind::Bit) return Variant(d != 0);
      return Variant(d);
    }
    default: {
      const unsigned char* p = sqlite3_column_text(st, i);
      const int n = sqlite3_column_bytes(st, i);
      if (kind == Kind::Date) {
        if (auto d = storedDate({reinterpret_cast<const char*>(p), static_cast<std::size_t>(n)})) {
          return Variant(*d);
        }
      }
      return Variant(widen(p, n));
    }
  }
}

}  // namespace

std::shared_ptr<Recordset> fetchAll(Statement& statement) {
  const int columns = statement.columnCount();
  if (columns == 0) {
    statement.run();
    return std::make_shared<Recordset>();
  }
  sqlite3_stmt* st = statement.get();
  std::vector<std::u16string> names;
  std::vector<Kind> kinds;
  names.reserve(static_cast<std::size_t>(columns));
  kinds.reserve(static_cast<std::size_t>(columns));
  for (int i = 0; i < columns; ++i) {
    const auto* name = static_cast<const char16_t*>(sqlite3_column_name16(st, i));
    names.emplace_back(name ? name : u"");
    kinds.push_back(kindOf(sqlite3_column_decltype(st, i)));
  }
  auto rs = std::make_shared<Recordset>(std::move(names));
  while (statement.step()) {
    for (int i = 0; i < columns; ++i) rs->pushCell(cell(st, i, kinds[static_cast<std::size_t>(i)]));
  }
  rs->rewind();
  return rs;
}

}  // namespace vrdppo::embedded
