#include "frame/class_list.hpp"
#include "vrdppo/reference/grades.hpp"
#include "vrdppo/reference/stations.hpp"
#include "vrdppo/reference/types.hpp"

namespace vrdppo::reference {

std::vector<const ClassInfo*> classes() {
  return {&cGreenGradePersist::info(),
          &cvGreenGradeListPersist::info(),
          &cProductionGradePersist::info(),
          &cProductionGradeSpecPersist::info(),
          &cvProductionGradeListPersist::info(),
          &cStemClassPersist::info(),
          &cStemTypePersist::info(),
          &cvStemTypeListPersist::info(),
          &cPickingTypePersist::info(),
          &cByProductsTypePersist::info(),
          &cByProductsMappingPersist::info(),
          &cvCompanyByProductsListPersist::info(),
          &cStationPersist::info(),
          &cProductionSettingsPersist::info(),
          &cCalibrationPersist::info()};
}

}  // namespace vrdppo::reference
