// One-row calls to a server (the T-SQL engine that VRDPPO_TSQL_CONNECT names; skipped, saying
// so, without it): Load by key, Commit of a new and of an existing record, and Delete, each
// through the library with its kept sessions, through the library with them switched off
// (Pooling=No), and as the same statements the gateway sends executed on one held connection.
// Then Load by key from 1, 2, 4 and 8 threads, each with its own object, as calls per second.
#include <benchmark/benchmark.h>
#include <sql.h>
#include <sqlext.h>

#include <atomic>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "vrdppo/production/stems.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::bench {
// Installs an observer that does nothing for the process, or removes it (observer_bench.cpp).
void observeWithNothing(bool on);
}  // namespace vrdppo::bench

namespace {

// Rows the benchmark table starts with; Load and the update read and write the first of them.
constexpr int kRows = 100;
// Rows made ready for Delete at a time, outside the timing.
constexpr int kDeletable = 20000;

[[noreturn]] void fail(SQLSMALLINT type, SQLHANDLE handle, const std::string& what) {
  SQLCHAR state[6] = {};
  SQLCHAR message[512] = {};
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  SQLGetDiagRec(type, handle, 1, state, &native, message, sizeof message, &length);
  throw std::runtime_error(what + ": " + reinterpret_cast<char*>(message));
}

// One login held for the whole run: the baseline, and the set-up.
struct Held {
  SQLHENV env = SQL_NULL_HENV;
  SQLHDBC dbc = SQL_NULL_HDBC;
  explicit Held(const std::string& connect) {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env);
    SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc);
    std::string text = connect;
    if (!SQL_SUCCEEDED(SQLDriverConnect(dbc, nullptr, reinterpret_cast<SQLCHAR*>(text.data()),
                                        SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT))) {
      fail(SQL_HANDLE_DBC, dbc, "SQLDriverConnect");
    }
  }
  ~Held() {
    SQLDisconnect(dbc);
    SQLFreeHandle(SQL_HANDLE_DBC, dbc);
    SQLFreeHandle(SQL_HANDLE_ENV, env);
  }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;

  // Runs the text through the wide call, as the provider does, and reads every cell of its first
  // result as text, as a recordset's fetch would touch them.
  void exec(const std::u16string& sql) {
    SQLHSTMT st = SQL_NULL_HSTMT;
    SQLAllocHandle(SQL_HANDLE_STMT, dbc, &st);
    std::u16string text = sql;
    const SQLRETURN rc = SQLExecDirectW(st, reinterpret_cast<SQLWCHAR*>(text.data()),
                                        static_cast<SQLINTEGER>(text.size()));
    if (rc != SQL_NO_DATA && !SQL_SUCCEEDED(rc)) {
      SQLFreeHandle(SQL_HANDLE_STMT, st);
      throw std::runtime_error("statement failed: " + vrdppo::toUtf8(sql));
    }
    SQLSMALLINT columns = 0;
    SQLNumResultCols(st, &columns);
    SQLWCHAR cell[256];
    SQLLEN length = 0;
    while (columns > 0 && SQL_SUCCEEDED(SQLFetch(st))) {
      for (SQLUSMALLINT c = 1; c <= static_cast<SQLUSMALLINT>(columns); ++c) {
        SQLGetData(st, c, SQL_C_WCHAR, cell, sizeof cell, &length);
      }
    }
    SQLFreeHandle(SQL_HANDLE_STMT, st);
  }
  void exec(const std::string& sql) { exec(vrdppo::fromUtf8(sql)); }
};

// The batch of the committed procedures script that creates the procedure.
std::string procedureBatch(const std::string& name) {
  std::ifstream in(std::string(VRDPPO_SQL_DIR) + "/procedures.sql");
  std::stringstream text;
  text << in.rdbuf();
  const std::string all = text.str();
  const std::size_t at = all.find("CREATE PROCEDURE " + name + " ");
  if (at == std::string::npos) throw std::runtime_error(name + " is not in procedures.sql");
  return all.substr(at, all.find("\nGO", at) - at);
}

