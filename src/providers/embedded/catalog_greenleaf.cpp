// Green leaf: receipts, inventory, in-house figures, physical inventory, the new season log.
#include "providers/embedded/catalog.hpp"

namespace vrdppo::embedded {

void addGreenLeafCatalog(Catalog&) {}

}  // namespace vrdppo::embedded
