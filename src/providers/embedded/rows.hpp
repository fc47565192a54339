// Rows of a SQLite statement as a disconnected recordset, typed by the columns' declared types.
#pragma once

#include <memory>

#include "vrdppo/recordset.hpp"

struct sqlite3;
struct sqlite3_stmt;

namespace vrdppo::embedded {

// Steps the statement to its end. A statement with result columns gives an open recordset of
// all its rows, one without a closed recordset. Raises the store's error for a failed step.
std::shared_ptr<Recordset> fetchAll(sqlite3* db, sqlite3_stmt* statement);

}  // namespace vrdppo::embedded
