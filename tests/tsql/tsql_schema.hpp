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

}  // namespace vrdppo::tsql
