// The T-SQL the library and its clients send, translated and run against a real store file.
#include <string>
#include <vector>

#include "../../src/providers/embedded/translator.hpp"
#include "store_fixture.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

std::u16string translated(std::u16string_view sql, bool quotedIdentifier = false) {
  const Tokens tokens(sql);
  return translate(tokens, 0, tokens.size(), quotedIdentifier);
}

struct Translation {
  std::u16string_view tsql;
  std::u16string_view sqlite;
  bool quotedIdentifier = false;
};

class TranslationTest : public ::testing::TestWithParam<Translation> {};

TEST_P(TranslationTest, GivesSqliteText) {
  EXPECT_EQ(toUtf8(translated(GetParam().tsql, GetParam().quotedIdentifier)),
            toUtf8(GetParam().sqlite));
}

INSTANTIATE_TEST_SUITE_P(
    Dialect, TranslationTest,
    ::testing::Values(
        Translation{u"SELECT TOP 5 * FROM T WHERE a = 1 ORDER BY b",
                    u"SELECT * FROM T WHERE a = 1 ORDER BY b LIMIT 5"},
        Translation{u"SELECT DISTINCT TOP (2) a, b FROM T", u"SELECT DISTINCT a, b FROM T LIMIT 2"},
        Translation{u"SELECT * FROM T WHERE x IN (SELECT TOP 1 y FROM U ORDER BY y) ORDER BY x",
                    u"SELECT * FROM T WHERE x IN (SELECT y FROM U ORDER BY y LIMIT 1) ORDER BY x"},
        Translation{u"SELECT [a b], [x]]y] FROM [dbo].[T]", u"SELECT \"a b\", \"x]y\" FROM \"T\""},
        Translation{u"SELECT * FROM dbo.T WHERE s = \"it's \"\"x\"\"\"",
                    u"SELECT * FROM T WHERE s = 'it''s \"x\"' COLLATE NOCASE"},
        Translation{u"SELECT \"s\" FROM T", u"SELECT \"s\" FROM T", true},
        Translation{u"SELECT N'x' FROM T -- note\n/* a /* nested */ one */",
                    u"SELECT 'x' COLLATE NOCASE FROM T "},
        Translation{u"SELECT * FROM T WHERE d >= '2019/03/08' AND s IN ('a', N'b')",
                    u"SELECT * FROM T WHERE d >= '2019/03/08' AND s IN ('a' COLLATE NOCASE, 'b' "
                    u"COLLATE NOCASE)"},
        Translation{u"PRAGMA user_version", u"PRAGMA user_version"},
        Translation{
            u"SELECT ISNULL(a, 0), LEFT(b, 2), RIGHT(b, 1) FROM T LEFT JOIN U ON 1 = 1",
            u"SELECT ifnull(a, 0), vr_left(b, 2), vr_right(b, 1) FROM T LEFT JOIN U ON 1 = 1"},
        Translation{u"SELECT DATEADD(day, -7, GETDATE())",
                    u"SELECT DATEADD('day', -7, GETDATE() COLLATE VDATE) COLLATE VDATE"},
        Translation{u"SELECT DATEDIFF(mi, a, b), DATEPART(yy, a) FROM T",
                    u"SELECT DATEDIFF('mi', a, b), DATEPART('yy', a) FROM T"},
        Translation{u"SELECT CONVERT(varchar(10), d, 111), CONVERT(datetime, s) FROM T",
                    u"SELECT vr_convert('varchar(10)', d, 111), vr_convert('datetime', s) COLLATE "
                    u"VDATE FROM T"},
        Translation{u"SELECT @@IDENTITY", u"SELECT scope_identity()"},
        Translation{u"SELECT CAST(a + 1 AS varchar(5)), CAST(d AS datetime) FROM VRD.dbo.T",
                    u"SELECT vr_convert('varchar(5)', a + 1), vr_convert('datetime', d) COLLATE "
                    u"VDATE FROM T"},
        Translation{u"UPDATE T SET T.a = 1, b = 2 WHERE c = 3",
                    u"UPDATE T SET a = 1, b = 2 WHERE c = 3"},
        Translation{u"update LabDegradation set sampletype = '999' from LabDegradation inner join "
                    u"dbo.ProductionGrade on ProductionGrade.ProductionGradeID = "
                    u"LabDegradation.ProductionGradeID WHERE LabSeason = 2019",
                    u"UPDATE \"LabDegradation\" SET sampletype = '999' COLLATE NOCASE WHERE rowid "
                    u"IN (SELECT "
                    u"\"LabDegradation\".rowid FROM LabDegradation inner join ProductionGrade on "
                    u"ProductionGrade.ProductionGradeID = LabDegradation.ProductionGradeID WHERE "
                    u"LabSeason = 2019)"},
        Translation{
            u"UPDATE x SET a = x.b FROM T x JOIN U ON U.id = x.id",
            u"UPDATE \"T\" SET a = \"T\".b WHERE rowid IN (SELECT \"x\".rowid FROM T x JOIN "
            u"U ON U.id = x.id)"},
        Translation{u"UPDATE T SET a = U.b FROM U WHERE U.id = T.id",
                    u"UPDATE T SET a = U.b FROM U WHERE U.id = T.id"}));

