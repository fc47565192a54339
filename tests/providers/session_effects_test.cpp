// What a statement may leave in a server session, read from its text: what decides whether a
// kept session is handed on, rolled back first or logged out.
#include <gtest/gtest.h>

#include "providers/odbc/odbc_session_effects.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::odbc {

namespace {

TEST(SessionEffects, ReadFromTheStatementText) {
  const struct {
    std::u16string_view sql;
    bool lasting;
    bool transaction;
  } cases[] = {
      // What the library sends leaves nothing.
      {u"SET QUOTED_IDENTIFIER OFF", false, false},
      {u"SELECT * FROM STEMS WHERE STEMSID = 5", false, false},
      {u"UPDATE STEMS SET TotalNetWeight = 1 WHERE STEMSID = 5", false, false},
      {u"update t set a = 1; UPDATE u SET b = 2", false, false},
      {u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO T (a) VALUES ('SET USE #x')\"", false,
       false},
      {u"SELECT [SET], \"USE\" FROM T -- SET ANSI_NULLS OFF\n/* USE other */", false, false},
      // A session option, however it is reached.
      {u"SET ANSI_NULLS OFF", true, false},
      {u"SELECT 1 SET DATEFORMAT dmy", true, false},
      {u"UPDATE T SET a = 1 SET NOCOUNT ON", true, false},
      {u"set quoted_identifier off; set language us_english", true, false},
      // Temporary objects, another database, another identity, cursors, locks, the context.
      {u"SELECT * INTO #t FROM STEMS", true, false},
      {u"CREATE TABLE ##g (a INT)", true, false},
      {u"USE master", true, false},
      {u"EXECUTE AS USER = 'x'", true, false},
      {u"EXEC  AS LOGIN = 'x'", true, false},
      {u"DECLARE c CURSOR GLOBAL FOR SELECT 1", true, false},
      {u"EXEC sp_getapplock 'r', 'Exclusive', 'Session'", true, false},
      {u"EXEC sp_set_session_context N'AuditTrailID', 3", true, false},
      {u"exec ZZ_SetAuditTrailID @x", true, false},
      {u"exec ZZ_SetAuditTrailID 5; SELECT 1", true, false},
      // Transactions, begun, saved or ended.
      {u"BEGIN TRAN; DELETE FROM T", false, true},
      {u"begin transaction x", false, true},
      {u"SAVE TRAN s", false, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(toUtf8(c.sql));
    const SessionEffects e = sessionEffects(c.sql);
    EXPECT_EQ(e.lasting, c.lasting);
    EXPECT_EQ(e.transaction, c.transaction);
    EXPECT_FALSE(e.auditTrailId);
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

}  // namespace

}  // namespace vrdppo::odbc
