// Many fixed-length records packed into one string with an eight-character header: the form in
// which every Load hands back its rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

class Buffer {
 public:
  void Initialize(std::int16_t recordLength, std::int32_t estimate);
  void Add(std::u16string_view record);
  void Remove(std::int16_t index);
  std::u16string GetState() const;
  void SetState(std::u16string_view state);
  std::u16string Item(std::int32_t index) const;
  // As Item, without a copy: a view into the Buffer, good until it next changes.
  std::u16string_view ItemView(std::int32_t index) const;
  void Item(std::int32_t index, std::u16string_view record);
  std::int32_t Count() const noexcept { return count_; }
  std::int32_t Length() const noexcept { return recordLength_; }
  std::int32_t CurrentItem() const noexcept { return currentItem_; }
  void CurrentItem(std::int32_t index) noexcept;
  // The caller's EOF flag; the class never reads or sets it itself.
  bool EOF_() const noexcept { return eof_; }
  void EOF_(bool value) noexcept { eof_ = value; }
  std::int32_t ExtractPage(std::int32_t size, std::int32_t& page);
  std::int32_t RemoveRange(std::int32_t first, std::int32_t last = 0);
  std::int32_t GetMaxPage() const noexcept { return maxPage_; }
  std::int32_t GetCurrentPage() const noexcept { return currentPage_; }

  // Fields the wire header does not show, for those who inspect a Buffer.
  std::int32_t estimate() const noexcept { return estimate_; }
  std::int32_t capacity() const noexcept { return capacity_; }
  std::int32_t nextPosition() const noexcept { return nextPosition_; }
  std::size_t textLength() const noexcept { return text_.size(); }

 private:
  mutable std::u16string text_;  // GetState writes the header into it, as the class always did
  std::int16_t recordLength_ = 0;
  std::uint16_t headerPadding_ = 0;  // travels through SetState and back out of GetState
  std::int32_t estimate_ = 0;
  std::int32_t capacity_ = 0;
  std::int32_t count_ = 0;
  std::int32_t currentItem_ = 0;
  bool eof_ = false;
  std::int32_t nextPosition_ = 0;
  std::int32_t currentPage_ = 0;
  std::int32_t maxPage_ = 0;
};

// The state that Initialize and then Add of record after record leave GetState to give, built
// in place: each record is written straight into storage that doubles as it fills, and the
// finished state is handed out once. The header's estimate and capacity follow the class's own
// growth arithmetic, as do its errors.
class BufferWriter {
 public:
  // Raises what Initialize raises.
  BufferWriter(std::int16_t recordLength, std::int32_t estimate);
  ~BufferWriter();
  BufferWriter(const BufferWriter&) = delete;
  BufferWriter& operator=(const BufferWriter&) = delete;

  // Where the next record goes: its recordLength characters, or fewer where the class's growth
  // left its text short of them. Raises what Add raises.
  std::span<char16_t> next();
  std::int32_t count() const noexcept { return count_; }
  // The state, as GetState gives it; the writer holds nothing afterwards.
  std::u16string state();

 private:
  void reserve(std::size_t chars);

  char16_t* data_ = nullptr;  // the records, from the first character after the header
  std::size_t room_ = 0;      // characters data_ holds
  std::size_t written_ = 0;   // characters of records written
  std::int16_t recordLength_;
  std::int32_t estimate_;
  std::int32_t capacity_;
  std::int32_t count_ = 0;
  std::int32_t nextPosition_ = 9;
  std::int64_t textChars_;  // the length of the Buffer's own text
};

// The header of a Buffer state, as a reader of the wire format sees it.
struct BufferHeader {
  std::int16_t recordLength = 0;
  std::int32_t estimate = 0;
  std::int32_t capacity = 0;
  std::int32_t count = 0;
};
// Reads the first eight characters of a state (blanks standing in for missing ones).
BufferHeader readBufferHeader(std::u16string_view state) noexcept;

}  // namespace vrdppo
VRDPPO_PUBLIC_END
