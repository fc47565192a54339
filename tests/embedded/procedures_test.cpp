// Procedure calls: how the dialect reads them, and the frame's procedures that the store ships.
#include <vector>

#include "../../src/providers/embedded/call.hpp"
#include "store_fixture.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

ProcArgs parsed(std::u16string_view text) {
  const Tokens t(text);
  std::size_t at = t.skip(0, t.size());
  if (t.isWord(at, u"EXEC") || t.isWord(at, u"EXECUTE")) ++at;
  return parseCall(t, at, t.size());
}

struct CallShape {
  std::u16string_view text;
  std::u16string_view procedure;
  std::vector<ProcArg> args;
};

class CallShapeTest : public ::testing::TestWithParam<CallShape> {};

TEST_P(CallShapeTest, ReadsNameAndArguments) {
  const auto& shape = GetParam();
  const ProcArgs a = parsed(shape.text);
  EXPECT_EQ(toUtf8(a.procedure()), toUtf8(shape.procedure));
  ASSERT_EQ(a.size(), shape.args.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    EXPECT_EQ(toUtf8(a[i].name), toUtf8(shape.args[i].name)) << i;
    EXPECT_EQ(a[i].value, shape.args[i].value) << i << " " << varTypeName(a[i].value.type());
  }
}

using V = Variant;
INSTANTIATE_TEST_SUITE_P(
    Calls, CallShapeTest,
    ::testing::Values(
        CallShape{u"qsp_LabSyncAdvice", u"qsp_LabSyncAdvice", {}},
        CallShape{u"sp_GenerateProcResultsReport ", u"sp_GenerateProcResultsReport", {}},
        CallShape{u"qsp_LabProcessingResults 2019, 'A,B','2019/03/01 00:00:00','2019/03/31 "
                  u"23:59:59'",
                  u"qsp_LabProcessingResults",
                  {{u"", V(2019)},
                   {u"", V(u"A,B")},
                   {u"", V(u"2019/03/01 00:00:00")},
                   {u"", V(u"2019/03/31 23:59:59")}}},
        CallShape{u"EXEC qsp_SendAlert 7,120", u"qsp_SendAlert", {{u"", V(7)}, {u"", V(120)}}},
        CallShape{u"EXEC qsp_PrizingCloseRun 7, 3, 1, 0",
                  u"qsp_PrizingCloseRun",
                  {{u"", V(7)}, {u"", V(3)}, {u"", V(1)}, {u"", V(0)}}},
        CallShape{
            u"EXEC qspsys_AdjustSortSequence 'ByProductsType', 7, -1, 'CompanyId = 3'",
            u"qspsys_AdjustSortSequence",
            {{u"", V(u"ByProductsType")}, {u"", V(7)}, {u"", V(-1)}, {u"", V(u"CompanyId = 3")}}},
        CallShape{u"exec dbo.qsp_X @p_Season= 2019, @p_CompanyID=3, @p_LabHeaderId = 5, "
                  u"@p_Status='H' ",
                  u"qsp_X",
                  {{u"p_Season", V(2019)},
                   {u"p_CompanyID", V(3)},
                   {u"p_LabHeaderId", V(5)},
                   {u"p_Status", V(u"H")}}},
        CallShape{u"EXECUTE [p] 125.5, 3.33333333333333E-02, 1E+15, Null, NULL, 'O''Neil', "
                  u"\"say \"\"hi\"\"\", N'x', 5000000000, DEFAULT, word",
                  u"p",
                  {{u"", V(125.5)},
                   {u"", V(3.33333333333333E-02)},
                   {u"", V(1E+15)},
                   {u"", V::null()},
                   {u"", V::null()},
                   {u"", V(u"O'Neil")},
                   {u"", V(u"say \"hi\"")},
                   {u"", V(u"x")},
                   {u"", V(std::int64_t{5000000000})},
                   {u"", V()},
                   {u"", V(u"word")}}}));

TEST(CallErrors, RejectMalformedCalls) {
  struct Case {
    std::u16string_view text;
    std::int32_t nativeError;
  };
  for (const auto& c : {Case{u"EXEC", 102}, Case{u"EXEC p 1 2", 102}, Case{u"EXEC p 1,", 102},
                        Case{u"EXEC p @a 1", 137}, Case{u"EXEC p @a = 1, 2", 119},
                        Case{u"EXEC p @v", 137}, Case{u"EXEC p -'x'", 102}}) {
    const Error e = errorOf([&] { parsed(c.text); });
    EXPECT_EQ(e.number(), err::kCommandError) << toUtf8(c.text);
    EXPECT_EQ(e.nativeError(), c.nativeError) << toUtf8(c.text);
  }
}

using ProcedureTest = StoreTest;

TEST_F(ProcedureTest, UnknownProceduresAreTheServersError2812) {
  for (const auto* text : {u"qsp_NoSuchProcedure", u"EXEC qsp_NoSuchAlert 7,120",
                           u"exec qsp_X @p_Season= 2019", u"[qsp_Y] 'a'"}) {
    const Error e = errorOf([&] { sql(text); });
    EXPECT_EQ(e.number(), err::kCommandError);
    EXPECT_EQ(e.sqlState(), "42000");
    EXPECT_EQ(e.nativeError(), 2812);
    EXPECT_EQ(e.source(), "vrdppo.Embedded");
  }
  EXPECT_EQ(errorOf([&] { sql(u"EXEC qsp_Nope 1"); }).description(),
            "[vrdppo.Embedded]Could not find stored procedure 'qsp_Nope'.");
}

