// What comes back: typed values, dates compared by the moment they stand for whatever form they
// were written in, the T-SQL functions, LIKE, and QUOTED_IDENTIFIER.
#include <vector>

#include "store_fixture.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

using TypeTest = StoreTest;

TEST_F(TypeTest, ColumnsReadBackTypedByTheirDeclaredType) {
  direct(
      "CREATE TABLE T_ALL (i INT, b BIGINT, f FLOAT, r REAL, m MONEY, d DECIMAL(10,2), "
      "dt DATETIME, s VARCHAR(10), bt BIT, n INT)");
  Client c(path_);
  c.run(
      u"INSERT INTO T_ALL VALUES (1, 5000000000, 2.5, 0.25, 12.3456, 1.5, '2019/03/07 14:05:09', "
      u"'abc', 1, NULL)");
  c.run(u"INSERT INTO T_ALL VALUES (-2, 7, 3, 1E+15, 3, 2, '2019-03-08', 'Zürich 𝄞', 0, NULL)");
  c.run(u"INSERT INTO T_ALL (dt) VALUES ('soon')");
  const auto rs = c.run(u"SELECT * FROM T_ALL");
  ASSERT_EQ(rs->recordCount(), 3u);
  const std::vector<Variant> first{Variant(1),
                                   Variant(std::int64_t{5000000000}),
                                   Variant(2.5),
                                   Variant(0.25),
                                   Variant(Currency{123456}),
                                   Variant(1.5),
                                   Variant(makeDate(2019, 3, 7, 14, 5, 9)),
                                   Variant(u"abc"),
                                   Variant(true),
                                   Variant::null()};
  for (std::size_t i = 0; i < first.size(); ++i) {
    EXPECT_EQ(rs->Fields(i), first[i]) << toUtf8(rs->fieldName(i));
  }
  rs->MoveNext();
  const std::vector<Variant> second{Variant(-2),
                                    Variant(7),
                                    Variant(3.0),
                                    Variant(1E+15),
                                    Variant(Currency{30000}),
                                    Variant(2.0),
                                    Variant(makeDate(2019, 3, 8)),
                                    Variant(u"Zürich 𝄞"),
                                    Variant(false),
                                    Variant::null()};
  for (std::size_t i = 0; i < second.size(); ++i) {
    EXPECT_EQ(rs->Fields(i), second[i]) << toUtf8(rs->fieldName(i));
  }
  rs->MoveNext();
  EXPECT_EQ(rs->Fields(u"dt"), Variant(u"soon"));  // no date: the text as it stands
}

