#include "providers/odbc/odbc_fetch.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

#include "providers/odbc/odbc_values.hpp"
#include "vrdppo/render.hpp"

namespace vrdppo::odbc {

namespace {

constexpr SQLSMALLINT kSqlServerTime = -154;  // SQL Server's time(n), described by its driver
// Wider text and binary columns, and those of unknown width, are read cell by cell.
constexpr SQLULEN kMaxBoundChars = 4000;
constexpr SQLULEN kMaxBoundBytes = 8000;
constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;
constexpr std::size_t kMaxBlockRows = 128;
constexpr std::size_t kChunkChars = 4096;

enum class Kind {
  Long,
  Boolean,
  LongLong,
  Double,
  Currency,
  Decimal,
  Timestamp,
  TimeOfDay,
  Text,
  Binary
};

struct Column {
  std::u16string name;
  SQLSMALLINT sqlType = 0;
  SQLULEN size = 0;
  Kind kind = Kind::Text;
  SQLSMALLINT cType = SQL_C_WCHAR;
  SQLLEN width = 0;  // bytes of one cell bound in a block; 0 when read with SQLGetData
};

bool isCharacter(SQLSMALLINT t) noexcept {
  return t == SQL_CHAR || t == SQL_VARCHAR || t == SQL_LONGVARCHAR || t == SQL_WCHAR ||
         t == SQL_WVARCHAR || t == SQL_WLONGVARCHAR;
}

bool isLong(SQLSMALLINT t) noexcept {
  return t == SQL_LONGVARCHAR || t == SQL_WLONGVARCHAR || t == SQL_LONGVARBINARY;
}

Kind kindFor(SQLSMALLINT sqlType, std::u16string_view typeName) {
  const bool money = equalsNoCase(typeName, u"money") || equalsNoCase(typeName, u"smallmoney");
  switch (sqlType) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
      return Kind::Long;
    case SQL_BIT:
      return Kind::Boolean;
    case SQL_BIGINT:
      return Kind::LongLong;
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return Kind::Double;
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      return money ? Kind::Currency : Kind::Decimal;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
    case SQL_DATE:  // the ODBC 2 codes, from drivers that still give them
    case SQL_TIMESTAMP:
      return Kind::Timestamp;
    case SQL_TYPE_TIME:
    case SQL_TIME:
    case kSqlServerTime:
      return Kind::TimeOfDay;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return Kind::Binary;
    default:
      break;
  }
  // Some drivers (SQLite's) describe a column declared money or decimal as text but keep the
  // declared name; the name is the better guide.
  if (isCharacter(sqlType)) {
    if (money) return Kind::Currency;
    if (equalsNoCase(typeName, u"decimal") || equalsNoCase(typeName, u"numeric")) {
      return Kind::Decimal;
    }
  }
  return Kind::Text;
}

SQLSMALLINT cTypeFor(Kind kind) noexcept {
  switch (kind) {
    case Kind::Long:
      return SQL_C_SLONG;
    case Kind::Boolean:
      return SQL_C_BIT;
    case Kind::LongLong:
      return SQL_C_SBIGINT;
    case Kind::Double:
      return SQL_C_DOUBLE;
    case Kind::Timestamp:
    case Kind::TimeOfDay:
      // A time read as a timestamp keeps the fractional seconds some drivers give.
      return SQL_C_TYPE_TIMESTAMP;
    case Kind::Binary:
      return SQL_C_BINARY;
    default:
      return SQL_C_WCHAR;
  }
}

SQLLEN textWidth(SQLULEN chars) noexcept {
  return static_cast<SQLLEN>((chars + 1) * sizeof(SQLWCHAR));
}

SQLLEN boundWidth(const Column& c) noexcept {
  switch (c.kind) {
    case Kind::Long:
      return sizeof(SQLINTEGER);
    case Kind::Boolean:
      return sizeof(SQLCHAR);
    case Kind::LongLong:
      return sizeof(SQLBIGINT);
    case Kind::Double:
      return sizeof(SQLDOUBLE);
    case Kind::Timestamp:
    case Kind::TimeOfDay:
      return sizeof(SQL_TIMESTAMP_STRUCT);
    case Kind::Binary:
      return isLong(c.sqlType) || c.size == 0 || c.size > kMaxBoundBytes
                 ? 0
                 : static_cast<SQLLEN>(c.size);
    case Kind::Currency:
    case Kind::Decimal:
      // Precision digits, a sign, a point and a leading zero.
      if (c.sqlType == SQL_DECIMAL || c.sqlType == SQL_NUMERIC) {
        return c.size == 0 || c.size > kMaxBoundChars ? 0 : textWidth(c.size + 3);
      }
      break;
    case Kind::Text:
      break;
  }
  return isLong(c.sqlType) || c.size == 0 || c.size > kMaxBoundChars ? 0 : textWidth(c.size);
}

Column describe(const Handle& stmt, SQLUSMALLINT number) {
  std::vector<SQLWCHAR> name(128);
  SQLSMALLINT nameLength = 0;
  SQLSMALLINT digits = 0;
  SQLSMALLINT nullable = 0;
  Column c;
  const auto call = [&] {
    check(SQLDescribeColW(stmt.get(), number, name.data(), static_cast<SQLSMALLINT>(name.size()),
                          &nameLength, &c.sqlType, &c.size, &digits, &nullable),
          stmt, "SQLDescribeColW");
  };
  call();
  if (nameLength >= static_cast<SQLSMALLINT>(name.size())) {
    name.resize(static_cast<std::size_t>(nameLength) + 1);
    call();
  }
  c.name = fromWide(name.data(), fitted(nameLength, name.size() - 1));

  // The type name only refines the mapping; a driver that does not give it loses nothing else.
  SQLWCHAR typeName[128] = {};
  SQLSMALLINT typeBytes = 0;
  std::u16string type;
  if (SQL_SUCCEEDED(SQLColAttributeW(stmt.get(), number, SQL_DESC_TYPE_NAME, typeName,
                                     sizeof(typeName), &typeBytes, nullptr))) {
    type = fromWide(typeName, fitted(typeBytes / static_cast<SQLSMALLINT>(sizeof(SQLWCHAR)),
                                     std::size(typeName) - 1));
  }
  c.kind = kindFor(c.sqlType, type);
  c.cType = cTypeFor(c.kind);
  c.width = boundWidth(c);
  return c;
}

Date dateOf(const SQL_TIMESTAMP_STRUCT& ts, Kind kind) {
  const double seconds = ts.second + ts.fraction / 1e9;
  if (kind == Kind::TimeOfDay) return makeDate(1899, 12, 30, ts.hour, ts.minute, seconds);
  return makeDate(ts.year, ts.month, ts.day, ts.hour, ts.minute, seconds);
}

// A fixed-size cell as the driver wrote it (possibly unaligned in a block).
Variant fixedValue(Kind kind, const std::byte* cell) {
  const auto read = [cell](auto value) {
    std::memcpy(&value, cell, sizeof(value));
    return value;
  };
  switch (kind) {
    case Kind::Long:
      return Variant(static_cast<std::int32_t>(read(SQLINTEGER{})));
    case Kind::Boolean:
      return Variant(read(SQLCHAR{}) != 0);
    case Kind::LongLong:
      return Variant(static_cast<std::int64_t>(read(SQLBIGINT{})));
    case Kind::Double:
      return Variant(static_cast<double>(read(SQLDOUBLE{})));
    case Kind::Timestamp:
    case Kind::TimeOfDay:
      return Variant(dateOf(read(SQL_TIMESTAMP_STRUCT{}), kind));
    default:
      return Variant();
  }
}

Variant textValue(Kind kind, std::u16string text) {
  if (kind == Kind::Decimal || kind == Kind::Currency) {
    // A column only named decimal or money may hold anything; such a cell stays text.
    if (const auto plain = normaliseDecimal(text)) {
      if (kind == Kind::Currency) return Variant(currencyFromDecimal(*plain));
      return Variant(Decimal{*plain});
    }
  }
  return Variant(std::move(text));
}

bool isFixed(Kind kind) noexcept {
  return kind != Kind::Binary && cTypeFor(kind) != SQL_C_WCHAR;
}

// Unbinds the columns and the block attributes when a block read ends, however it ends, so that
// the statement holds no pointer into buffers that are gone.
struct BindingGuard {
  const Handle& stmt;
  ~BindingGuard() {
    SQLFreeStmt(stmt.get(), SQL_UNBIND);
    SQLSetStmtAttrW(stmt.get(), SQL_ATTR_ROWS_FETCHED_PTR, nullptr, 0);
    SQLSetStmtAttrW(stmt.get(), SQL_ATTR_ROW_STATUS_PTR, nullptr, 0);
  }
};

SQLPOINTER attrValue(SQLULEN value) noexcept {
  return reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(value));
}

