#include "providers/odbc/odbc_pool.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <mutex>
#include <string_view>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <vector>

#include "vrdppo/odbc_pool.hpp"
#include "vrdppo/text.hpp"

#if defined(__unix__) || defined(__APPLE__)
#include <pthread.h>
#endif

namespace vrdppo::odbc {

PhysicalConnection::~PhysicalConnection() {
  if (!dbc) return;
  SQLDisconnect(dbc.get());
  pool::loggedOut(*this);
}

namespace {

// Counted whether or not anyone looks: a figure is a relaxed add.
struct Counters {
  std::atomic<std::uint64_t> logins{0};
  std::atomic<std::uint64_t> failedLogins{0};
  std::atomic<std::uint64_t> reuses{0};
  std::atomic<std::int64_t> loginNanos{0};
  std::array<std::atomic<std::uint64_t>, kLogoutCauses> logouts{};
};

Counters& counters() {
  static auto* c = new Counters;  // never destroyed: sessions are logged out at exit too
  return *c;
}

void tellSession(SessionEventKind kind, LogoutCause cause, const std::u16string& key,
                 std::chrono::nanoseconds took, const Error* error) noexcept {
  if (!observe::active()) return;
  try {
    const observe::ParsedTarget& target = observe::targetOf(key);
    SessionEvent event;
    event.kind = kind;
    event.cause = cause;
    event.target = target.view("microsoft.sql_server");
    event.duration = took;
    event.error = error;
    observe::tell(event);
  } catch (...) {  // NOLINT(bugprone-empty-catch): no memory to describe it
  }
}

bool isOff(const char* value) {
  if (value == nullptr) return false;
  const std::u16string v = fromUtf8(value);
  return v == u"0" || equalsNoCase(v, u"no") || equalsNoCase(v, u"false") ||
         equalsNoCase(v, u"off");
}

// A whole number of the environment within [0, most], or `otherwise`.
long environmentNumber(const char* name, long otherwise, long most) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0') return otherwise;
  char* end = nullptr;
  const long number = std::strtol(value, &end, 10);
  if (*end != '\0' || number < 0) return otherwise;
  return std::min(number, most);
}

void startReaper();

struct Idle {
  std::mutex mutex;
  std::condition_variable wake;  // the process is ending, or the reaper has stopped
  std::unordered_map<std::u16string, std::vector<PhysicalPtr>> byKey;
  std::unordered_map<std::u16string, std::size_t> inUse;  // connections holding a session
  std::size_t count = 0;
  bool reaping = false;  // a thread logs out what outlives its idle life
  bool stopping = false;

  // Moves the connections idle for longer than the timeout, from the oldest of each key, to
  // `out`, to be closed outside the lock: a logout is a round trip.
  void expire(std::chrono::steady_clock::time_point now, std::vector<PhysicalPtr>& out) {
    const auto limit = pool::idleTimeout();
    for (auto it = byKey.begin(); it != byKey.end();) {
      auto& list = it->second;
      const auto stale = std::find_if(list.begin(), list.end(), [&](const PhysicalPtr& p) {
        return now - p->idleSince < limit;
      });
      count -= static_cast<std::size_t>(stale - list.begin());
      for (auto p = list.begin(); p != stale; ++p) (*p)->cause = LogoutCause::IdleLifeEnded;
      std::move(list.begin(), stale, std::back_inserter(out));
      list.erase(list.begin(), stale);
      it = list.empty() ? byKey.erase(it) : std::next(it);
    }
  }

  // When the longest-idle connection's life ends.
  std::chrono::steady_clock::time_point nextExpiry() const {
    auto at = std::chrono::steady_clock::time_point::max();
    for (const auto& [key, list] : byKey) {
      if (!list.empty()) at = std::min(at, list.front()->idleSince + pool::idleTimeout());
    }
    return at;
  }