// The engine's connection to the benchmark's database, holding STEMS with kRows rows and the
// insert procedure; empty without VRDPPO_TSQL_CONNECT.
const std::string& server() {
  static const std::string s = []() -> std::string {
    const char* base = std::getenv("VRDPPO_TSQL_CONNECT");
    if (!base || !*base) return {};
    {
      Held c(base);
      c.exec("IF DB_ID('vrdppo_calls') IS NULL CREATE DATABASE vrdppo_calls");
    }
    std::string connect;
    std::string rest = base;
    while (!rest.empty()) {
      const std::size_t end = rest.find(';');
      const std::string pair = rest.substr(0, end);
      rest = end == std::string::npos ? std::string() : rest.substr(end + 1);
      std::string key = pair.substr(0, pair.find('='));
      for (char& ch : key) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
      if (key != "DATABASE" && !pair.empty()) connect += pair + ";";
    }
    connect += "DATABASE=vrdppo_calls";
    Held c(connect);
    c.exec("IF OBJECT_ID('STEMS') IS NOT NULL DROP TABLE STEMS");
    c.exec(
        "CREATE TABLE STEMS (STEMSID INT IDENTITY(1,1) NOT NULL PRIMARY KEY, TotalNetWeight "
        "FLOAT, ContainerStart INT, ContainerEnd INT, StemTypeID INT, ProductionRunId INT)");
    c.exec("IF OBJECT_ID('sp_InsertStatement') IS NOT NULL DROP PROCEDURE sp_InsertStatement");
    c.exec(procedureBatch("sp_InsertStatement"));
    for (int i = 0; i < kRows; ++i) {
      c.exec(
          "INSERT INTO STEMS (TotalNetWeight, ContainerStart, ContainerEnd, StemTypeID, "
          "ProductionRunId) VALUES (812.5, 3, 15, 2, 7)");
    }
    return connect;
  }();
  return s;
}

bool skipped(benchmark::State& state) {
  if (!server().empty()) return false;
  state.SkipWithError("skipped: VRDPPO_TSQL_CONNECT is unset");
  for (auto _ : state) {
  }
  return true;
}

std::u16string connectFor(bool pooled) {
  return vrdppo::fromUtf8(server()) + (pooled ? u"" : u";Pooling=No");
}

// A record of row `key` (0: a new one) with the values every call writes.
std::u16string stemsState(std::int32_t key) {
  vrdppo::cStemsPersist o;
  auto& r = o.record();
  r.StemsId = key;
  r.TotalNetWeight = 812.5;
  r.ContainerStart = 3;
  r.ContainerEnd = 15;
  r.StemTypeID = 2;
  r.ProductionRunId = 7;
  return o.GetState();
}

// Keys of rows that Delete may take, made kDeletable at a time outside the timing.
class Deletable {
 public:
  std::int32_t next(benchmark::State& state) {
    if (next_ > last_) {
      state.PauseTiming();
      Held c(server());
      c.exec(
          "DECLARE @first INT = ISNULL(IDENT_CURRENT('STEMS'), 0) + 1; "
          "WITH d(n) AS (SELECT 0 UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3 "
          "UNION ALL SELECT 4 UNION ALL SELECT 5 UNION ALL SELECT 6 UNION ALL SELECT 7 UNION "
          "ALL SELECT 8 UNION ALL SELECT 9), i(n) AS (SELECT a.n + 10 * b.n + 100 * c.n + "
          "1000 * e.n FROM d a CROSS JOIN d b CROSS JOIN d c CROSS JOIN d e) "
          "INSERT INTO STEMS (TotalNetWeight, ContainerStart, ContainerEnd, StemTypeID, "
          "ProductionRunId) SELECT 1.5, n, n, 2, 7 FROM i CROSS JOIN (SELECT 1 AS k UNION ALL "
          "SELECT 2) two");
      Held q(server());
      SQLHSTMT st = SQL_NULL_HSTMT;
      SQLAllocHandle(SQL_HANDLE_STMT, q.dbc, &st);
      SQLExecDirect(st,
                    reinterpret_cast<SQLCHAR*>(
                        const_cast<char*>("SELECT CAST(IDENT_CURRENT('STEMS') AS INT)")),
                    SQL_NTS);
      SQLINTEGER current = 0;
      SQLLEN length = 0;
      SQLFetch(st);
      SQLGetData(st, 1, SQL_C_SLONG, &current, 0, &length);
      SQLFreeHandle(SQL_HANDLE_STMT, st);
      last_ = current;
      next_ = current - kDeletable + 1;
      state.ResumeTiming();
    }
    return next_++;
  }

 private:
  std::int32_t next_ = 1;
  std::int32_t last_ = 0;
};

enum class Call { Load, CommitNew, CommitExisting, Delete };

