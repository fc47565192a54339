#include "frame/pages.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
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

// Whole pages of the destination move when source and destination lie at the same place within
// a page; the pieces before and after them, and everything when they do not, are copied.
TEST(Pages, MoveTakesTheWholePagesBetweenCopiedEnds) {
  constexpr std::size_t kPage = 4096;
  struct Case {
    std::size_t from;   // bytes into the source storage
    std::size_t to;     // bytes into the destination storage
    std::size_t chars;  // moved
    std::size_t pages;  // of them moved by remapping
  };
  const Case cases[] = {
      {0, 0, 3 * kPage / 2, 3},              // aligned, whole pages only
      {32, 32, 3 * kPage / 2, 2},            // a head and a tail around two pages
      {32, 32, kPage / 2 - 16, 0},           // less than a page
      {100, 100 + kPage, 5 * kPage, 9},      // a page apart
      {32, 48, 3 * kPage, 0},                // at different places within a page: copied
      {kPage - 2, kPage - 2, kPage + 1, 2},  // a head of one character
  };
  for (const Case& c : cases) {
    std::size_t sourceBytes = pages::kHugePage;
    std::size_t targetBytes = pages::kHugePage;
    auto* source = static_cast<std::byte*>(pages::allocate(sourceBytes));
    auto* target = static_cast<std::byte*>(pages::allocate(targetBytes));
    ASSERT_NE(source, nullptr);
    ASSERT_NE(target, nullptr);
    auto* from = reinterpret_cast<char16_t*>(source + c.from);
    auto* to = reinterpret_cast<char16_t*>(target + c.to);
    for (std::size_t i = 0; i < c.chars; ++i) from[i] = pattern(i);
    // The neighbours of the destination stay as they were.
    std::memset(target, 0x5A, pages::kHugePage);
    const std::size_t before = pages::movedBytes();
    pages::move(to, from, c.chars);
    const auto where = ::testing::Message() << c.from << " to " << c.to << ", " << c.chars;
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < c.chars; ++i) wrong += to[i] != pattern(i);
    EXPECT_EQ(wrong, 0U) << where;
    const auto* after = reinterpret_cast<const unsigned char*>(to + c.chars);
    const auto* end = reinterpret_cast<const unsigned char*>(target + pages::kHugePage);
    EXPECT_TRUE(std::all_of(reinterpret_cast<const unsigned char*>(target),
                            reinterpret_cast<const unsigned char*>(to),
                            [](unsigned char b) { return b == 0x5A; }))
        << where;
    EXPECT_TRUE(std::all_of(after, end, [](unsigned char b) { return b == 0x5A; })) << where;
#if defined(__linux__)
    EXPECT_EQ(pages::movedBytes() - before, c.pages * kPage) << where;
#endif
    pages::release(source, sourceBytes);
    pages::release(target, targetBytes);
  }
}

// A state large enough to take the writer's pages instead of a copy of them comes out as
// Initialize and Add make it, the first time (where its storage is guessed) as the second (where
// the first has taught the writer).
TEST(BufferWriter, ALargeStateTakesItsPagesAndAgreesWithInitializeAndAdd) {
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
  if (pages::receivesPages(std::size_t{1} << 30)) {
    ASSERT_TRUE(pages::receivesPages(expected.size())) << "too small a state to receive pages";
  }
  for (int round = 0; round < 2; ++round) {
    const std::size_t before = pages::movedBytes();
    BufferWriter w(kLength, 1000);
    for (int n = 0; n < kCount; ++n) {
      const auto to = w.next();
      for (std::size_t i = 0; i < to.size(); ++i) to[i] = record(n, i);
    }
    EXPECT_EQ(firstDifference(w.state(), expected), -1) << "round " << round;
    if (round == 1 && pages::receivesPages(expected.size())) {
      // All but the pieces of pages where one stretch ends and the next begins.
      EXPECT_GT(pages::movedBytes() - before, expected.size() * sizeof(char16_t) * 9 / 10);
    }
  }
}
