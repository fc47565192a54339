// The physical connections kept under the gateway, on a real server: what one caller leaves in
// its session never reaches the next, and a session that died with its server costs no more than
// a new login. Each test proves that the second caller really had the first one's session by its
// @@SPID.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/shared_object.hpp"
#include "tsql/tsql_schema.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/observer.hpp"
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

// What an observer hears of the kept sessions, and the figures that count the same: a login, then
// reuses, a logout for a statement that changed its session, one for a string that keeps none.
TEST_F(Pool, TheObserverHearsEachLoginReuseAndLogoutAndTheFiguresCountThem) {
  struct Recorder : Observer {
    void onStatement(const StatementEvent& e) override {
      statements.emplace_back(e.queryText);
      origins.push_back(e.session);
    }
    void onSession(const SessionEvent& e) override {
      std::string line = e.kind == SessionEventKind::Login   ? "login"
                         : e.kind == SessionEventKind::Reuse ? "reuse"
                                                             : "logout ";
      if (e.kind == SessionEventKind::Logout) line += logoutCauseName(e.cause);
      if (e.kind == SessionEventKind::Login && e.duration.count() <= 0) line += " untimed";
      if (e.target.connection.find(u"PWD=***") == std::u16string_view::npos) line += " unmasked";
      sessions.push_back(line);
    }
    std::vector<std::u16string> statements;
    std::vector<SessionOrigin> origins;
    std::vector<std::string> sessions;
  };
  const odbc::PoolFigures before = odbc::poolFigures();
  auto recorder = std::make_shared<Recorder>();
  observe::setThreadObserver(recorder);
  const std::int32_t one = spid();
  EXPECT_EQ(spid(), one);
  (void)dbHelp::OpenRecordset(u"SET ROWCOUNT 3");  // left in the session: logged out after
  dbHelp::ConnectString = server_ + u";Pooling=No";
  (void)spid();
  observe::setThreadObserver(nullptr);
  const odbc::PoolFigures after = odbc::poolFigures();

  EXPECT_EQ(recorder->sessions,
            (std::vector<std::string>{"login", "reuse", "reuse", "logout session-changed", "login",
                                      "logout not-kept"}));
  // The gateway's SET and the statement, each time; the first on a fresh login.
  ASSERT_EQ(recorder->statements.size(), 8u);
  EXPECT_EQ(recorder->statements[0], u"SET QUOTED_IDENTIFIER OFF");
  EXPECT_EQ(recorder->statements[1], u"SELECT @@SPID");
  const std::vector<SessionOrigin> origins{
      SessionOrigin::Fresh, SessionOrigin::Fresh, SessionOrigin::Kept,  SessionOrigin::Kept,
      SessionOrigin::Kept,  SessionOrigin::Kept,  SessionOrigin::Fresh, SessionOrigin::Fresh};
  EXPECT_EQ(recorder->origins, origins);

  EXPECT_EQ(after.logins - before.logins, 2u);
  EXPECT_EQ(after.reuses - before.reuses, 2u);
  const auto logouts = [&](LogoutCause c) {
    const auto i = static_cast<std::size_t>(c);
    return after.logouts[i] - before.logouts[i];
  };
  EXPECT_EQ(logouts(LogoutCause::SessionChanged), 1u);
  EXPECT_EQ(logouts(LogoutCause::NotKept), 1u);
  EXPECT_GT(after.loginTime, before.loginTime);
  EXPECT_EQ(after.inUse, 0u);
  EXPECT_EQ(after.idle, 0u);  // the kept session was the one the SET changed

  dbHelp::ConnectString = server_;
  (void)spid();
  const odbc::PoolFigures kept = odbc::poolFigures();
  ASSERT_EQ(kept.strings.size(), 1u);
  EXPECT_EQ(kept.strings[0].idle, 1u);
  EXPECT_EQ(kept.strings[0].inUse, 0u);
  EXPECT_NE(kept.strings[0].connection.find(u"PWD=***"), std::u16string::npos);
  const std::string text = odbc::poolFiguresText(kept);
  EXPECT_NE(text.find("sessions: 1 idle, 0 in use"), std::string::npos) << text;
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

TEST_F(Pool, AFailedStatementEndsWithItsCaller) {
  const std::int32_t one = spid();
  // A plain statement that fails leaves the session as it was: kept.
  EXPECT_THROW(dbHelp::OpenRecordset(u"SELECT 1/0"), Error);
  EXPECT_EQ(spid(), one);
  EXPECT_EQ(first(u"SELECT @@TRANCOUNT"), Variant(0));
  // A batch that goes on past its failed statement with its transaction open is logged out,
  // and what it wrote with it.
  EXPECT_THROW(dbHelp::OpenRecordset(u"BEGIN TRAN; SELECT 1/0; INSERT INTO Kept VALUES (1)"),
               Error);
  EXPECT_NE(spid(), one);
  EXPECT_EQ(first(u"SELECT @@TRANCOUNT"), Variant(0));
  EXPECT_EQ(first(u"SELECT COUNT(*) FROM Kept"), Variant(0));
}

// A transaction that a statement leaves open, however the reader might miss its BEGIN (a comment
// the server ends at a lone CR), never takes in the next caller's Commit: the row survives the
// session's logout.
TEST_F(Pool, ACommitNeverJoinsATransactionItDidNotOpen) {
  dbHelp::OpenRecordset(u"SELECT 1 AS x -- note\rBEGIN TRAN");
  cStemsPersist stems;
  std::u16string state = stems.GetState();
  ASSERT_TRUE(stems.Commit(state, server_));
  odbc::releaseIdleConnections();  // logs every kept session out, rolling back what it holds
  Connection other;
  other.Open(server_ + u";Pooling=No");
  EXPECT_EQ(toLong(other.Execute(u"SELECT COUNT(*) FROM STEMS")->Fields(0)), 1);
  other.Execute(u"DELETE FROM STEMS");
  other.Close();
}

TEST_F(Pool, WhatAStatementLeavesInItsSessionNeverReachesTheNextCaller) {
  tsql::runScript(server_,
                  "CREATE TABLE Five (a INT)\nGO\nINSERT INTO Five VALUES (1), (2), (3), (4), (5)\n"
                  "GO\nCREATE PROCEDURE SetsTheAuditId AS EXEC ZZ_SetAuditTrailID 666\nGO\n"
                  "CREATE PROCEDURE SetsTheContext AS EXEC sp_set_session_context N'k', 1\nGO\n"
                  "CREATE PROCEDURE SetsContextInfo AS SET CONTEXT_INFO 0x01\n");
  const auto rows = [](const char16_t* sql) {
    const auto rs = dbHelp::OpenRecordset(sql);
    std::int32_t n = 0;
    for (; !rs->EOF_(); rs->MoveNext()) ++n;
    return n;
  };
  const std::u16string database = toString(first(u"SELECT DB_NAME()"));
  const auto noAuditId = u"SELECT CASE WHEN SESSION_CONTEXT(N'AuditTrailID') IS NULL THEN 1 END";
  const auto noContext = u"SELECT CASE WHEN SESSION_CONTEXT(N'k') IS NULL THEN 1 END";
  const auto noInfo = u"SELECT CASE WHEN CONTEXT_INFO() IS NULL THEN 1 END";
  const std::function<bool()> fresh[] = {
      [&] { return first(noAuditId) == Variant(1); },
      [&] { return first(noContext) == Variant(1); },
      [&] { return first(noInfo) == Variant(1); },
      [&] { return rows(u"SELECT a FROM Five") == 5; },
      [&] { return toString(first(u"SELECT DB_NAME()")) == database; },
      [&] {
        return first(u"SELECT CASE WHEN OBJECT_ID('tempdb..#leak') IS NULL THEN 1 END") ==
               Variant(1);
      },
      [&] { return toLong(first(u"SELECT SESSIONPROPERTY('ANSI_NULLS')")) == 1; },
  };
  enum Check { AuditId, Context, Info, RowCount, Database, Temporary, Option };
  const struct {
    const char16_t* sql;
    Check check;
  } cases[] = {
      {u"EXEC SetsTheAuditId", AuditId},
      {u"EXEC [ZZ_SetAuditTrailID] 777", AuditId},
      {u"EXEC SetsTheContext", Context},
      {u"EXEC('EXEC sp_set_session_context N''k'', 2')", Context},
      {u"EXEC sp_executesql N'EXEC sp_set_session_context N''k'', 3'", Context},
      {u"EXEC [sp_set_session_context] N'k', 4", Context},
      {u"EXEC SetsContextInfo", Info},
      {u"EXEC('SET CONTEXT_INFO 0x02')", Info},
      {u"SELECT 1 AS x -- note\rSET ROWCOUNT 3", RowCount},
      {u"GRANT UPDATE ON Five TO guest; SET ROWCOUNT 3", RowCount},
      {u"EXEC sp_executesql N'USE master'", Database},
      {u"EXEC('CREATE TABLE #leak (a INT)')", Temporary},
      {u"SELECT 1 SET ANSI_NULLS OFF", Option},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(toUtf8(c.sql));
    for (const bool sameThread : {true, false}) {
      SCOPED_TRACE(sameThread ? "the same thread" : "another thread");
      odbc::releaseIdleConnections();
      try {
        dbHelp::OpenRecordset(c.sql);
      } catch (const Error& e) {
        ADD_FAILURE() << e.description();
      }
      bool clean = false;
      if (sameThread) {
        clean = fresh[c.check]();
      } else {
        std::thread([&] {
          dbHelp::ConnectString = server_;
          clean = fresh[c.check]();
        }).join();
      }
      EXPECT_TRUE(clean);
    }
  }
  odbc::releaseIdleConnections();
}

// A server error on a late row fails the call, rows before it or not: a short result is never
// taken for the whole.
TEST_F(Pool, AServerErrorOnALateRowFailsTheCall) {
  tsql::runScript(server_,
                  "CREATE TABLE Numbers (n INT)\nGO\n"
                  "WITH d AS (SELECT 0 AS x UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL "
                  "SELECT 3 UNION ALL SELECT 4 UNION ALL SELECT 5 UNION ALL SELECT 6 UNION ALL "
                  "SELECT 7 UNION ALL SELECT 8 UNION ALL SELECT 9) "
                  "INSERT INTO Numbers SELECT a.x * 1000 + b.x * 100 + c.x * 10 + e.x + 1 "
                  "FROM d a CROSS JOIN d b CROSS JOIN d c CROSS JOIN d e\n");
  // No ORDER BY: the rows stream, and the error comes after rows already sent.
  for (const int at : {2, 100, 999, 5000}) {
    SCOPED_TRACE(at);
    const std::u16string sql =
        u"SELECT n FROM Numbers WHERE 1 / (n - " + fromUtf8(std::to_string(at)) + u") <> 2";
    try {
      dbHelp::OpenRecordset(sql);
      ADD_FAILURE() << "no error";
    } catch (const Error& e) {
      EXPECT_EQ(e.sqlState(), "22012") << e.description();
      EXPECT_EQ(e.statement(), sql);
    }
  }
}

// Threads sharing one object on kept server sessions: their calls wait for each other, and every
// row comes back whole and once.
TEST_F(Pool, ThreadsSharingOneObjectKeepEveryRowWhole) {
  vrdppo::testing::expectSharedObjectKeepsEveryRowWhole(server_, 8, 10);
}

// Stops processes with a signal and lets them go on, whatever happens in between. A list of a
// server's processes may name one that ends before the signal reaches it (a session logging
// out, a helper): with mayEnd, such a one is no failure.
class Stopped {
 public:
  explicit Stopped(std::string processes, bool mayEnd = false)
      : processes_(std::move(processes)), mayEnd_(mayEnd) {
    signal("STOP");
  }
  ~Stopped() { signal("CONT"); }
  Stopped(const Stopped&) = delete;
  Stopped& operator=(const Stopped&) = delete;

 private:
  void signal(const char* name) const {
    std::string command = std::string("kill -") + name + " " + processes_;
    if (mayEnd_) command += " 2>/dev/null; true";
    if (std::system(command.c_str()) != 0) ADD_FAILURE() << command;
  }
  std::string processes_;
  bool mayEnd_;
};

// A kept session that does not answer costs a caller a part of the login's bound and a fresh
// login; a frozen server fails the call in about the login's bound.
TEST_F(Pool, AStuckSessionOrAFrozenServerCostsAtMostTheLoginsBound) {
  if (std::getenv("VRDPPO_TSQL_ENGINE") == nullptr) {
    GTEST_SKIP() << "VRDPPO_TSQL_ENGINE names no engine of this machine to stop";
  }
  const std::u16string bounded = server_ + u";Connect Timeout=4";
  dbHelp::ConnectString = bounded;
  const std::int32_t stuck = spid();  // the engine's process serving the session
  ASSERT_EQ(odbc::idleConnections(), 1u);
  {
    const Stopped backend(std::to_string(stuck));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_NE(spid(), stuck);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
  }
  const std::int32_t kept = spid();  // a kept session again
  {
    // Every process of the engine's user: the server, its sessions, its helpers. The call below
    // failing in time is what shows they stopped.
    const Stopped engine("$(pgrep -d ' ' -u \"$(stat -c %U /proc/" + std::to_string(kept) + ")\")",
                         true);
    cStemsPersist stems;
    const auto start = std::chrono::steady_clock::now();
    try {
      stems.Load(u"", bounded);
      ADD_FAILURE() << "no error";
    } catch (const Error& e) {
      EXPECT_TRUE(e.sqlState() == "HYT00" || e.sqlState() == "08S01") << e.description();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));
  }
  odbc::releaseIdleConnections();
}