struct Bound {
  std::unique_ptr<std::byte[]> data;
  std::vector<SQLLEN> indicators;
};

// Row r of a block as the driver wrote it.
struct BlockRow {
  const std::vector<Column>* columns;
  const std::vector<Bound>* bound;
  std::size_t r;
  const std::byte* cell(std::size_t i) const {
    return (*bound)[i].data.get() + r * static_cast<std::size_t>((*columns)[i].width);
  }
  SQLLEN indicator(std::size_t i) const { return (*bound)[i].indicators[r]; }
};

// Longer than the driver declared: its 01004 record says so. A forward-only cursor cannot go
// back for the rest.
void checkLength(const Handle& stmt, const Column& c, SQLLEN ind) {
  if (ind == SQL_NULL_DATA || isFixed(c.kind)) return;
  const SQLLEN room = c.kind == Kind::Binary ? c.width : c.width - 2;
  if (ind == SQL_NO_TOTAL || ind > room) fail(stmt, "SQLFetch");
}

Variant blockValue(const BlockRow& row, std::size_t i) {
  const Column& c = (*row.columns)[i];
  const SQLLEN ind = row.indicator(i);
  const std::byte* cell = row.cell(i);
  if (ind == SQL_NULL_DATA) return Variant::null();
  if (isFixed(c.kind)) return fixedValue(c.kind, cell);
  if (c.kind == Kind::Binary) {
    return Variant(
        hexText(reinterpret_cast<const unsigned char*>(cell), static_cast<std::size_t>(ind)));
  }
  std::u16string text(static_cast<std::size_t>(ind) / sizeof(SQLWCHAR), u'\0');
  std::memcpy(text.data(), cell, text.size() * sizeof(char16_t));
  return textValue(c.kind, std::move(text));
}

