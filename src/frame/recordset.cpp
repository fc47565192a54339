#include "vrdppo/recordset.hpp"

#include "vrdppo/error.hpp"

namespace vrdppo {

Recordset::Recordset(std::vector<std::u16string> columns)
    : open_(true), columns_(std::move(columns)) {}

void Recordset::pushCell(Variant v) {
  if (cellCount_ % kBlockCells == 0) {
    blocks_.emplace_back();
    blocks_.back().reserve(kBlockCells);
  }
  blocks_.back().push_back(std::move(v));
  ++cellCount_;
}

void Recordset::addRow(std::vector<Variant> row) {
  if (row.size() != columns_.size()) throw Error::runtime(err::kInvalidCall);
  for (auto& v : row) pushCell(std::move(v));
}

void Recordset::rewind() {
  pos_ = 0;
}

std::size_t Recordset::recordCount() const {
  return columns_.empty() ? 0 : cellCount_ / columns_.size();
}

void Recordset::requireOpen() const {
  if (!open_) throw Error::runtime(err::kObjectClosed);
}

void Recordset::requireRow() const {
  requireOpen();
  if (pos_ >= recordCount()) throw Error::runtime(err::kNoCurrentRecord);
}

bool Recordset::EOF_() const {
  requireOpen();
  return pos_ >= recordCount();
}

bool Recordset::BOF() const {
  requireOpen();
  // A client cursor stands on its first row after opening; BOF is true only when there is none.
  return recordCount() == 0;
}

void Recordset::MoveNext() {
  requireRow();
  ++pos_;
}

void Recordset::Close() {
  requireOpen();
  open_ = false;
  blocks_.clear();
  blocks_.shrink_to_fit();
  cellCount_ = 0;
}

std::size_t Recordset::fieldCount() const {
  requireOpen();
  return columns_.size();
}

const std::u16string& Recordset::fieldName(std::size_t index) const {
  requireOpen();
  if (index >= columns_.size()) throw Error::runtime(err::kItemNotFound);
  return columns_[index];
}

std::optional<std::size_t> Recordset::findField(std::u16string_view name) const {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (equalsNoCase(columns_[i], name)) return i;
  }
  return std::nullopt;
}

std::size_t Recordset::fieldIndex(std::u16string_view name) const {
  requireOpen();
  const auto i = findField(name);
  if (!i) throw Error::runtime(err::kItemNotFound);
  return *i;
}

const Variant& Recordset::Fields(std::u16string_view name) const {
  const std::size_t i = fieldIndex(name);
  requireRow();
  return cell(pos_ * columns_.size() + i);
}

const Variant& Recordset::Fields(std::size_t index) const {
  requireOpen();
  if (index >= columns_.size()) throw Error::runtime(err::kItemNotFound);
  requireRow();
  return cell(pos_ * columns_.size() + index);
}

}  // namespace vrdppo
