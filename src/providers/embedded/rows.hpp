// Rows of a SQLite statement as a disconnected recordset, typed by the columns' declared types.
#pragma once

#include <memory>

#include "vrdppo/recordset.hpp"
#include "vrdppo/row_sink.hpp"

#include "providers/embedded/sqlite_handles.hpp"

namespace vrdppo::embedded {

// Steps the statement to its end. A statement with result columns gives an open recordset of
// all its rows, one without a closed recordset. Raises the store's error for a failed step.
std::shared_ptr<Recordset> fetchAll(Statement& statement);
// Steps the statement to its end, each row read straight into the sink's record. A statement
// without result columns leaves the sink unbegun.
void streamInto(Statement& statement, RecordSink& sink);

}  // namespace vrdppo::embedded
