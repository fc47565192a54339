// Set operations and subqueries: each TOP, ORDER BY and alias binds to the SELECT it is written
// in, as a server binds it. Statements run on a store seeded with six stems.
#include <ostream>
#include <string>
#include <vector>

#include "../../src/providers/embedded/translator.hpp"
#include "store_fixture.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

class QueryStoreTest : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    // Stem: run, weight. 1: 77, 10.5; 2: 77, 30; 3: 77, 20; 4: 78, 5; 5: 78, 6; 6: 79, 7.
    sql(u"INSERT INTO PRODUCTIONRUN (PRODUCTIONRUNID, ProductionDate, ShiftNumber, Status) VALUES "
        u"(77, '2019/03/07', 2, 'A'), (78, '2019/03/08', 1, 'B'), (79, '2019/03/20', 2, 'C')");
    sql(u"INSERT INTO STEMS (STEMSID, TotalNetWeight, StemTypeID, ProductionRunId) VALUES "
        u"(1, 10.5, 1, 77), (2, 30, 2, 77), (3, 20, 3, 77), (4, 5, 1, 78), (5, 6, 3, 78), "
        u"(6, 7, 2, 79)");
  }

  // The first column of every row, comma-separated.
  std::string firstColumn(std::u16string_view statement) {
    const auto rs = sql(statement);
    std::vector<std::string> values;
    for (; !rs->EOF_(); rs->MoveNext()) values.push_back(toUtf8(toString(rs->Fields(0))));
    std::string text;
    for (const auto& v : values) text += (text.empty() ? "" : ",") + v;
    return text;
  }
};

struct Rows {
  std::u16string_view statement;
  std::string_view rows;  // the first column of the rows a server returns, in its order
};

void PrintTo(const Rows& r, std::ostream* os) {
  *os << toUtf8(r.statement);
}

class QueryRowsTest : public QueryStoreTest, public ::testing::WithParamInterface<Rows> {};

TEST_P(QueryRowsTest, ReturnsTheServersRows) {
  EXPECT_EQ(firstColumn(GetParam().statement), GetParam().rows) << toUtf8(GetParam().statement);
}

// Where a server leaves the order open, the statement orders the whole result at its end.
INSTANTIATE_TEST_SUITE_P(
    SetOperations, QueryRowsTest,
    ::testing::Values(
        // Criteria that append a UNION: the TOP limits the member it is written in.
        Rows{u"SELECT * FROM STEMS WHERE StemsId = 1 UNION SELECT TOP 1 * FROM STEMS WHERE "
             u"StemsId = 2",
             "1,2"},
        Rows{u"SELECT TOP 5 * FROM STEMS WHERE StemsId = 1 UNION SELECT TOP 1 * FROM STEMS WHERE "
             u"StemsId = 2 ORDER BY StemsId",
             "1,2"},
        Rows{u"SELECT TOP 1 ProductionRunId FROM STEMS WHERE ProductionRunId = 77 UNION ALL "
             u"SELECT TOP 2 ProductionRunId FROM STEMS WHERE ProductionRunId = 78 ORDER BY 1",
             "77,78,78"},
        Rows{u"SELECT TOP 1 StemsId FROM STEMS WHERE StemsId = 4 UNION SELECT StemsId FROM STEMS "
             u"WHERE StemsId < 3 ORDER BY StemsId DESC",
             "4,2,1"},
        Rows{u"select top (2) StemsId from Stems where ProductionRunId = 78 union all select "
             u"StemsId from Stems where StemsId = 1 order by StemsId",
             "1,4,5"},
        Rows{u"(SELECT TOP 1 StemsId FROM STEMS ORDER BY TotalNetWeight) UNION ALL (SELECT TOP 1 "
             u"StemsId FROM STEMS ORDER BY TotalNetWeight DESC) ORDER BY StemsId",
             "2,4"},
        Rows{u"SELECT TOP 1 * FROM (SELECT TOP 3 StemsId FROM STEMS ORDER BY StemsId) AS d ORDER "
             u"BY StemsId DESC",
             "3"},
        // INTERSECT binds before UNION and EXCEPT; those two go left to right.
        Rows{u"SELECT StemsId FROM STEMS WHERE StemsId = 1 UNION SELECT StemsId FROM STEMS WHERE "
             u"StemsId < 4 INTERSECT SELECT StemsId FROM STEMS WHERE StemsId > 2 ORDER BY 1",
             "1,3"},
        Rows{u"SELECT StemsId FROM STEMS EXCEPT SELECT StemsId FROM STEMS WHERE StemsId > 2 UNION "
             u"SELECT 6 ORDER BY 1",
             "1,2,6"},
        Rows{u"SELECT StemsId FROM STEMS WHERE StemsId < 3 INTERSECT (SELECT StemsId FROM STEMS "
             u"WHERE StemsId = 2 UNION SELECT 5) ORDER BY 1",
             "2"},
        Rows{u"SELECT TotalNetWeight AS Weight FROM STEMS WHERE StemsId = 2 UNION SELECT "
             u"TotalNetWeight FROM STEMS WHERE StemsId = 4 ORDER BY Weight",
             "5,30"}));