// Every UTF-16 unit, placed after a letter and before a space: a word's own character extends
// the word, a blank ends it, anything else stands apart.
TEST(Tokens, ClassifyEveryCharacterAsTheDialectDoes) {
  const auto wordChar = [](char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           c == u'_' || c == u'#' || c == u'$' || c == u'@' || c >= 0x80;
  };
  const std::u16string_view blanks = u" \t\r\n\f\v";
  int mismatches = 0;
  for (char32_t c = 1; c <= 0xFFFF; ++c) {
    const char16_t u = static_cast<char16_t>(c);
    // Characters that open a quote, a comment or an operator pair are covered elsewhere.
    if (std::u16string_view(u"'\"[-/<>!|").find(u) != std::u16string_view::npos) continue;
    const std::u16string text{u'a', u, u' '};
    const Tokens t(text);
    const bool extends = t[0].end == 2;
    const bool blank = t[0].end == 1 && t[1].kind == Tok::Space && t[1].end == 3;
    if (extends != wordChar(u) || blank != (blanks.find(u) != std::u16string_view::npos)) {
      ++mismatches;
      ADD_FAILURE() << "U+" << std::hex << static_cast<unsigned>(c);
      if (mismatches > 5) break;
    }
  }
}

// A quoted token's value: the text inside, each doubled closing character standing for one.
TEST(Unquote, UndoesEveryDoubledClosingCharacter) {
  struct Case {
    std::u16string_view token;
    std::u16string_view value;
  } cases[] = {
      {u"''", u""},        {u"'a'", u"a"},     {u"'it''s'", u"it's"},
      {u"''''", u"'"},     {u"''''''", u"''"}, {u"'a''''b'", u"a''b"},
      {u"'''a'", u"'a"},   {u"'a'''", u"a'"},  {u"\"say \"\"hi\"\"\"", u"say \"hi\""},
      {u"[a]]b]", u"a]b"}, {u"[a[b]", u"a[b"}, {u"'", u""},
  };
  for (const auto& c : cases) EXPECT_EQ(unquote(c.token), c.value) << toUtf8(c.token);
}

TEST(TranslationErrors, RejectWhatTheDialectCannotRead) {
  for (const auto* text : {u"SELECT TOP x * FROM T", u"SELECT TOP 5 PERCENT * FROM T",
                           u"SELECT 'open", u"SELECT \"open", u"SELECT [open", u"/* open",
                           u"SELECT CONVERT(int) FROM T", u"SELECT @x"}) {
    const Error e = errorOf([&] { translated(text); });
    EXPECT_EQ(e.number(), err::kCommandError) << toUtf8(text);
    EXPECT_EQ(e.sqlState(), "42000") << toUtf8(text);
  }
}

// The plant's statement shapes, each run on a store seeded with a few runs and their outputs.
struct Shape {
  std::u16string_view statement;
  int rows;  // rows of the statement's result; -1 for a statement without a row set
  std::u16string_view check = {};  // a count taken afterwards...
  std::int32_t expected = 0;       // ...and what it must be
};

