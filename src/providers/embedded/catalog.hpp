// What a store holds: tables, views, other schema statements and stored procedures, declared in
// the server's terms and applied to a store file.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "call.hpp"
#include "vrdppo/recordset.hpp"

struct sqlite3;

namespace vrdppo::embedded {

class Session;

// A stored procedure: runs on the caller's session with the call's arguments and returns its
// first result, or a closed recordset (Session::run gives one for a statement without rows).
using Procedure = std::function<std::shared_ptr<Recordset>(Session&, const ProcArgs&)>;

class Catalog {
 public:
  // A table: its columns as "Name TYPE [constraints]" separated by commas. Text columns
  // (VARCHAR, CHAR, TEXT, ...) without a COLLATE get COLLATE NOCASE, DATETIME and DATE columns
  // the date collation, so that the DDL says only what differs. A table that a store already has
  // gains the columns it lacks.
  void table(std::string name, std::string_view columns);
  // A view, recreated whenever the schema changes.
  void view(std::string name, std::string_view select);
  // Any other schema statement (an index, a trigger), run after the tables and views whenever
  // the schema changes: it must tolerate running again (IF NOT EXISTS).
  void statement(std::string sql);
  // A stored procedure, found by name without regard to case, with its parameters (names
  // without "@") in order: a call is held to them before the body runs.
  void procedure(std::u16string_view name, std::initializer_list<std::u16string_view> parameters,
                 Procedure body);

  struct StoredProcedure {
    std::u16string name;  // as declared
    std::vector<std::u16string> parameters;
    Procedure body;
  };
  const StoredProcedure* findProcedure(std::u16string_view name) const;
  // The declarations as written, for whoever states the same schema in another dialect.
  struct Declared {
    std::string name;
    std::vector<std::pair<std::string, std::string>> columns;  // name, definition as written
  };
  const std::vector<Declared>& tables() const noexcept { return declared_; }
  const std::vector<std::pair<std::string, std::string>>& views() const noexcept { return views_; }
  const std::vector<std::string>& statements() const noexcept { return statements_; }
  // Names as declared, in order.
  std::vector<std::u16string> procedureNames() const;

  // A number that changes with the schema text; stores record the one they were built for.
  std::int32_t stamp() const noexcept { return stamp_; }
  // Creates or updates the schema on db (inside the caller's transaction). Raises on failure.
  void apply(sqlite3* db) const;

 private:
  struct Table {
    std::string name;
    std::vector<std::pair<std::string, std::string>> columns;  // name, full definition
    std::vector<std::string> dates;                            // the date columns' names
  };
  void mix(std::string_view text) noexcept;

  std::vector<Table> tables_;
  std::vector<Declared> declared_;
  std::vector<std::pair<std::string, std::string>> views_;
  std::vector<std::string> statements_;
  std::unordered_map<std::u16string, StoredProcedure> procedures_;  // by upper-case name
  std::uint32_t hash_ = 2166136261u;
  std::int32_t stamp_ = 1;
};

// The schema and procedures every store file of this build holds. The engine knows no table of
// its own: the unit that builds the store into the library defines this (src/plant).
const Catalog& storeCatalog();

}  // namespace vrdppo::embedded
