// The subcommands of the vrdppo tool.
#pragma once

#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "fields.hpp"

namespace vrdppo::cli {

struct Options {
  std::string className;
  std::string operation;  // sql's
  std::string path;       // demo's store file; empty: the default
  std::vector<Assignment> sets;
  std::vector<Assignment> args;
  std::optional<std::string> connect;
  std::optional<std::string> state;
  std::optional<std::string> where;  // a criteria template with "?" placeholders
  std::vector<std::string> params;   // their values, in order
  bool json = false;
  bool buffer = false;
  std::string program = "vrdppo";  // how the tool was run, for the commands it suggests
};

// A commit or delete that ran and did nothing: the operation answered False or its statement
// changed no row.
class NothingDone : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Each returns the process's exit code; errors the user can mend throw std::invalid_argument.
int listClasses(const Options& o, std::ostream& out);
int showLayout(const Options& o, std::ostream& out);
int decode(const Options& o, std::istream& in, std::ostream& out);
int encode(const Options& o, std::istream& in, std::ostream& out);
int showSql(const Options& o, std::ostream& out);
// Standard error has a note when the embedded store file was not there and Load made it.
int load(const Options& o, std::ostream& out, std::ostream& err);
int commit(const Options& o, std::ostream& out);
int remove(const Options& o, std::ostream& out);
int demo(const Options& o, std::ostream& out);
// Whether the database --connect names fits the classes; 0 when it does, 1 when not.
int checkDatabase(const Options& o, std::ostream& out);

// The class of a name, or std::invalid_argument naming the closest ones.
const ClassInfo& classNamed(const std::string& name);
// The connection string: --connect, or the embedded store vrdppo.db in the working directory.
std::u16string connectionOf(const Options& o);
// Records of a state as a table or JSON lines.
void printRecords(const RecordLayout& layout, const std::vector<std::u16string>& states, bool json,
                  std::ostream& out);
// The records of a Buffer state.
std::vector<std::u16string> recordsOf(std::u16string_view bufferState);
// The same, after checking that the state's length is what its header and the layout say:
// std::invalid_argument otherwise.
std::vector<std::u16string> checkedRecordsOf(const RecordLayout& layout,
                                             std::u16string_view bufferState);
// A record's state of the class's length, or std::invalid_argument.
void checkRecordState(const RecordLayout& layout, std::u16string_view state);

}  // namespace vrdppo::cli
