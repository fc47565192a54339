// Load of 100,000 STEMS rows through the ODBC provider, against a plain ODBC loop over the same
// driver that binds the same columns row-wise, fetches them in blocks and copies them into the
// records: through Debian's SQLite ODBC driver on the benchmark store, and through FreeTDS from
// the T-SQL engine that VRDPPO_TSQL_CONNECT names (skipped, saying so, without it).
#include <benchmark/benchmark.h>
#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cctype>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench_store.hpp"
#include "vrdppo/buffer.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/text.hpp"

namespace {

using vrdppo::bench::kRows;

constexpr SQLULEN kBlockRows = 128;

[[noreturn]] void fail(SQLSMALLINT type, SQLHANDLE handle, const char* what) {
  SQLCHAR state[6] = {};
  SQLCHAR message[512] = {};
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  SQLGetDiagRec(type, handle, 1, state, &native, message, sizeof message, &length);
  throw std::runtime_error(std::string(what) + ": " + reinterpret_cast<char*>(message));
}

void check(SQLRETURN rc, SQLSMALLINT type, SQLHANDLE handle, const char* what) {
  if (!SQL_SUCCEEDED(rc)) fail(type, handle, what);
}

// One ODBC connection, opened and closed around each use as the gateway does it.
struct Odbc {
  SQLHENV env = SQL_NULL_HENV;
  SQLHDBC dbc = SQL_NULL_HDBC;
  explicit Odbc(const std::string& connect) {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env);
    SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc);
    std::string text = connect;
    check(SQLDriverConnect(dbc, nullptr, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS, nullptr,
                           0, nullptr, SQL_DRIVER_NOPROMPT),
          SQL_HANDLE_DBC, dbc, "SQLDriverConnect");
  }
  ~Odbc() {
    SQLDisconnect(dbc);
    SQLFreeHandle(SQL_HANDLE_DBC, dbc);
    SQLFreeHandle(SQL_HANDLE_ENV, env);
  }
  void exec(const std::string& sql) {
    SQLHSTMT st = SQL_NULL_HSTMT;
    SQLAllocHandle(SQL_HANDLE_STMT, dbc, &st);
    std::string text = sql;
    const SQLRETURN rc = SQLExecDirect(st, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS);
    if (rc != SQL_NO_DATA && !SQL_SUCCEEDED(rc)) {
      try {
        fail(SQL_HANDLE_STMT, st, sql.c_str());
      } catch (...) {
        SQLFreeHandle(SQL_HANDLE_STMT, st);
        throw;
      }
    }
    SQLFreeHandle(SQL_HANDLE_STMT, st);
  }
};

struct StemsRow {
  SQLINTEGER id;
  SQLLEN idInd;
  SQLDOUBLE weight;
  SQLLEN weightInd;
  SQLINTEGER start;
  SQLLEN startInd;
  SQLINTEGER end;
  SQLLEN endInd;
  SQLINTEGER type;
  SQLLEN typeInd;
  SQLINTEGER run;
  SQLLEN runInd;
};

template <class T>
T orZero(T v, SQLLEN ind) {
  return ind == SQL_NULL_DATA ? T{} : v;
}

SQLPOINTER attr(SQLULEN v) {
  return reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(v));
}

