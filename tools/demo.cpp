// A plant's day on a fresh embedded store, through the public classes, with every statement shown.
#include "demo.hpp"

#include <filesystem>
#include <iostream>
#include <utility>

#include <fmt/format.h>

#include "commands.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/embedded_store.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::cli {

namespace {

// Set while a traced connection asks the registry for the provider it wraps, so that the trace
// does not answer for itself.
thread_local bool findingInner = false;

// Whatever provider the connection string names, with each statement noted on its way. The
// wrapped connection is made when the string is known, at open; settings made before wait.
struct Traced : ProviderConnection {
  Trace& trace;
  std::unique_ptr<ProviderConnection> inner;
  int cursorLocation = 0;
  int timeout = -1;
  explicit Traced(Trace& t) : trace(t) {}
  void setCursorLocation(int l) override {
    cursorLocation = l;
    if (inner) inner->setCursorLocation(l);
  }
  void open(const std::u16string& c, const std::u16string& u, const std::u16string& p,
            int o) override {
    findingInner = true;
    try {
      inner = providers::connect(c);
    } catch (...) {
      findingInner = false;
      throw;
    }
    findingInner = false;
    if (cursorLocation != 0) inner->setCursorLocation(cursorLocation);
    if (timeout >= 0) inner->setCommandTimeout(timeout);
    inner->open(c, u, p, o);
  }
  std::shared_ptr<Recordset> execute(const std::u16string& sql, int o) override {
    trace.add(toUtf8(sql));
    return inner->execute(sql, o);
  }
  std::int64_t recordsAffected() const noexcept override {
    return inner ? inner->recordsAffected() : -1;
  }
  void setCommandTimeout(int s) override {
    timeout = s;
    if (inner) inner->setCommandTimeout(s);
  }
  void close() override { inner->close(); }
};

}  // namespace

Trace::Trace()
    : registration_(std::make_unique<providers::Registration>(
          "demo-trace", [](std::u16string_view) { return !findingInner; },
          [this] { return std::make_unique<Traced>(*this); })) {}

Trace::~Trace() = default;

std::vector<std::string> Trace::take() {
  std::lock_guard lock(mutex_);
  return std::exchange(statements_, {});
}

void Trace::add(std::string statement) {
  std::lock_guard lock(mutex_);
  statements_.push_back(std::move(statement));
}

void DemoContext::heading(const std::string& text) {
  out << "\n" << ++step_ << ". " << text << "\n";
}

void DemoContext::statements() {
  for (const auto& s : trace.take()) {
    if (s != "SET QUOTED_IDENTIFIER OFF") out << "    sent: " << s << "\n";
  }
}

Long DemoContext::insert(const std::u16string& sql) {
  dbHelp::ConnectString = connect;
  const auto rs = dbHelp::OpenRecordset(u"EXEC sp_InsertStatement @p_Stmt = \"" + sql + u"\"");
  return toLong(rs->Fields(u"Identity"));
}

void DemoContext::table(const RecordLayout& layout, const std::u16string& bufferState) {
  printRecords(layout, recordsOf(bufferState), false, out);
}

int demo(const Options& o, std::ostream& out) {
  const std::string path = o.path.empty() ? "vrdppo-demo.db" : o.path;
  std::u16string connect;
  if (o.connect) {
    connect = fromUtf8(*o.connect);
    out << "A plant's day on " << *o.connect << "\n";
  } else {
    embedded::releaseStore(path);
    for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path + suffix);
    connect = embedded::connectString(path);
    out << "A plant's day on a fresh embedded store: " << path << "\n";
  }
  Trace trace;
  DemoContext d{connect, trace, out};
  out << "Every statement the library sends is shown under the step that sent it (each one also\n"
      << "opens its own connection and sends SET QUOTED_IDENTIFIER OFF first, not shown).\n";
  demoGrades(d);
  demoProduction(d);
  demoGreenLeaf(d);
  demoLab(d);
  out << "\nThe day's rows stay; look at them with, for example:\n"
      << "  " << o.program << " load cStemsPersist --connect '" << toUtf8(connect) << "'\n";
  dbHelp::ConnectString.clear();
  return 0;
}

}  // namespace vrdppo::cli
