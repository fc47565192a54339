// The arithmetic here is the class's own, odd places included: Remove and RemoveRange do not
// allow for the header, growth adds half the estimate each time, SetState leaves next position.
#include "vrdppo/buffer.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

#include "frame/stretch_storage.hpp"
#include "vrdppo/error.hpp"

namespace vrdppo {

namespace {

// Strings beyond this many characters are refused as the platform refuses them: out of memory.
constexpr std::int64_t kMaxChars = std::int64_t{1} << 30;

std::int32_t long32(std::int64_t v) {
  if (v < std::numeric_limits<std::int32_t>::min() ||
      v > std::numeric_limits<std::int32_t>::max()) {
    throw Error::runtime(err::kOverflow);
  }
  return static_cast<std::int32_t>(v);
}

std::int16_t int16(std::int64_t v) {
  if (v < std::numeric_limits<std::int16_t>::min() ||
      v > std::numeric_limits<std::int16_t>::max()) {
    throw Error::runtime(err::kOverflow);
  }
  return static_cast<std::int16_t>(v);
}

std::size_t checkedLength(std::int64_t n) {
  if (n < 0) throw Error::runtime(err::kInvalidCall);
  if (n > kMaxChars) throw Error::runtime(err::kOutOfMemory);
  return static_cast<std::size_t>(n);
}

// The 1-based position of record index: (index - 1) x L + 9, each step 32-bit.
std::int32_t itemPosition(std::int32_t index, std::int16_t recordLength) {
  return long32(std::int64_t{long32((std::int64_t{index} - 1) * recordLength)} + 9);
}

std::int32_t roundEven(double v) {
  return long32(static_cast<std::int64_t>(std::nearbyint(v)));
}

// Left$, Right$ and Mid$ of the platform, with its errors for negative lengths and starts.
std::u16string left(const std::u16string& s, std::int64_t n) {
  return s.substr(0, std::min(checkedLength(n), s.size()));
}

std::u16string right(const std::u16string& s, std::int64_t n) {
  const std::size_t k = std::min(checkedLength(n), s.size());
  return s.substr(s.size() - k);
}

std::u16string mid(const std::u16string& s, std::int64_t start, std::int64_t length) {
  if (start < 1) throw Error::runtime(err::kInvalidCall);
  const std::size_t len = checkedLength(length);
  if (static_cast<std::size_t>(start) > s.size()) return {};
  return s.substr(static_cast<std::size_t>(start - 1), len);
}

// The Mid$ statement: overwrite at most count characters from start on, never growing the text.
void overwrite(std::u16string& s, std::int64_t start, std::int64_t count,
               std::u16string_view with) {
  if (start < 1 || static_cast<std::uint64_t>(start) > s.size()) {
    throw Error::runtime(err::kInvalidCall);
  }
  const auto from = static_cast<std::size_t>(start - 1);
  std::size_t n = std::min<std::size_t>(with.size(), s.size() - from);
  if (count >= 0) n = std::min<std::size_t>(n, static_cast<std::size_t>(count));
  std::memcpy(s.data() + from, with.data(), n * sizeof(char16_t));
}

template <class F>
auto guardMemory(F&& f) {
  try {
    return f();
  } catch (const std::bad_alloc&) {
    throw Error::runtime(err::kOutOfMemory);
  } catch (const std::length_error&) {
    throw Error::runtime(err::kOutOfMemory);
  }
}

// The eight header characters: L, the padding, then estimate, capacity and count as pairs of
// 16-bit halves, low half first.
void writeHeader(char16_t* header, std::int16_t recordLength, std::uint16_t padding,
                 std::int32_t estimate, std::int32_t capacity, std::int32_t count) {
  unsigned char bytes[16];
  std::memcpy(bytes, &recordLength, 2);
  std::memcpy(bytes + 2, &padding, 2);
  std::memcpy(bytes + 4, &estimate, 4);
  std::memcpy(bytes + 8, &capacity, 4);
  std::memcpy(bytes + 12, &count, 4);
  for (std::size_t i = 0; i < 8; ++i) {
    header[i] = static_cast<char16_t>(bytes[2 * i] | (bytes[2 * i + 1] << 8));
  }
}

// Initialize's length of text for an estimate: L x estimate + 9, raising as Initialize raises.
std::size_t initialChars(std::int16_t recordLength, std::int32_t estimate) {
  return checkedLength(long32(long32(std::int64_t{recordLength} * estimate) + std::int64_t{9}));
}

// Add's growth when the Buffer is full: half the estimate more records, and the characters for
// them rounded on their own.
struct Growth {
  std::size_t chars;
  std::int32_t capacity;
};
Growth growth(std::int16_t recordLength, std::int32_t estimate, std::int32_t capacity,
              std::size_t textChars) {
  const double half = static_cast<double>(estimate) / 2.0;
  const std::int32_t more = roundEven(half * recordLength);
  const std::int32_t grown = roundEven(half + capacity);
  const std::size_t n = checkedLength(more);
  if (static_cast<std::int64_t>(textChars + n) > kMaxChars) throw Error::runtime(err::kOutOfMemory);
  return {n, grown};
}

}  // namespace

void Buffer::Initialize(std::int16_t recordLength, std::int32_t estimate) {
  const std::size_t n = initialChars(recordLength, estimate);
  guardMemory([&] {
    text_.assign(n, u' ');
    return 0;
  });
  recordLength_ = recordLength;
  estimate_ = estimate;
  capacity_ = estimate;
  count_ = 0;
  currentItem_ = 0;
  nextPosition_ = 9;
}

void Buffer::Add(std::u16string_view record) {
  if (count_ == capacity_) {
    const Growth g = growth(recordLength_, estimate_, capacity_, text_.size());
    guardMemory([&] {
      text_.append(g.chars, u' ');  // the string itself grows geometrically underneath
      return 0;
    });
    capacity_ = g.capacity;
  }
  overwrite(text_, nextPosition_, recordLength_, record);
  nextPosition_ = long32(std::int64_t{nextPosition_} + recordLength_);
  count_ = long32(std::int64_t{count_} + 1);
}

void Buffer::Remove(std::int16_t index) {
  const std::u16string l = left(text_, int16(std::int64_t{recordLength_} * index));
  const std::u16string r =
      right(text_, long32((std::int64_t{count_} - index - 1) * std::int64_t{recordLength_}));
  text_ = l + r;
  count_ = long32(std::int64_t{count_} - 1);
  if (currentItem_ >= count_) currentItem_ = long32(std::int64_t{count_} - 1);
}

std::u16string Buffer::GetState() const {
  if (text_ == u"ERROR") return text_;
  char16_t header[8];
  writeHeader(header, recordLength_, headerPadding_, estimate_, capacity_, count_);
  std::memcpy(text_.data(), header, std::min<std::size_t>(8, text_.size()) * sizeof(char16_t));
  if (nextPosition_ <= 0) return {};
  return text_.substr(0, static_cast<std::size_t>(nextPosition_));
}

void Buffer::SetState(std::u16string_view state) {
  const BufferHeader h = readBufferHeader(state);
  char16_t pad = state.size() > 1 ? state[1] : u' ';
  recordLength_ = h.recordLength;
  headerPadding_ = pad;
  estimate_ = h.estimate;
  capacity_ = h.capacity;
  count_ = h.count;
  guardMemory([&] {
    text_.assign(state);
    return 0;
  });
}

BufferHeader readBufferHeader(std::u16string_view state) noexcept {
  char16_t c[8];
  for (std::size_t i = 0; i < 8; ++i) c[i] = i < state.size() ? state[i] : u' ';
  BufferHeader h;
  h.recordLength = static_cast<std::int16_t>(c[0]);
  h.estimate = static_cast<std::int32_t>(static_cast<std::uint32_t>(c[2]) |
                                         (static_cast<std::uint32_t>(c[3]) << 16));
  h.capacity = static_cast<std::int32_t>(static_cast<std::uint32_t>(c[4]) |
                                         (static_cast<std::uint32_t>(c[5]) << 16));
  h.count = static_cast<std::int32_t>(static_cast<std::uint32_t>(c[6]) |
                                      (static_cast<std::uint32_t>(c[7]) << 16));
  return h;
}

std::u16string Buffer::Item(std::int32_t index) const {
  if (index < 1 || index > count_) return {};
  return mid(text_, itemPosition(index, recordLength_), recordLength_);
}

std::u16string_view Buffer::itemViewAtEdge(std::int32_t index) const {
  // Item's Mid$, with its errors, as a view.
  const std::int32_t start = itemPosition(index, recordLength_);
  if (start < 1) throw Error::runtime(err::kInvalidCall);
  const std::size_t length = checkedLength(recordLength_);
  if (static_cast<std::size_t>(start) > text_.size()) return {};
  return std::u16string_view(text_).substr(static_cast<std::size_t>(start - 1), length);
}

void Buffer::Item(std::int32_t index, std::u16string_view record) {
  if (index < 1 || index > count_) return;
  overwrite(text_, itemPosition(index, recordLength_), recordLength_, record);
}

void Buffer::CurrentItem(std::int32_t index) noexcept {
  if (index >= 1 && index <= count_) currentItem_ = index;
}

std::int32_t Buffer::ExtractPage(std::int32_t size, std::int32_t& page) {
  if (size == 0) throw Error::runtime(err::kDivisionByZero);
  std::int32_t maxPage = long32(std::int64_t{count_} / size);
  if (static_cast<double>(count_) / size > maxPage) maxPage = long32(std::int64_t{maxPage} + 1);
  maxPage_ = maxPage;
  std::int32_t first = long32((std::int64_t{page} - 1) * size);
  std::int32_t last = long32(std::int64_t{first} + size);
  if (first >= count_) {
    page = maxPage_;
    first = long32((std::int64_t{maxPage_} - 1) * size);
    last = long32(std::int64_t{first} + size);
  } else if (first < 0) {
    page = 1;
    first = 0;
    last = size;
  }
  if (last > count_) last = count_;
  const std::int32_t start = long32(std::int64_t{long32(std::int64_t{first} * recordLength_)} + 1);
  const std::int32_t span =
      long32(std::int64_t{long32(std::int64_t{last} + 1 - first)} * recordLength_);
  text_ = mid(text_, start, span);
  count_ = last - first;
  currentItem_ = 1;
  currentPage_ = page;
  return page;
}

std::int32_t Buffer::RemoveRange(std::int32_t first, std::int32_t last) {
  if (!(first <= last && last < count_)) return 0;
  if (first < 0) return 0;
  const std::u16string l = left(text_, long32(std::int64_t{recordLength_} * first));
  const std::int32_t kept = long32(std::int64_t{long32(std::int64_t{last} + 1)} * recordLength_);
  const std::u16string r = right(text_, long32(static_cast<std::int64_t>(text_.size()) - kept));
  text_ = l + r;
  const std::int32_t removed = last - first + 1;
  count_ -= removed;
  currentItem_ = 1;
  return removed;
}

// --- BufferWriter ---

namespace {

// Records go into stretches of storage that are never moved: the first sized by the estimate,
// each later one twice the last, up to this many characters (2 MiB).
constexpr std::size_t kStretchChars = std::size_t{1} << 20;
constexpr std::int64_t kFirstRecords = 256;

}  // namespace

BufferWriter::BufferWriter(std::int16_t recordLength, std::int32_t estimate)
    : firstRecords_(static_cast<std::size_t>(std::clamp<std::int64_t>(estimate, 1, kFirstRecords))),
      recordLength_(recordLength),
      estimate_(estimate),
      capacity_(estimate),
      textChars_(static_cast<std::int64_t>(initialChars(recordLength, estimate))) {}

BufferWriter::~BufferWriter() {
  release();
}

void BufferWriter::release() noexcept {
  for (const Stretch& s : stretches_) {
    if (s.storage) stretches::release(s.storage, s.bytes);
  }
  stretches_.clear();
  slot_ = nullptr;
  slotsLeft_ = 0;
}

void BufferWriter::addStretch() {
  const auto length = static_cast<std::size_t>(recordLength_);
  std::size_t records = firstRecords_;
  if (!stretches_.empty()) {
    records =
        std::max<std::size_t>(1, std::min(stretches_.back().records * 2, kStretchChars / length));
  }
  guardMemory([&] {
    stretches_.reserve(stretches_.size() + 1);
    return 0;
  });
  std::size_t bytes = records * length * sizeof(char16_t);
  auto* storage = static_cast<std::byte*>(stretches::allocate(bytes));
  if (!storage) throw Error::runtime(err::kOutOfMemory);
  auto* data = reinterpret_cast<char16_t*>(storage);
  records = std::max(records, bytes / (length * sizeof(char16_t)));  // all that it holds
  stretches_.push_back({storage, bytes, data, records});
  slot_ = data;
  slotsLeft_ = records;
}

std::span<char16_t> BufferWriter::next() {
  if (recordLength_ < 0) throw Error::runtime(err::kInvalidCall);
  if (count_ == capacity_) {
    const Growth g =
        growth(recordLength_, estimate_, capacity_, static_cast<std::size_t>(textChars_));
    textChars_ += static_cast<std::int64_t>(g.chars);
    capacity_ = g.capacity;
  }
  // Add's Mid$ statement: a start past the text's end is an invalid call, and a record runs
  // only to the text's end.
  if (nextPosition_ < 9 || nextPosition_ > textChars_) throw Error::runtime(err::kInvalidCall);
  const auto length = static_cast<std::size_t>(recordLength_);
  const auto chars = static_cast<std::size_t>(
      std::min<std::int64_t>(recordLength_, textChars_ - (nextPosition_ - 1)));
  const std::int32_t position = long32(std::int64_t{nextPosition_} + recordLength_);
  const std::int32_t count = long32(std::int64_t{count_} + 1);
  char16_t* at = nullptr;
  if (length != 0) {
    if (slotsLeft_ == 0) addStretch();
    at = slot_;
    slot_ += length;
    --slotsLeft_;
    // Behind a record cut short by the text's end, growth leaves blanks.
    std::fill(at + chars, at + length, u' ');
  }
  nextPosition_ = position;
  count_ = count;
  return {at, chars};
}

// The state is written once: the header, each stretch's records (the stretch given back as soon
// as they are out), then the blanks that growth leaves behind the last record.
std::u16string BufferWriter::state() {
  const auto length = static_cast<std::size_t>(std::min<std::int64_t>(nextPosition_, textChars_));
  std::u16string out;
  guardMemory([&] {
    out.reserve(length);
    return 0;
  });
  if (length * sizeof(char16_t) >= 2 * stretches::kHugePage) {
    stretches::adviseHuge(out.data(), length * sizeof(char16_t));
  }
  char16_t header[8];
  writeHeader(header, recordLength_, 0, estimate_, capacity_, count_);
  out.append(header, std::min<std::size_t>(8, length));
  std::size_t records = std::min(static_cast<std::size_t>(nextPosition_ - 9), length - out.size());
  for (Stretch& s : stretches_) {
    const std::size_t chars =
        std::min(records, s.records * static_cast<std::size_t>(recordLength_));
    out.append(s.data, chars);
    records -= chars;
    stretches::release(s.storage, s.bytes);
    s.storage = nullptr;
  }
  out.append(length - out.size(), u' ');
  release();
  return out;
}

}  // namespace vrdppo