INSTANTIATE_TEST_SUITE_P(
    Subqueries, QueryRowsTest,
    ::testing::Values(
        Rows{u"SELECT d.StemsId FROM (SELECT TOP 2 StemsId FROM STEMS ORDER BY TotalNetWeight "
             u"DESC) AS d ORDER BY d.StemsId",
             "2,3"},
        Rows{u"SELECT StemsId FROM STEMS WHERE StemsId IN (SELECT TOP 3 StemsId FROM STEMS ORDER "
             u"BY TotalNetWeight) ORDER BY StemsId",
             "4,5,6"},
        Rows{u"SELECT StemsId FROM STEMS WHERE StemsId IN (SELECT TOP 1 StemsId FROM STEMS WHERE "
             u"StemsId = 1 UNION SELECT StemsId FROM STEMS WHERE StemsId = 6) ORDER BY StemsId",
             "1,6"},
        Rows{u"SELECT TOP 2 StemsId FROM STEMS WHERE StemsId NOT IN (SELECT TOP 1 StemsId FROM "
             u"STEMS ORDER BY StemsId) ORDER BY StemsId DESC",
             "6,5"},
        // A TOP at every level, each over its own ORDER BY.
        Rows{u"SELECT StemsId FROM STEMS WHERE StemsId IN (SELECT TOP 2 StemsId FROM STEMS WHERE "
             u"ProductionRunId IN (SELECT TOP 1 ProductionRunId FROM PRODUCTIONRUN ORDER BY "
             u"ProductionRunId DESC) OR StemsId < 3 ORDER BY StemsId DESC) ORDER BY StemsId",
             "2,6"},
        Rows{u"SELECT (SELECT TOP 1 StemsId FROM STEMS ORDER BY TotalNetWeight DESC)", "2"},
        Rows{u"SELECT StemsId FROM STEMS s WHERE TotalNetWeight = (SELECT TOP 1 TotalNetWeight "
             u"FROM STEMS i WHERE i.ProductionRunId = s.ProductionRunId ORDER BY TotalNetWeight) "
             u"ORDER BY StemsId",
             "1,4,6"},
        Rows{u"SELECT StemsId FROM STEMS WHERE EXISTS (SELECT TOP 1 * FROM PRODUCTIONRUN r WHERE "
             u"r.ProductionRunId = STEMS.ProductionRunId AND r.ShiftNumber = 1) ORDER BY StemsId",
             "4,5"},
        // Aliases bind in their own SELECT: the derived table's d and w, the outer d.
        Rows{u"SELECT d.w FROM (SELECT TOP 1 TotalNetWeight AS w FROM STEMS d ORDER BY w DESC) "
             u"AS d",
             "30"},
        Rows{u"SELECT d.w FROM (SELECT TOP 2 w = TotalNetWeight FROM STEMS ORDER BY w) d ORDER BY "
             u"d.w DESC",
             "6,5"}));

