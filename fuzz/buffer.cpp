// Buffer states with scripts of member calls. The first byte chooses between a crafted state
// (any header, any records), a Buffer built by Initialize and Add, whose records must come back
// from Item exactly, and a BufferWriter fed in step with a Buffer, which must give the same state
// and raise the same errors; in a script, each following group of bytes is one call.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <span>
#include <vector>

#include "fuzz_input.hpp"
#include "vrdppo/buffer.hpp"

using namespace vrdppo;

namespace {

// Growth the platform allows but the fuzzer's memory limit does not.
constexpr std::int64_t kMaxGrowth = std::int64_t{1} << 16;
constexpr std::size_t kMaxText = std::size_t{1} << 20;

bool addFits(const Buffer& b) {
  if (b.textLength() > kMaxText) return false;
  if (b.Count() != b.capacity()) return true;
  // Growth is half the estimate times the length, signs and all (two negatives make room).
  const double more = static_cast<double>(b.estimate()) / 2.0 * b.Length();
  return std::abs(more) <= static_cast<double>(kMaxGrowth);
}

std::u16string padded(std::u16string r, std::size_t length) {
  r.resize(length, u' ');
  return r;
}

void script(Buffer& b, fuzz::Input& in) {
  while (!in.empty()) {
    const std::uint8_t op = in.byte();
    const auto a = in.integer<std::int32_t>();
    switch (op % 8) {
      case 0:
        fuzz::answers([&] { b.Item(a); });
        break;
      case 1: {
        const std::u16string r = in.units(in.byte() % 16);
        fuzz::answers([&] { b.Item(a, r); });
        break;
      }
      case 2: {
        const std::u16string r = in.units(in.byte() % 16);
        if (addFits(b)) fuzz::answers([&] { b.Add(r); });
        break;
      }
      case 3:
        fuzz::answers([&] { b.Remove(static_cast<std::int16_t>(a)); });
        break;
      case 4: {
        const auto last = in.integer<std::int32_t>();
        fuzz::answers([&] { b.RemoveRange(a, last); });
        break;
      }
      case 5: {
        auto page = in.integer<std::int32_t>();
        fuzz::answers([&] { b.ExtractPage(a, page); });
        break;
      }
      case 6:
        b.CurrentItem(a);
        break;
      case 7: {
        const std::u16string state = b.GetState();
        b.SetState(state);
        break;
      }
    }
  }
}

// Records added to a fresh Buffer come back whole, before and after a trip through the state.
void built(fuzz::Input& in) {
  const auto length = static_cast<std::int16_t>(in.byte() % 24);
  // An odd estimate grows by half a record at a time, cutting records short, as the class always
  // did; the exact oracle holds for even ones.
  const std::int32_t estimate = 2 + 2 * (in.byte() % 4);
  Buffer b;
  if (!fuzz::answers([&] { b.Initialize(length, estimate); })) return;
  std::vector<std::u16string> records;
  while (!in.empty() && records.size() < 64) {
    if (!addFits(b)) return;
    records.push_back(in.units(in.byte() % 32));
    if (!fuzz::answers([&] { b.Add(records.back()); })) return;
  }
  Buffer copy;
  copy.SetState(b.GetState());
  if (copy.Count() != static_cast<std::int32_t>(records.size())) std::abort();
  for (std::size_t i = 0; i < records.size(); ++i) {
    const auto index = static_cast<std::int32_t>(i + 1);
    const std::u16string want = padded(records[i], static_cast<std::size_t>(length));
    if (b.Item(index) != want || copy.Item(index) != want) std::abort();
  }
}

// Any record length and estimate, odd growth and all: Load's writer and Initialize then Add must
// agree to the character and the error.
void writer(fuzz::Input& in) {
  const auto length = static_cast<std::int16_t>(in.byte() % 48);
  const auto estimate = static_cast<std::int32_t>(in.integer<std::int16_t>() % 600);
  Buffer b;
  const std::int32_t initialized = fuzz::errorNumber([&] { b.Initialize(length, estimate); });
  std::optional<BufferWriter> w;
  if (fuzz::errorNumber([&] { w.emplace(length, estimate); }) != initialized) std::abort();
  if (initialized != 0) return;
  while (!in.empty() && b.Count() < 4096) {
    if (!addFits(b)) return;
    const std::u16string r = in.units(in.byte() % 64);
    const std::int32_t added = fuzz::errorNumber([&] { b.Add(r); });
    const std::int32_t next = fuzz::errorNumber([&] {
      const std::span<char16_t> to = w->next();
      const std::u16string whole = padded(r, static_cast<std::size_t>(length));
      std::copy_n(whole.begin(), to.size(), to.begin());
    });
    if (added != next) std::abort();
    if (added != 0) return;
  }
  if (w->state() != b.GetState()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input in(data, size);
  const std::uint8_t mode = in.byte();
  if (mode % 4 == 3) {
    writer(in);
    return 0;
  }
  if (mode & 1) {
    built(in);
    return 0;
  }
  Buffer b;
  b.SetState(in.units(in.byte() % 64));
  script(b, in);
  fuzz::answers([&] { b.GetState(); });
  return 0;
}
