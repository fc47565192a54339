// Eight threads, each with its own store file and its own connection string in its per-thread
// session, committing, loading, updating and deleting for a bounded time; at the end each store
// holds exactly the rows its thread left there. Built with the thread sanitizer (the tsan
// preset), this is where data races in the gateway, the provider registry and the store's
// per-file state show. VRDPPO_STRESS_SECONDS bounds it (2 by default).
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <fstream>
#include <sstream>

#include "endtoend/store_fixture.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/odbc_pool.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/reference/types.hpp"

namespace vrdppo::testing {

namespace {

constexpr int kThreads = 8;
constexpr int kMaxRoundsPerThread = 5000;

std::chrono::steady_clock::duration stressTime() {
  const char* s = std::getenv("VRDPPO_STRESS_SECONDS");
  const int seconds = s ? std::atoi(s) : 2;
  return std::chrono::seconds(seconds > 0 ? seconds : 2);
}

std::u16string stemClass(Long key, const std::u16string& description) {
  return newState<cStemClassPersist>([&](StemClassRecord& r) {
    r.StemClassId = key;
    put(r.Description, description);
    put(r.DeletedFlag, u"N");
  });
}

struct Worker {
  std::string path;
  std::u16string connect;
  std::int32_t auditTrailId = 0;
  std::map<Long, std::u16string> rows;  // what the store must hold: key to description
  long operations = 0;
  std::string failure;
};

// One round: an insert, a load of it, and every few rounds an update and a delete.
void round(Worker& w, int thread, int n) {
  cStemClassPersist o;
  const std::u16string description = u"t" + longText(thread) + u"-" + longText(n);
  if (!o.Commit(stemClass(0, description), w.connect)) throw std::runtime_error("insert False");
  const Long key = o.key();
  if (w.rows.count(key)) throw std::runtime_error("a key given twice");
  w.rows[key] = description;
  // Another operation's string in between must not leak into this thread's session.
  if (dbHelp::ConnectString != w.connect) throw std::runtime_error("session not the thread's own");
  const auto loaded =
      rowsOf<cStemClassPersist>(o.Load(u"StemClassId = " + longText(key), w.connect));
  if (loaded.size() != 1 || text(loaded[0].Description) != description)
    throw std::runtime_error("loaded another row than committed");
  w.operations += 2;
  if (n % 3 == 1) {
    const std::u16string updated = description + u"u";
    if (!o.Commit(stemClass(key, updated), w.connect)) throw std::runtime_error("update False");
    w.rows[key] = updated;
    ++w.operations;
  }
  if (n % 4 == 2) {
    const Long victim = w.rows.begin()->first;
    if (!o.Delete(stemClass(victim, u""), w.connect)) throw std::runtime_error("delete False");
    w.rows.erase(victim);
    ++w.operations;
  }
}

TEST(Stress, EightThreadsOnTheirOwnStoresKeepTheirOwnRows) {
  std::vector<Worker> workers(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    workers[t].path = scratchPath("stress-" + std::to_string(t));
    removeStore(workers[t].path);
    workers[t].connect = embedded::connectString(workers[t].path);
  }
  const auto until = std::chrono::steady_clock::now() + stressTime();
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      Worker& w = workers[t];
      ++ready;
      while (ready < kThreads) std::this_thread::yield();  // all start together
      try {
        for (int n = 0; n < kMaxRoundsPerThread && std::chrono::steady_clock::now() < until; ++n)
          round(w, t, n);
      } catch (const Error& e) {
        w.failure = "error " + std::to_string(e.number()) + ": " + e.description();
      } catch (const std::exception& e) {
        w.failure = e.what();
      }
    });
  }
  for (auto& th : threads) th.join();

  long total = 0;
  for (int t = 0; t < kThreads; ++t) {
    SCOPED_TRACE("thread " + std::to_string(t));
    Worker& w = workers[t];
    EXPECT_EQ(w.failure, "");
    total += w.operations;
    // Every row the thread left, and no other, with its last description.
    std::map<Long, std::u16string> found;
    cStemClassPersist o;
    for (const auto& r : rowsOf<cStemClassPersist>(o.Load(u"", w.connect)))
      found[r.StemClassId] = text(r.Description);
    EXPECT_EQ(found, w.rows);
    removeStore(w.path);
  }
  dbHelp::ConnectString.clear();
  RecordProperty("operations", std::to_string(total));
  std::printf("%d threads, %ld operations\n", kThreads, total);
  EXPECT_GT(total, kThreads * 4);
}

