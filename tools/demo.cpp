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

struct Trace::Recorder final : Observer {
  void onStatement(const StatementEvent& e) override {
    const std::lock_guard lock(mutex);
    statements.push_back(toUtf8(e.queryText));
  }
  std::mutex mutex;
  std::vector<std::string> statements;
};

Trace::Trace() : recorder_(std::make_shared<Recorder>()) {
  previous_ = observe::setThreadObserver(recorder_);
}

Trace::~Trace() {
  observe::setThreadObserver(std::move(previous_));
}

std::vector<std::string> Trace::take() {
  const std::lock_guard lock(recorder_->mutex);
  return std::exchange(recorder_->statements, {});
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