// Binds the columns in blocks and calls onRow(row) for each row fetched, its cells' lengths
// checked.
template <class OnRow>
void fetchBlocks(const Handle& stmt, const std::vector<Column>& columns, OnRow onRow) {
  std::size_t rowBytes = 0;
  for (const Column& c : columns) rowBytes += static_cast<std::size_t>(c.width) + sizeof(SQLLEN);
  SQLULEN rows = std::clamp<std::size_t>(kBlockBytes / rowBytes, 1, kMaxBlockRows);

  check(SQLSetStmtAttrW(stmt.get(), SQL_ATTR_ROW_BIND_TYPE, attrValue(SQL_BIND_BY_COLUMN), 0), stmt,
        "SQLSetStmtAttrW");
  // A driver without block cursors refuses the size or lowers it; read back what it took.
  if (!SQL_SUCCEEDED(SQLSetStmtAttrW(stmt.get(), SQL_ATTR_ROW_ARRAY_SIZE, attrValue(rows), 0)) ||
      !SQL_SUCCEEDED(SQLGetStmtAttrW(stmt.get(), SQL_ATTR_ROW_ARRAY_SIZE, &rows, 0, nullptr)) ||
      rows == 0 || rows > kMaxBlockRows) {
    // The driver may hold a size other than the one it reported (or failed to report): the
    // buffers below have room for one row, so the statement must fetch one.
    rows = 1;
    check(SQLSetStmtAttrW(stmt.get(), SQL_ATTR_ROW_ARRAY_SIZE, attrValue(rows), 0), stmt,
          "SQLSetStmtAttrW");
  }

  std::vector<Bound> bound(columns.size());
  std::vector<SQLUSMALLINT> status(rows);
  SQLULEN fetched = 0;
  BindingGuard guard{stmt};
  check(SQLSetStmtAttrW(stmt.get(), SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0), stmt,
        "SQLSetStmtAttrW");
  check(SQLSetStmtAttrW(stmt.get(), SQL_ATTR_ROW_STATUS_PTR, status.data(), 0), stmt,
        "SQLSetStmtAttrW");
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const Column& c = columns[i];
    bound[i].data = std::make_unique<std::byte[]>(rows * static_cast<std::size_t>(c.width));
    bound[i].indicators.resize(rows);
    check(SQLBindCol(stmt.get(), static_cast<SQLUSMALLINT>(i + 1), c.cType, bound[i].data.get(),
                     c.width, bound[i].indicators.data()),
          stmt, "SQLBindCol");
  }

  for (;;) {
    const SQLRETURN rc = SQLFetch(stmt.get());
    if (rc == SQL_NO_DATA) break;
    check(rc, stmt, "SQLFetch");
    for (SQLULEN r = 0; r < fetched && r < rows; ++r) {
      if (status[r] == SQL_ROW_NOROW) continue;
      if (status[r] == SQL_ROW_ERROR) fail(stmt, "SQLFetch");
      const BlockRow row{&columns, &bound, static_cast<std::size_t>(r)};
      for (std::size_t i = 0; i < columns.size(); ++i)
        checkLength(stmt, columns[i], row.indicator(i));
      onRow(row);
    }
  }
}