// The committed T-SQL scripts, batch by batch (the lines that hold GO part them).
void runScript(const std::u16string& connect, const std::string& file) {
  std::ifstream in(std::string(VRDPPO_SQL_DIR) + "/" + file);
  Connection c;
  c.Open(connect);
  c.Execute(u"SET QUOTED_IDENTIFIER ON");
  std::string line;
  std::string batch;
  while (std::getline(in, line)) {
    if (line == "GO" || line == "GO\r") {
      if (batch.find_first_not_of(" \r\n") != std::string::npos) c.Execute(fromUtf8(batch));
      batch.clear();
    } else {
      batch += line + "\n";
    }
  }
  c.Close();
}

// The same on a server's kept sessions: two connection strings shared by four threads each,
// half of them with an audit trail id of their own, so that sessions pass from thread to thread
// and from one id to another. After every round a thread reads its session's audit trail id and
// finds its own; at the end the server holds exactly each thread's rows.
TEST(Stress, EightThreadsOnServerSessionsKeepTheirOwn) {
  const char* base = std::getenv("VRDPPO_TSQL_CONNECT");
  if (base == nullptr || *base == '\0') GTEST_SKIP() << "VRDPPO_TSQL_CONNECT names no server";
  const std::u16string admin = fromUtf8(base);
  const std::u16string database = u"vrdppo_stress_" + longText(static_cast<Long>(::getpid()));
  std::u16string server;
  for (std::size_t start = 0; start < admin.size();) {
    std::size_t end = admin.find(u';', start);
    if (end == std::u16string::npos) end = admin.size();
    const std::u16string pair = admin.substr(start, end - start);
    if (!equalsNoCase(pair.substr(0, pair.find(u'=')), u"DATABASE") && !pair.empty()) {
      server += pair + u";";
    }
    start = end + 1;
  }
  server += u"DATABASE=" + database;
  {
    Connection c;
    c.Open(admin);
    c.Execute(u"CREATE DATABASE " + database);
  }
  runScript(server, "schema.sql");
  runScript(server, "procedures.sql");

  std::vector<Worker> workers(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    workers[t].connect = server + (t < kThreads / 2 ? u";APP=stress-a" : u";APP=stress-b");
    workers[t].auditTrailId = t % 2 == 0 ? 0 : 100 + t;
  }
  const auto until = std::chrono::steady_clock::now() + stressTime();
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      Worker& w = workers[t];
      dbHelp::AuditTrailId = w.auditTrailId;
      ++ready;
      while (ready < kThreads) std::this_thread::yield();
      try {
        for (int n = 0; n < kMaxRoundsPerThread && std::chrono::steady_clock::now() < until; ++n) {
          round(w, t, n);
          const auto rs =
              dbHelp::OpenRecordset(u"SELECT CAST(SESSION_CONTEXT(N'AuditTrailID') AS INT)");
          const Variant id = rs->Fields(0);
          if (w.auditTrailId == 0 ? !id.isNull() : !(id == Variant(w.auditTrailId))) {
            throw std::runtime_error("another thread's audit trail id in the session");
          }
        }
      } catch (const Error& e) {
        w.failure = "error " + std::to_string(e.number()) + ": " + e.description();
      } catch (const std::exception& e) {
        w.failure = e.what();
      }
      dbHelp::AuditTrailId = 0;
    });
  }
  for (auto& th : threads) th.join();

  long total = 0;
  for (int t = 0; t < kThreads; ++t) {
    SCOPED_TRACE("thread " + std::to_string(t));
    Worker& w = workers[t];
    EXPECT_EQ(w.failure, "");
    total += w.operations;
    std::map<Long, std::u16string> found;
    cStemClassPersist o;
    const std::u16string mine = u"Description LIKE 't" + longText(t) + u"-%'";
    for (const auto& r : rowsOf<cStemClassPersist>(o.Load(mine, w.connect)))
      found[r.StemClassId] = text(r.Description);
    EXPECT_EQ(found, w.rows);
  }
  std::printf("%d threads on server sessions, %ld operations\n", kThreads, total);
  EXPECT_GT(total, kThreads * 4);
  odbc::releaseIdleConnections();
  Connection c;
  c.Open(admin);
  c.Execute(u"DROP DATABASE " + database);
  dbHelp::ConnectString.clear();
}

}  // namespace

}  // namespace vrdppo::testing
