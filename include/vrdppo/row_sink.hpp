// Rows streamed from a provider into a record one at a time: how Load reads a result without
// holding it whole. A provider that cannot stream hands over its recordset instead, and the sink
// walks it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "vrdppo/record.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/variant.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

// How a provider reads one cell of its current row into a record's field, chosen once per
// column from the provider's column type and the field's type.
struct CellReader {
  // Writes the field straight from the row, exactly as storeField would store the value that
  // `value` gives; raises only what storeField raises.
  using Store = void (*)(const void* row, std::size_t source, std::uint8_t tag,
                         const Column& column, std::byte* record);
  // The cell's value as the provider's recordset would hold it; storeField then stores it.
  using Value = Variant (*)(const void* row, std::size_t source, std::uint8_t tag);

  Store store = nullptr;  // preferred when set
  Value value = nullptr;
  std::uint8_t tag = 0;  // the provider's own note on the column, handed back to either
};

// The columns of a result, as a provider describes them to a sink.
class ResultColumns {
 public:
  virtual std::size_t count() const = 0;
  virtual std::u16string_view name(std::size_t index) const = 0;
  virtual CellReader reader(std::size_t index, FieldType field) const = 0;

 protected:
  ~ResultColumns() = default;
};

// Reads rows into one record, initialiser and all, and hands each finished record to take().
class RecordSink {
 public:
  RecordSink(const RecordLayout& layout, std::byte* record) : layout_(layout), record_(record) {}
  virtual ~RecordSink() = default;
  RecordSink(const RecordSink&) = delete;
  RecordSink& operator=(const RecordSink&) = delete;

  // A result with columns has begun: each field finds its column by name, the first of that name
  // without regard to case, and its reader. A field without a column raises 3265 at the first
  // row, once the initialiser has run and the fields before it are read.
  void begin(const ResultColumns& columns);
  // The provider's current row into the record, then to take().
  void row(const void* providerRow);
  // A provider without a stream of its own hands over the whole result: begun and read as
  // above, then closed unless it is empty and the sink leaves an empty result open.
  void walk(Recordset& rs);

  bool begun() const noexcept { return begun_; }
  std::size_t rows() const noexcept { return rows_; }

 protected:
  // At the first row, before the initialiser runs.
  virtual void firstRow() {}
  virtual void take(const std::byte* record) = 0;
  virtual bool leavesEmptyResultOpen() const noexcept { return false; }
  const RecordLayout& layout() const noexcept { return layout_; }

 private:
  void startRow();
  // The fields in order. An error raised for a field names that field's column and the row.
  void readRow(const void* providerRow);
  // After a field raised: the fields from `from` on as the initialiser leaves them, as if the
  // row had been begun by the initialiser.
  void restoreFrom(std::size_t from) noexcept;

  const RecordLayout& layout_;
  std::byte* record_;
  std::vector<std::size_t> positions_;  // result column of each field; npos when missing
  std::vector<CellReader> readers_;
  bool begun_ = false;
  std::size_t rows_ = 0;
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
