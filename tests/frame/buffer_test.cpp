#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>

#include "support/error_number.hpp"

#include "vrdppo/buffer.hpp"
#include "vrdppo/error.hpp"

using namespace vrdppo;
using vrdppo::testing::numberOf;

namespace {

std::u16string rec(char16_t c, std::size_t n) {
  return std::u16string(n, c);
}

Buffer filled(std::int16_t length, std::int32_t estimate, int count) {
  Buffer b;
  b.Initialize(length, estimate);
  for (int i = 0; i < count; ++i) b.Add(rec(static_cast<char16_t>(u'a' + i % 26), length));
  return b;
}

}  // namespace

TEST(Buffer, AnEmptyStateIsHeaderAndSpareCharacter) {
  Buffer b;
  b.Initialize(43, 10);
  const auto s = b.GetState();
  ASSERT_EQ(s.size(), 9u);
  const BufferHeader h = readBufferHeader(s);
  EXPECT_EQ(h.recordLength, 43);
  EXPECT_EQ(h.estimate, 10);
  EXPECT_EQ(h.capacity, 10);
  EXPECT_EQ(h.count, 0);
  // Low byte first: L = 43 in char 0, padding 0 in char 1, estimate 10 in chars 2 and 3.
  EXPECT_EQ(s.substr(0, 8), (std::u16string{43, 0, 10, 0, 10, 0, 0, 0}));
  EXPECT_EQ(s[8], u' ');
}

TEST(Buffer, GrowsByHalfTheEstimate) {
  Buffer b = filled(43, 10, 10);
  EXPECT_EQ(b.textLength(), 9u + 430u);  // no growth for the first ten
  b.Add(rec(u'k', 43));
  EXPECT_EQ(b.textLength(), 9u + 430u + 215u);
  const auto s = b.GetState();
  EXPECT_EQ(s.size(), 9u + 43u * 11u);
  EXPECT_EQ(readBufferHeader(s).capacity, 15);
  EXPECT_EQ(readBufferHeader(s).count, 11);
  EXPECT_EQ(s.substr(8 + 43 * 10, 43), rec(u'k', 43));
  EXPECT_EQ(s.back(), u' ');  // the spare character behind the last record
}

TEST(Buffer, AnOddEstimateCutsTheRecordOnTheLastSlot) {
  Buffer b = filled(43, 5, 5);
  b.Add(rec(u'x', 43));  // grows by RoundEven(107.5) = 108 characters but 3 slots
  EXPECT_EQ(b.capacity(), 8);
  EXPECT_EQ(b.textLength(), 9u + 215u + 108u);
  b.Add(rec(u'y', 43));
  b.Add(rec(u'z', 43));  // the third of the new slots has 23 characters of room
  EXPECT_EQ(b.Item(8), rec(u'z', 23));
  // The fourth overflowing Add grows by another 108 and goes on.
  b.Add(rec(u'w', 43));
  EXPECT_EQ(b.capacity(), 10);  // RoundEven(2.5 + 8) = 10
}

TEST(Buffer, AnEstimateOfOneStallsAndThenRaises) {
  Buffer b;
  b.Initialize(4, 1);
  b.Add(u"aaaa");
  b.Add(u"bbbb");  // capacity 1 -> 2, but only 2 more characters: cut
  EXPECT_EQ(b.capacity(), 2);
  EXPECT_EQ(b.Item(2), u"bbb");
  b.Add(u"cccc");  // RoundEven(2.5) = 2: no new slot, one character of room
  EXPECT_EQ(b.capacity(), 2);
  EXPECT_EQ(b.Item(3), u"c");
  EXPECT_EQ(numberOf([&] { b.Add(u"dddd"); }), err::kInvalidCall);
}

TEST(Buffer, AShortRecordLeavesWhatWasBehindIt) {
  Buffer b;
  b.Initialize(5, 2);
  b.Add(u"ab");
  EXPECT_EQ(b.Item(1), u"ab   ");
  b.Item(1, u"wxyzQQQ");
  b.Item(1, u"12");
  EXPECT_EQ(b.Item(1), u"12yzQ");
}

TEST(Buffer, OutOfRangeIndicesAreIgnored) {
  Buffer b = filled(3, 4, 2);
  EXPECT_EQ(b.Item(0), u"");
  EXPECT_EQ(b.Item(3), u"");
  b.CurrentItem(2);
  b.CurrentItem(0);
  b.CurrentItem(3);
  EXPECT_EQ(b.CurrentItem(), 2);
  b.Item(3, u"zzz");
  EXPECT_EQ(b.GetState().substr(8), u"aaabbb ");
  b.EOF_(true);
  EXPECT_TRUE(b.EOF_());
}

