#include "providers/embedded/rows.hpp"

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <vector>

#include "providers/embedded/dates.hpp"
#include "vrdppo/render.hpp"
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
      // A money value beyond a double's digits, kept as the blob of its exact digits.
      if (kind == Kind::Money && sqlite3_column_type(st, i) == SQLITE_BLOB) {
        return Variant(toCurrency(Variant(widen(p, n))));
      }
      if (kind == Kind::Date) {
        if (auto d = storedDate({reinterpret_cast<const char*>(p), static_cast<std::size_t>(n)})) {
          return Variant(*d);
        }
      }
      return Variant(widen(p, n));
    }
  }
}

// --- the record sink's readers: each stores what cell() would give, as storeField would ---

sqlite3_stmt* stmtOf(const void* row) {
  return static_cast<sqlite3_stmt*>(const_cast<void*>(row));
}

Variant cellValue(const void* row, std::size_t source, std::uint8_t kind) {
  return cell(stmtOf(row), static_cast<int>(source), static_cast<Kind>(kind));
}

// What the readers below leave to the general way: the value cell() gives, stored as
// storeField stores it.
void storeAny(const void* row, std::size_t source, std::uint8_t tag, const Column& c,
              std::byte* record) {
  storeField(c, record, cellValue(row, source, tag));
}

// The connection is opened without its mutex, so the column's value may be read through
// sqlite3_value_* directly: one call into the statement per cell instead of one per question.
sqlite3_value* valueOf(const void* row, std::size_t source) {
  return sqlite3_column_value(stmtOf(row), static_cast<int>(source));
}

void storeLong(const void* row, std::size_t source, std::uint8_t tag, const Column& c,
               std::byte* record) {
  sqlite3_value* v = valueOf(row, source);
  const auto kind = static_cast<Kind>(tag);
  const int type = sqlite3_value_type(v);
  if (type == SQLITE_NULL) return writeField<Long>(record, c.offset, 0);
  if (type == SQLITE_INTEGER && (kind == Kind::Integer || kind == Kind::Storage)) {
    const std::int64_t n = sqlite3_value_int64(v);
    if (n >= INT32_MIN && n <= INT32_MAX) {
      return writeField<Long>(record, c.offset, static_cast<Long>(n));
    }
  }
  storeAny(row, source, tag, c, record);
}

void storeDouble(const void* row, std::size_t source, std::uint8_t tag, const Column& c,
                 std::byte* record) {
  sqlite3_value* v = valueOf(row, source);
  const auto kind = static_cast<Kind>(tag);
  const bool numeric = kind == Kind::Integer || kind == Kind::Storage || kind == Kind::Float;
  switch (sqlite3_value_type(v)) {
    case SQLITE_NULL:
      return writeField<Double>(record, c.offset, 0.0);
    case SQLITE_INTEGER:
      if (numeric) {
        return writeField<Double>(record, c.offset, static_cast<double>(sqlite3_value_int64(v)));
      }
      break;
    case SQLITE_FLOAT:
      if (numeric) return writeField<Double>(record, c.offset, sqlite3_value_double(v));
      break;
    default:
      break;
  }
  storeAny(row, source, tag, c, record);
}

// A date column's text read straight into the Date field; every other value as cell() gives it.
void storeDate(const void* row, std::size_t source, std::uint8_t tag, const Column& c,
               std::byte* record) {
  sqlite3_value* v = valueOf(row, source);
  const int type = sqlite3_value_type(v);
  if (type == SQLITE_NULL) return initialiseField(c, record);  // the default date, as for NULL
  if (type == SQLITE_TEXT) {
    const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(v));
    const auto bytes = static_cast<std::size_t>(sqlite3_value_bytes(v));
    if (const auto d = storedDate({p, bytes})) return writeField<Date>(record, c.offset, *d);
  }
  storeAny(row, source, tag, c, record);
}

// Text widened straight into the String*N field: its first N bytes, when they are ASCII, are its
// first N characters whatever follows them.
void storeString(const void* row, std::size_t source, std::uint8_t tag, const Column& c,
                 std::byte* record) {
  sqlite3_value* v = valueOf(row, source);
  const auto kind = static_cast<Kind>(tag);
  auto* field = reinterpret_cast<char16_t*>(record + c.offset);
  const int type = sqlite3_value_type(v);
  if (type == SQLITE_NULL) {
    std::fill(field, field + c.length, u' ');
    return;
  }
  if ((type == SQLITE_TEXT || type == SQLITE_BLOB) && kind != Kind::Date) {
    const unsigned char* p = sqlite3_value_text(v);
    const auto bytes = static_cast<std::size_t>(sqlite3_value_bytes(v));
    const std::size_t n = std::min<std::size_t>(bytes, c.length);
    unsigned char high = 0;
    for (std::size_t k = 0; k < n; ++k) high |= p[k];
    if (!(high & 0x80)) {
      for (std::size_t k = 0; k < n; ++k) field[k] = p[k];
      std::fill(field + n, field + c.length, u' ');
      return;
    }
  }
  storeAny(row, source, tag, c, record);
}

class StatementColumns final : public ResultColumns {
 public:
  explicit StatementColumns(sqlite3_stmt* st) {
    const int columns = sqlite3_column_count(st);
    for (int i = 0; i < columns; ++i) {
      const auto* name = static_cast<const char16_t*>(sqlite3_column_name16(st, i));
      names_.emplace_back(name ? name : u"");
      kinds_.push_back(kindOf(sqlite3_column_decltype(st, i)));
    }
  }
  std::size_t count() const override { return names_.size(); }
  std::u16string_view name(std::size_t index) const override { return names_[index]; }
  CellReader reader(std::size_t index, FieldType field) const override {
    const Kind kind = kinds_[index];
    CellReader r{nullptr, cellValue, static_cast<std::uint8_t>(kind)};
    // Money cells are converted as they are read, and that conversion may fail as the
    // statement's own error: they keep to the value.
    if (kind == Kind::Money) return r;
    if (field == FieldType::Long) r.store = storeLong;
    if (field == FieldType::Double) r.store = storeDouble;
    if (field == FieldType::String) r.store = storeString;
    if (field == FieldType::Date && kind == Kind::Date) r.store = storeDate;
    return r;
  }

 private:
  std::vector<std::u16string> names_;
  std::vector<Kind> kinds_;
};

}  // namespace

void streamInto(Statement& statement, RecordSink& sink) {
  if (statement.columnCount() == 0) {
    statement.run();
    return;
  }
  sqlite3_stmt* st = statement.get();
  sink.begin(StatementColumns(st));
  while (statement.step()) sink.row(st);
}

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
