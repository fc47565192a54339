// The laboratory's part of the catalog, split in two: schema and procedures.
#pragma once

#include "plant/catalog.hpp"

namespace vrdppo::embedded {

// The stored procedures that the laboratory classes call.
void addLabProcedures(Catalog& c);

}  // namespace vrdppo::embedded
