#include "frame/stretch_storage.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "vrdppo/buffer.hpp"

using namespace vrdppo;

namespace {

// The first character at which two texts differ, or -1: a 34 MB string is no failure message.
std::int64_t firstDifference(const std::u16string& a, const std::u16string& b) {
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < n; ++i) {
    if (a[i] != b[i]) return static_cast<std::int64_t>(i);
  }
  return a.size() == b.size() ? -1 : static_cast<std::int64_t>(n);
}

char16_t pattern(std::size_t i) {
  return static_cast<char16_t>(1 + (i * 7919) % 0xFFFE);
}

}  // namespace

// Mapped storage is whole huge pages, aligned to one; heap storage keeps the size asked for.
TEST(StretchStorage, MappedStorageIsWholeAlignedHugePages) {
  for (std::size_t asked :
       {std::size_t{4096}, stretches::kHugePage / 2, stretches::kHugePage + 1}) {
    SCOPED_TRACE(asked);
    std::size_t bytes = asked;
    void* p = stretches::allocate(bytes);
    ASSERT_NE(p, nullptr);
    if (stretches::mappedOnItsOwn(asked)) {
      EXPECT_EQ(bytes % stretches::kHugePage, 0u);
      EXPECT_GE(bytes, asked);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % stretches::kHugePage, 0u);
    } else {
      EXPECT_EQ(bytes, asked);
    }
    std::fill_n(static_cast<char*>(p), bytes, 'x');  // all of it is writable
    stretches::release(p, bytes);
  }
}

// A state spread over many stretches, mapped ones among them, comes out as Initialize and Add
// make it, twice in turn (the second writer reusing what the first gave back).
TEST(BufferWriter, ALargeStateAgreesWithInitializeAndAdd) {
  constexpr std::int16_t kLength = 43;
  constexpr int kCount = 400'000;  // 34 MB of state
  auto record = [](int n, std::size_t i) { return pattern(std::size_t(n) * kLength + i); };
  Buffer b;
  b.Initialize(kLength, 1000);
  std::u16string r(kLength, u' ');
  for (int n = 0; n < kCount; ++n) {
    for (std::size_t i = 0; i < r.size(); ++i) r[i] = record(n, i);
    b.Add(r);
  }
  const std::u16string expected = b.GetState();
  for (int round = 0; round < 2; ++round) {
    BufferWriter w(kLength, 1000);
    for (int n = 0; n < kCount; ++n) {
      const auto to = w.next();
      for (std::size_t i = 0; i < to.size(); ++i) to[i] = record(n, i);
    }
    EXPECT_EQ(firstDifference(w.state(), expected), -1) << "round " << round;
  }
}
