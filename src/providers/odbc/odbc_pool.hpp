// The physical connections the ODBC provider keeps between statements, as the platform's
// data-access layer kept them: the gateway opens and closes a connection per statement, and
// underneath the login is made once and the session handed on, cleaned, to the next statement.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "providers/odbc/odbc_handles.hpp"
#include "vrdppo/observer.hpp"

namespace vrdppo::odbc {

// One login on a server: its handles and what the statements run on it left in its session.
struct PhysicalConnection {
  Handle env;  // declared first: the connection handle must go before its environment
  Handle dbc;
  // The server speaks T-SQL, so that the pool knows how to clean and test its sessions; no other
  // kind of server's connection is kept.
  bool tsql = false;
  // What "exec ZZ_SetAuditTrailID n" left in the session context; 0 when nothing.
  std::int32_t auditTrailId = 0;
  std::chrono::steady_clock::time_point idleSince;
  std::u16string key;  // the connection string it was made with, credentials included
  LogoutCause cause = LogoutCause::NotKept;  // why it is logged out, when it is

  PhysicalConnection() = default;
  ~PhysicalConnection();  // logs out, counted under its cause
  PhysicalConnection(const PhysicalConnection&) = delete;
  PhysicalConnection& operator=(const PhysicalConnection&) = delete;
};
using PhysicalPtr = std::unique_ptr<PhysicalConnection>;

namespace pool {

// Whether connections are kept at all: on unless VRDPPO_ODBC_POOLING is 0, no, false or off, in
// any case.
bool enabled();
// How long an idle connection is kept: VRDPPO_ODBC_POOL_TIMEOUT seconds, 60 by default (the
// driver managers' own default); 0 keeps none. A connection idle for longer is logged out then,
// whether or not the process makes another call.
std::chrono::seconds idleTimeout();
// Idle connections kept per connection string.
inline constexpr std::size_t kIdlePerKey = 16;
// Idle connections kept by the process over every connection string: VRDPPO_ODBC_POOL_MAX, 16 by
// default, so that a process with many strings holds no more of a server's connections idle
// than one with one string does.
std::size_t idleLimit();

// An idle connection made with `key` (the whole connection string, credentials included),
// preferring one whose session holds this audit trail id; null when there is none. Connections
// idle past the timeout are closed on the way.
PhysicalPtr take(const std::u16string& key, std::int32_t auditTrailId);
// Keeps a connection whose session is clean for the next caller with the same key.
void give(const std::u16string& key, PhysicalPtr connection);
// Closes every idle connection of key: one of them found its link dead or did not answer, and
// so, most likely (a server restarted, a network dropped), are the others.
void purge(const std::u16string& key, LogoutCause cause);

// A connection of key has a session (fresh or kept) until `returned`: the figures' "in use".
void acquired(const std::u16string& key);
void returned(const std::u16string& key) noexcept;
// A login made (its time) or failed, and a kept session reused: counted for the figures, and told
// to the observers with the error of a failed login.
void loggedIn(const std::u16string& key, std::chrono::nanoseconds took, const Error* error);
void reused(const std::u16string& key);
// A session logged out under its cause: counted, and told.
void loggedOut(const PhysicalConnection& connection) noexcept;

}  // namespace pool

}  // namespace vrdppo::odbc