// However many connection strings a process uses, it keeps no more idle sessions than its limit.
TEST_F(Pool, TheProcessKeepsAtMostItsLimitOfIdleSessions) {
  for (int app = 0; app < 24; ++app) {
    dbHelp::ConnectString = server_ + u";APP=app" + fromUtf8(std::to_string(app));
    spid();
    EXPECT_LE(odbc::idleConnections(), 16u);
  }
  EXPECT_EQ(odbc::idleConnections(), 16u);
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

namespace {

// Run with VRDPPO_ODBC_POOL_TIMEOUT=2: a session idle past its life is logged out then, whether or
// not the process calls again.
TEST(PoolExpiry, AnIdleSessionIsLoggedOutWhenItsLifeEnds) {
  const char* connect = std::getenv("VRDPPO_TSQL_CONNECT");
  if (connect == nullptr || *connect == '\0') GTEST_SKIP() << "no T-SQL server";
  dbHelp::ConnectString = fromUtf8(connect) + u";APP=expiry";
  const std::int32_t kept = toLong(dbHelp::OpenRecordset(u"SELECT @@SPID")->Fields(0));
  ASSERT_EQ(odbc::idleConnections(), 1u);
  std::this_thread::sleep_for(std::chrono::seconds(4));
  EXPECT_EQ(odbc::idleConnections(), 0u);
  Connection other;
  other.Open(fromUtf8(connect) + u";Pooling=No");
  const auto rs = other.Execute(u"SELECT COUNT(*) FROM sys.dm_exec_sessions WHERE session_id = " +
                                fromUtf8(std::to_string(kept)));
  EXPECT_EQ(toLong(rs->Fields(0)), 0);
  other.Close();
}

}  // namespace
