#include "vrdppo/observer.hpp"

#include <array>
#include <atomic>
#include <cstdio>
#include <mutex>
#include <utility>

#include "vrdppo/dbhelp.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {

std::string_view logoutCauseName(LogoutCause cause) noexcept {
  static constexpr std::array<std::string_view, kLogoutCauses> kNames{
      "none",  "not-kept",  "session-changed", "idle-life-ended",
      "limit", "dead-link", "not-answering",   "released"};
  const auto i = static_cast<std::size_t>(cause);
  return i < kNames.size() ? kNames[i] : std::string_view("unknown");
}

namespace observe {

namespace {

struct ProcessObserver {
  std::mutex mutex;
  std::shared_ptr<Observer> observer;
};

// Never destroyed: a statement at process exit may still look.
ProcessObserver& processObserver() {
  static auto* p = new ProcessObserver;
  return *p;
}

std::atomic<bool> processInstalled{false};
std::atomic<bool> silenced{false};
thread_local std::shared_ptr<Observer> threadObserver;
// Set while this thread's observers are being told: what they send is not told again.
thread_local bool telling = false;

// What an observer's own calls could change of the thread's session data and figures, put back
// once it returns: the caller's next statement must not see the observer's.
class KeepThreadState {
 public:
  KeepThreadState()
      : connect_(dbHelp::ConnectString),
        app_(dbHelp::AppName),
        audit_(dbHelp::AuditTrailId),
        affected_(lastRecordsAffected()) {
    telling = true;
  }
  ~KeepThreadState() {
    telling = false;
    dbHelp::ConnectString = std::move(connect_);
    dbHelp::AppName = std::move(app_);
    dbHelp::AuditTrailId = audit_;
    restoreLastRecordsAffected(affected_);
  }
  KeepThreadState(const KeepThreadState&) = delete;
  KeepThreadState& operator=(const KeepThreadState&) = delete;

