#include "frame/class_list.hpp"
#include "vrdppo/greenleaf/inventory.hpp"
#include "vrdppo/greenleaf/physical.hpp"
#include "vrdppo/greenleaf/receipts.hpp"

namespace vrdppo::greenleaf {

std::vector<const ClassInfo*> classes() {
  return {&cGreenReceiptPersist::info(),      &cvGreenReceiptListPersist::info(),
          &cGreenInventoryPersist::info(),    &cGreenInHousePersist::info(),
          &cInHouseRecGradesPersist::info(),  &cvInHouseRecGradesPersist::info(),
          &cvGreenProdPersist::info(),        &cvProcessGreenPersist::info(),
          &cPhysicalInventoryPersist::info(), &cvPrepPhysicalPersist::info(),
          &cNewSeasonLogPersist::info()};
}

}  // namespace vrdppo::greenleaf