// Text or binary of any length, in chunks; nullopt for NULL.
std::optional<std::u16string> readLong(const Handle& stmt, SQLUSMALLINT number, Kind kind,
                                       std::vector<SQLWCHAR>& chunk) {
  const bool binary = kind == Kind::Binary;
  const auto bytes = static_cast<SQLLEN>(chunk.size() * sizeof(SQLWCHAR));
  const SQLLEN room = binary ? bytes : bytes - 2;  // text chunks end in a terminator
  std::u16string text;
  std::vector<unsigned char> data;
  for (;;) {
    SQLLEN ind = 0;
    const SQLRETURN rc = SQLGetData(stmt.get(), number, binary ? SQL_C_BINARY : SQL_C_WCHAR,
                                    chunk.data(), bytes, &ind);
    if (rc == SQL_NO_DATA) break;
    check(rc, stmt, "SQLGetData");
    if (ind == SQL_NULL_DATA) return std::nullopt;
    const bool more = rc == SQL_SUCCESS_WITH_INFO && (ind == SQL_NO_TOTAL || ind > room);
    const auto got = static_cast<std::size_t>(more ? room : ind);
    if (binary) {
      const auto* p = reinterpret_cast<const unsigned char*>(chunk.data());
      data.insert(data.end(), p, p + got);
    } else {
      text.append(fromWide(chunk.data(), got / sizeof(SQLWCHAR)));
    }
    if (!more) break;
  }
  return binary ? hexText(data.data(), data.size()) : text;
}

// Reads row after row cell by cell, handing each row's cells to onRow.
template <class OnRow>
void fetchRows(const Handle& stmt, const std::vector<Column>& columns, OnRow onRow) {
  std::vector<SQLWCHAR> chunk(kChunkChars);
  std::vector<Variant> cells;
  for (;;) {
    cells.clear();
    const SQLRETURN rc = SQLFetch(stmt.get());
    if (rc == SQL_NO_DATA) break;
    check(rc, stmt, "SQLFetch");
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const Column& c = columns[i];
      const auto number = static_cast<SQLUSMALLINT>(i + 1);
      if (isFixed(c.kind)) {
        alignas(8) std::byte cell[sizeof(SQL_TIMESTAMP_STRUCT)] = {};
        SQLLEN ind = 0;
        check(SQLGetData(stmt.get(), number, c.cType, cell, sizeof(cell), &ind), stmt,
              "SQLGetData");
        cells.push_back(ind == SQL_NULL_DATA ? Variant::null() : fixedValue(c.kind, cell));
      } else if (auto text = readLong(stmt, number, c.kind, chunk)) {
        cells.push_back(c.kind == Kind::Binary ? Variant(std::move(*text))
                                               : textValue(c.kind, std::move(*text)));
      } else {
        cells.push_back(Variant::null());
      }
    }
    onRow(cells);
  }
}

// --- the record sink's readers ---

Variant blockCell(const void* row, std::size_t source, std::uint8_t /*tag*/) {
  return blockValue(*static_cast<const BlockRow*>(row), source);
}

Variant listedCell(const void* row, std::size_t source, std::uint8_t /*tag*/) {
  return (*static_cast<const std::vector<Variant>*>(row))[source];
}

template <class T>
T cellAs(const BlockRow& row, std::size_t i) {
  T v;
  std::memcpy(&v, row.cell(i), sizeof v);
  return v;
}