  // The longest-idle connection of all, to make room under the process's limit.
  PhysicalPtr takeOldest() {
    auto oldest = byKey.end();
    for (auto it = byKey.begin(); it != byKey.end(); ++it) {
      if (!it->second.empty() && (oldest == byKey.end() || it->second.front()->idleSince <
                                                               oldest->second.front()->idleSince)) {
        oldest = it;
      }
    }
    if (oldest == byKey.end()) return nullptr;
    PhysicalPtr out = std::move(oldest->second.front());
    out->cause = LogoutCause::Limit;
    oldest->second.erase(oldest->second.begin());
    if (oldest->second.empty()) byKey.erase(oldest);
    --count;
    return out;
  }
};

Idle& idle() {
  static Idle* pool = [] {
    auto* p = new Idle;
#if defined(__unix__) || defined(__APPLE__)
    // A child of fork shares the parent's sockets: it must neither use the parent's sessions
    // nor log them out. It lets go of them unclosed and makes its own; the parent's reaper did
    // not cross into it.
    pthread_atfork([] { idle().mutex.lock(); }, [] { idle().mutex.unlock(); },
                   [] {
                     Idle& i = idle();
                     for (auto& [key, list] : i.byKey) {
                       for (auto& c : list) (void)c.release();  // never closed in the child
                     }
                     i.byKey.clear();
                     i.inUse.clear();
                     i.count = 0;
                     i.reaping = false;
                     i.mutex.unlock();
                   });
#endif
    return p;
  }();
  return *pool;
}

// Sleeps until the next idle connection's life ends and logs it out, for as long as any is kept.
void reap() {
  Idle& i = idle();
  std::unique_lock lock(i.mutex);
  while (!i.stopping && i.count != 0) {
    i.wake.wait_until(lock, i.nextExpiry());
    std::vector<PhysicalPtr> stale;
    i.expire(std::chrono::steady_clock::now(), stale);
    lock.unlock();
    stale.clear();
    lock.lock();
  }
  i.reaping = false;
  i.wake.notify_all();
}

#ifdef _WIN32
// The thread holds a reference on the module that runs it, so that the library cannot be unloaded
// under it, and lets go of it as it ends; at process exit it is simply stopped with the others.
DWORD WINAPI reaperMain(LPVOID module) {
  reap();
  FreeLibraryAndExitThread(static_cast<HMODULE>(module), 0);
}

void startReaper() {
  HMODULE self = nullptr;
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                          reinterpret_cast<LPCWSTR>(&reaperMain), &self)) {
    idle().reaping = false;
    return;
  }
  HANDLE thread = CreateThread(nullptr, 0, reaperMain, self, 0, nullptr);
  if (thread == nullptr) {
    FreeLibrary(self);
    idle().reaping = false;
    return;
  }
  CloseHandle(thread);
}
#else
void startReaper() {
  try {
    std::thread(reap).detach();
  } catch (const std::system_error&) {
    idle().reaping = false;  // no thread: connections expire when the next one is given or taken
  }
}
#endif

// At exit, the reaper stops and the idle sessions are logged out while the driver is still
// loaded.
struct CloseAtExit {
  ~CloseAtExit() {
#ifndef _WIN32
    {
      Idle& i = idle();
      std::unique_lock lock(i.mutex);
      i.stopping = true;
      i.wake.notify_all();
      i.wake.wait(lock, [&] { return !i.reaping; });
    }
#endif
    // The observers may be gone with the statics of the program that installed them.
    observe::silence();
    releaseIdleConnections();
  }
} closeAtExit;

}  // namespace

namespace pool {

bool enabled() {
  static const bool on = !isOff(std::getenv("VRDPPO_ODBC_POOLING"));
  return on;
}

std::chrono::seconds idleTimeout() {
  static const std::chrono::seconds timeout(
      environmentNumber("VRDPPO_ODBC_POOL_TIMEOUT", 60, 86400));
  return timeout;
}

std::size_t idleLimit() {
  static const auto limit =
      static_cast<std::size_t>(environmentNumber("VRDPPO_ODBC_POOL_MAX", 16, 10000));
  return limit;
}

PhysicalPtr take(const std::u16string& key, std::int32_t auditTrailId) {
  std::vector<PhysicalPtr> stale;  // closed outside the lock: a logout is a round trip
  PhysicalPtr taken;
  {
    Idle& i = idle();
    std::lock_guard lock(i.mutex);
    const auto now = std::chrono::steady_clock::now();
    const auto it = i.byKey.find(key);
    if (it == i.byKey.end()) return nullptr;
    auto& list = it->second;
    const auto limit = idleTimeout();
    while (!list.empty() && now - list.front()->idleSince >= limit) {
      list.front()->cause = LogoutCause::IdleLifeEnded;
      stale.push_back(std::move(list.front()));
      list.erase(list.begin());
      --i.count;
    }
    // The most recently used first: its session is the likeliest alive and its pages warm.
    auto pick = std::find_if(list.rbegin(), list.rend(),
                             [&](const PhysicalPtr& p) { return p->auditTrailId == auditTrailId; });
    if (pick == list.rend()) pick = list.rbegin();
    if (pick != list.rend()) {
      taken = std::move(*pick);
      list.erase(std::next(pick).base());
      --i.count;
    }
    if (list.empty()) i.byKey.erase(it);
  }
  return taken;
}

void give(const std::u16string& key, PhysicalPtr connection) {
  if (!enabled() || idleTimeout().count() == 0 || idleLimit() == 0) return;
  std::vector<PhysicalPtr> surplus;  // closed outside the lock, after it
  Idle& i = idle();
  std::lock_guard lock(i.mutex);
  if (i.stopping) {
    connection->cause = LogoutCause::Released;
    surplus.push_back(std::move(connection));
    return;
  }
  const auto now = std::chrono::steady_clock::now();
  i.expire(now, surplus);
  connection->idleSince = now;
  auto& list = i.byKey[key];
  if (list.size() >= kIdlePerKey) {
    list.front()->cause = LogoutCause::Limit;
    surplus.push_back(std::move(list.front()));  // the longest idle makes room
    list.erase(list.begin());
    --i.count;
  }
  list.push_back(std::move(connection));
  ++i.count;
  while (i.count > idleLimit()) surplus.push_back(i.takeOldest());
  // A connection given now ends its life after every other kept one: a running reaper need not
  // be woken for it.
  if (!i.reaping) {
    i.reaping = true;
    startReaper();
  }
}

void purge(const std::u16string& key, LogoutCause cause) {
  std::vector<PhysicalPtr> dead;
  {
    Idle& i = idle();
    std::lock_guard lock(i.mutex);
    const auto it = i.byKey.find(key);
    if (it == i.byKey.end()) return;
    dead = std::move(it->second);
    i.count -= dead.size();
    i.byKey.erase(it);
  }
  for (auto& p : dead) p->cause = cause;
}

void acquired(const std::u16string& key) {
  Idle& i = idle();
  std::lock_guard lock(i.mutex);
  ++i.inUse[key];
}

void returned(const std::u16string& key) noexcept {
  Idle& i = idle();
  std::lock_guard lock(i.mutex);
  const auto it = i.inUse.find(key);
  if (it == i.inUse.end()) return;
  if (--it->second == 0) i.inUse.erase(it);
}

void loggedIn(const std::u16string& key, std::chrono::nanoseconds took, const Error* error) {
  Counters& c = counters();
  (error == nullptr ? c.logins : c.failedLogins).fetch_add(1, std::memory_order_relaxed);
  c.loginNanos.fetch_add(took.count(), std::memory_order_relaxed);
  tellSession(SessionEventKind::Login, LogoutCause::None, key, took, error);
}

void reused(const std::u16string& key) {
  counters().reuses.fetch_add(1, std::memory_order_relaxed);
  tellSession(SessionEventKind::Reuse, LogoutCause::None, key, {}, nullptr);
}

void loggedOut(const PhysicalConnection& connection) noexcept {
  const auto cause = static_cast<std::size_t>(connection.cause);
  if (cause < kLogoutCauses) counters().logouts[cause].fetch_add(1, std::memory_order_relaxed);
  tellSession(SessionEventKind::Logout, connection.cause, connection.key, {}, nullptr);
}

}  // namespace pool

