// A disconnected recordset: the whole first result of a statement, fetched before it is returned.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vrdppo/text.hpp"
#include "vrdppo/variant.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

// ADO's object states.
inline constexpr int adStateClosed = 0;
inline constexpr int adStateOpen = 1;

class Recordset {
 public:
  // A closed recordset: what a statement without a row set gives.
  Recordset() = default;
  // An open recordset of these columns; rows are appended with addRow.
  explicit Recordset(std::vector<std::u16string> columns);

  // Appends one row; its size must equal the column count.
  void addRow(std::vector<Variant> row);
  // Appends one cell to the row being built; providers fill rows cell by cell.
  void pushCell(Variant v);
  // Positions on the first row; providers call it once all rows are in.
  void rewind();

  int State() const noexcept { return open_ ? adStateOpen : adStateClosed; }
  bool EOF_() const;  // ADO's EOF (the macro name EOF is taken)
  bool BOF() const;
  void MoveNext();
  void Close();

  // Fields(name): the current row's value, names compared without regard to case.
  const Variant& Fields(std::u16string_view name) const;
  // Fields(index): by position from 0.
  const Variant& Fields(std::size_t index) const;

  std::size_t fieldCount() const;
  const std::u16string& fieldName(std::size_t index) const;
  // The position of a column, names compared without regard to case; nullopt when absent.
  std::optional<std::size_t> findField(std::u16string_view name) const;
  // As findField, but a missing column raises the recordset's item-not-found error.
  std::size_t fieldIndex(std::u16string_view name) const;
  std::size_t recordCount() const;

 private:
  void requireOpen() const;
  void requireRow() const;

  const Variant& cell(std::size_t index) const {
    return blocks_[index / kBlockCells][index % kBlockCells];
  }

  // Cells live in blocks that never move: a result of unknown size grows without copying, and
  // blocks small enough for the allocator to reuse keep a large fetch off fresh pages.
  static constexpr std::size_t kBlockCells = 2048;
  bool open_ = false;
  std::vector<std::u16string> columns_;
  std::vector<std::vector<Variant>> blocks_;
  std::size_t cellCount_ = 0;
  std::size_t pos_ = 0;  // current row
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