TEST_F(QueryStoreTest, AliasesAreWrittenAsAServerReadsThem) {
  const auto rs =
      sql(u"SELECT Heaviest = MAX(TotalNetWeight), COUNT(*) 'Stems', "
          u"MIN(TotalNetWeight) AS \"Lightest\", [Runs] = COUNT(DISTINCT "
          u"ProductionRunId), 1 AS One FROM STEMS");
  ASSERT_FALSE(rs->EOF_());
  EXPECT_EQ(toDouble(rs->Fields(u"Heaviest")), 30.0);
  EXPECT_EQ(toLong(rs->Fields(u"Stems")), 6);
  EXPECT_EQ(toDouble(rs->Fields(u"Lightest")), 5.0);
  EXPECT_EQ(toLong(rs->Fields(u"Runs")), 3);
  EXPECT_EQ(toLong(rs->Fields(u"One")), 1);
}

TEST_F(QueryStoreTest, AliasesOfASubqueryDoNotReachOutOfIt) {
  for (const auto* text :
       {u"SELECT w FROM STEMS WHERE StemsId IN (SELECT StemsId AS w FROM STEMS)",
        u"SELECT i.StemsId FROM STEMS WHERE StemsId IN (SELECT TOP 1 i.StemsId FROM STEMS i)",
        u"SELECT w FROM (SELECT TOP 1 TotalNetWeight AS w FROM STEMS) AS d UNION SELECT w FROM "
        u"STEMS"}) {
    const Error e = errorOf([&] { sql(text); });
    EXPECT_EQ(e.nativeError(), 207) << toUtf8(text) << ": " << e.description();
  }
}

TEST_F(QueryStoreTest, AnUpdateTargetsAliasInsideASubqueryIsTheSubquerysOwn) {
  // The inner x is the inner STEMS; the outer x is the row being updated.
  sql(u"UPDATE x SET TotalNetWeight = (SELECT MAX(x.TotalNetWeight) FROM STEMS x WHERE "
      u"x.ProductionRunId = 78) FROM STEMS x WHERE x.StemsId = 1");
  EXPECT_EQ(toDouble(scalar(u"SELECT TotalNetWeight FROM STEMS WHERE StemsId = 1")), 6.0);
}

TEST_F(QueryStoreTest, InsertTakesTheRowsOfAUnionWithATop) {
  sql(u"INSERT INTO PICKINGTYPE (Description, SortSequence) (SELECT TOP 1 'heavy', StemsId FROM "
      u"STEMS ORDER BY TotalNetWeight DESC) UNION ALL SELECT 'light', 1");
  EXPECT_EQ(count(u"PICKINGTYPE"), 2);
  EXPECT_EQ(toLong(scalar(u"SELECT SortSequence FROM PICKINGTYPE WHERE Description = 'HEAVY'")), 2);
}

struct Refusal {
  std::u16string_view statement;
  std::int32_t nativeError;
};

void PrintTo(const Refusal& r, std::ostream* os) {
  *os << toUtf8(r.statement);
}

class QueryRefusalTest : public QueryStoreTest, public ::testing::WithParamInterface<Refusal> {};

TEST_P(QueryRefusalTest, IsRefusedWithTheServersNumber) {
  const Error e = errorOf([&] { sql(GetParam().statement); });
  EXPECT_EQ(e.number(), err::kCommandError);
  EXPECT_EQ(e.sqlState(), "42000");
  EXPECT_EQ(e.nativeError(), GetParam().nativeError) << e.description();
}

