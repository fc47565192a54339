#include "frame/class_list.hpp"
#include "vrdppo/lab/advice.hpp"
#include "vrdppo/lab/degradation.hpp"
#include "vrdppo/lab/foreign.hpp"
#include "vrdppo/lab/green_moisture.hpp"
#include "vrdppo/lab/headers.hpp"
#include "vrdppo/lab/instruments.hpp"
#include "vrdppo/lab/packed.hpp"
#include "vrdppo/lab/settings.hpp"

namespace vrdppo::lab {

std::vector<const ClassInfo*> classes() {
  return {&cLabHeaderPersist::info(),        &cvLabWorkListPersist::info(),
          &cLabSettingPersist::info(),       &cLabSettingSnapshotPersist::info(),
          &cvLabSettingListPersist::info(),  &cLabPackedPersist::info(),
          &cLabPackedSumPersist::info(),     &cLabDegradationPersist::info(),
          &cLabDegSumPersist::info(),        &cLabGreenMoisturePersist::info(),
          &cLabGreenMoistSumPersist::info(), &cLabStemLengthPersist::info(),
          &cLabInfraalyzerPersist::info(),   &cLabMoisturePersist::info(),
          &cLabBiasPersist::info(),          &cLabForeignPersist::info(),
          &cvLabForeignBalePersist::info(),  &cLabAdviceNotePersist::info(),
          &cvLabOnHoldPersist::info(),       &cvLabPackedChinaExportPersist::info()};
}

}  // namespace vrdppo::lab
