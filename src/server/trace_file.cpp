// The trace of a client that cannot install an observer of its own: where VRDPPO_TRACE_FILE names
// a file, the server appends a line to it for each statement and each server session event, as the
// tool's --trace writes them, after the local time and the process id. Off unless it is set.
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#include "server/server.hpp"
#include "vrdppo/observer.hpp"

namespace vrdppo::server {

namespace {

class TraceFile final : public Observer {
 public:
  explicit TraceFile(std::wstring path) : path_(std::move(path)) {}

  void onStatement(const StatementEvent& e) override { append(observe::traceLine(e)); }
  void onSession(const SessionEvent& e) override { append(observe::traceLine(e)); }

 private:
  // Opened for each line and closed after it, in append mode, so that several processes may
  // share one file and a reader sees every line whole as soon as it is written.
  void append(const std::string& line) {
    SYSTEMTIME t;
    GetLocalTime(&t);
    char stamp[48];
    std::snprintf(stamp, sizeof stamp, "%04u-%02u-%02u %02u:%02u:%02u.%03u %lu ", t.wYear, t.wMonth,
                  t.wDay, t.wHour, t.wMinute, t.wSecond, t.wMilliseconds,
                  static_cast<unsigned long>(GetCurrentProcessId()));
    const std::string text = stamp + line + "\r\n";
    const std::lock_guard lock(mutex_);
    HANDLE file = CreateFileW(path_.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;  // a trace never fails a call
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    CloseHandle(file);
  }

  std::wstring path_;
  std::mutex mutex_;
};

}  // namespace

void startTraceFile() noexcept {
  static std::once_flag once;
  try {
    std::call_once(once, [] {
      wchar_t path[MAX_PATH * 2];
      const DWORD n = GetEnvironmentVariableW(L"VRDPPO_TRACE_FILE", path, MAX_PATH * 2);
      if (n == 0 || n >= MAX_PATH * 2) return;
      observe::setProcessObserver(std::make_shared<TraceFile>(std::wstring(path, n)));
    });
  } catch (...) {  // NOLINT(bugprone-empty-catch): no trace rather than no object
  }
}

}  // namespace vrdppo::server