INSTANTIATE_TEST_SUITE_P(
    Refused, QueryRefusalTest,
    ::testing::Values(
        // A member is ordered only inside parentheses; the server reads no ORDER BY before UNION.
        Refusal{u"SELECT TOP 1 * FROM STEMS ORDER BY StemsId UNION SELECT * FROM STEMS", 102},
        Refusal{u"SELECT * FROM STEMS WHERE StemsId IN (SELECT StemsId FROM STEMS ORDER BY 1 "
                u"EXCEPT SELECT 1)",
                102},
        Refusal{u"SELECT 1 UNION", 102}, Refusal{u"SELECT 1 UNION 2", 102},
        Refusal{u"SELECT 1 UNION (1)", 102},
        // TOPs the store cannot give as a LIMIT.
        Refusal{u"SELECT TOP 50 PERCENT * FROM STEMS", 102},
        Refusal{u"SELECT * FROM STEMS UNION SELECT TOP (1) WITH TIES * FROM STEMS ORDER BY 1", 102},
        Refusal{u"SELECT * FROM STEMS WHERE StemsId IN (SELECT TOP (StemsId) StemsId FROM STEMS)",
                102},
        Refusal{u"SELECT TOP 1.5 * FROM STEMS", 1060}));

TEST_F(QueryStoreTest, NestingStopsWhereAServerStops) {
  const auto nested = [](int levels) {
    std::u16string text = u"SELECT StemsId FROM STEMS WHERE StemsId IN ";
    for (int i = 0; i < levels; ++i) text += u"(SELECT TOP 2 StemsId FROM STEMS WHERE StemsId IN ";
    text += u"(1, 2, 3)";
    text.append(static_cast<std::size_t>(levels), u')');
    return text;
  };
  EXPECT_EQ(firstColumn(nested(8) + u" ORDER BY StemsId"), "1,2");
  EXPECT_EQ(errorOf([&] { sql(nested(40)); }).nativeError(), 191);  // SQLite's parser stops
  EXPECT_EQ(errorOf([&] { sql(nested(100)); }).nativeError(), 191);
  const std::u16string parens(100000, u'(');
  EXPECT_EQ(errorOf([&] { sql(u"SELECT " + parens + u"SELECT 1"); }).nativeError(), 191);
  EXPECT_EQ(errorOf([&] { sql(u"SELECT " + parens + u"1"); }).nativeError(), 191);
}

// The text SQLite is given, where the shape of the rewrite is the point.
TEST(QueryTranslation, MembersWithATopBecomeSubqueries) {
  const auto text = [](std::u16string_view sql, bool quotedIdentifier = false) {
    const Tokens tokens(sql);
    return toUtf8(translate(tokens, 0, tokens.size(), quotedIdentifier));
  };
  EXPECT_EQ(text(u"SELECT a FROM T UNION ALL SELECT TOP 1 a FROM U ORDER BY a"),
            "SELECT a FROM T UNION ALL SELECT * FROM (SELECT a FROM U LIMIT 1) ORDER BY a");
  EXPECT_EQ(text(u"SELECT a FROM T EXCEPT SELECT b FROM U INTERSECT SELECT c FROM V"),
            "SELECT a FROM T EXCEPT SELECT * FROM (SELECT b FROM U INTERSECT SELECT c FROM V)");
  EXPECT_EQ(text(u"SELECT x = 1, 2 'y', 3 AS \"z\", 4 w, 'v' FROM T"),
            "SELECT 1 AS \"x\", 2 AS \"y\", 3 AS \"z\", 4 w, 'v' COLLATE NOCASE FROM T");
  EXPECT_EQ(text(u"WITH c AS (SELECT TOP 2 a FROM T ORDER BY a) SELECT TOP 1 a FROM c", true),
            "WITH c AS (SELECT a FROM T ORDER BY a LIMIT 2) SELECT a FROM c LIMIT 1");
}

}  // namespace

}  // namespace vrdppo::embedded::testing