void storeLong(const void* p, std::size_t i, std::uint8_t, const vrdppo::Column& c,
               std::byte* record) {
  const auto& row = *static_cast<const BlockRow*>(p);
  const bool null = row.indicator(i) == SQL_NULL_DATA;
  writeField<Long>(record, c.offset, null ? 0 : static_cast<Long>(cellAs<SQLINTEGER>(row, i)));
}

void storeDouble(const void* p, std::size_t i, std::uint8_t tag, const vrdppo::Column& c,
                 std::byte* record) {
  const auto& row = *static_cast<const BlockRow*>(p);
  double v = 0;
  if (row.indicator(i) != SQL_NULL_DATA) {
    v = static_cast<Kind>(tag) == Kind::Long ? cellAs<SQLINTEGER>(row, i)
                                             : cellAs<SQLDOUBLE>(row, i);
  }
  writeField<Double>(record, c.offset, v);
}

void storeText(const void* p, std::size_t i, std::uint8_t, const vrdppo::Column& c,
               std::byte* record) {
  const auto& row = *static_cast<const BlockRow*>(p);
  auto* field = reinterpret_cast<char16_t*>(record + c.offset);
  std::size_t n = 0;
  if (const SQLLEN ind = row.indicator(i); ind != SQL_NULL_DATA) {
    n = std::min<std::size_t>(static_cast<std::size_t>(ind) / sizeof(SQLWCHAR), c.length);
    std::memcpy(field, row.cell(i), n * sizeof(char16_t));
  }
  std::fill(field + n, field + c.length, u' ');
}

class DescribedColumns final : public ResultColumns {
 public:
  DescribedColumns(const std::vector<Column>& columns, bool blocks)
      : columns_(columns), blocks_(blocks) {}
  std::size_t count() const override { return columns_.size(); }
  std::u16string_view name(std::size_t index) const override { return columns_[index].name; }
  CellReader reader(std::size_t index, FieldType field) const override {
    if (!blocks_) return CellReader{nullptr, listedCell, 0};
    const Kind kind = columns_[index].kind;
    CellReader r{nullptr, blockCell, static_cast<std::uint8_t>(kind)};
    // Where the bound cell is the field's own type, it goes straight in; every other pairing
    // takes the value the recordset would hold.
    if (field == FieldType::Long && kind == Kind::Long) r.store = storeLong;
    if (field == FieldType::Double && (kind == Kind::Long || kind == Kind::Double)) {
      r.store = storeDouble;
    }
    if (field == FieldType::String && kind == Kind::Text) r.store = storeText;
    return r;
  }

 private:
  const std::vector<Column>& columns_;
  bool blocks_;
};

// The columns, and whether every one of them can be bound in a block.
bool describeAll(const Handle& statement, SQLSMALLINT columnCount, std::vector<Column>& columns) {
  bool blocks = true;
  for (SQLSMALLINT i = 1; i <= columnCount; ++i) {
    columns.push_back(describe(statement, static_cast<SQLUSMALLINT>(i)));
    blocks = blocks && columns.back().width > 0;
  }
  // One unbounded column sends the whole result through SQLGetData, which every driver allows
  // row by row but few allow inside a block.
  return blocks;
}

}  // namespace

std::shared_ptr<Recordset> fetchAll(const Handle& statement, SQLSMALLINT columnCount) {
  std::vector<Column> columns;
  const bool blocks = describeAll(statement, columnCount, columns);
  std::vector<std::u16string> names;
  for (const Column& c : columns) names.push_back(c.name);
  auto rs = std::make_shared<Recordset>(std::move(names));
  if (blocks) {
    fetchBlocks(statement, columns, [&](const BlockRow& row) {
      for (std::size_t i = 0; i < columns.size(); ++i) rs->pushCell(blockValue(row, i));
    });
  } else {
    fetchRows(statement, columns, [&](std::vector<Variant>& cells) {
      for (auto& v : cells) rs->pushCell(std::move(v));
    });
  }
  rs->rewind();
  return rs;
}

void streamAll(const Handle& statement, SQLSMALLINT columnCount, RecordSink& sink) {
  std::vector<Column> columns;
  const bool blocks = describeAll(statement, columnCount, columns);
  sink.begin(DescribedColumns(columns, blocks));
  if (blocks) {
    fetchBlocks(statement, columns, [&](const BlockRow& row) { sink.row(&row); });
  } else {
    fetchRows(statement, columns, [&](const std::vector<Variant>& cells) { sink.row(&cells); });
  }
}

}  // namespace vrdppo::odbc
