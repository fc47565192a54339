// The demo's shared context: the store, the trace of statements, helpers to build records. Each
// subsystem's part of the plant's day is a section of its own file.
#pragma once

#include <algorithm>
#include <iosfwd>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "vrdppo/observer.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/record.hpp"
#include "vrdppo/render.hpp"

namespace vrdppo::cli {

// Keeps the statements this thread sends while it lives, heard as this thread's observer.
class Trace {
 public:
  Trace();
  ~Trace();
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;
  std::vector<std::string> take();

 private:
  struct Recorder;
  std::shared_ptr<Recorder> recorder_;
  std::shared_ptr<Observer> previous_;
};

struct DemoContext {
  DemoContext(std::u16string c, Trace& t, std::ostream& o)
      : connect(std::move(c)), trace(t), out(o) {}
  std::u16string connect;
  Trace& trace;
  std::ostream& out;
  // Keys that one section makes and a later one uses.
  Long company = 0, otherCompany = 0, grade = 0, productionGrade = 0, greenGrade = 0, run = 0;

  // A numbered heading.
  void heading(const std::string& text);
  // The statements sent since the last call, "SET QUOTED_IDENTIFIER OFF" left out.
  void statements();
  // An insert through the database's own insert procedure, for tables without a class.
  Long insert(const std::u16string& sql);
  // A Buffer state as a table.
  void table(const RecordLayout& layout, const std::u16string& bufferState);

 private:
  int step_ = 0;
};

// The sections, in the order of the day.
void demoGrades(DemoContext& d);
void demoProduction(DemoContext& d);
void demoGreenLeaf(DemoContext& d);
void demoLab(DemoContext& d);

}  // namespace vrdppo::cli
