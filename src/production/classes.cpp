#include "frame/class_list.hpp"
#include "vrdppo/production/inputs.hpp"
#include "vrdppo/production/results.hpp"
#include "vrdppo/production/run.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/production/tests.hpp"
#include "vrdppo/production/views.hpp"

namespace vrdppo::production {

std::vector<const ClassInfo*> classes() {
  return {&cProductionRunPersist::info(),
          &cvProductionRunListPersist::info(),
          &cvProductionRunPrizingPersist::info(),
          &cProductionRunGradePersist::info(),
          &cProductionGreenGradePersist::info(),
          &cPickingsPersist::info(),
          &cByProductsPersist::info(),
          &cStemsPersist::info(),
          &cProductionRunTargetPersist::info(),
          &cProductionRunRedriedPersist::info(),
          &cDegradationPersist::info(),
          &cOvenMoisturePersist::info(),
          &cPackedMoisturePersist::info(),
          &cGreenMoisturePersist::info(),
          &cByProductsTestPersist::info(),
          &cSugarNicotinePersist::info(),
          &cSandPersist::info(),
          &cSwingPersist::info(),
          &cStripPersist::info(),
          &cLaminaPersist::info(),
          &cProductionStatsPersist::info(),
          &cDegradationPYTDPersist::info(),
          &cvRunGreenGradeListPersist::info(),
          &cvRunPickingTypesPersist::info(),
          &cvRunStemTypesPersist::info(),
          &cvRunByProductTypesPersist::info(),
          &cvRunGreenWeightTotalsPersist::info(),
          &cvRunProdGreenGradesPersist::info(),
          &cvRunRedriedGradeListPersist::info(),
          &cvProdGreenGradeListPersist::info()};
}

}  // namespace vrdppo::production
