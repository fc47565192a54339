// The embedded store's tables, views and indexes written as T-SQL for SQL Server, and running
// such a script on a connection.
#pragma once

#include <string>
#include <vector>

#include "providers/embedded/catalog.hpp"

namespace vrdppo::tsql {

// The script that creates the catalog's tables (identity keys), views and indexes, in batches
// separated by lines holding GO.
std::string schemaScript(const embedded::Catalog& catalog);

// A script's batches: the text between lines that hold only GO.
std::vector<std::string> batches(const std::string& script);

// The committed scripts in sql/sqlserver/.
std::string readSqlFile(const std::string& name);

// The connection string with its DATABASE key set to database.
std::u16string withDatabase(std::u16string connect, const std::u16string& database);

// Runs a script's batches on one connection, quoted identifiers on.
void runScript(const std::u16string& connect, const std::string& script);

// A database of its own on the server that `admin` reaches, made from the committed scripts and
// dropped with the object; its name is the prefix and the process id.
class PlantDatabase {
 public:
  PlantDatabase(const std::u16string& admin, const std::u16string& prefix);
  ~PlantDatabase();
  PlantDatabase(const PlantDatabase&) = delete;
  PlantDatabase& operator=(const PlantDatabase&) = delete;
  const std::u16string& connect() const noexcept { return connect_; }

 private:
  std::u16string admin_, name_, connect_;
};

}  // namespace vrdppo::tsql