TEST(Buffer, SetStateKeepsNextPosition) {
  const std::u16string state = filled(3, 4, 2).GetState();
  Buffer b;
  b.SetState(state);
  EXPECT_EQ(b.Count(), 2);
  EXPECT_EQ(b.Length(), 3);
  EXPECT_EQ(b.Item(2), u"bbb");
  EXPECT_EQ(b.GetState(), u"");  // next position of a new object is still 0
  EXPECT_EQ(numberOf([&] { b.Add(u"ccc"); }), err::kInvalidCall);

  Buffer e;
  e.SetState(u"ERROR");
  EXPECT_EQ(e.GetState(), u"ERROR");

  Buffer shortState;
  shortState.SetState(u"ab");  // blanks stand in for the missing header characters
  EXPECT_EQ(shortState.Length(), 'a');
  EXPECT_EQ(shortState.Count(), 0x00200020);
}

TEST(Buffer, ExtractPage) {
  struct Case {
    std::int32_t page, expectPage, expectCount;
    char16_t firstChar;
  } cases[] = {
      {0, 1, 10, u'a'},  // first is -10, so the page becomes 1
      {2, 2, 10, u'k'},
      {3, 3, 5, u'u'},
      {9, 3, 5, u'u'},  // beyond the end: the last page
  };
  for (const auto& c : cases) {
    Buffer b = filled(4, 25, 25);
    std::int32_t page = c.page;
    EXPECT_EQ(b.ExtractPage(10, page), c.expectPage);
    EXPECT_EQ(page, c.expectPage);
    EXPECT_EQ(b.Count(), c.expectCount);
    EXPECT_EQ(b.GetMaxPage(), 3);
    EXPECT_EQ(b.GetCurrentPage(), c.expectPage);
    EXPECT_EQ(b.CurrentItem(), 1);
    // The cut starts eight characters ahead of the first record, which becomes header room.
    EXPECT_EQ(b.Item(1), rec(c.firstChar, 4));
  }
  Buffer empty = filled(4, 5, 0);
  std::int32_t page = 1;
  EXPECT_EQ(numberOf([&] { empty.ExtractPage(1, page); }), err::kInvalidCall);
  EXPECT_EQ(numberOf([&] { empty.ExtractPage(0, page); }), err::kDivisionByZero);
}

TEST(Buffer, RemoveAndRemoveRangeIgnoreTheHeader) {
  Buffer b = filled(4, 5, 4);  // header, aaaa bbbb cccc dddd, a free slot, the spare character
  const std::u16string before = b.GetState();
  b.Remove(1);  // left 4 characters, right the last (4 - 1 - 1) x 4 = 8 characters
  EXPECT_EQ(b.Count(), 3);
  EXPECT_EQ(b.GetState().size(), 12u);
  EXPECT_EQ(b.GetState().substr(8), rec(u' ', 4));  // "ddd" went under the header
  EXPECT_EQ(numberOf([] {
              Buffer big = filled(300, 200, 0);
              big.Remove(200);  // 300 x 200 overflows the 16-bit product
            }),
            err::kOverflow);

  Buffer r = filled(4, 4, 4);
  EXPECT_EQ(r.RemoveRange(2, 1), 0);
  EXPECT_EQ(r.RemoveRange(-1, 1), 0);
  EXPECT_EQ(r.RemoveRange(1, 4), 0);
  EXPECT_EQ(r.RemoveRange(0, 0), 1);  // removes the header room: alignment holds
  EXPECT_EQ(r.Count(), 3);
  EXPECT_EQ(r.CurrentItem(), 1);
  EXPECT_EQ(r.RemoveRange(1), 0);  // a left-out last is 0, and 1 <= 0 fails
  EXPECT_EQ(before.size(), 25u);
}

// A crafted header (L = 30000, count = 100000) on a short text: the positions computed from it
// leave 32 bits, and each member raises the overflow error as every other sum and product does.
TEST(Buffer, PositionsFromACraftedHeaderOverflow) {
  std::u16string state(8, u'\0');
  state[0] = 30000;                                   // L
  state[6] = static_cast<char16_t>(100000 & 0xFFFF);  // count, low and high halves
  state[7] = static_cast<char16_t>(100000 >> 16);
  state += std::u16string(100, u'x');
  const struct {
    const char* member;
    std::function<void(Buffer&)> call;
  } cases[] = {
      {"Item read", [](Buffer& b) { b.Item(100000); }},
      {"Item write", [](Buffer& b) { b.Item(100000, u"y"); }},
      {"RemoveRange", [](Buffer& b) { b.RemoveRange(90000, 99999); }},
      {"ExtractPage",
       [](Buffer& b) {
         std::int32_t page = 2;
         b.ExtractPage(90000, page);
       }},
  };
  for (const auto& c : cases) {
    Buffer b;
    b.SetState(state);
    EXPECT_EQ(numberOf([&] { c.call(b); }), err::kOverflow) << c.member;
  }
  // Within 32 bits the same header reads an empty string past the text, as before.
  Buffer b;
  b.SetState(state);
  EXPECT_EQ(b.Item(2), u"");
}

