// Whether a database fits the classes: every table, view, column, key and procedure the library
// will ask of it, read from the database's catalog before the first call. Nothing is written.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

struct SchemaFinding {
  enum class Severity : std::uint8_t { Problem, Warning };
  Severity severity = Severity::Problem;
  std::string className;  // empty for what the library needs whichever class calls
  std::string object;     // "TABLE", "TABLE.Column" or "procedure" / "procedure @parameter"
  std::string needs;      // what the class needs of it
  std::string has;        // what the database has
};

struct SchemaReport {
  std::vector<SchemaFinding> findings;
  std::int32_t classes = 0;
  std::int32_t sources = 0;     // tables and views
  std::int32_t columns = 0;     // columns read or written
  std::int32_t procedures = 0;  // procedures called
  double seconds = 0;

  std::int32_t problems() const noexcept;
  std::int32_t warnings() const noexcept;
  bool fits() const noexcept { return problems() == 0; }
  // A report for a person: the findings grouped by class, then a summary line.
  std::string text() const;
  // The same as one JSON object: {"fits", "problems", "warnings", "classes", "sources",
  // "columns", "procedures", "seconds", "findings": [{"severity", "class", "object", "needs",
  // "has"}]}.
  std::string json() const;
};

// Reads the catalog of the database that `connect` names (a server through ODBC or the embedded
// store) and checks it against every class. `progress`, when given, hears a line before each
// part of the catalog is read. Raises vrdppo::Error when the database cannot be reached.
SchemaReport checkSchema(const std::u16string& connect,
                         const std::function<void(std::string_view)>& progress = {});

}  // namespace vrdppo
VRDPPO_PUBLIC_END
