#include "providers/embedded/store_files.hpp"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "providers/embedded/catalog.hpp"
#include "providers/embedded/errors.hpp"
#include "providers/embedded/functions.hpp"
#include "providers/embedded/session.hpp"
#include "vrdppo/text.hpp"

#if defined(__unix__) || defined(__APPLE__)
#include <pthread.h>
#endif

namespace vrdppo::embedded {

namespace {

// What the process keeps on one store file between statements.
struct StoreFile {
  StoreConnectionPtr anchor;             // never used for statements: keeps the WAL index alive
  std::vector<StoreConnectionPtr> idle;  // connections a finished statement handed back
  std::string readOnly;  // the name it is opened by for reading where it cannot be written
};

struct Files {
  std::mutex mutex;
  std::unordered_map<std::string, StoreFile> byPath;

  void closeAll() { byPath.clear(); }
};

// The connections in use in the process, and whether a fork is waiting for them to end.
struct Gate {
  std::mutex mutex;
  int active = 0;
  bool forking = false;
  int crossing = 0;      // connections of other threads still open as the fork goes on
  bool crossed = false;  // in a child: some did cross, and the store is refused here
};

Gate& gate() {
  static Gate g;
  return g;
}

thread_local int activityDepth = 0;

// Polled rather than signalled: a condition variable with waiters that the fork leaves behind
// cannot be used in the child.
void pause(std::unique_lock<std::mutex>& lock) {
  lock.unlock();
  std::this_thread::sleep_for(std::chrono::milliseconds(1));
  lock.lock();
}

Files& files() {
  static Files f;
#if defined(__unix__) || defined(__APPLE__)
  // A SQLite connection must not cross a fork: the parent waits for the connections in use and
  // closes what it keeps before forking, and each process opens its own again on its next
  // statement. The gate stays shut across the fork, so that no connection opens meanwhile.
  static const int registered = pthread_atfork(
      [] {
        Gate& g = gate();
        std::unique_lock lock(g.mutex);
        g.forking = true;
        const int mine = activityDepth > 0 ? 1 : 0;
        const auto until =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(kForkWaitMs);
        while (g.active > mine && std::chrono::steady_clock::now() < until) pause(lock);
        g.crossing = g.active - mine;
        lock.release();
        files().mutex.lock();
        files().closeAll();
      },
      [] {
        files().mutex.unlock();
        gate().forking = false;
        gate().mutex.unlock();
      },
      [] {
        files().mutex.unlock();
        Gate& g = gate();
        // The other threads' connections never end here; what they leave makes the store unsafe
        // in this process.
        g.crossed = g.crossed || g.crossing > 0;
        g.active -= g.crossing;
        g.forking = false;
        g.mutex.unlock();
      });
  (void)registered;
#endif
  return f;
}

// A UTF-8 file name as the file system's own (wide on Windows).
std::filesystem::path fileOf(const std::string& path) {
  return {std::u8string(reinterpret_cast<const char8_t*>(path.data()), path.size())};
}

bool exists(const std::string& path) {
  std::error_code ec;
  return std::filesystem::exists(fileOf(path), ec);
}

[[noreturn]] void failOpen(sqlite3* db, const std::string& path, int rc) {
  std::string message = db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
  message += " (Data Source=" + path + ")";
  if ((rc & 0xff) == SQLITE_CANTOPEN && !exists(path)) {
    message += ": the file does not exist and cannot be created in its folder";
  }
  throw openError(message, db ? sqlite3_extended_errcode(db) : rc);
}

// What the store answers where it cannot write its files, rather than open them for writing.
bool isReadOnlyFailure(int rc) {
  const int primary = rc & 0xff;
  return primary == SQLITE_READONLY || primary == SQLITE_CANTOPEN || primary == SQLITE_PERM;
}

// A file name as a SQLite URI, for the parameters that a plain name cannot carry.
std::string uriOf(const std::string& path) {
  std::string uri = "file:";
  if (path.size() > 1 && path[1] == ':') uri += '/';  // a drive letter
  for (const char c : path) {
    if (c == '\\') {
      uri += '/';
    } else if (c == '%' || c == '?' || c == '#') {
      static constexpr char kHex[] = "0123456789ABCDEF";
      uri += '%';
      uri += kHex[static_cast<unsigned char>(c) >> 4];
      uri += kHex[c & 15];
    } else {
      uri += c;
    }
  }
  return uri;
}

std::int32_t userVersion(sqlite3* db) {
  Statement st(db, std::string_view("PRAGMA user_version"), Purpose::Setup);
  return st.step() ? sqlite3_column_int(st.get(), 0) : -1;
}

// What a file holds, as far as the store's set-up is concerned.
enum class Contents { Empty, Current, Other };

// The column the catalog declares a table's primary key.
std::string keyOf(const Catalog::Declared& table) {
  for (const auto& [column, definition] : table.columns) {
    if (upperAscii(definition).find("PRIMARY KEY") != std::string::npos) return column;
  }
  return {};
}

// Reads, and never writes, what the file at path holds: nothing (a new or zero-length file, or
// a database with no schema and no stamp), the store of this build, or another store, that of an
// older build, which the set-up brings up to date. Anything else is some other program's file,
// and is refused before anything touches it: a store's tables added to it, its user_version
// overwritten or its journal switched would all damage what that program keeps there. A store is
// known by its stamp or by a table of the catalog keyed as the store keys it, so that a foreign
// table which happens to share a name does not count.
Contents contentsOf(sqlite3* db, const std::string& path) {
  const auto fail = [&](int rc) { failOpen(db, path, rc); };
  sqlite3_stmt* raw = nullptr;
  const auto query = [&](const char* sql) {
    const int rc = sqlite3_prepare_v2(db, sql, -1, &raw, nullptr);
    if (rc != SQLITE_OK) fail(rc);
    return std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>(raw, sqlite3_finalize);
  };
  const auto row = [&](sqlite3_stmt* st) {
    const int rc = sqlite3_step(st);
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) fail(rc);
    return rc == SQLITE_ROW;
  };
  const Catalog& catalog = storeCatalog();
  std::int32_t stamp = 0;
  {
    const auto st = query("PRAGMA user_version");
    if (row(st.get())) stamp = sqlite3_column_int(st.get(), 0);
  }
  if (stamp == catalog.stamp()) return Contents::Current;
  std::unordered_set<std::string> tables;  // upper-case names
  {
    const auto st = query("SELECT type, name FROM sqlite_master");
    bool any = false;
    while (row(st.get())) {
      any = true;
      const auto* type = reinterpret_cast<const char*>(sqlite3_column_text(st.get(), 0));
      const auto* name = reinterpret_cast<const char*>(sqlite3_column_text(st.get(), 1));
      if (type && name && std::string_view(type) == "table") tables.insert(upperAscii(name));
    }
    if (!any && stamp == 0) return Contents::Empty;
  }
  const auto keyed =
      query("SELECT 1 FROM pragma_table_info(?1) WHERE pk = 1 AND name = ?2 COLLATE NOCASE");
  for (const auto& table : catalog.tables()) {
    if (!tables.contains(upperAscii(table.name))) continue;
    const std::string key = keyOf(table);
    sqlite3_bind_text(keyed.get(), 1, table.name.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(keyed.get(), 2, key.c_str(), -1, SQLITE_TRANSIENT);
    const bool found = row(keyed.get());
    sqlite3_reset(keyed.get());
    if (found) return Contents::Other;
  }
  throw openError(
      "The file is not a store: it holds a database of another kind, with neither the "
      "store's stamp nor any of its tables, and is left as it is (Data Source=" +
          path + ")",
      SQLITE_NOTADB);
}

// Brings the schema of the file up to the catalog's; the transaction makes concurrent first
// opens by several processes take turns, the later ones finding the work done.
void applySchema(sqlite3* db, const std::string& path) {
  const Catalog& catalog = storeCatalog();
  if (userVersion(db) == catalog.stamp()) return;
  const int rc = sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
  if (rc != SQLITE_OK) failOpen(db, path, rc);
  try {
    if (userVersion(db) != catalog.stamp()) {
      catalog.apply(db);
      execute(db, "PRAGMA user_version = " + std::to_string(catalog.stamp()), Purpose::Setup);
    }
    execute(db, "COMMIT", Purpose::Setup);
  } catch (...) {
    rollbackQuietly(db, "ROLLBACK");
    throw;
  }
}

// Statements of a connection may read and write the rows of its database, as on a server, and
// reach nothing outside it: no other file attached (VACUUM INTO attaches its target too), no
// extension loaded, no setting of the file changed. The pragmas left are those that only read.
int confineToTheFile(void*, int action, const char* a1, const char* a2, const char*, const char*) {
  const std::string_view arg1 = a1 ? a1 : "";
  switch (action) {
    case SQLITE_ATTACH:
      // A plain VACUUM attaches a nameless temporary database of its own.
      return arg1.empty() ? SQLITE_OK : SQLITE_DENY;
    case SQLITE_DETACH:
    // Nor is the schema changed: the statements arrive with the session's rights, and the
    // session refuses these before they get here.
    case SQLITE_CREATE_INDEX:
    case SQLITE_CREATE_TABLE:
    case SQLITE_CREATE_TEMP_INDEX:
    case SQLITE_CREATE_TEMP_TABLE:
    case SQLITE_CREATE_TEMP_TRIGGER:
    case SQLITE_CREATE_TEMP_VIEW:
    case SQLITE_CREATE_TRIGGER:
    case SQLITE_CREATE_VIEW:
    case SQLITE_CREATE_VTABLE:
    case SQLITE_DROP_INDEX:
    case SQLITE_DROP_TABLE:
    case SQLITE_DROP_TEMP_INDEX:
    case SQLITE_DROP_TEMP_TABLE:
    case SQLITE_DROP_TEMP_TRIGGER:
    case SQLITE_DROP_TEMP_VIEW:
    case SQLITE_DROP_TRIGGER:
    case SQLITE_DROP_VIEW:
    case SQLITE_DROP_VTABLE:
    case SQLITE_ALTER_TABLE:
      return SQLITE_DENY;
    case SQLITE_FUNCTION: {
      const std::string_view fn = a2 ? a2 : "";
      return fn == "load_extension" || fn == "fts3_tokenizer" ? SQLITE_DENY : SQLITE_OK;
    }
    case SQLITE_PRAGMA: {
      // Pragmas that take the name of a table or index and only describe it.
      static constexpr std::string_view kDescribing[] = {
          "table_info",  "table_xinfo",      "table_list",        "index_list",      "index_info",
          "index_xinfo", "foreign_key_list", "foreign_key_check", "integrity_check", "quick_check"};
      // Pragmas that only read when given no value.
      static constexpr std::string_view kReading[] = {
          "user_version", "schema_version",  "application_id", "data_version",   "page_count",
          "page_size",    "freelist_count",  "encoding",       "journal_mode",   "synchronous",
          "foreign_keys", "compile_options", "database_list",  "collation_list", "function_list",
          "module_list",  "pragma_list"};
      for (const auto name : kDescribing) {
        if (arg1 == name) return SQLITE_OK;
      }
      if (a2) return SQLITE_DENY;
      for (const auto name : kReading) {
        if (arg1 == name) return SQLITE_OK;
      }
      return SQLITE_DENY;
    }
    default:
      return SQLITE_OK;
  }
}

// Switching a file to write-ahead logging needs a moment without other processes' locks, and
// SQLite answers busy at once rather than call the busy handler when another process is in the
// middle of the same switch (several processes opening a new file together); so it waits here,
// as long as any statement would.
int switchToWal(sqlite3* db) {
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(kBusyTimeoutMs);
  for (int pause = 1;; pause = std::min(pause * 2, 64)) {
    const int rc = sqlite3_exec(db, "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);
    if ((rc & 0xff) != SQLITE_BUSY || std::chrono::steady_clock::now() >= until) return rc;
    sqlite3_sleep(pause);
  }
}

}  // namespace

StoreConnectionPtr openConnection(const std::string& path, const Session* session,
                                  const std::string& readOnly) {
  auto connection = std::make_unique<StoreConnection>();
  connection->session = session;
  sqlite3* raw = nullptr;
  const int flags = !readOnly.empty()
                        ? SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX
                        : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  int rc =
      sqlite3_open_v2(readOnly.empty() ? path.c_str() : readOnly.c_str(), &raw, flags, nullptr);
  connection->db.reset(raw);  // a failed open still hands back a handle to close
  if (rc != SQLITE_OK) failOpen(raw, path, rc);
  rc = sqlite3_extended_result_codes(raw, 1);
  if (rc == SQLITE_OK) rc = sqlite3_busy_timeout(raw, kBusyTimeoutMs);
  // A double-quoted name that is no column stays an error, as on a server.
  if (rc == SQLITE_OK) rc = sqlite3_db_config(raw, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  if (rc == SQLITE_OK) rc = sqlite3_db_config(raw, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  connection->auditTrail = {[](const void* slot) noexcept -> std::int32_t {
                              const Session* holder = *static_cast<const Session* const*>(slot);
                              return holder ? holder->auditTrailId() : 0;
                            },
                            &connection->session};
  if (rc == SQLITE_OK) rc = registerFunctions(raw, &connection->auditTrail);
  // The stamp of this build's schema, beside the file's PRAGMA user_version: whether a call
  // would bring the file up to date.
  if (rc == SQLITE_OK) {
    rc = sqlite3_create_function_v2(
        raw, "vr_schema_stamp", 0, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
        [](sqlite3_context* ctx, int, sqlite3_value**) {
          sqlite3_result_int(ctx, storeCatalog().stamp());
        },
        nullptr, nullptr, nullptr);
  }
  if (rc == SQLITE_OK && readOnly.empty())
    rc = sqlite3_exec(raw, "PRAGMA synchronous = FULL", nullptr, nullptr, nullptr);
  // The connection that prepares the file sets it up; every other one runs statements.
  if (rc == SQLITE_OK && session) rc = sqlite3_set_authorizer(raw, confineToTheFile, nullptr);
  if (rc != SQLITE_OK) failOpen(raw, path, rc);
  return connection;
}

namespace {

// The set-up of a file that can be written: write-ahead logging and the current schema. False
// where the file or its folder turns out to be read-only.
bool setUpForWriting(sqlite3* db, const std::string& path) {
  if (sqlite3_db_readonly(db, "main") == 1) return false;
  const int rc = switchToWal(db);
  if (rc != SQLITE_OK) {
    if (isReadOnlyFailure(rc) && exists(path)) return false;
    failOpen(db, path, rc);
  }
  try {
    applySchema(db, path);
  } catch (const Error&) {
    if (isReadOnlyFailure(sqlite3_extended_errcode(db)) && exists(path)) return false;
    throw;
  }
  return true;
}

// A store in write-ahead logging mode is read through its log and the log's index, which SQLite
// makes beside the file. Read-only, it is read so where the index exists or can be made, which
// keeps to the locks of processes that may still write it; otherwise, when its log holds
// nothing, as immutable: no locks and no index, which is right where no one can write it
// either. `name` becomes the name it was opened by.
StoreConnectionPtr openForReading(const std::string& path, std::string& name) {
  name = uriOf(path) + "?mode=ro";
  try {
    auto connection = openConnection(path, nullptr, name);
    (void)userVersion(connection->db.get());  // the first read opens the log and its index
    return connection;
  } catch (const Error& e) {
    std::error_code ec;
    const auto log = std::filesystem::file_size(fileOf(path + "-wal"), ec);
    if (!isReadOnlyFailure(e.nativeError()) || (!ec && log > 0)) throw;
  }
  name = uriOf(path) + "?immutable=1";
  return openConnection(path, nullptr, name);
}

}  // namespace

FileMark markOf(const std::string& path) {
  std::error_code ec;
  const auto file = fileOf(path);
  FileMark mark{std::filesystem::last_write_time(file, ec), 0};
  mark.size = std::filesystem::file_size(file, ec);
  if (ec) mark.size = 0;
  return mark;
}

StoreConnectionPtr openToRead(const std::string& path, const Session* session) {
  if (!exists(path)) {
    throw openError("No store file to read (Data Source=" + path + ")", SQLITE_CANTOPEN);
  }
  // A log beside the file means that someone has it open, or that commits wait in it: read
  // through the log and its index, as they do. Without one, no connection is open on the file,
  // and reading it as immutable leaves nothing beside it (a reader in WAL mode would make the
  // log and its index, and could not remove them).
  std::error_code ec;
  const bool logged = std::filesystem::exists(fileOf(path + "-wal"), ec);
  std::string name = uriOf(path) + "?immutable=1";
  if (logged) (void)openForReading(path, name);
  auto connection = openConnection(path, session, name);
  connection->immutable = name.ends_with("?immutable=1");
  if (contentsOf(connection->db.get(), path) == Contents::Empty) {
    throw openError("The file holds no store yet (Data Source=" + path + ")", SQLITE_NOTADB);
  }
  return connection;
}

void prepareStore(const std::string& path, bool recheck) {
  Files& f = files();
  {
    std::lock_guard lock(f.mutex);
    const auto it = f.byPath.find(path);
    if (it != f.byPath.end()) {
      if (!recheck) return;
      f.byPath.erase(it);
    }
  }
  StoreConnectionPtr setup;
  try {
    setup = openConnection(path, nullptr, {});
  } catch (const Error& e) {
    // SQLite refuses to open a file it can only read where its log could not be made.
    if (!isReadOnlyFailure(e.nativeError()) || !exists(path)) throw;
  }
  // Decided before anything is written, the journal mode included.
  if (setup) contentsOf(setup->db.get(), path);
  std::string readOnly;
  if (!setup || !setUpForWriting(setup->db.get(), path)) {
    // Read as it stands: its schema is whatever it was made with.
    const bool known = setup != nullptr;
    setup = openForReading(path, readOnly);
    if (!known) contentsOf(setup->db.get(), path);
  }
  std::lock_guard lock(f.mutex);
  StoreFile& file = f.byPath[path];
  if (!file.anchor) {  // else another thread was first
    file.anchor = std::move(setup);
    file.readOnly = readOnly;
  }
}

StoreConnectionPtr acquireConnection(const std::string& path, const Session* session) {
  prepareStore(path);
  StoreConnectionPtr db;
  std::string readOnly;
  {
    Files& f = files();
    std::lock_guard lock(f.mutex);
    const auto it = f.byPath.find(path);
    if (it != f.byPath.end()) {
      readOnly = it->second.readOnly;
      if (!it->second.idle.empty()) {
        db = std::move(it->second.idle.back());
        it->second.idle.pop_back();
      }
    }
  }
  if (!db) return openConnection(path, session, readOnly);
  // What a fresh connection would show: no last insert, this session's audit trail id.
  sqlite3_set_last_insert_rowid(db->db.get(), 0);
  db->session = session;
  return db;
}

void releaseConnection(const std::string& path, StoreConnectionPtr db, bool reusable) {
  if (!db) return;
  db->session = nullptr;
  sqlite3* raw = db->db.get();
  // A transaction the statement left open ends with its connection, as on a server; one that
  // will not roll back leaves the connection unfit to be handed on.
  if (sqlite3_get_autocommit(raw) == 0) {
    reusable = reusable && rollbackQuietly(raw, "ROLLBACK") && sqlite3_get_autocommit(raw) != 0;
  }
  if (!reusable) return;
  Files& f = files();
  std::lock_guard lock(f.mutex);
  const auto it = f.byPath.find(path);
  if (it != f.byPath.end() && it->second.idle.size() < kIdleConnections) {
    it->second.idle.push_back(std::move(db));
  }
}

StoreActivity::StoreActivity() {
  if (activityDepth > 0) {
    ++activityDepth;
    return;
  }
  files();  // the fork handlers registered before the first connection counts
  Gate& g = gate();
  std::unique_lock lock(g.mutex);
  while (g.forking) pause(lock);
  if (g.crossed) {
    throw openError(
        "This process was forked while another thread of its parent had a store connection "
        "open; SQLite's locks cannot be trusted here, so the store is not used in this process. "
        "Close store connections before forking.",
        SQLITE_MISUSE);
  }
  ++g.active;
  ++activityDepth;
}

StoreActivity::~StoreActivity() {
  if (--activityDepth > 0) return;
  Gate& g = gate();
  std::lock_guard lock(g.mutex);
  --g.active;
}

void forgetStore(const std::string& path) {
  Files& f = files();
  std::lock_guard lock(f.mutex);
  f.byPath.erase(path);
}

}  // namespace vrdppo::embedded
