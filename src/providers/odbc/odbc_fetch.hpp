// Reading a statement's first result set whole, in blocks of rows where the columns allow it.
#pragma once

#include <memory>

#include "providers/odbc/odbc_handles.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/row_sink.hpp"

namespace vrdppo::odbc {

// The executed statement's result set (it has columnCount > 0 columns) as an open recordset
// standing on its first row.
std::shared_ptr<Recordset> fetchAll(const Handle& statement, SQLSMALLINT columnCount);
// The same rows, each read straight into the sink's record as it is fetched.
void streamAll(const Handle& statement, SQLSMALLINT columnCount, RecordSink& sink);

}  // namespace vrdppo::odbc
