// Store files: opening a SQLite connection set up for the dialect, and the once-per-process
// preparation of each file (its schema, its journal mode, a connection kept open on it).
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "providers/embedded/functions.hpp"
#include "providers/embedded/sqlite_handles.hpp"

namespace vrdppo::embedded {

class Session;

// How long a statement waits for another connection's write lock before it fails.
inline constexpr int kBusyTimeoutMs = 30000;

// A connection of the store with what stays with it from one session to the next.
struct StoreConnection {
  // The session that audittrailid() reads, through this slot, so that handing the connection to
  // another session redefines no function and so expires none of the statements kept.
  const Session* session = nullptr;
  // How audittrailid() reads it: the holder's id, 0 for none.
  AuditTrailSource auditTrail{};
  ConnectionHandle db;
  // Opened as immutable: the file alone, no locks, trusted not to change.
  bool immutable = false;
  // Declared last, so that it finalizes its statements before db closes.
  StatementCache statements;
};
using StoreConnectionPtr = std::unique_ptr<StoreConnection>;

// A connection on path with the busy timeout, the dialect's functions and durable commits;
// without a session, the connection that sets the file up. `readOnly`, when not empty, is the
// name (a URI) that opens a file which cannot be written, or whose folder cannot, for reading.
// Raises the provider-failure error.
StoreConnectionPtr openConnection(const std::string& path, const Session* session,
                                  const std::string& readOnly);

// Makes the file at path ready: created with the current schema, or brought up to date, in WAL
// mode; where the file or its folder is read-only, opened for reading as it stands. The first call
// per process per file does the work and keeps one idle connection open on the file, so that the
// per-statement connections neither checkpoint nor rebuild the WAL index on every close and open;
// later calls only look the path up. With recheck, the work is done again.
void prepareStore(const std::string& path, bool recheck = false);

// A connection that only reads the store at path as it stands, whatever the file's rights: the
// file is neither created, set up nor brought up to date, and nothing is left beside it. Not
// pooled. Raises the provider-failure error for a file that is missing, empty or no store.
StoreConnectionPtr openToRead(const std::string& path, const Session* session);

// What a writer's checkpoint changes in a file: its time and its size. A connection that reads a
// file as immutable compares them around its statements. The time is the file system's, which
// ticks in milliseconds: a write in the very tick the mark was taken may go unseen.
struct FileMark {
  std::filesystem::file_time_type time{};
  std::uintmax_t size = 0;
  bool operator==(const FileMark&) const = default;
};
FileMark markOf(const std::string& path);

// Connections are pooled per file, as a driver manager pools a server's connections: a
// statement's connection comes from the file's idle ones when there is one, which spares it
// opening the file and reading the schema again.
inline constexpr std::size_t kIdleConnections = 8;

// A connection on the prepared store at path, bound to session.
StoreConnectionPtr acquireConnection(const std::string& path, const Session* session);
// Hands a connection back after its statement: any transaction left open is rolled back; kept
// for the next statement when reusable (nothing on it outlives the session: no temporary
// tables, no changed settings), closed otherwise.
void releaseConnection(const std::string& path, StoreConnectionPtr connection, bool reusable);

// A connection of the store in use by a session, from its opening to its release. A fork waits
// for those of other threads to end and closes every other connection of the process first: a
// connection that crosses into the child, though its thread is not there, leaves SQLite's
// memory of the file saying that the process holds locks it does not hold in the child, so that
// the child's own connections either wait on them or, worse, hold no real lock at all and let
// another process checkpoint the log under their writes. Nested ones in a thread count once.
class StoreActivity {
 public:
  StoreActivity();
  ~StoreActivity();
  StoreActivity(const StoreActivity&) = delete;
  StoreActivity& operator=(const StoreActivity&) = delete;
};

// How long a fork waits for other threads' connections before it goes on: a statement ends in
// milliseconds, a connection held open may never. Where one is still open, the child refuses the
// store (every connection raises) rather than use it with locks it does not hold.
inline constexpr int kForkWaitMs = 5000;

// Closes what the process keeps on path and forgets that the file was prepared.
void forgetStore(const std::string& path);

}  // namespace vrdppo::embedded