// The plain loop: the six columns bound row-wise, fetched kBlockRows at a time into records.
std::size_t plainLoop(const std::string& connect, std::vector<vrdppo::StemsRecord>& records) {
  Odbc c(connect);
  SQLHSTMT st = SQL_NULL_HSTMT;
  SQLAllocHandle(SQL_HANDLE_STMT, c.dbc, &st);
  std::vector<StemsRow> rows(kBlockRows);
  SQLULEN fetched = 0;
  SQLSetStmtAttr(st, SQL_ATTR_ROW_BIND_TYPE, attr(sizeof(StemsRow)), 0);
  SQLSetStmtAttr(st, SQL_ATTR_ROW_ARRAY_SIZE, attr(kBlockRows), 0);
  SQLSetStmtAttr(st, SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
  StemsRow& r0 = rows[0];
  SQLBindCol(st, 1, SQL_C_SLONG, &r0.id, 0, &r0.idInd);
  SQLBindCol(st, 2, SQL_C_DOUBLE, &r0.weight, 0, &r0.weightInd);
  SQLBindCol(st, 3, SQL_C_SLONG, &r0.start, 0, &r0.startInd);
  SQLBindCol(st, 4, SQL_C_SLONG, &r0.end, 0, &r0.endInd);
  SQLBindCol(st, 5, SQL_C_SLONG, &r0.type, 0, &r0.typeInd);
  SQLBindCol(st, 6, SQL_C_SLONG, &r0.run, 0, &r0.runInd);
  std::string sql = "SELECT * FROM STEMS";
  check(SQLExecDirect(st, reinterpret_cast<SQLCHAR*>(sql.data()), SQL_NTS), SQL_HANDLE_STMT, st,
        "SELECT");
  records.clear();
  SQLRETURN rc = SQL_SUCCESS;
  while ((rc = SQLFetch(st)) != SQL_NO_DATA) {
    check(rc, SQL_HANDLE_STMT, st, "SQLFetch");
    for (SQLULEN i = 0; i < fetched; ++i) {
      const StemsRow& r = rows[i];
      vrdppo::StemsRecord out{};
      out.StemsId = orZero(r.id, r.idInd);
      out.TotalNetWeight = orZero(r.weight, r.weightInd);
      out.ContainerStart = orZero(r.start, r.startInd);
      out.ContainerEnd = orZero(r.end, r.endInd);
      out.StemTypeID = orZero(r.type, r.typeInd);
      out.ProductionRunId = orZero(r.run, r.runInd);
      records.push_back(out);
    }
  }
  SQLFreeHandle(SQL_HANDLE_STMT, st);
  return records.size();
}

void plainOdbc(benchmark::State& state, const std::string& connect) {
  std::vector<vrdppo::StemsRecord> records;
  std::size_t n = 0;
  for (auto _ : state) {
    n = plainLoop(connect, records);
    benchmark::DoNotOptimize(records.data());
  }
  if (n != static_cast<std::size_t>(kRows)) state.SkipWithError("wrong row count");
  state.SetItemsProcessed(state.iterations() * kRows);
}

void loadOdbc(benchmark::State& state, const std::string& connect) {
  vrdppo::bench::loadIntoBuffer<vrdppo::cStemsPersist>(
      state, vrdppo::bench::Store{{}, vrdppo::fromUtf8(connect)}, 43, kRows);
}

// The SQLite driver by its file, so that nothing needs registering; it has no wide calls, and
// the driver manager converts for it in the locale's character set.
const std::string& sqliteOdbc() {
  static const std::string s = [] {
    std::setlocale(LC_CTYPE, "C.UTF-8");
    return "DRIVER=" VRDPPO_SQLITE_ODBC_DRIVER ";Database=" + vrdppo::bench::stemsStore().path;
  }();
  return s;
}

// The SQLite driver cannot run the gateway's "SET QUOTED_IDENTIFIER OFF", so Load's read is
// timed below the gateway: a connection of the provider, the SELECT, and the rows streamed into
// a Buffer state as Load streams them.
class StateSink final : public vrdppo::RecordSink {
 public:
  explicit StateSink(vrdppo::cStemsPersist& o)
      : RecordSink(o.layout(), o.recordBytes()), writer_(43, 10) {}
  std::u16string state() { return writer_.state(); }

 private:
  void take(const std::byte* record) override {
    const std::span<char16_t> to = writer_.next();
    std::memset(to.data(), 0, to.size_bytes());
    std::memcpy(to.data(), record, std::min<std::size_t>(layout().bytes, to.size_bytes()));
  }
  vrdppo::BufferWriter writer_;
};

void BM_OdbcLoadStemsIntoBuffer(benchmark::State& state) {
  const std::u16string connect = vrdppo::fromUtf8(sqliteOdbc());
  vrdppo::cStemsPersist o;
  std::size_t chars = 0;
  for (auto _ : state) {
    vrdppo::Connection c;
    c.setCursorLocation(vrdppo::adUseClient);
    c.Open(connect);
    StateSink sink(o);
    c.ExecuteInto(u"SELECT * FROM STEMS", sink);
    c.Close();
    const std::u16string s = sink.state();
    chars = s.size();
    benchmark::DoNotOptimize(s.data());
  }
  if (chars != 9u + 43u * kRows) state.SkipWithError("wrong state length");
  state.SetItemsProcessed(state.iterations() * kRows);
}

void BM_PlainOdbcStemsIntoStructs(benchmark::State& state) {
  plainOdbc(state, sqliteOdbc());
}

// The T-SQL engine's connection to a database of its own holding kRows stems; empty without
// VRDPPO_TSQL_CONNECT.
const std::string& tsql() {
  static const std::string s = []() -> std::string {
    const char* base = std::getenv("VRDPPO_TSQL_CONNECT");
    if (!base || !*base) return {};
    {
      Odbc c(base);
      c.exec("IF DB_ID('vrdppo_bench') IS NULL CREATE DATABASE vrdppo_bench");
    }
    // The same string, naming the benchmark's database in place of the one it names.
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
    connect += "DATABASE=vrdppo_bench";
    Odbc c(connect);
    c.exec("IF OBJECT_ID('STEMS') IS NOT NULL DROP TABLE STEMS");
    c.exec(
        "CREATE TABLE STEMS (STEMSID INT IDENTITY(1,1) NOT NULL PRIMARY KEY, TotalNetWeight "
        "FLOAT, ContainerStart INT, ContainerEnd INT, StemTypeID INT, ProductionRunId INT)");
    // 10^5 rows from five digits' cross product, values as the embedded store's stems have them.
    c.exec(
        "WITH d(n) AS (SELECT 0 UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3 UNION "
        "ALL SELECT 4 UNION ALL SELECT 5 UNION ALL SELECT 6 UNION ALL SELECT 7 UNION ALL SELECT 8 "
        "UNION ALL SELECT 9), i(n) AS (SELECT a.n + 10 * b.n + 100 * c.n + 1000 * e.n + 10000 * "
        "f.n FROM d a CROSS JOIN d b CROSS JOIN d c CROSS JOIN d e CROSS JOIN d f) "
        "INSERT INTO STEMS (TotalNetWeight, ContainerStart, ContainerEnd, StemTypeID, "
        "ProductionRunId) SELECT 100.0 + (n % 1000) / 4.0, CASE WHEN n % 3 = 0 THEN NULL ELSE n "
        "END, n + 12, n % 7, 1 + n / 1000 FROM i ORDER BY n");
    return connect;
  }();
  return s;
}

bool skipWithoutEngine(benchmark::State& state) {
  if (!tsql().empty()) return false;
  state.SkipWithError("skipped: VRDPPO_TSQL_CONNECT is unset");
  for (auto _ : state) {
  }
  return true;
}

void BM_TsqlLoadStemsIntoBuffer(benchmark::State& state) {
  if (!skipWithoutEngine(state)) loadOdbc(state, tsql());
}

void BM_PlainTsqlStemsIntoStructs(benchmark::State& state) {
  if (!skipWithoutEngine(state)) plainOdbc(state, tsql());
}

}  // namespace

BENCHMARK(BM_OdbcLoadStemsIntoBuffer)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_PlainOdbcStemsIntoStructs)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_TsqlLoadStemsIntoBuffer)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_PlainTsqlStemsIntoStructs)->Unit(benchmark::kMillisecond)->MinTime(2.0);
