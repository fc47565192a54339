// Texts that SQLite reads differently from a server: U+0000, where SQLite would end the
// statement, and lone surrogates, which its UTF-16 reader pairs with whatever follows. U+0000
// round-trips; a lone surrogate comes back as U+FFFD, the character the store puts in its place.
#include <string>

#include "store_fixture.hpp"
#include "vrdppo/cages/movements.hpp"
#include "vrdppo/error.hpp"

namespace vrdppo::testing {

namespace {

using Text = StoreTest;

std::u16string comment(const std::u16string& state) {
  cCageMoveCommentPersist c;
  c.SetState(state);
  return std::u16string(c.record().Comment.view());
}

TEST_F(Text, EveryStringComesBackAsTheStoreHoldsIt) {
  const struct {
    const char* name;
    std::u16string written;
    std::u16string read;
  } cases[] = {
      {"U+0000 inside", std::u16string(u"a\0b", 3), std::u16string(u"a\0b", 3)},
      {"U+0000 at the ends", std::u16string(u"\0x\0", 3), std::u16string(u"\0x\0", 3)},
      {"quotes around U+0000", std::u16string(u"'\0'\"", 4), std::u16string(u"'\0'\"", 4)},
      {"a lone high surrogate", u"a\xD800z", u"a\xFFFDz"},
      {"a lone low surrogate", u"\xDC00z", u"\xFFFDz"},
      {"a pair", u"a\xD83D\xDE00z", u"a\xD83D\xDE00z"},
      {"a pair split by U+0000", std::u16string(u"\xD83D\0\xDE00", 3),
       std::u16string(u"\xFFFD\0\xFFFD", 3)},
  };
  cCageMoveCommentPersist c;
  for (const auto& k : cases) {
    SCOPED_TRACE(k.name);
    const auto state = newState<cCageMoveCommentPersist>([&](CageMoveCommentRecord& r) {
      r.CageMovementID = 7;
      put(r.Comment, k.written);
    });
    ASSERT_TRUE(c.Commit(state, connect));
    const Long key = c.record().CageMoveCommentID;
    Buffer rows;
    rows.SetState(c.Load(u"CageMoveCommentID = " + longText(key), connect));
    ASSERT_EQ(rows.Count(), 1);
    EXPECT_EQ(comment(rows.Item(1)).substr(0, k.read.size()), k.read);
    // And through an UPDATE.
    ASSERT_TRUE(c.Commit(c.GetState(), connect));
    rows.SetState(c.Load(u"CageMoveCommentID = " + longText(key), connect));
    EXPECT_EQ(comment(rows.Item(1)).substr(0, k.read.size()), k.read);
  }
}

// A record whose initialiser never ran has its strings full of U+0000: it commits like any other.
TEST_F(Text, ARecordThatSkippedItsInitialiserCommits) {
  cCageMoveCommentPersist c;
  const std::u16string zeros(static_cast<std::size_t>(c.layout().stateChars), u'\0');
  ASSERT_TRUE(c.Commit(zeros, connect));
  Buffer rows;
  rows.SetState(c.Load(u"", connect));
  ASSERT_EQ(rows.Count(), 1);
  EXPECT_EQ(comment(rows.Item(1)), std::u16string(128, u'\0'));
}

// Outside a literal U+0000 would cut the statement short; it is refused instead.
TEST_F(Text, UPlus0000OutsideALiteralIsASyntaxError) {
  dbHelp::ConnectString = connect;
  const std::u16string cut(u"DELETE FROM STEMS WHERE StemsId = 1\0 OR 1 = 1", 46);
  try {
    dbHelp::OpenRecordset(cut);
    FAIL() << "no error";
  } catch (const Error& e) {
    EXPECT_EQ(e.sqlState(), "42000");
    EXPECT_EQ(e.nativeError(), 102);
  }
}

}  // namespace

}  // namespace vrdppo::testing
