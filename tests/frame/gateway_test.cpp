#include <gtest/gtest.h>

#include "support/error_number.hpp"

#include "support/scripted_provider.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;
using vrdppo::testing::numberOf;
using vrdppo::testing::providerError;
using vrdppo::testing::ScriptedProvider;

namespace {

class Gateway : public ::testing::Test {
 protected:
  void SetUp() override {
    dbHelp::ConnectString = u"DSN=plant";
    dbHelp::AppName.clear();
    dbHelp::AuditTrailId = 0;
  }
  void TearDown() override {
    dbHelp::ConnectString.clear();
    dbHelp::AppName.clear();
    dbHelp::AuditTrailId = 0;
  }
  ScriptedProvider db;
};

}  // namespace

TEST_F(Gateway, RunsTheTenStepsInOrder) {
  db.answerRows(u"SELECT", {u"A"}, {{int32_t{1}}});
  const auto rs = dbHelp::OpenRecordset(u"SELECT A FROM T");
  EXPECT_EQ(db.log(), (std::vector<std::string>{"create", "cursor 3", "open DSN=plant|||-1",
                                                "execute SET QUOTED_IDENTIFIER OFF|-1", "timeout 0",
                                                "execute SELECT A FROM T|-1", "close", "release"}));
  ASSERT_EQ(rs->State(), adStateOpen);
  EXPECT_EQ(rs->Fields(u"a").lng(), 1);
}

TEST_F(Gateway, SendsTheAuditTrailIdAheadOfTheTimeoutWhenSet) {
  dbHelp::AuditTrailId = 12;
  dbHelp::OpenRecordset(u"UPDATE T SET A = 1");
  EXPECT_EQ(db.log(),
            (std::vector<std::string>{"create", "cursor 3", "open DSN=plant|||-1",
                                      "execute SET QUOTED_IDENTIFIER OFF|-1",
                                      "execute exec ZZ_SetAuditTrailID 12|-1", "timeout 0",
                                      "execute UPDATE T SET A = 1|-1", "close", "release"}));
}

TEST_F(Gateway, ChoosesTheConnectionString) {
  struct Case {
    std::u16string connect, app;
    std::string opened;
  } cases[] = {
      {u"", u"", "open DRIVER={SQL Server};SERVER=localhost;UID=vrd;PWD=vrd;DATABASE=VRD|||-1"},
      // An empty string gives the default even when AppName is set: the first case wins.
      {u"", u"Floor",
       "open DRIVER={SQL Server};SERVER=localhost;UID=vrd;PWD=vrd;DATABASE=VRD|||-1"},
      {u"DSN=plant", u"Floor", "open DSN=plant;APP=Floor|||-1"},
      {u"DSN=plant", u"", "open DSN=plant|||-1"},
  };
  for (const auto& c : cases) {
    db.clear();
    dbHelp::ConnectString = c.connect;
    dbHelp::AppName = c.app;
    dbHelp::OpenRecordset(u"SELECT 1");
    EXPECT_EQ(db.log().at(2), c.opened);
  }
}

TEST_F(Gateway, AStatementWithoutRowsGivesAClosedRecordset) {
  const auto rs = dbHelp::OpenRecordset(u"DELETE FROM T");
  EXPECT_EQ(rs->State(), adStateClosed);
  EXPECT_EQ(numberOf([&] { rs->Close(); }), err::kObjectClosed);
}

TEST_F(Gateway, FailuresRaiseTheProvidersErrorAndReleaseTheConnection) {
  struct Case {
    const char* where;
    std::function<void(ScriptedProvider&)> arm;
    std::vector<std::string> log;
    std::u16string statement;  // the one the error names
  } cases[] = {
      {"open",
       [](ScriptedProvider& p) { p.failOpen(providerError("[x] login failed")); },
       {"create", "cursor 3", "open DSN=plant|||-1", "release"},
       u""},
      {"quoted identifier",
       [](ScriptedProvider& p) { p.failExecute(u"QUOTED", providerError("[x] no")); },
       {"create", "cursor 3", "open DSN=plant|||-1", "execute SET QUOTED_IDENTIFIER OFF|-1",
        "release"},
       u"SET QUOTED_IDENTIFIER OFF"},
      {"statement",
       [](ScriptedProvider& p) { p.failExecute(u"SELECT", providerError("[x] bad")); },
       {"create", "cursor 3", "open DSN=plant|||-1", "execute SET QUOTED_IDENTIFIER OFF|-1",
        "timeout 0", "execute SELECT * FROM T|-1", "release"},
       u"SELECT * FROM T"},
      {"close",
       [](ScriptedProvider& p) { p.failClose(providerError("[x] gone")); },
       {"create", "cursor 3", "open DSN=plant|||-1", "execute SET QUOTED_IDENTIFIER OFF|-1",
        "timeout 0", "execute SELECT * FROM T|-1", "close", "release"},
       u""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.where);
    ScriptedProvider p;  // newest registration takes the string
    c.arm(p);
    try {
      dbHelp::OpenRecordset(u"SELECT * FROM T");
      ADD_FAILURE() << "no error raised";
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), err::kCommandError);
      EXPECT_EQ(e.sqlState(), "42000");
      EXPECT_EQ(e.statement(), c.statement);
    }
    EXPECT_EQ(p.log(), c.log);
  }
}

