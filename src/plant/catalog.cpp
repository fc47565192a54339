#include "plant/catalog.hpp"

namespace vrdppo::embedded {

// Each subsystem's part, in the order their schema depends on each other.
const Catalog& storeCatalog() {
  static const Catalog catalog = [] {
    Catalog c;
    addFrameCatalog(c);
    addReferenceCatalog(c);
    addProductionCatalog(c);
    addGreenLeafCatalog(c);
    addCagesCatalog(c);
    addLabCatalog(c);
    return c;
  }();
  return catalog;
}

}  // namespace vrdppo::embedded
