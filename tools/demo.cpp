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

struct Traced : ProviderConnection {
  Trace& trace;
  std::unique_ptr<ProviderConnection> inner = embedded::makeConnection();
  explicit Traced(Trace& t) : trace(t) {}
  void setCursorLocation(int l) override { inner->setCursorLocation(l); }
  void open(const std::u16string& c, const std::u16string& u, const std::u16string& p,
            int o) override {
    inner->open(c, u, p, o);
  }
  std::shared_ptr<Recordset> execute(const std::u16string& sql, int o) override {
    trace.add(toUtf8(sql));
    return inner->execute(sql, o);
  }
  void setCommandTimeout(int s) override { inner->setCommandTimeout(s); }
  void close() override { inner->close(); }
};

}  // namespace

Trace::Trace()
    : registration_(std::make_unique<providers::Registration>(
          "demo-trace", [](std::u16string_view c) { return embedded::accepts(c); },
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
  const std::string path = o.positional.empty() ? "vrdppo-demo.db" : o.positional[0];
  embedded::releaseStore(path);
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path + suffix);
  Trace trace;
  DemoContext d{embedded::connectString(path), trace, out};
  out << "A plant's day on a fresh embedded store: " << path << "\n"
      << "Every statement the library sends is shown under the step that sent it (each one also\n"
      << "opens its own connection and sends SET QUOTED_IDENTIFIER OFF first, not shown).\n";
  demoGrades(d);
  demoProduction(d);
  demoGreenLeaf(d);
  demoLab(d);
  out << "\nThe store stays in " << path << "; look at it with, for example:\n"
      << "  vrdppo load cStemsPersist --connect 'Provider=vrdppo.Embedded;Data Source=" << path
      << "'\n";
  dbHelp::ConnectString.clear();
  return 0;
}

}  // namespace vrdppo::cli