std::size_t idleConnections() {
  Idle& i = idle();
  std::lock_guard lock(i.mutex);
  return i.count;
}

void releaseIdleConnections() {
  std::unordered_map<std::u16string, std::vector<PhysicalPtr>> all;
  Idle& i = idle();
  {
    std::lock_guard lock(i.mutex);
    all.swap(i.byKey);
    i.count = 0;
  }
  for (auto& [key, list] : all) {
    for (auto& p : list) p->cause = LogoutCause::Released;
  }
}

PoolFigures poolFigures() {
  PoolFigures f;
  {
    Idle& i = idle();
    std::lock_guard lock(i.mutex);
    std::unordered_map<std::u16string, PoolFigures::ForString> byKey;
    for (const auto& [key, list] : i.byKey) byKey[key].idle = list.size();
    for (const auto& [key, n] : i.inUse) byKey[key].inUse = n;
    for (auto& [key, figures] : byKey) {
      f.idle += figures.idle;
      f.inUse += figures.inUse;
      figures.connection = key;
      f.strings.push_back(std::move(figures));
    }
  }
  // Two strings that differ only in their passwords read the same once masked: kept apart.
  for (auto& s : f.strings) s.connection = observe::maskPasswords(s.connection);
  std::sort(f.strings.begin(), f.strings.end(),
            [](const auto& a, const auto& b) { return a.connection < b.connection; });
  const Counters& c = counters();
  f.logins = c.logins.load(std::memory_order_relaxed);
  f.failedLogins = c.failedLogins.load(std::memory_order_relaxed);
  f.reuses = c.reuses.load(std::memory_order_relaxed);
  for (std::size_t k = 0; k < kLogoutCauses; ++k) {
    f.logouts[k] = c.logouts[k].load(std::memory_order_relaxed);
  }
  f.loginTime = std::chrono::nanoseconds(c.loginNanos.load(std::memory_order_relaxed));
  return f;
}

std::string poolFiguresText(const PoolFigures& f) {
  const auto ms = [](std::chrono::nanoseconds d) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f ms", static_cast<double>(d.count()) / 1e6);
    return std::string(text);
  };
  std::string out = "sessions: " + std::to_string(f.idle) + " idle, " + std::to_string(f.inUse) +
                    " in use; logins: " + std::to_string(f.logins) + " in " + ms(f.loginTime);
  if (f.failedLogins != 0) out += " (" + std::to_string(f.failedLogins) + " failed)";
  out += "; reuses: " + std::to_string(f.reuses) + "; logouts:";
  std::uint64_t logouts = 0;
  for (std::size_t k = 1; k < kLogoutCauses; ++k) {
    if (f.logouts[k] == 0) continue;
    out += ' ' + std::string(logoutCauseName(static_cast<LogoutCause>(k))) + ' ' +
           std::to_string(f.logouts[k]);
    logouts += f.logouts[k];
  }
  if (logouts == 0) out += " none";
  for (const auto& s : f.strings) {
    out += "\n  " + std::to_string(s.idle) + " idle, " + std::to_string(s.inUse) +
           " in use: " + toUtf8(s.connection);
  }
  return out;
}

}  // namespace vrdppo::odbc
