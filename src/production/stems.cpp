#include "vrdppo/production/stems.hpp"

#include <cstddef>

namespace vrdppo {

namespace {

using ST = StemsRecord;
// The type is read as StemTypeID and written as StemTypeId; the key-name literal is "StemId"
// although the key column is StemsId. Both are as the class always had them.
constexpr Column kStemsColumns[] = {
    VRDPPO_COL(ST, StemsId, 0, None),
    VRDPPO_COL(ST, TotalNetWeight, 4, D),
    VRDPPO_COL(ST, ContainerStart, 12, L0),
    VRDPPO_COL(ST, ContainerEnd, 16, L0),
    VRDPPO_COL2(ST, StemTypeID, 20, u"StemTypeID", u"StemTypeId", L),
    VRDPPO_COL(ST, ProductionRunId, 24, L),
};
constexpr RecordLayout kStemsLayout =
    makeLayout<ST, 43>(kStemsColumns, VRDPPO_TRAILING(ST, KeyName, 28, u"StemId"));
constexpr TableConfig kStems =
    firstGeneration(u"STEMS", u"STEMSID", DeleteStyle::Hard, kStemsLayout);

using RP = RunPickingTypesRecord;
constexpr Column kRunPickingTypesColumns[] = {
    VRDPPO_COL(RP, ProductionRunId, 0, None),
    VRDPPO_COL(RP, ProductionDate, 4, None),
    VRDPPO_COL(RP, PickingTypeId, 12, None),
};
constexpr RecordLayout kRunPickingTypesLayout =
    makeLayout<RP, 39>(kRunPickingTypesColumns, VRDPPO_TRAILING(RP, Blank, 16, u""));
constexpr ViewConfig kRunPickingTypes{u"VRUNPICKINGTYPES", LoadStyle::Star, TopArg::None,
                                      &kRunPickingTypesLayout};

}  // namespace

cStemsPersist::cStemsPersist() : TablePersist<StemsRecord>(kStems) {}
const ClassInfo& cStemsPersist::info() {
  static const ClassInfo i = tableClass<cStemsPersist>("cStemsPersist", kStems);
  return i;
}

cvRunPickingTypesPersist::cvRunPickingTypesPersist()
    : ViewPersist<RunPickingTypesRecord>(kRunPickingTypes) {}
const ClassInfo& cvRunPickingTypesPersist::info() {
  static const ClassInfo i =
      viewClass<cvRunPickingTypesPersist>("cvRunPickingTypesPersist", kRunPickingTypes);
  return i;
}

}  // namespace vrdppo
