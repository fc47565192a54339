// The library as it is built: the providers it brings and its classes, in one list. The frame
// declares both hooks (frame/builtins.hpp) and knows neither the providers nor the classes.
#include "frame/builtins.hpp"

#include <mutex>

#include "plant/procedures.hpp"
#include "providers/odbc/odbc_provider.hpp"
#include "vrdppo/cages/cages.hpp"
#include "vrdppo/cages/movements.hpp"
#include "vrdppo/embedded_store.hpp"
#include "vrdppo/greenleaf/inventory.hpp"
#include "vrdppo/greenleaf/physical.hpp"
#include "vrdppo/greenleaf/receipts.hpp"
#include "vrdppo/lab/advice.hpp"
#include "vrdppo/lab/degradation.hpp"
#include "vrdppo/lab/foreign.hpp"
#include "vrdppo/lab/green_moisture.hpp"
#include "vrdppo/lab/headers.hpp"
#include "vrdppo/lab/instruments.hpp"
#include "vrdppo/lab/packed.hpp"
#include "vrdppo/lab/settings.hpp"
#include "vrdppo/production/inputs.hpp"
#include "vrdppo/production/results.hpp"
#include "vrdppo/production/run.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/production/tests.hpp"
#include "vrdppo/production/views.hpp"
#include "vrdppo/reference/grades.hpp"
#include "vrdppo/reference/stations.hpp"
#include "vrdppo/reference/types.hpp"

namespace vrdppo {

void registerBuiltinProviders() {
  static std::once_flag once;
  std::call_once(once, [] {
    odbc::registerProvider();
    odbc::setKnownProcedures(plant::knownProcedures());
    embedded::registerProvider();
  });
}

// In the order of the type library (and of the IDL written from this list).
std::vector<const ClassInfo*> builtinClasses() {
  return {&cGreenGradePersist::info(),
          &cvGreenGradeListPersist::info(),
          &cProductionGradePersist::info(),
          &cProductionGradeSpecPersist::info(),
          &cProductionRunPersist::info(),
          &cvProductionGradeListPersist::info(),
          &cPickingTypePersist::info(),
          &cPickingsPersist::info(),
          &cByProductsPersist::info(),
          &cByProductsTypePersist::info(),
          &cProductionRunGradePersist::info(),
          &cStemsPersist::info(),
          &cDegradationPersist::info(),
          &cOvenMoisturePersist::info(),
          &cPackedMoisturePersist::info(),
          &cGreenMoisturePersist::info(),
          &cByProductsTestPersist::info(),
          &cSugarNicotinePersist::info(),
          &cvProductionRunListPersist::info(),
          &cGreenReceiptPersist::info(),
          &cvGreenReceiptListPersist::info(),
          &cGreenInventoryPersist::info(),
          &cSandPersist::info(),
          &cSwingPersist::info(),
          &cStripPersist::info(),
          &cvRunGreenGradeListPersist::info(),
          &cStemClassPersist::info(),
          &cvRunPickingTypesPersist::info(),
          &cvRunStemTypesPersist::info(),
          &cvRunByProductTypesPersist::info(),
          &cvRunGreenWeightTotalsPersist::info(),
          &cLaminaPersist::info(),
          &cvRunProdGreenGradesPersist::info(),
          &cGreenInHousePersist::info(),
          &cvGreenProdPersist::info(),
          &cInHouseRecGradesPersist::info(),
          &cvInHouseRecGradesPersist::info(),
          &cStemTypePersist::info(),
          &cDegradationPYTDPersist::info(),
          &cProductionStatsPersist::info(),
          &cByProductsMappingPersist::info(),
          &cCagePersist::info(),
          &cCageStatusPersist::info(),
          &cCageLogPersist::info(),
          &cCageMovementPersist::info(),
          &cCageContentPersist::info(),
          &cvCageLogPersist::info(),
          &cStationPersist::info(),
          &cvCageContentPersist::info(),
          &cCalibrationPersist::info(),
          &cProductionGreenGradePersist::info(),
          &cvProdGreenGradeListPersist::info(),
          &cProductionRunTargetPersist::info(),
          &cvProcessGreenPersist::info(),
          &cNewSeasonLogPersist::info(),
          &cvPrepPhysicalPersist::info(),
          &cPhysicalInventoryPersist::info(),
          &cProductionRunRedriedPersist::info(),
          &cvRunRedriedGradeListPersist::info(),
          &cvLabSettingListPersist::info(),
          &cvLabWorkListPersist::info(),
          &cLabStemLengthPersist::info(),
          &cLabInfraalyzerPersist::info(),
          &cLabMoisturePersist::info(),
          &cLabPackedPersist::info(),
          &cLabHeaderPersist::info(),
          &cvStemTypeListPersist::info(),
          &cvCompanyByProductsListPersist::info(),
          &cLabBiasPersist::info(),
          &cLabForeignPersist::info(),
          &cvProductionRunPrizingPersist::info(),
          &cvLabOnHoldPersist::info(),
          &cLabAdviceNotePersist::info(),
          &cCageMoveCommentPersist::info(),
          &cLabDegradationPersist::info(),
          &cLabSettingPersist::info(),
          &cLabSettingSnapshotPersist::info(),
          &cLabGreenMoisturePersist::info(),
          &cLabPackedSumPersist::info(),
          &cLabGreenMoistSumPersist::info(),
          &cLabDegSumPersist::info(),
          &cProductionSettingsPersist::info(),
          &cvLabForeignBalePersist::info(),
          &cvLabPackedChinaExportPersist::info()};
}

}  // namespace vrdppo