class ShapeTest : public StoreTest, public ::testing::WithParamInterface<Shape> {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    Client c(path_);
    for (const auto* seed :
         {u"INSERT INTO COMPANY (CompanyId, CompanyCode, CompanyName, DeletedFlag) VALUES "
          u"(1, 'C1', 'First', 'N'), (3, 'C3', 'Third', 'N')",
          u"INSERT INTO GRADE (GradeId, GradeCode, CompanyId) VALUES (5, 'G5', 3), (6, 'G6', 1)",
          u"INSERT INTO PRODUCTIONGRADE (PRODUCTIONGRADEID, ProductionGradeCode, GradeId, "
          u"DeletedFlag) VALUES (10, 'P10', 5, 'N'), (11, 'P11', 6, 'N')",
          u"INSERT INTO PRODUCTIONRUN (PRODUCTIONRUNID, ProductionDate, ShiftNumber, Status, "
          u"ProductionGradeId, ProductionLine, Comments) VALUES "
          u"(77, '2019/03/07', 2, 'A', 10, 'L1', Null), "
          u"(78, '2019/03/08 14:05:09', 1, 'B', 11, 'L2', ''), "
          u"(79, '2019-03-20 06:00', 2, 'C', 10, 'M1', NULL)",
          u"INSERT INTO STEMS (STEMSID, TotalNetWeight, StemTypeID, ProductionRunId) VALUES "
          u"(1, 10.5, 1, 77), (2, 30, 2, 77), (3, 20, 3, 77), (4, 5, 1, 78), (5, 6, 3, 78), "
          u"(6, 7, 2, 79)",
          u"INSERT INTO PICKINGTYPE (PICKINGTYPEID, Description, SortSequence) VALUES "
          u"(1, 'Hand picked', 1), (2, 'Machine', 2), (3, 'hand sorted', NULL)",
          u"INSERT INTO PICKINGS (ProductionRunId, Weight, PickingTypeId) VALUES "
          u"(77, 1, 1), (77, 2, 1), (77, 3, 2), (78, 4, 3)"}) {
      c.run(seed);
    }
  }
};

TEST_P(ShapeTest, IsAcceptedAndDoesWhatItSays) {
  const Shape& s = GetParam();
  const auto rs = sql(s.statement);
  if (s.rows < 0) {
    EXPECT_EQ(rs->State(), adStateClosed);
  } else {
    ASSERT_EQ(rs->State(), adStateOpen);
    EXPECT_EQ(rs->recordCount(), static_cast<std::size_t>(s.rows));
  }
  if (!s.check.empty()) {
    EXPECT_EQ(count(s.check), s.expected);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Reads, ShapeTest,
    ::testing::Values(
        Shape{u"SELECT * FROM STEMS", 6}, Shape{u"SELECT TOP 5 * FROM STEMS", 5},
        Shape{u"SELECT StemsId, TotalNetWeight, StemTypeID FROM STEMS", 6},
        Shape{
            u"SELECT TOP 2 StemsId, TotalNetWeight FROM Stems WHERE ProductionRunId = 77 ORDER BY "
            u"TotalNetWeight DESC",
            2},
        Shape{u"select * from stems where stemtypeid in (1, 3) order by stemsid", 4},
        Shape{u"SELECT * FROM [dbo].[STEMS] WHERE [ProductionRunId] = 78", 2},
        Shape{u"SELECT * FROM dbo.PRODUCTIONRUN", 3},
        Shape{u"SELECT * FROM PICKINGTYPE WHERE Description LIKE 'HAND%'", 2},
        Shape{u"SELECT * FROM PICKINGTYPE WHERE Description LIKE '[gh]and [^p]%'", 1},
        Shape{u"SELECT * FROM PICKINGTYPE WHERE Description = \"machine\"", 1},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE Status = N'a'", 1},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE ProductionDate >= '2019/03/08'", 2},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE ProductionDate = '2019/03/08 14:05:09'", 1},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE ProductionDate BETWEEN '2019/03/01' AND "
              u"'2019/03/08 14:05'",
              1},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE YEAR(ProductionDate) = 2019 AND "
              u"MONTH(ProductionDate) = 3 AND DAY(ProductionDate) < 10",
              2},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE DATEDIFF(day, ProductionDate, '2019/03/20') = 13",
              1},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE ProductionDate < DATEADD(day, 1, '2019/03/07')",
              1},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE CONVERT(varchar(10), ProductionDate, 111) = "
              u"'2019/03/08'",
              1},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE ProductionDate > GETDATE()", 0},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE ISNULL(Comments, '') = '' AND "
              u"LEN(ProductionLine) = 2 AND LEFT(ProductionLine, 1) = 'l'",
              2},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE CHARINDEX('1', ProductionLine) > 0 AND "
              u"UPPER(LTRIM(RTRIM(Status))) IN ('A', 'C')",
              2},
        Shape{u"SELECT * FROM PRODUCTIONRUN WHERE CAST(ShiftNumber AS varchar(5)) = '2' AND "
              u"DATEPART(month, ProductionDate) = 3",
              2},
        Shape{u"SELECT * FROM VRUNPICKINGTYPES WHERE ProductionRunId = 77 ORDER BY PickingTypeId",
              2},
        Shape{u"SELECT * FROM vProductionGradeList WHERE CompanyId = 3", 1}));

