#include "vrdppo/row_sink.hpp"

#include "vrdppo/error.hpp"
#include "vrdppo/render.hpp"

namespace vrdppo {

namespace {

constexpr std::size_t kMissing = static_cast<std::size_t>(-1);

// Recordset cells, for a provider that hands over its recordset.
Variant recordsetCell(const void* row, std::size_t source, std::uint8_t /*tag*/) {
  return static_cast<const Recordset*>(row)->Fields(source);
}

}  // namespace

void RecordSink::begin(const ResultColumns& columns) {
  const auto& fields = layout_.columns;
  positions_.assign(fields.size(), kMissing);
  readers_.assign(fields.size(), CellReader{});
  for (std::size_t i = 0; i < fields.size(); ++i) {
    for (std::size_t c = 0; c < columns.count(); ++c) {
      if (equalsNoCase(columns.name(c), fields[i].read)) {
        positions_[i] = c;
        readers_[i] = columns.reader(c, fields[i].type);
        break;
      }
    }
  }
  begun_ = true;
}

void RecordSink::startRow() {
  if (rows_ != 0) return;
  // Every field is written by every row, so the initialiser runs once: for the trailing field,
  // and for what a failing row leaves behind.
  firstRow();
  initialiseRecord(layout_, record_);
}

void RecordSink::restoreFrom(std::size_t from) noexcept {
  const auto& fields = layout_.columns;
  for (std::size_t i = from; i < fields.size(); ++i) initialiseField(fields[i], record_);
}

void RecordSink::row(const void* providerRow) {
  startRow();
  readRow(providerRow);
  take(record_);
  ++rows_;
}

void RecordSink::readRow(const void* providerRow) {
  const auto& fields = layout_.columns;
  std::size_t i = 0;
  try {
    for (; i < fields.size(); ++i) {
      const CellReader& r = readers_[i];
      if (r.store) {
        r.store(providerRow, positions_[i], r.tag, fields[i], record_);
      } else {
        // A field without a column stops the first row there, the fields before it read: the
        // row is read in order until a column is missing.
        if (r.value == nullptr) throw Error::runtime(err::kItemNotFound);
        storeField(fields[i], record_, r.value(providerRow, positions_[i], r.tag));
      }
    }
  } catch (Error& e) {
    restoreFrom(i);
    // A row of a thousand that will not go in is found by where it stopped.
    if (e.row() == 0) {
      e.setColumn(std::u16string(fields[i].read));
      e.setRow(static_cast<std::int64_t>(rows_) + 1);
    }
    throw;
  } catch (...) {
    restoreFrom(i);
    throw;
  }
}

namespace {

class RecordsetColumns final : public ResultColumns {
 public:
  explicit RecordsetColumns(const Recordset& rs) : rs_(rs) {}
  std::size_t count() const override { return rs_.fieldCount(); }
  std::u16string_view name(std::size_t index) const override { return rs_.fieldName(index); }
  CellReader reader(std::size_t, FieldType) const override {
    return CellReader{nullptr, recordsetCell, 0};
  }

 private:
  const Recordset& rs_;
};

}  // namespace

void RecordSink::walk(Recordset& rs) {
  if (rs.State() != adStateOpen) return;
  begin(RecordsetColumns(rs));
  while (!(rs.EOF_() || rs.BOF())) {
    row(&rs);
    rs.MoveNext();
  }
  if (rows_ != 0 || !leavesEmptyResultOpen()) rs.Close();
}

}  // namespace vrdppo
