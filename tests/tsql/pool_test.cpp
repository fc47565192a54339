// The physical connections kept under the gateway, on a real server: what one caller leaves in
// its session never reaches the next, and a session that died with its server costs no more than
// a new login. Each test proves that the second caller really had the first one's session by its
// @@SPID.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#include "tsql/tsql_schema.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/odbc_pool.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;

namespace {

class Pool : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    const char* connect = std::getenv("VRDPPO_TSQL_CONNECT");
    if (connect == nullptr || *connect == '\0') return;
    admin_ = fromUtf8(connect);
    database_ = std::make_unique<tsql::PlantDatabase>(admin_, u"vrdppo_pool_");
    server_ = database_->connect();
    tsql::runScript(server_, "CREATE TABLE Kept (a INT)");
  }

  static void TearDownTestSuite() { database_.reset(); }

  void SetUp() override {
    if (admin_.empty()) GTEST_SKIP() << "VRDPPO_TSQL_CONNECT names no T-SQL server";
    odbc::releaseIdleConnections();
    dbHelp::ConnectString = server_;
    dbHelp::AuditTrailId = 0;
  }

  void TearDown() override { dbHelp::AuditTrailId = 0; }

  // The first column of the first row a gateway call answers.
  static Variant first(const std::u16string& sql) {
    const auto rs = dbHelp::OpenRecordset(sql);
    return rs->Fields(0);
  }
  static std::int32_t spid() { return toLong(first(u"SELECT @@SPID")); }

  static std::u16string admin_, server_;
  static std::unique_ptr<tsql::PlantDatabase> database_;
};

std::u16string Pool::admin_, Pool::server_;
std::unique_ptr<tsql::PlantDatabase> Pool::database_;

TEST_F(Pool, AGatewayCallLeavesItsSessionForTheNext) {
  const std::int32_t one = spid();
  EXPECT_EQ(odbc::idleConnections(), 1u);
  EXPECT_EQ(spid(), one);
  EXPECT_EQ(toLong(first(u"SELECT SESSIONPROPERTY('QUOTED_IDENTIFIER')")), 0);
  // Switched off for one connection string: a login of its own, closed after the statement.
  dbHelp::ConnectString = server_ + u";Pooling=No";
  EXPECT_NE(spid(), one);
  EXPECT_EQ(odbc::idleConnections(), 1u);
}

TEST_F(Pool, AnAuditTrailIdStaysWithItsThread) {
  const auto context = u"SELECT CAST(SESSION_CONTEXT(N'AuditTrailID') AS INT)";
  std::int32_t setter = 0;
  std::thread([&] {
    dbHelp::ConnectString = server_;
    dbHelp::AuditTrailId = 12;
    setter = spid();
    EXPECT_EQ(first(context), Variant(12));
  }).join();
  std::thread([&] {
    dbHelp::ConnectString = server_;
    EXPECT_EQ(spid(), setter);  // the same session, handed on
    EXPECT_TRUE(first(context).isNull());
  }).join();
  // A thread that sets its own finds it, whoever had the session last.
  std::thread([&] {
    dbHelp::ConnectString = server_;
    dbHelp::AuditTrailId = 7;
    EXPECT_EQ(first(context), Variant(7));
  }).join();
  EXPECT_TRUE(first(context).isNull());
}

TEST_F(Pool, ATransactionAFailedBatchLeftOpenEndsWithItsCaller) {
  const std::int32_t one = spid();
  // The batch goes on past its failed statement, and its transaction stays open.
  EXPECT_THROW(dbHelp::OpenRecordset(u"BEGIN TRAN; SELECT 1/0; INSERT INTO Kept VALUES (1)"),
               Error);
  EXPECT_EQ(spid(), one);  // kept, after its transaction was rolled back
  EXPECT_EQ(first(u"SELECT @@TRANCOUNT"), Variant(0));
  EXPECT_EQ(first(u"SELECT COUNT(*) FROM Kept"), Variant(0));
  // A transaction a statement begins and leaves open, without failing, ends the same way.
  dbHelp::OpenRecordset(u"BEGIN TRANSACTION; INSERT INTO Kept VALUES (2)");
  EXPECT_EQ(spid(), one);
  EXPECT_EQ(first(u"SELECT @@TRANCOUNT"), Variant(0));
  EXPECT_EQ(first(u"SELECT COUNT(*) FROM Kept"), Variant(0));
}

TEST_F(Pool, ASessionChangedForGoodIsNotHandedOn) {
  const struct {
    const char16_t* sql;
    const char16_t* check;  // answers 1 on a session as new
  } cases[] = {
      {u"CREATE TABLE #scratch (a INT); SELECT 1",
       u"SELECT CASE WHEN OBJECT_ID('tempdb..#scratch') IS NULL THEN 1 ELSE 0 END"},
      {u"SELECT 1 SET ANSI_NULLS OFF", u"SELECT SESSIONPROPERTY('ANSI_NULLS')"},
      {u"SET DATEFORMAT dmy; SELECT 1",
       u"SELECT CASE WHEN ISDATE('2019-03-31') = 1 THEN 1 ELSE 0 END"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(toUtf8(c.sql));
    odbc::releaseIdleConnections();
    const std::int32_t one = spid();
    dbHelp::OpenRecordset(c.sql);
    EXPECT_EQ(odbc::idleConnections(), 0u);
    EXPECT_NE(spid(), one);
    EXPECT_EQ(toLong(first(c.check)), 1);
  }
}

TEST_F(Pool, ASessionThatDiedWithItsServerCostsOnlyANewLogin) {
  const char* engine = std::getenv("VRDPPO_TSQL_ENGINE");
  if (engine == nullptr || *engine == '\0') {
    GTEST_SKIP() << "VRDPPO_TSQL_ENGINE names no script that restarts the engine";
  }
  cStemsPersist stems;
  const std::u16string before = stems.Load(u"", server_);
  first(u"SELECT 1");
  first(u"SELECT 1");
  ASSERT_GE(odbc::idleConnections(), 1u);
  const std::string restart =
      std::string(engine) + " --stop >/dev/null 2>&1 && " + engine + " >/dev/null 2>&1";
  ASSERT_EQ(std::system(restart.c_str()), 0);
  // The gateway's own SET goes first: it finds the session dead and goes again on a new one.
  EXPECT_EQ(stems.Load(u"", server_), before);
  first(u"SELECT 1");
  ASSERT_EQ(std::system(restart.c_str()), 0);
  // A connection opened outside the gateway starts with a write: it is sent once, on the new
  // session, after the test that found the old one dead.
  Connection c;
  c.setCursorLocation(adUseClient);
  c.Open(server_);
  c.Execute(u"INSERT INTO Kept VALUES (5)");
  c.Close();
  EXPECT_EQ(first(u"SELECT COUNT(*) FROM Kept WHERE a = 5"), Variant(1));
  dbHelp::OpenRecordset(u"DELETE FROM Kept");
}

}  // namespace