void library(benchmark::State& state, Call call, bool pooled, bool observed = false) {
  if (skipped(state)) return;
  vrdppo::bench::observeWithNothing(observed);
  const std::u16string connect = connectFor(pooled);
  vrdppo::cStemsPersist o;
  const std::u16string fresh = stemsState(0);
  const std::u16string existing = stemsState(1);
  Deletable deletable;
  if (pooled) o.Load(u"STEMSID = 1", connect);  // the login, before the clock starts
  for (auto _ : state) {
    switch (call) {
      case Call::Load:
        benchmark::DoNotOptimize(o.Load(u"STEMSID = 1", connect).size());
        break;
      case Call::CommitNew:
        if (!o.Commit(fresh, connect)) state.SkipWithError("insert failed");
        break;
      case Call::CommitExisting:
        if (!o.Commit(existing, connect)) state.SkipWithError("update failed");
        break;
      case Call::Delete:
        if (!o.Delete(stemsState(deletable.next(state)), connect)) {
          state.SkipWithError("delete failed");
        }
        break;
    }
  }
  vrdppo::bench::observeWithNothing(false);
  state.SetItemsProcessed(state.iterations());
}

// The statements the gateway sends for each call (`vrdppo sql cStemsPersist ...` prints them),
// on one held connection.
void held(benchmark::State& state, Call call) {
  if (skipped(state)) return;
  Held c(server());
  Deletable deletable;
  const std::u16string set = u"SET QUOTED_IDENTIFIER OFF";
  for (auto _ : state) {
    c.exec(set);
    switch (call) {
      case Call::Load:
        c.exec(u"SELECT * FROM STEMS WHERE STEMSID = 1");
        break;
      case Call::CommitNew:
        c.exec(
            u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO STEMS (TotalNetWeight, "
            u"ContainerStart, ContainerEnd, StemTypeId, ProductionRunId) VALUES (812.5, 3, 15, 2, "
            u"7)\"");
        break;
      case Call::CommitExisting:
        c.exec(
            u"UPDATE STEMS SET TotalNetWeight = 812.5, ContainerStart = 3, ContainerEnd = 15, "
            u"StemTypeId = 2, ProductionRunId = 7 WHERE STEMSID = 1");
        break;
      case Call::Delete:
        c.exec(u"DELETE FROM STEMS WHERE STEMSID = " +
               vrdppo::fromUtf8(std::to_string(deletable.next(state))));
        break;
    }
  }
  state.SetItemsProcessed(state.iterations());
}

// Load by key from several threads at once, each with its own object, as a plant's workstations
// would call: items per second are calls per second.
void BM_CallLoadByKeyThreads(benchmark::State& state) {
  if (skipped(state)) return;
  const std::u16string connect = connectFor(true);
  vrdppo::cStemsPersist o;
  // Each thread's login made before the clock starts: kept sessions expire between
  // repetitions, and eight logins at once would otherwise be what the figure measures.
  o.Load(u"STEMSID = 1", connect);
  for (auto _ : state) benchmark::DoNotOptimize(o.Load(u"STEMSID = 1", connect).size());
  state.SetItemsProcessed(state.iterations());
}

// Each call three ways: the library with kept sessions (BM_Call...), the same statements on a
// held connection (BM_Held...), and the library with a login a call (BM_Call...Unpooled), where
// a few dozen calls say what each costs.
const int kRegistered = [] {
  const struct {
    const char* name;
    Call call;
  } calls[] = {{"LoadByKey", Call::Load},
               {"CommitNew", Call::CommitNew},
               {"CommitExisting", Call::CommitExisting},
               {"Delete", Call::Delete}};
  for (const auto& c : calls) {
    const Call call = c.call;
    const std::string name = c.name;
    benchmark::RegisterBenchmark(("BM_Call" + name).c_str(),
                                 [call](benchmark::State& s) { library(s, call, true); })
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(1.0);
    benchmark::RegisterBenchmark(("BM_Held" + name).c_str(),
                                 [call](benchmark::State& s) { held(s, call); })
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(1.0);
    benchmark::RegisterBenchmark(("BM_Call" + name + "Unpooled").c_str(),
                                 [call](benchmark::State& s) { library(s, call, false); })
        ->Unit(benchmark::kMillisecond)
        ->Iterations(20);
    // With an observer installed that does nothing: what telling it costs a call.
    if (call == Call::Load || call == Call::CommitExisting) {
      benchmark::RegisterBenchmark(("BM_Call" + name + "Observed").c_str(),
                                   [call](benchmark::State& s) { library(s, call, true, true); })
          ->Unit(benchmark::kMicrosecond)
          ->MinTime(1.0);
    }
  }
  return 0;
}();

}  // namespace

BENCHMARK(BM_CallLoadByKeyThreads)
    ->Unit(benchmark::kMicrosecond)
    ->MinTime(1.0)
    ->UseRealTime()
    ->Threads(1)
    ->Threads(2)
    ->Threads(4)
    ->Threads(8);