TEST_F(TypeTest, ExpressionsAreTypedByTheirValuesAndNamedAsTheSelectNamesThem) {
  const auto rs =
      sql(u"SELECT 1 AS One, 2.5 AS [Two Five], 'x' AS x, NULL AS n, 5000000000 AS big");
  const std::vector<std::pair<std::string, Variant>> expected{
      {"One", Variant(1)},
      {"Two Five", Variant(2.5)},
      {"x", Variant(u"x")},
      {"n", Variant::null()},
      {"big", Variant(std::int64_t{5000000000})}};
  ASSERT_EQ(rs->fieldCount(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(toUtf8(rs->fieldName(i)), expected[i].first);
    EXPECT_EQ(rs->Fields(i), expected[i].second);
  }
  insert(u"INSERT INTO STEMS (TotalNetWeight, StemTypeId) VALUES (1, 2)");
  // A column reference is named as its table declares it, found in any case.
  const auto named = sql(u"SELECT stemsid, StemTypeId, s.TotalNetWeight FROM STEMS s");
  EXPECT_EQ(toUtf8(named->fieldName(0)), "STEMSID");
  EXPECT_EQ(toUtf8(named->fieldName(1)), "StemTypeID");
  EXPECT_EQ(toUtf8(named->fieldName(2)), "TotalNetWeight");
  EXPECT_EQ(named->Fields(u"StemTypeId"), Variant(2));
}

TEST_F(TypeTest, DatesCompareAndSortByMomentWhateverFormTheyWereWrittenIn) {
  // Written by id in an order that is neither chronological nor textual.
  const std::vector<std::u16string_view> written{u"2019/03/07 14:05", u"2019-03-07",
                                                 u"2019/3/9",         u"2019/03/07 14:05:09",
                                                 u"2019/03/08",       u"March 6, 2019 11:30 PM"};
  for (std::size_t i = 0; i < written.size(); ++i) {
    insert(u"INSERT INTO PRODUCTIONRUN (ProductionDate, ShiftNumber) VALUES ('" +
           std::u16string(written[i]) + u"', " + ascii(std::to_string(i + 1)) + u")");
  }
  const auto ordered = sql(u"SELECT ShiftNumber FROM PRODUCTIONRUN ORDER BY ProductionDate");
  std::vector<std::int32_t> order;
  for (; !ordered->EOF_(); ordered->MoveNext())
    order.push_back(ordered->Fields(std::size_t{0}).lng());
  EXPECT_EQ(order, (std::vector<std::int32_t>{6, 2, 1, 4, 5, 3}));

  struct Case {
    std::u16string_view criteria;
    std::int32_t rows;
  };
  for (const auto& c :
       {Case{u"ProductionDate = '2019/03/07'", 1},
        Case{u"ProductionDate = '2019/03/07 14:05:00'", 1},
        Case{u"ProductionDate >= '2019/03/07 14:05'", 4},
        Case{u"ProductionDate > '2019/03/07 14:05'", 3}, Case{u"ProductionDate < '2019/03/07'", 1},
        Case{u"ProductionDate BETWEEN '2019/03/07' AND '2019/03/08'", 4},
        Case{u"ProductionDate IN ('2019/03/09', '2019-03-08 00:00:00')", 2},
        Case{u"ProductionDate > DATEADD(day, -1, '2019/03/09')", 1},
        Case{u"ProductionDate = (SELECT MAX(ProductionDate) FROM PRODUCTIONRUN)", 1}}) {
    EXPECT_EQ(count(u"PRODUCTIONRUN WHERE " + std::u16string(c.criteria)), c.rows)
        << toUtf8(c.criteria);
  }
  EXPECT_EQ(scalar(u"SELECT ShiftNumber FROM PRODUCTIONRUN WHERE ProductionDate = "
                   u"(SELECT MAX(ProductionDate) FROM PRODUCTIONRUN)"),
            Variant(3));
  EXPECT_EQ(scalar(u"SELECT ProductionDate FROM PRODUCTIONRUN WHERE ShiftNumber = 6"),
            Variant(makeDate(2019, 3, 6, 23, 30)));
}

struct Expression {
  std::u16string_view sql;
  Variant expected;
};

class FunctionTest : public StoreTest, public ::testing::WithParamInterface<Expression> {};

TEST_P(FunctionTest, GivesWhatTheServerGives) {
  const Variant got = scalar(u"SELECT " + std::u16string(GetParam().sql));
  EXPECT_EQ(got, GetParam().expected) << toUtf8(GetParam().sql) << " gave " << describe(got);
}

using V = Variant;
INSTANTIATE_TEST_SUITE_P(
    Text, FunctionTest,
    ::testing::Values(
        Expression{u"LEN('abc  ')", V(3)}, Expression{u"LEN('')", V(0)},
        Expression{u"LEN(NULL)", V::null()}, Expression{u"LEFT('abcdef', 2)", V(u"ab")},
        Expression{u"LEFT('Zürich', 2)", V(u"Zü")}, Expression{u"RIGHT('abcdef', 2)", V(u"ef")},
        Expression{u"RIGHT('ab', 5)", V(u"ab")}, Expression{u"CHARINDEX('C', 'abcabc')", V(3)},
        Expression{u"CHARINDEX('c', 'abcabc', 4)", V(6)},
        Expression{u"CHARINDEX('x', 'abc')", V(0)}, Expression{u"UPPER('abc')", V(u"ABC")},
        Expression{u"LOWER('ABC')", V(u"abc")}, Expression{u"LTRIM(RTRIM('  a  '))", V(u"a")},
        Expression{u"ISNULL(NULL, 5)", V(5)},
        Expression{u"CASE WHEN 'ABC' = 'abc' THEN 1 ELSE 0 END", V(1)},
        Expression{u"CASE WHEN LEFT('ABC', 1) = \"a\" THEN 1 ELSE 0 END", V(1)},
        Expression{u"CONVERT(int, '12')", V(12)}, Expression{u"CONVERT(int, 12.7)", V(12)},
        Expression{u"CONVERT(varchar(3), 'abcdef')", V(u"abc")},
        Expression{u"CONVERT(char(4), 'ab')", V(u"ab  ")},
        Expression{u"CONVERT(float, '2.5')", V(2.5)}, Expression{u"CAST('7' AS int)", V(7)},
        Expression{u"CAST('abcdef' AS varchar(2))", V(u"ab")},
        Expression{u"CAST(2.5 * 3 AS int)", V(7)},
        Expression{u"CONCAT('a', NULL, 1, 'b')", V(u"a1b")},
        Expression{u"REPLICATE('ab', 2)", V(u"abab")}, Expression{u"SPACE(2)", V(u"  ")}));

INSTANTIATE_TEST_SUITE_P(
    Dates, FunctionTest,
    ::testing::Values(
        Expression{u"YEAR('2019/03/07')", V(2019)}, Expression{u"MONTH('2019/03/07')", V(3)},
        Expression{u"DAY('2019-03-07 14:05')", V(7)},
        Expression{u"DATEADD(day, 1, '2019/02/28')", V(u"2019/03/01 00:00:00")},
        Expression{u"DATEADD(month, 1, '2019/01/31')", V(u"2019/02/28 00:00:00")},
        Expression{u"DATEADD(yy, -1, '2020/02/29 10:00')", V(u"2019/02/28 10:00:00")},
        Expression{u"DATEADD(hour, 25, '2019/03/07 14:05:09')", V(u"2019/03/08 15:05:09")},
        Expression{u"DATEADD(minute, -5, '2019/03/07 00:02')", V(u"2019/03/06 23:57:00")},
        Expression{u"DATEDIFF(day, '2019/03/07 23:59', '2019/03/08 00:01')", V(1)},
        Expression{u"DATEDIFF(month, '2019/01/31', '2019/02/01')", V(1)},
        Expression{u"DATEDIFF(year, '2018/12/31', '2019/01/01')", V(1)},
        Expression{u"DATEDIFF(hour, '2019/03/07 14:59', '2019/03/07 15:00')", V(1)},
        Expression{u"DATEDIFF(mi, '2019/03/07 15:00', '2019/03/07 14:00')", V(-60)},
        Expression{u"DATEDIFF(week, '2019/03/09', '2019/03/10')", V(1)},
        Expression{u"DATEPART(weekday, '2019/03/10')", V(1)},
        Expression{u"DATEPART(dayofyear, '2019/03/07')", V(66)},
        Expression{u"DATEPART(week, '2019/01/06')", V(2)},
        Expression{u"DATEPART(quarter, '2019/08/01')", V(3)},
        Expression{u"DATEPART(hh, '2019/03/07 14:05:09')", V(14)},
        Expression{u"DATENAME(month, '2019/03/07')", V(u"March")},
        Expression{u"CONVERT(varchar(10), '2019-03-07 14:05:09', 111)", V(u"2019/03/07")},
        Expression{u"CONVERT(varchar(20), '2019/03/07 14:05:09', 120)", V(u"2019-03-07 14:05:09")},
        Expression{u"CONVERT(varchar(8), '2019/03/07 14:05:09', 108)", V(u"14:05:09")},
        Expression{u"CONVERT(varchar(10), '2019/03/07', 103)", V(u"07/03/2019")},
        Expression{u"CONVERT(datetime, '2019-03-07')", V(u"2019/03/07 00:00:00")},
        Expression{u"CAST('20190307 14:05' AS datetime)", V(u"2019/03/07 14:05:00")},
        Expression{u"CASE WHEN CAST('2019/3/7' AS date) = '2019-03-07' THEN 1 ELSE 0 END", V(1)},
        Expression{u"LEN(CONVERT(varchar(19), GETDATE(), 120))", V(19)},
        Expression{u"CASE WHEN GETDATE() > '2019/03/07' THEN 1 ELSE 0 END", V(1)}));

struct Like {
  std::u16string_view value;
  std::u16string_view pattern;
  bool matches;
};

class LikeTest : public StoreTest, public ::testing::WithParamInterface<Like> {};

TEST_P(LikeTest, MatchesAsTSqlDoes) {
  const auto& l = GetParam();
  EXPECT_EQ(scalar(u"SELECT CASE WHEN '" + std::u16string(l.value) + u"' LIKE '" +
                   std::u16string(l.pattern) + u" THEN 1 ELSE 0 END"),
            Variant(l.matches ? 1 : 0))
      << toUtf8(l.value) << " LIKE " << toUtf8(l.pattern);
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, LikeTest,
    ::testing::Values(Like{u"abc", u"a%'", true}, Like{u"ABC", u"a_c'", true},
                      Like{u"abc", u"[a-b]bc'", true}, Like{u"cbc", u"[^a-b]bc'", true},
                      Like{u"abc", u"[^a]bc'", false}, Like{u"a%c", u"a[%]c'", true},
                      Like{u"abc", u"a[%]c'", false}, Like{u"abcd", u"%c%'", true},
                      Like{u"", u"%'", true}, Like{u"ab", u"_'", false},
                      Like{u"a_c", u"a!_c' ESCAPE '!'", true},
                      Like{u"abc", u"a!_c' ESCAPE '!'", false}, Like{u"Zürich", u"z_rich'", true},
                      Like{u"aXbXc", u"%x%x_'", true}));

TEST_F(TypeTest, DoubleQuotesNameColumnsUntilQuotedIdentifierIsSetOff) {
  sql(u"INSERT INTO PICKINGTYPE (Description, SortSequence) VALUES ('Hand', 1)");
  Client c(path_, false);
  EXPECT_EQ(c.scalar(u"SELECT \"Description\" FROM PICKINGTYPE"), Variant(u"Hand"));
  const Error e =
      errorOf([&] { c.run(u"SELECT * FROM PICKINGTYPE WHERE Description = \"Hand\""); });
  EXPECT_EQ(e.sqlState(), "42S22");
  EXPECT_EQ(e.nativeError(), 207);

  c.run(u"SET QUOTED_IDENTIFIER OFF");
  EXPECT_EQ(c.scalar(u"SELECT COUNT(*) FROM PICKINGTYPE WHERE Description = \"hand\""), Variant(1));
  EXPECT_EQ(c.scalar(u"SELECT \"say \"\"hi\"\" it's\""), Variant(u"say \"hi\" it's"));
  c.run(u"set quoted_identifier on");
  EXPECT_EQ(c.scalar(u"SELECT \"SortSequence\" FROM PICKINGTYPE"), Variant(1));
}

}  // namespace

}  // namespace vrdppo::embedded::testing