TEST_F(Gateway, AFailingAuditTrailProcedureRaises) {
  dbHelp::AuditTrailId = 7;
  db.failExecute(u"ZZ_SetAuditTrailID", providerError());
  EXPECT_EQ(numberOf([] { dbHelp::OpenRecordset(u"SELECT 1"); }), err::kCommandError);
  EXPECT_EQ(db.statements().size(), 2u);
}

TEST(ReplaceAll, ReplacesFromTheLeftWithoutOverlapOrRescanning) {
  struct Case {
    std::u16string source, find, replace, expected;
  } cases[] = {
      {u"O'Neil", u"'", u"''", u"O''Neil"},
      {u"aaa", u"aa", u"b", u"ba"},
      {u"abab", u"ab", u"abab", u"abababab"},
      {u"Case", u"c", u"k", u"Case"},  // binary comparison
      {u"", u"x", u"y", u""},
      {u"x\"y\"", u"\"", u"\"\"", u"x\"\"y\"\""},
      {u"end'", u"'", u"", u"end"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(dbHelp::ReplaceAll(c.source, c.find, c.replace), c.expected);
  }
}

TEST(ReplaceAll, OverflowsBeyondPosition32767OfTheRest) {
  const std::u16string near(32766, u'a');
  EXPECT_EQ(dbHelp::ReplaceAll(near + u"'", u"'", u"''"), near + u"''");
  // The position counts from the end of the previous occurrence, not from the start.
  EXPECT_EQ(dbHelp::ReplaceAll(near + u"'" + near + u"'", u"'", u"").size(), 2 * near.size());
  EXPECT_EQ(numberOf([&] { dbHelp::ReplaceAll(near + u"a'", u"'", u"''"); }), err::kOverflow);
  // No occurrence: nothing is counted.
  EXPECT_EQ(dbHelp::ReplaceAll(near + near, u"'", u"''").size(), 2 * near.size());
}

TEST(ReplaceAll, RefusesAnEmptyFindInsteadOfLoopingForever) {
  EXPECT_EQ(numberOf([] { dbHelp::ReplaceAll(u"abc", u"", u"x"); }), err::kInvalidCall);
}

// A connection string's pairs as every reader of one takes them: a value in braces may hold ";"
// ("}}" a brace in it), a brace elsewhere is a character, keys match without regard to case and
// blanks, and the first of a repeated key counts.
TEST(ConnectionStrings, PairsAndValues) {
  const struct {
    const char16_t* connect;
    const char16_t* key;
    const char16_t* value;
  } cases[] = {
      {u"DRIVER={SQL Server};SERVER=s", u"driver", u"SQL Server"},
      {u"PWD={a;b}}c};UID=u", u"PWD", u"a;b}}c"},
      {u"PWD={a;b}}c};UID=u", u"UID", u"u"},
      {u"Data Source=C:\\{x}\\a.db;Mode=Read", u"Data Source", u"C:\\{x}\\a.db"},
      {u"Data Source=C:\\{x}\\a.db;Mode=Read", u"MODE", u"Read"},
      {u"uid=first;UID=second", u"UID", u"first"},
      {u" Mode = Read ;", u"mode", u"Read"},
      {u"SERVER=s;", u"DATABASE", u""},
      {u"no value;DSN=x", u"DSN", u"x"},
      {u"PWD={open;UID=u", u"UID", u""},  // an unclosed brace runs to the end
      {u"", u"DSN", u""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(toUtf8(connectionValue(c.connect, c.key)), toUtf8(c.value))
        << toUtf8(c.connect) << " " << toUtf8(c.key);
  }
  const std::vector<std::u16string_view> pairs = connectionPairs(u"A=1;B = {x;y}}};C;");
  EXPECT_EQ(pairs, (std::vector<std::u16string_view>{u"A=1", u"B = {x;y}}}", u"C", u""}));
}