// Remove takes the count below the smallest Long's neighbour: the current item that follows it
// overflows, raising error 6 as every other sum does, after the record and the count have gone.
TEST(Buffer, RemovingFromTheSmallestCountOverflowsTheCurrentItem) {
  Buffer b;
  // Length 0, count -2147483647.
  b.SetState(std::u16string{u'\0', u'\0', u'\0', u'\0', u'\0', u'\0', u'\x0001', u'\x8000'});
  EXPECT_EQ(numberOf([&] { b.Remove(0); }), err::kOverflow);
  EXPECT_EQ(b.Count(), std::numeric_limits<std::int32_t>::min());
}

// The writer gives the state that Initialize and a run of Adds give, odd growth included, and
// raises where they raise and what they raise.
TEST(BufferWriter, AgreesWithInitializeAndAdd) {
  struct Case {
    std::int16_t length;
    std::int32_t estimate;
  };
  for (const Case c : {Case{43, 10}, Case{43, 5}, Case{4, 1}, Case{4, 3}, Case{127, 2}, Case{3, 0},
                       Case{216, 1000}}) {
    for (int count = 0; count <= 40; ++count) {
      Buffer b;
      b.Initialize(c.length, c.estimate);
      BufferWriter w(c.length, c.estimate);
      std::int32_t expected = 0;
      std::int32_t got = 0;
      for (int i = 0; i < count && expected == 0; ++i) {
        const std::u16string r = rec(static_cast<char16_t>(u'a' + i % 26), c.length);
        expected = numberOf([&] { b.Add(r); });
        got = numberOf([&] {
          const auto to = w.next();
          std::copy_n(r.begin(), to.size(), to.begin());
        });
      }
      const auto where = ::testing::Message() << c.length << "x" << c.estimate << ", " << count;
      ASSERT_EQ(got, expected) << where;
      if (expected != 0) break;
      EXPECT_EQ(w.state(), b.GetState()) << where;
    }
  }
}

// Long runs cross the writer's stretches of storage, the large ones included; an odd estimate's
// growth cuts records short and at last raises, in a stretch as in the Buffer.
TEST(BufferWriter, LongRunsAgreeWithInitializeAndAdd) {
  struct Case {
    std::int16_t length;
    std::int32_t estimate;
    int count;
  };
  for (const Case c :
       {Case{43, 10, 70000}, Case{4, 2, 5000}, Case{127, 1000, 3000}, Case{5, 3, 100}}) {
    Buffer b;
    b.Initialize(c.length, c.estimate);
    BufferWriter w(c.length, c.estimate);
    std::int32_t expected = 0;
    std::int32_t got = 0;
    int added = 0;
    for (; added < c.count && expected == 0; ++added) {
      std::u16string r = rec(static_cast<char16_t>(u'a' + added % 26), c.length);
      r[0] = static_cast<char16_t>(0x100 + added % 0xF000);  // no two neighbours alike
      expected = numberOf([&] { b.Add(r); });
      got = numberOf([&] {
        const auto to = w.next();
        std::copy_n(r.begin(), to.size(), to.begin());
      });
    }
    const auto where = ::testing::Message() << c.length << "x" << c.estimate << ", " << added;
    ASSERT_EQ(got, expected) << where;
    if (expected == 0) {
      EXPECT_EQ(w.state(), b.GetState()) << where;
    }
  }
}

TEST(BufferWriter, RaisesWhatInitializeRaises) {
  const struct {
    std::int16_t length;
    std::int32_t estimate, number;
  } cases[] = {
      {43, std::numeric_limits<std::int32_t>::max(), err::kOverflow},
      {32767, std::numeric_limits<std::int32_t>::max(), err::kOverflow},
      {32767, 40000, err::kOutOfMemory},
      {4, -3, err::kInvalidCall},
      {-5, 3, err::kInvalidCall},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.length) + ", " + std::to_string(c.estimate));
    EXPECT_EQ(numberOf([&] { BufferWriter(c.length, c.estimate); }), c.number);
    Buffer b;
    EXPECT_EQ(numberOf([&] { b.Initialize(c.length, c.estimate); }), c.number);
  }
}

TEST(Buffer, ItemViewSeesWhatItemCopies) {
  Buffer b = filled(5, 3, 4);
  for (std::int32_t i = -1; i <= 6; ++i) EXPECT_EQ(b.ItemView(i), b.Item(i)) << i;
  b.SetState(b.GetState().substr(0, 20));  // a state cut inside its third record
  EXPECT_EQ(b.ItemView(3), b.Item(3));
  EXPECT_EQ(b.ItemView(4), u"");
}
