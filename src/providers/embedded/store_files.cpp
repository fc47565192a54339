#include "providers/embedded/store_files.hpp"

#include <sqlite3.h>

#include <mutex>
#include <unordered_map>
#include <vector>

#include "providers/embedded/catalog.hpp"
#include "providers/embedded/errors.hpp"
#include "providers/embedded/functions.hpp"

#if defined(__unix__) || defined(__APPLE__)
#include <pthread.h>
#endif

namespace vrdppo::embedded {

namespace {

// What the process keeps on one store file between statements.
struct StoreFile {
  sqlite3* anchor = nullptr;   // never used for statements: keeps the WAL index alive
  std::vector<sqlite3*> idle;  // connections a finished statement handed back
};

struct Files {
  std::mutex mutex;
  std::unordered_map<std::string, StoreFile> byPath;

  ~Files() { closeAll(); }
  static void close(StoreFile& f) {
    for (sqlite3* db : f.idle) sqlite3_close_v2(db);
    f.idle.clear();
    if (f.anchor) sqlite3_close_v2(f.anchor);
    f.anchor = nullptr;
  }
  void closeAll() {
    for (auto& [path, f] : byPath) close(f);
    byPath.clear();
  }
};

Files& files() {
  static Files f;
#if defined(__unix__) || defined(__APPLE__)
  // A SQLite connection must not cross a fork: the parent closes what it keeps before forking,
  // and each process opens its own again on its next statement.
  static const int registered = pthread_atfork(
      [] {
        files().mutex.lock();
        files().closeAll();
      },
      [] { files().mutex.unlock(); }, [] { files().mutex.unlock(); });
  (void)registered;
#endif
  return f;
}

[[noreturn]] void failOpen(sqlite3* db, const std::string& path, int rc) {
  std::string message = db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
  message += " (Data Source=" + path + ")";
  const int code = db ? sqlite3_extended_errcode(db) : rc;
  if (db) sqlite3_close_v2(db);
  throw openError(message, code);
}

std::int32_t userVersion(sqlite3* db) {
  sqlite3_stmt* st = nullptr;
  std::int32_t v = -1;
  if (sqlite3_prepare_v2(db, "PRAGMA user_version", -1, &st, nullptr) == SQLITE_OK &&
      sqlite3_step(st) == SQLITE_ROW) {
    v = sqlite3_column_int(st, 0);
  }
  sqlite3_finalize(st);
  return v;
}

// Brings the schema of the file up to the catalog's; the transaction makes concurrent first
// opens by several processes take turns, the later ones finding the work done.
void applySchema(sqlite3* db, const std::string& path) {
  const Catalog& catalog = storeCatalog();
  if (userVersion(db) == catalog.stamp()) return;
  int rc = sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
  if (rc != SQLITE_OK) failOpen(nullptr, path, rc);
  try {
    if (userVersion(db) != catalog.stamp()) {
      catalog.apply(db);
      const std::string stamp = "PRAGMA user_version = " + std::to_string(catalog.stamp());
      rc = sqlite3_exec(db, stamp.c_str(), nullptr, nullptr, nullptr);
      if (rc != SQLITE_OK) throw openError(sqlite3_errmsg(db), rc);
    }
    rc = sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) throw openError(sqlite3_errmsg(db), rc);
  } catch (...) {
    sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

}  // namespace

sqlite3* openConnection(const std::string& path, const Session* session) {
  sqlite3* db = nullptr;
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  int rc = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
  if (rc != SQLITE_OK) failOpen(db, path, rc);
  sqlite3_extended_result_codes(db, 1);
  sqlite3_busy_timeout(db, kBusyTimeoutMs);
  // A double-quoted name that is no column stays an error, as on a server.
  sqlite3_db_config(db, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(db, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  rc = registerFunctions(db, session);
  if (rc == SQLITE_OK)
    rc = sqlite3_exec(db, "PRAGMA synchronous = FULL", nullptr, nullptr, nullptr);
  if (rc != SQLITE_OK) failOpen(db, path, rc);
  return db;
}

void prepareStore(const std::string& path, bool recheck) {
  Files& f = files();
  {
    std::lock_guard lock(f.mutex);
    const auto it = f.byPath.find(path);
    if (it != f.byPath.end()) {
      if (!recheck) return;
      Files::close(it->second);
      f.byPath.erase(it);
    }
  }
  sqlite3* db = openConnection(path, nullptr);
  try {
    // Switching to WAL needs a moment without other connections' locks; the busy handler waits.
    char* message = nullptr;
    const int rc = sqlite3_exec(db, "PRAGMA journal_mode = WAL", nullptr, nullptr, &message);
    sqlite3_free(message);
    if (rc != SQLITE_OK) {
      throw openError(std::string(sqlite3_errmsg(db)) + " (Data Source=" + path + ")", rc);
    }
    applySchema(db, path);
  } catch (...) {
    sqlite3_close_v2(db);
    throw;
  }
  std::lock_guard lock(f.mutex);
  StoreFile& file = f.byPath[path];
  if (file.anchor) {
    sqlite3_close_v2(db);  // another thread was first
  } else {
    file.anchor = db;
  }
}

sqlite3* acquireConnection(const std::string& path, const Session* session) {
  prepareStore(path);
  sqlite3* db = nullptr;
  {
    Files& f = files();
    std::lock_guard lock(f.mutex);
    const auto it = f.byPath.find(path);
    if (it != f.byPath.end() && !it->second.idle.empty()) {
      db = it->second.idle.back();
      it->second.idle.pop_back();
    }
  }
  if (!db) return openConnection(path, session);
  // What a fresh connection would show: no last insert, this session's audit trail id.
  sqlite3_set_last_insert_rowid(db, 0);
  if (bindSession(db, session) != SQLITE_OK) {
    sqlite3_close_v2(db);
    return openConnection(path, session);
  }
  return db;
}

void releaseConnection(const std::string& path, sqlite3* db, bool reusable) {
  if (!db) return;
  // A transaction the statement left open ends with its connection, as on a server.
  if (sqlite3_get_autocommit(db) == 0) {
    sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
    reusable = reusable && sqlite3_get_autocommit(db) != 0;
  }
  if (reusable) {
    Files& f = files();
    std::lock_guard lock(f.mutex);
    const auto it = f.byPath.find(path);
    if (it != f.byPath.end() && it->second.idle.size() < kIdleConnections) {
      it->second.idle.push_back(db);
      return;
    }
  }
  sqlite3_close_v2(db);
}

void forgetStore(const std::string& path) {
  Files& f = files();
  std::lock_guard lock(f.mutex);
  const auto it = f.byPath.find(path);
  if (it == f.byPath.end()) return;
  Files::close(it->second);
  f.byPath.erase(it);
}

}  // namespace vrdppo::embedded
