// The plant's schema and stored procedures as the embedded store holds them, one part per
// subsystem (catalog_<subsystem>.cpp); the T-SQL script in sql/sqlserver is written from them.
#pragma once

#include "providers/embedded/catalog.hpp"

namespace vrdppo::embedded {

void addFrameCatalog(Catalog& c);
void addReferenceCatalog(Catalog& c);
void addProductionCatalog(Catalog& c);
void addGreenLeafCatalog(Catalog& c);
void addCagesCatalog(Catalog& c);
void addLabCatalog(Catalog& c);

}  // namespace vrdppo::embedded
