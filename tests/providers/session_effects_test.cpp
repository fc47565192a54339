// Whether a statement is known to leave nothing in a server session, read from its text: what
// decides whether a kept session is handed on or logged out. Anything not recognised logs out.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include "plant/procedures.hpp"
#include "providers/odbc/odbc_session_effects.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::odbc {

namespace {

TEST(SessionEffects, OnlyWhatIsKnownToLeaveNothingKeepsTheSession) {
  setKnownProcedures(plant::knownProcedures());
  const struct {
    std::u16string_view sql;
    bool plain;
  } cases[] = {
      // The gateway's own, the library's statements, a business tier's plain ones.
      {u"SET QUOTED_IDENTIFIER OFF", true},
      {u"exec ZZ_SetAuditTrailID 12", true},
      {u"SELECT * FROM STEMS WHERE STEMSID = 5 ORDER BY a DESC", true},
      {u"SELECT TOP 5 a, [SET], \"USE\" FROM T -- SET ANSI_NULLS OFF\n/* USE /* x */ other */",
       true},
      {u"UPDATE STEMS SET TotalNetWeight = 1 WHERE STEMSID = 5", true},
      {u"update t set a = 1; UPDATE dbo.u WITH (ROWLOCK) SET b = 2", true},
      {u"update LabDegradation set sampletype = '999' from LabDegradation inner join "
       u"dbo.ProductionGrade on ProductionGrade.ProductionGradeID = LabDegradation.x",
       true},
      {u"DELETE FROM T WHERE a IN (SELECT b FROM U WHERE c LIKE 'x%') AND d <> 3", true},
      {u"WITH c AS (SELECT 1 AS x) SELECT * FROM c", true},
      {u"SELECT @@SPID, SESSION_CONTEXT(N'AuditTrailID'), CAST(x AS INT) FROM T", true},
      {u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO T (a) VALUES ('SET USE #x')\"", true},
      {u"qsp_LabSyncAdvice", true},
      {u"EXEC qsp_PrizingCloseRun 7, 3, -1, NULL ", true},
      {u"exec dbo.[qsp_SendAlert] @p_AlertId= 7,@p_CageId =120;", true},
      {u"EXEC qspsys_AdjustSortSequence 'ByProductsType', 7, -1, 'CompanyId = 3'", true},
      // A comment that the server ends at a lone CR, then a transaction.
      {u"SELECT 1 AS x -- note\rBEGIN TRAN", false},
      {u"SELECT 1 -- note\rSET ROWCOUNT 3", false},
      // Options, however they are reached.
      {u"SET ANSI_NULLS OFF", false},
      {u"SELECT 1 SET DATEFORMAT dmy", false},
      {u"UPDATE T SET a = 1 SET NOCOUNT ON", false},
      {u"UPDATE STATISTICS T SET ROWCOUNT 3", false},
      {u"GRANT UPDATE ON STEMS TO guest; SET ROWCOUNT 3", false},
      {u"SELECT 1 AS x\u00A0SET", false},
      // Procedures, dynamic SQL, the audit trail id but in the gateway's own text.
      {u"EXEC [ZZ_SetAuditTrailID] 777", false},
      {u"ZZ_SetAuditTrailID 777", false},
      {u"exec ZZ_SetAuditTrailID 5; SELECT 1", false},
      {u"EXEC SetsTheIdInside", false},
      {u"EXEC('SELECT 1')", false},
      {u"EXEC sp_executesql N'USE other'", false},
      {u"EXEC [sp_set_session_context] N'k', 1", false},
      {u"{call ZZ_SetAuditTrailID(777)}", false},
      {u"EXEC sp_InsertStatement @p_Stmt = \"SET ROWCOUNT 3\"", false},
      {u"EXEC sp_InsertStatement @p_Stmt = \"ZZ_SetAuditTrailID 777\"", false},
      {u"EXEC qspsys_AdjustSortSequence 'T', 7, -1, '1 = 1; SET ROWCOUNT 3'", false},
      {u"EXEC qsp_SendAlert @x, 1", false},
      {u"EXEC qsp_SendAlert 7, 1; SELECT 1", false},
      // Temporary objects, transactions, another database, identity, cursors, variables.
      {u"SELECT * INTO #t FROM STEMS", false},
      {u"SELECT * INTO [#t] FROM STEMS", false},
      {u"CREATE TABLE ##g (a INT)", false},
      {u"BEGIN TRAN; DELETE FROM T", false},
      {u"DELETE FROM T; COMMIT", false},
      {u"USE master", false},
      {u"EXECUTE AS USER = 'x'", false},
      {u"DECLARE c CURSOR GLOBAL FOR SELECT 1", false},
      {u"SELECT 1; ZZ_Other 3", false},
      // What the reader cannot read.
      {u"SELECT 'unclosed", false},
      {u"SELECT 1 /* unclosed", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(toUtf8(c.sql));
    EXPECT_EQ(sessionEffects(c.sql).plain, c.plain);
  }
}

TEST(SessionEffects, TheGatewaysAuditTrailIdIsKnownByItsValue) {
  EXPECT_EQ(sessionEffects(u"exec ZZ_SetAuditTrailID 12").auditTrailId, 12);
  EXPECT_EQ(sessionEffects(u"EXEC zz_setaudittrailid -7 ").auditTrailId, -7);
  EXPECT_EQ(gatewayAuditTrailId(u"exec ZZ_SetAuditTrailID 2147483647"), 2147483647);
  EXPECT_FALSE(gatewayAuditTrailId(u"exec ZZ_SetAuditTrailID 2147483648"));
  EXPECT_FALSE(gatewayAuditTrailId(u"exec ZZ_SetAuditTrailID NULL"));
  EXPECT_FALSE(gatewayAuditTrailId(u"exec ZZ_SetAuditTrailIDX 1"));
  EXPECT_FALSE(gatewayAuditTrailId(u"exec ZZ_SetAuditTrailID "));
}

// The reader's list is the database's: every procedure of the script but the audit trail's, and
// each one that runs text it was given is marked so.
TEST(SessionEffects, TheKnownProceduresAreTheScriptsOwn) {
  std::ifstream in(std::string(VRDPPO_SQL_DIR) + "/procedures.sql");
  ASSERT_TRUE(in);
  std::stringstream text;
  text << in.rdbuf();
  const std::string script = text.str();
  const std::regex create(R"(CREATE PROCEDURE (\w+))");
  std::size_t found = 0;
  for (auto it = std::sregex_iterator(script.begin(), script.end(), create);
       it != std::sregex_iterator(); ++it) {
    const std::string name = (*it)[1];
    if (name == "ZZ_SetAuditTrailID") continue;
    ++found;
    const std::size_t body = static_cast<std::size_t>(it->position());
    const std::size_t end = std::min(script.find("CREATE PROCEDURE", body + 1), script.size());
    const bool runsText =
        script.substr(body, end - body).find("sp_executesql") != std::string::npos;
    bool listed = false;
    for (const KnownProcedure& p : plant::knownProcedures()) {
      if (!equalsNoCase(p.name, fromUtf8(name))) continue;
      listed = true;
      EXPECT_EQ(p.text != KnownProcedure::Text::Data, runsText) << name;
    }
    EXPECT_TRUE(listed) << name;
  }
  EXPECT_EQ(found, plant::knownProcedures().size());
}

}  // namespace

}  // namespace vrdppo::odbc
