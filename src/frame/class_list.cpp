#include "frame/class_list.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace vrdppo {

namespace {

// The order in which the type library lists the classes.
constexpr std::array<std::string_view, 84> kOrder{"cGreenGradePersist",
                                                  "cvGreenGradeListPersist",
                                                  "cProductionGradePersist",
                                                  "cProductionGradeSpecPersist",
                                                  "cProductionRunPersist",
                                                  "cvProductionGradeListPersist",
                                                  "cPickingTypePersist",
                                                  "cPickingsPersist",
                                                  "cByProductsPersist",
                                                  "cByProductsTypePersist",
                                                  "cProductionRunGradePersist",
                                                  "cStemsPersist",
                                                  "cDegradationPersist",
                                                  "cOvenMoisturePersist",
                                                  "cPackedMoisturePersist",
                                                  "cGreenMoisturePersist",
                                                  "cByProductsTestPersist",
                                                  "cSugarNicotinePersist",
                                                  "cvProductionRunListPersist",
                                                  "cGreenReceiptPersist",
                                                  "cvGreenReceiptListPersist",
                                                  "cGreenInventoryPersist",
                                                  "cSandPersist",
                                                  "cSwingPersist",
                                                  "cStripPersist",
                                                  "cvRunGreenGradeListPersist",
                                                  "cStemClassPersist",
                                                  "cvRunPickingTypesPersist",
                                                  "cvRunStemTypesPersist",
                                                  "cvRunByProductTypesPersist",
                                                  "cvRunGreenWeightTotalsPersist",
                                                  "cLaminaPersist",
                                                  "cvRunProdGreenGradesPersist",
                                                  "cGreenInHousePersist",
                                                  "cvGreenProdPersist",
                                                  "cInHouseRecGradesPersist",
                                                  "cvInHouseRecGradesPersist",
                                                  "cStemTypePersist",
                                                  "cDegradationPYTDPersist",
                                                  "cProductionStatsPersist",
                                                  "cByProductsMappingPersist",
                                                  "cCagePersist",
                                                  "cCageStatusPersist",
                                                  "cCageLogPersist",
                                                  "cCageMovementPersist",
                                                  "cCageContentPersist",
                                                  "cvCageLogPersist",
                                                  "cStationPersist",
                                                  "cvCageContentPersist",
                                                  "cCalibrationPersist",
                                                  "cProductionGreenGradePersist",
                                                  "cvProdGreenGradeListPersist",
                                                  "cProductionRunTargetPersist",
                                                  "cvProcessGreenPersist",
                                                  "cNewSeasonLogPersist",
                                                  "cvPrepPhysicalPersist",
                                                  "cPhysicalInventoryPersist",
                                                  "cProductionRunRedriedPersist",
                                                  "cvRunRedriedGradeListPersist",
                                                  "cvLabSettingListPersist",
                                                  "cvLabWorkListPersist",
                                                  "cLabStemLengthPersist",
                                                  "cLabInfraalyzerPersist",
                                                  "cLabMoisturePersist",
                                                  "cLabPackedPersist",
                                                  "cLabHeaderPersist",
                                                  "cvStemTypeListPersist",
                                                  "cvCompanyByProductsListPersist",
                                                  "cLabBiasPersist",
                                                  "cLabForeignPersist",
                                                  "cvProductionRunPrizingPersist",
                                                  "cvLabOnHoldPersist",
                                                  "cLabAdviceNotePersist",
                                                  "cCageMoveCommentPersist",
                                                  "cLabDegradationPersist",
                                                  "cLabSettingPersist",
                                                  "cLabSettingSnapshotPersist",
                                                  "cLabGreenMoisturePersist",
                                                  "cLabPackedSumPersist",
                                                  "cLabGreenMoistSumPersist",
                                                  "cLabDegSumPersist",
                                                  "cProductionSettingsPersist",
                                                  "cvLabForeignBalePersist",
                                                  "cvLabPackedChinaExportPersist"};

std::size_t rank(std::string_view name) {
  const auto it = std::find(kOrder.begin(), kOrder.end(), name);
  return static_cast<std::size_t>(it - kOrder.begin());
}

}  // namespace

std::vector<const ClassInfo*> allClasses() {
  std::vector<const ClassInfo*> all;
  for (auto* list : {&reference::classes, &production::classes, &greenleaf::classes,
                     &cages::classes, &lab::classes}) {
    const auto some = list();
    all.insert(all.end(), some.begin(), some.end());
  }
  std::stable_sort(all.begin(), all.end(), [](const ClassInfo* a, const ClassInfo* b) {
    return rank(a->name) < rank(b->name);
  });
  return all;
}

}  // namespace vrdppo
