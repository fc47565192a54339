// Cage tracking: cages, their status and contents, movements, the cage log.
#include "providers/embedded/catalog.hpp"

namespace vrdppo::embedded {

void addCagesCatalog(Catalog&) {}

}  // namespace vrdppo::embedded
