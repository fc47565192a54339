// The store's catalog in the shapes a server's catalog queries give (Connection::OpenSchema):
// tables and views from the file, procedures and their parameters from the store's catalog.
#pragma once

#include <memory>

#include "providers/embedded/session.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/recordset.hpp"

namespace vrdppo::embedded {

std::shared_ptr<Recordset> readSchema(Session& session, SchemaKind kind);

}  // namespace vrdppo::embedded