INSTANTIATE_TEST_SUITE_P(
    Writes, ShapeTest,
    ::testing::Values(
        Shape{u"UPDATE STEMS SET TotalNetWeight = 1, ContainerStart = Null, ContainerEnd = NULL "
              u"WHERE STEMSID = 1",
              -1, u"STEMS WHERE TotalNetWeight = 1 AND ContainerEnd IS NULL", 1},
        Shape{u"UPDATE PRODUCTIONGRADE SET DELETEDFLAG = 'Y' WHERE PRODUCTIONGRADEID = 10", -1,
              u"PRODUCTIONGRADE WHERE DeletedFlag = 'y'", 1},
        Shape{u"UPDATE PRODUCTIONGRADE SET DELETEDFLAG = 'Y'", -1,
              u"PRODUCTIONGRADE WHERE DeletedFlag = 'Y'", 2},
        Shape{u"DELETE FROM STEMS WHERE STEMSID = 1", -1, u"STEMS", 5},
        Shape{u"DELETE FROM Stems WHERE ProductionRunId = 77", -1, u"STEMS", 3},
        Shape{u"delete from stems", -1, u"STEMS", 0},
        Shape{u"DELETE FROM Stems Where ProductionRunId  IN (Select ProductionRunId FROM "
              u"ProductionRun WHERE ShiftNumber = 2 AND Status IN ('A','C') AND ProductionGradeID "
              u"IN (SELECT ProductionGradeId FROM ProductionGrade WHERE GradeID IN (SELECT GradeID "
              u"FROM Grade WHERE CompanyID = 3)))",
              -1, u"STEMS", 2},
        Shape{
            u"update Stems set stemtypeid = 9 from Stems inner join dbo.ProductionRun on "
            u"ProductionRun.ProductionRunId = Stems.ProductionRunId inner join productiongrade on "
            u"productiongrade.productiongradeid = ProductionRun.productiongradeid WHERE "
            u"ShiftNumber = 2 AND (StemTypeID = 1 or StemTypeID = 2) AND  GradeId = 5",
            -1, u"STEMS WHERE StemTypeID = 9", 3},
        Shape{u"UPDATE dbo.STEMS SET STEMS.ContainerStart = 4 WHERE StemsId = 2", -1,
              u"STEMS WHERE ContainerStart = 4", 1},
        Shape{
            u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO STEMS (TotalNetWeight, "
            u"ContainerStart, ContainerEnd, StemTypeId, ProductionRunId) VALUES (125.5, Null, 12, "
            u"3, 77)\"",
            1, u"STEMS WHERE TotalNetWeight = 125.5 AND ContainerStart IS NULL", 1},
        Shape{u"EXEC qsp_InsertStatement @p_Stmt = \"INSERT INTO PRODUCTIONGRADE  "
              u"(ProductionGradeCode, GradeId, DeletedFlag) VALUES ('Q\"\"1''s', Null, ' ')\" ",
              1, u"PRODUCTIONGRADE WHERE ProductionGradeCode = 'Q\"1''s'", 1},
        Shape{u"EXEC qsp_InsertStatement @p_Stmt = \"INSERT INTO PRODUCTIONGRADESPEC  "
              u"(ProductionGradeId, MinOverHalf, MinOverQuarter, CaseStraps) VALUES (10, "
              u"3.33333333333333E-02, 1E+15, -5)\"",
              1, u"PRODUCTIONGRADESPEC WHERE MinOverQuarter = 1000000000000000 AND CaseStraps = -5",
              1},
        Shape{u"exec ZZ_SetAuditTrailID 12", -1}, Shape{u"ZZ_SetAuditTrailID 12", -1},
        Shape{u"EXEC ZZ_SetAuditTrailID @p_AuditTrailID= 12 ", -1},
        Shape{u"EXECUTE dbo.ZZ_SetAuditTrailID @p_AuditTrailID=12;", -1},
        Shape{u"TRUNCATE TABLE PICKINGS", -1, u"PICKINGS", 0}));

}  // namespace

}  // namespace vrdppo::embedded::testing