 private:
  std::u16string connect_;
  std::u16string app_;
  std::int32_t audit_;
  std::int64_t affected_;
};

template <class Event, class Call>
void tellBoth(const Event& event, Call call) noexcept {
  if (telling || silenced.load(std::memory_order_relaxed)) return;
  try {
    const KeepThreadState keep;
    if (const std::shared_ptr<Observer> mine = threadObserver) {
      try {
        call(*mine, event);
      } catch (...) {  // NOLINT(bugprone-empty-catch): an observer's failure is its own
      }
    }
    if (!processInstalled.load(std::memory_order_acquire)) return;
    std::shared_ptr<Observer> process;
    {
      auto& p = processObserver();
      const std::lock_guard lock(p.mutex);
      process = p.observer;
    }
    if (process) {
      try {
        call(*process, event);
      } catch (...) {  // NOLINT(bugprone-empty-catch): as above
      }
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch): copying the session data ran out of memory
  }
}

std::u16string_view valueOf(std::u16string_view connect,
                            std::initializer_list<std::u16string_view> keys,
                            std::u16string& holder) {
  for (const auto key : keys) {
    holder = connectionValue(connect, key);
    if (!holder.empty()) return holder;
  }
  return {};
}

}  // namespace

std::shared_ptr<Observer> setProcessObserver(std::shared_ptr<Observer> observer) {
  auto& p = processObserver();
  const std::lock_guard lock(p.mutex);
  processInstalled.store(observer != nullptr, std::memory_order_release);
  return std::exchange(p.observer, std::move(observer));
}

std::shared_ptr<Observer> setThreadObserver(std::shared_ptr<Observer> observer) {
  return std::exchange(threadObserver, std::move(observer));
}

bool active() noexcept {
  return (processInstalled.load(std::memory_order_relaxed) || threadObserver != nullptr) &&
         !telling && !silenced.load(std::memory_order_relaxed);
}

void tell(const StatementEvent& event) noexcept {
  tellBoth(event, [](Observer& o, const StatementEvent& e) { o.onStatement(e); });
}

void tell(const SessionEvent& event) noexcept {
  tellBoth(event, [](Observer& o, const SessionEvent& e) { o.onSession(e); });
}

void tellStatement(std::u16string_view connect, std::string_view system, std::u16string_view sql,
                   std::chrono::steady_clock::time_point start, std::int64_t returnedRows,
                   std::int64_t affectedRows, SessionOrigin session, const Error* error) noexcept {
  const auto duration = std::chrono::steady_clock::now() - start;
  try {
    const ParsedTarget& target = targetOf(connect);
    const std::u16string operation = operationOf(sql);
    StatementEvent event;
    event.target = target.view(system);
    event.queryText = sql;
    event.operationName = operation;
    event.returnedRows = returnedRows;
    event.affectedRows = affectedRows;
    event.duration = std::chrono::duration_cast<std::chrono::nanoseconds>(duration);
    event.session = session;
    event.error = error;
    tell(event);
  } catch (...) {  // NOLINT(bugprone-empty-catch): no memory to describe it; the call goes on
  }
}

void silence() noexcept {
  silenced.store(true, std::memory_order_relaxed);
}

DatabaseTarget ParsedTarget::view(std::string_view system) const {
  return DatabaseTarget{system, serverAddress, serverPort, databaseName, masked};
}

ParsedTarget parseTarget(std::u16string_view connect) {
  ParsedTarget t;
  t.masked = maskPasswords(connect);
  std::u16string holder;
  std::u16string server(valueOf(connect, {u"SERVER", u"Address", u"Addr", u"Data Source"}, holder));
  // The store's Data Source is its file, which is its database.
  if (!connectionValue(connect, u"Provider").empty()) {
    t.databaseName = std::move(server);
    server.clear();
  } else {
    t.databaseName = valueOf(connect, {u"DATABASE", u"Initial Catalog"}, holder);
  }
  // "tcp:host,port" and "host\instance" as a server's clients write them.
  if (server.starts_with(u"tcp:")) server.erase(0, 4);
  const std::size_t comma = server.find(u',');
  std::u16string port(valueOf(connect, {u"PORT"}, holder));
  if (comma != std::u16string::npos) {
    if (port.empty()) port = server.substr(comma + 1);
    server.resize(comma);
  }
  const auto digits = trimBlanks(port);
  std::int32_t number = 0;
  for (const char16_t c : digits) {
    if (c < u'0' || c > u'9' || number > 65535) {
      number = 0;
      break;
    }
    number = number * 10 + (c - u'0');
  }
  t.serverPort = number <= 65535 ? number : 0;
  t.serverAddress = std::u16string(trimBlanks(server));
  return t;
}

const ParsedTarget& targetOf(std::u16string_view connect) {
  thread_local std::u16string last;
  thread_local ParsedTarget target;
  if (last != connect || target.masked.empty()) {
    target = parseTarget(connect);
    last = connect;
  }
  return target;
}

std::u16string maskPasswords(std::u16string_view connect) {
  std::u16string out;
  bool first = true;
  for (const std::u16string_view pair : connectionPairs(connect)) {
    if (!first) out += u';';
    first = false;
    const std::size_t eq = pair.find(u'=');
    const auto name = trimBlanks(pair.substr(0, eq));
    if (eq != std::u16string_view::npos &&
        (equalsNoCase(name, u"PWD") || equalsNoCase(name, u"Password"))) {
      out.append(pair.substr(0, eq + 1)).append(u"***");
    } else {
      out.append(pair);
    }
  }
  return out;
}

std::u16string operationOf(std::u16string_view sql) {
  std::size_t i = 0;
  while (i < sql.size() && (sql[i] == u' ' || sql[i] == u'\t' || sql[i] == u'\r' ||
                            sql[i] == u'\n' || sql[i] == u'(')) {
    ++i;
  }
  std::size_t end = i;
  while (end < sql.size() && ((sql[end] >= u'a' && sql[end] <= u'z') ||
                              (sql[end] >= u'A' && sql[end] <= u'Z') || sql[end] == u'_')) {
    ++end;
  }
  return upperAscii(sql.substr(i, end - i));
}

namespace {

std::string milliseconds(std::chrono::nanoseconds d) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f ms", static_cast<double>(d.count()) / 1e6);
  return text;
}

std::string where(const DatabaseTarget& t) {
  std::string out(t.system);
  if (!t.serverAddress.empty()) {
    out += ' ' + toUtf8(t.serverAddress);
    if (t.serverPort != 0) out += ':' + std::to_string(t.serverPort);
  }
  if (!t.databaseName.empty()) out += ' ' + toUtf8(t.databaseName);
  return out;
}

// The text on one line: line ends and tabs as spaces.
std::string oneLine(std::string out) {
  for (char& c : out) {
    if (c == '\n' || c == '\r' || c == '\t') c = ' ';
  }
  return out;
}

}  // namespace

std::string traceLine(const StatementEvent& e) {
  std::string line = "vrdppo: " + milliseconds(e.duration);
  const auto rows = [](std::int64_t n, const char* what) {
    return ", " + std::to_string(n) + (n == 1 ? " row " : " rows ") + what;
  };
  if (e.returnedRows >= 0) line += rows(e.returnedRows, "returned");
  if (e.affectedRows > 0) line += rows(e.affectedRows, "affected");
  if (e.session == SessionOrigin::Fresh) line += ", fresh session";
  if (e.session == SessionOrigin::Kept) line += ", kept session";
  line += " [" + where(e.target) + "] " + oneLine(toUtf8(e.queryText));
  if (e.error != nullptr) {
    line += " -- failed: " + e.error->sqlState() + " " + oneLine(e.error->description());
  }
  return line;
}

std::string traceLine(const SessionEvent& e) {
  std::string line = "vrdppo: ";
  switch (e.kind) {
    case SessionEventKind::Login:
      line += "login " + milliseconds(e.duration);
      break;
    case SessionEventKind::Reuse:
      line += "kept session reused";
      break;
    case SessionEventKind::Logout:
      line += "logout (" + std::string(logoutCauseName(e.cause)) + ")";
      break;
  }
  line += " [" + where(e.target) + "]";
  if (e.error != nullptr) {
    line += " -- failed: " + e.error->sqlState() + " " + oneLine(e.error->description());
  }
  return line;
}

}  // namespace observe

}  // namespace vrdppo