TEST_F(ProcedureTest, InsertProceduresAnswerTheNewKeyAsIdentity) {
  for (int i = 1; i <= 3; ++i) {
    const auto* text = i % 2 ? u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO PICKINGS "
                               u"(ProductionRunId, Weight, PickingTypeId) VALUES (7, 1.5, Null)\""
                             : u"EXEC qsp_InsertStatement @P_STMT = \"INSERT INTO PICKINGS  "
                               u"(ProductionRunId, Weight, PickingTypeId) VALUES (7, 2, 1)\"";
    const auto rs = sql(text);
    ASSERT_EQ(rs->State(), adStateOpen);
    ASSERT_EQ(rs->recordCount(), 1u);
    EXPECT_EQ(toUtf8(rs->fieldName(0)), "Identity");
    EXPECT_EQ(rs->Fields(u"identity"), Variant(i));
  }
  EXPECT_EQ(count(u"PICKINGS WHERE ProductionRunId = 7"), 3);
}

TEST_F(ProcedureTest, InsertProcedureOfAStatementThatInsertsNothingAnswersNull) {
  const auto rs = sql(u"EXEC sp_InsertStatement @p_Stmt = \"UPDATE STEMS SET StemTypeId = 1\"");
  EXPECT_TRUE(rs->Fields(u"Identity").isNull());
  EXPECT_TRUE(sql(u"EXEC sp_InsertStatement Null")->Fields(u"Identity").isNull());
}

TEST_F(ProcedureTest, InsertProcedureRaisesWhatTheStatementRaises) {
  const Error e = errorOf(
      [&] { sql(u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO NOSUCH (a) VALUES (1)\""); });
  EXPECT_EQ(e.number(), err::kMissingTable);
  EXPECT_EQ(e.sqlState(), "42S02");
}

TEST_F(ProcedureTest, ArgumentsAreCheckedAsTheServerChecksThem) {
  struct Case {
    std::u16string_view text;
    std::int32_t nativeError;
    std::string_view description;
  };
  for (const auto& c :
       {Case{u"EXEC sp_InsertStatement", 201,
             "[vrdppo.Embedded]Procedure or function 'sp_InsertStatement' expects parameter "
             "'@p_Stmt', which was not supplied."},
        Case{u"EXEC sp_InsertStatement @p_Stmt = DEFAULT", 201, {}},
        Case{u"EXEC sp_InsertStatement 'a', 'b'", 8144,
             "[vrdppo.Embedded]Procedure or function sp_InsertStatement has too many arguments "
             "specified."},
        Case{u"EXEC ZZ_SetAuditTrailID @p_Other = 1", 8145, {}}}) {
    const Error e = errorOf([&] { sql(c.text); });
    EXPECT_EQ(e.number(), err::kCommandError) << toUtf8(c.text);
    EXPECT_EQ(e.nativeError(), c.nativeError) << toUtf8(c.text);
    if (!c.description.empty()) {
      EXPECT_EQ(e.description(), c.description);
    }
  }
}

TEST_F(ProcedureTest, AuditTrailIdStaysWithItsConnection) {
  Client c(path_);
  EXPECT_EQ(c.scalar(u"SELECT audittrailid()"), Variant(0));
  EXPECT_EQ(c.run(u"exec ZZ_SetAuditTrailID 12")->State(), adStateClosed);
  EXPECT_EQ(c.scalar(u"SELECT audittrailid()"), Variant(12));
  c.run(u"ZZ_SetAuditTrailID @p_AuditTrailID = 13");
  EXPECT_EQ(c.scalar(u"SELECT AuditTrailId()"), Variant(13));
  EXPECT_EQ(scalar(u"SELECT audittrailid()"), Variant(0));  // another connection
}

TEST_F(ProcedureTest, EveryConnectionStartsAfreshWhateverTheLastOneLeft) {
  {
    Client c(path_);
    c.run(u"ZZ_SetAuditTrailID 5");
    c.run(u"INSERT INTO PICKINGTYPE (Description) VALUES ('kept')");
  }
  {
    Client c(path_);
    c.run(u"BEGIN");
    c.run(u"INSERT INTO PICKINGTYPE (Description) VALUES ('never committed')");
  }
  for (int i = 0; i < 3; ++i) {
    Client c(path_, false);
    EXPECT_EQ(c.scalar(u"SELECT audittrailid()"), Variant(0));
    EXPECT_TRUE(c.scalar(u"SELECT @@IDENTITY").isNull());
    EXPECT_EQ(c.scalar(u"SELECT COUNT(*) FROM PICKINGTYPE"), Variant(1));
    EXPECT_EQ(c.scalar(u"SELECT \"Description\" FROM PICKINGTYPE"), Variant(u"kept"));
    c.run(u"SET QUOTED_IDENTIFIER OFF");
  }
}

TEST_F(ProcedureTest, ABatchAnswersItsFirstResultAndRunsTheRest) {
  Client c(path_);
  EXPECT_EQ(c.run(u"exec ZZ_SetAuditTrailID 7; SELECT audittrailid()")->State(), adStateClosed);
  EXPECT_EQ(c.scalar(u"SELECT audittrailid(); exec ZZ_SetAuditTrailID 9"), Variant(7));
  EXPECT_EQ(c.scalar(u"SELECT audittrailid();"), Variant(9));
}

}  // namespace

}  // namespace vrdppo::embedded::testing
