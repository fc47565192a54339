// What the library sends and what its kept server sessions do, told to an observer the caller
// installs: for the process, for one thread, or both. The library writes nothing anywhere of its
// own; with no observer installed nothing is measured and nothing is told.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "vrdppo/error.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

// Where the session a statement ran on came from.
enum class SessionOrigin : std::uint8_t {
  None,   // the provider has no logins (the embedded store)
  Fresh,  // a login made for this connection
  Kept,   // a server session kept from an earlier connection
};

// Where a connection string leads, as the common tracing conventions for database calls name it
// (their attribute names in brackets).
struct DatabaseTarget {
  std::string_view system;            // [db.system.name] "microsoft.sql_server", "sqlite", or the
                                      // name of the provider that took the string
  std::u16string_view serverAddress;  // [server.address] empty where the string names none
  std::int32_t serverPort = 0;        // [server.port] 0 where the string names none
  std::u16string_view databaseName;   // [db.namespace] the database, or the store's file
  std::u16string_view connection;     // the whole connection string, every password masked
};

// One statement the library sent: the gateway's, an operation's own and the kept sessions' alike.
struct StatementEvent {
  DatabaseTarget target;
  std::u16string_view queryText;      // [db.query.text] exactly as sent
  std::u16string_view operationName;  // [db.operation.name] its first word in upper case
  std::int64_t returnedRows = -1;     // [db.response.returned_rows] -1 when it gave no rows
  std::int64_t affectedRows = -1;     // rows it inserted, updated or deleted; -1 when not known
  std::chrono::nanoseconds duration{};
  SessionOrigin session = SessionOrigin::None;
  // [error.type] is its sqlState(), [db.response.status_code] its nativeError(); null when the
  // statement succeeded.
  const Error* error = nullptr;
};

// What happened to a kept server session.
enum class SessionEventKind : std::uint8_t {
  Login,   // a fresh login, with its time (and its error when it failed)
  Reuse,   // a kept session handed to a connection
  Logout,  // a session logged out, with the cause
};

enum class LogoutCause : std::uint8_t {
  None,            // not a logout
  NotKept,         // the string or the environment keeps no sessions, or the server is not one
                   // whose sessions the pool knows how to clean
  SessionChanged,  // a statement may have left something in the session
  IdleLifeEnded,   // kept idle for longer than its life
  Limit,           // the cap of idle sessions made room for a newer one
  DeadLink,        // its link to the server failed
  NotAnswering,    // a kept session did not answer its first statement in time
  Released,        // the caller released every idle session
};
inline constexpr int kLogoutCauses = 8;

// The name of a cause, as the tool's trace and the pool figures print it ("idle-life-ended").
std::string_view logoutCauseName(LogoutCause cause) noexcept;

struct SessionEvent {
  SessionEventKind kind = SessionEventKind::Login;
  LogoutCause cause = LogoutCause::None;
  DatabaseTarget target;
  std::chrono::nanoseconds duration{};  // a login's time; zero otherwise
  const Error* error = nullptr;         // a login that failed
};

// Installed by the caller; told after each statement and at each session event. It is called on
// the thread that made the call (idle sessions' lives end on a thread of the library's own, which
// only the process's observer hears of), never twice at once for one thread, and never for what
// it sends itself. What it raises is dropped: it cannot change what a call sends, returns or
// raises.
class Observer {
 public:
  Observer() = default;
  virtual ~Observer() = default;
  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;
  virtual void onStatement(const StatementEvent& event) = 0;
  virtual void onSession(const SessionEvent& /*event*/) {}
};

namespace observe {

// The process's observer; null removes it. Returns the one it replaces.
std::shared_ptr<Observer> setProcessObserver(std::shared_ptr<Observer> observer);
// This thread's observer, told before the process's; null removes it.
std::shared_ptr<Observer> setThreadObserver(std::shared_ptr<Observer> observer);

// Whether an observer would be told anything on this thread now: the one test a statement pays
// when none is installed.
bool active() noexcept;
// Tell this thread's observer and the process's; what they raise is dropped.
void tell(const StatementEvent& event) noexcept;
void tell(const SessionEvent& event) noexcept;
// Tells of a statement sent on a connection made with `connect`, begun at `start`: the event built
// from them, the target read once per thread's string. Call only while active().
void tellStatement(std::u16string_view connect, std::string_view system, std::u16string_view sql,
                   std::chrono::steady_clock::time_point start, std::int64_t returnedRows,
                   std::int64_t affectedRows, SessionOrigin session, const Error* error) noexcept;
// At process exit, before the library's statics go: nothing is told after it.
void silence() noexcept;

// Where a connection string leads; the views point into `masked`, which holds the string with its
// passwords masked. `system` is the provider's name for the database.
struct ParsedTarget {
  std::u16string masked;
  std::u16string serverAddress;
  std::u16string databaseName;
  std::int32_t serverPort = 0;
  DatabaseTarget view(std::string_view system) const;
};
ParsedTarget parseTarget(std::u16string_view connect);
// The same, kept for the thread's last string: a call's statements all go to one.
const ParsedTarget& targetOf(std::u16string_view connect);

// The connection string with the value of every password key (PWD, Password, any case) replaced
// by "***".
std::u16string maskPasswords(std::u16string_view connect);

// A statement's first word in upper case ("SELECT", "EXEC"), empty for none.
std::u16string operationOf(std::u16string_view sql);

// One line of a trace: the statement's time, rows, session and text (or its error), as the tool's
// --trace and the class server's trace file write it. UTF-8, no line end.
std::string traceLine(const StatementEvent& event);
std::string traceLine(const SessionEvent& event);

}  // namespace observe

}  // namespace vrdppo
VRDPPO_PUBLIC_END
