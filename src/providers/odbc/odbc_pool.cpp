#include "providers/odbc/odbc_pool.hpp"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vrdppo/odbc_pool.hpp"

#if defined(__unix__) || defined(__APPLE__)
#include <pthread.h>
#endif

namespace vrdppo::odbc {

PhysicalConnection::~PhysicalConnection() {
  if (dbc) SQLDisconnect(dbc.get());
}

namespace {

bool isOff(const char* value) {
  if (value == nullptr) return false;
  const std::string_view v(value);
  return v == "0" || v == "no" || v == "NO" || v == "No" || v == "false" || v == "FALSE" ||
         v == "False" || v == "off" || v == "OFF" || v == "Off";
}

struct Idle {
  std::mutex mutex;
  std::unordered_map<std::u16string, std::vector<PhysicalPtr>> byKey;
  std::size_t count = 0;

  // Closes the connections idle for longer than the timeout, from the oldest of each key.
  void expire(std::chrono::steady_clock::time_point now) {
    const auto limit = pool::idleTimeout();
    for (auto it = byKey.begin(); it != byKey.end();) {
      auto& list = it->second;
      const auto stale = std::find_if(list.begin(), list.end(), [&](const PhysicalPtr& p) {
        return now - p->idleSince < limit;
      });
      count -= static_cast<std::size_t>(stale - list.begin());
      list.erase(list.begin(), stale);
      it = list.empty() ? byKey.erase(it) : std::next(it);
    }
  }
};

Idle& idle() {
  static Idle* pool = [] {
    auto* p = new Idle;
#if defined(__unix__) || defined(__APPLE__)
    // A child of fork shares the parent's sockets: it must neither use the parent's sessions
    // nor log them out. It lets go of them unclosed and makes its own.
    pthread_atfork([] { idle().mutex.lock(); }, [] { idle().mutex.unlock(); },
                   [] {
                     Idle& i = idle();
                     for (auto& [key, list] : i.byKey) {
                       for (auto& c : list) (void)c.release();  // never closed in the child
                     }
                     i.byKey.clear();
                     i.count = 0;
                     i.mutex.unlock();
                   });
#endif
    return p;
  }();
  return *pool;
}

// At exit, the idle sessions are logged out while the driver is still loaded.
struct CloseAtExit {
  ~CloseAtExit() { releaseIdleConnections(); }
} closeAtExit;

}  // namespace

namespace pool {

bool enabled() {
  static const bool on = !isOff(std::getenv("VRDPPO_ODBC_POOLING"));
  return on;
}

std::chrono::seconds idleTimeout() {
  static const std::chrono::seconds timeout = [] {
    const char* value = std::getenv("VRDPPO_ODBC_POOL_TIMEOUT");
    if (value == nullptr || *value == '\0') return std::chrono::seconds(60);
    char* end = nullptr;
    const long seconds = std::strtol(value, &end, 10);
    if (*end != '\0' || seconds < 0) return std::chrono::seconds(60);
    return std::chrono::seconds(std::min(seconds, 86400L));
  }();
  return timeout;
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
  if (!enabled() || idleTimeout().count() == 0) return;
  PhysicalPtr surplus;
  Idle& i = idle();
  std::lock_guard lock(i.mutex);
  const auto now = std::chrono::steady_clock::now();
  connection->idleSince = now;
  auto& list = i.byKey[key];
  if (list.size() >= kIdlePerKey) {
    surplus = std::move(list.front());  // the longest idle makes room
    list.erase(list.begin());
    --i.count;
  }
  list.push_back(std::move(connection));
  ++i.count;
  i.expire(now);
}

void purge(const std::u16string& key) {
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
}

}  // namespace vrdppo::odbc
