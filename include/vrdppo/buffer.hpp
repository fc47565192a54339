// Many fixed-length records packed into one string with an eight-character header: the form in
// which every Load hands back its rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

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
  // As Item, without a copy: a view into the Buffer, good until it next changes. Inline, for
  // those who walk every record: only a record that lies whole inside the text is read here.
  std::u16string_view ItemView(std::int32_t index) const {
    if (index < 1 || index > count_) return {};
    const std::int64_t start = (std::int64_t{index} - 1) * recordLength_ + 9;
    if (recordLength_ >= 0 &&
        start + recordLength_ - 1 <= static_cast<std::int64_t>(text_.size())) {
      return {text_.data() + (start - 1), static_cast<std::size_t>(recordLength_)};
    }
    return itemViewAtEdge(index);
  }
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
  std::u16string_view itemViewAtEdge(std::int32_t index) const;

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
// in place: each record is written straight into storage taken in stretches as it fills, never
// moved as it grows, and copied out once into the finished state. The header's estimate and
// capacity follow the class's own growth arithmetic, as do its errors.
class BufferWriter {
 public:
  // Raises what Initialize raises.
  BufferWriter(std::int16_t recordLength, std::int32_t estimate);
  ~BufferWriter();
  BufferWriter(const BufferWriter&) = delete;
  BufferWriter& operator=(const BufferWriter&) = delete;

  // Where the next record goes: its recordLength characters, or fewer where the class's growth
  // left its text short of them. Raises what Add raises; a negative record length, which no
  // record has, is an invalid call.
  std::span<char16_t> next();
  std::int32_t count() const noexcept { return count_; }
  // The state, as GetState gives it; the writer holds nothing afterwards.
  std::u16string state();

 private:
  struct Stretch {
    std::byte* storage;
    std::size_t bytes;    // of storage, which says how it was taken
    char16_t* data;       // its records: the storage, as characters
    std::size_t records;  // whole record slots it holds
  };
  void addStretch();
  void release() noexcept;

  std::vector<Stretch> stretches_;
  char16_t* slot_ = nullptr;   // the next record's slot in the last stretch
  std::size_t slotsLeft_ = 0;  // slots after slot_ in the last stretch, slot_ included
  std::size_t firstRecords_;   // slots in the first stretch; later ones double to a cap
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
