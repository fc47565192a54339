#include "vrdppo/production/views.hpp"

#include <cstddef>

namespace vrdppo {

namespace {

using RunGreenGradeListR = RunGreenGradeListRecord;
constexpr Column kRunGreenGradeListColumns[] = {
    VRDPPO_COL(RunGreenGradeListR, ProductionRunId, 0, None),
    VRDPPO_COL(RunGreenGradeListR, ProductionGradeId, 4, None),
    VRDPPO_COL(RunGreenGradeListR, GreenGradeId, 8, None),
    VRDPPO_COL(RunGreenGradeListR, ProductionGreenGradeId, 12, None),
};
constexpr RecordLayout kRunGreenGradeListLayout = makeLayout<RunGreenGradeListR, 38>(
    kRunGreenGradeListColumns, VRDPPO_TRAILING(RunGreenGradeListR, Blank, 16, u""));
constexpr ViewConfig kRunGreenGradeList{u"VRUNGREENGRADELIST", LoadStyle::Star, TopArg::None,
                                        &kRunGreenGradeListLayout};

using RunStemTypesR = RunStemTypesRecord;
constexpr Column kRunStemTypesColumns[] = {
    VRDPPO_COL(RunStemTypesR, ProductionRunId, 0, None),
    VRDPPO_COL(RunStemTypesR, ProductionDate, 4, None),
    VRDPPO_COL(RunStemTypesR, StemTypeID, 12, None),
    VRDPPO_COL(RunStemTypesR, ProductionGradeId, 16, None),
};
constexpr RecordLayout kRunStemTypesLayout = makeLayout<RunStemTypesR, 45>(
    kRunStemTypesColumns, VRDPPO_TRAILING(RunStemTypesR, Blank, 20, u""));
// The type is read as StemTypeID, as the stems table class reads it.
constexpr ViewConfig kRunStemTypes{u"VRUNSTEMTYPES", LoadStyle::Star, TopArg::None,
                                   &kRunStemTypesLayout};

using RunByProductTypesR = RunByProductTypesRecord;
constexpr Column kRunByProductTypesColumns[] = {
    VRDPPO_COL(RunByProductTypesR, ProductionRunId, 0, None),
    VRDPPO_COL(RunByProductTypesR, ProductionDate, 4, None),
    VRDPPO_COL(RunByProductTypesR, ByProductsTypeId, 12, None),
    VRDPPO_COL(RunByProductTypesR, CompanyId, 16, None),
};
constexpr RecordLayout kRunByProductTypesLayout = makeLayout<RunByProductTypesR, 44>(
    kRunByProductTypesColumns, VRDPPO_TRAILING(RunByProductTypesR, Blank, 20, u""));
constexpr ViewConfig kRunByProductTypes{u"VRUNBYPRODUCTTYPES", LoadStyle::Star, TopArg::None,
                                        &kRunByProductTypesLayout};

using RunGreenWeightTotalsR = RunGreenWeightTotalsRecord;
constexpr Column kRunGreenWeightTotalsColumns[] = {
    VRDPPO_COL(RunGreenWeightTotalsR, ProductionRunId, 0, None),
    VRDPPO_COL(RunGreenWeightTotalsR, GradeCode, 4, None),
    VRDPPO_COL(RunGreenWeightTotalsR, GreenGradeId, 24, None),
    VRDPPO_COL(RunGreenWeightTotalsR, GreenInventoryId, 28, None),
    VRDPPO_COL(RunGreenWeightTotalsR, inventoryweight, 32, None),
    VRDPPO_COL(RunGreenWeightTotalsR, RunWeight, 40, None),
    VRDPPO_COL(RunGreenWeightTotalsR, GrossBaleWeight, 48, None),
    VRDPPO_COL(RunGreenWeightTotalsR, TareValue, 56, None),
    VRDPPO_COL(RunGreenWeightTotalsR, TareUnitCount, 64, None),
};
constexpr RecordLayout kRunGreenWeightTotalsLayout = makeLayout<RunGreenWeightTotalsR, 74>(
    kRunGreenWeightTotalsColumns, VRDPPO_TRAILING(RunGreenWeightTotalsR, Blank, 68, u""));
// inventoryweight is all lower case in the view.
constexpr ViewConfig kRunGreenWeightTotals{u"VRUNGREENWEIGHTTOTALS", LoadStyle::Star, TopArg::None,
                                           &kRunGreenWeightTotalsLayout};

using RunProdGreenGradesR = RunProdGreenGradesRecord;
constexpr Column kRunProdGreenGradesColumns[] = {
    VRDPPO_COL(RunProdGreenGradesR, ProductionRunId, 0, None),
    VRDPPO_COL(RunProdGreenGradesR, ProductionDate, 4, None),
    VRDPPO_COL(RunProdGreenGradesR, ProductionGradeId, 12, None),
    VRDPPO_COL(RunProdGreenGradesR, ProductionGreenGradeId, 16, None),
    VRDPPO_COL(RunProdGreenGradesR, GreenGradeId, 20, None),
};
constexpr RecordLayout kRunProdGreenGradesLayout = makeLayout<RunProdGreenGradesR, 54>(
    kRunProdGreenGradesColumns, VRDPPO_TRAILING(RunProdGreenGradesR, Blank, 24, u""));
// A plain view with an optional lTop: TOP goes ahead of the *, and the Buffer estimate stays 10.
constexpr ViewConfig kRunProdGreenGrades{u"VRUNPRODGREENGRADES", LoadStyle::Star, TopArg::Optional,
                                         &kRunProdGreenGradesLayout};

using RunRedriedGradeListR = RunRedriedGradeListRecord;
constexpr Column kRunRedriedGradeListColumns[] = {
    VRDPPO_COL(RunRedriedGradeListR, ProductionGreenGradeId, 0, None),
    VRDPPO_COL(RunRedriedGradeListR, ProductionRunRedriedId, 4, None),
    VRDPPO_COL(RunRedriedGradeListR, WeightUsed, 8, None),
    VRDPPO_COL(RunRedriedGradeListR, ProductionRunId, 16, None),
    VRDPPO_COL(RunRedriedGradeListR, ProductionGradeId, 20, None),
    VRDPPO_COL(RunRedriedGradeListR, SortSequence, 24, None),
    VRDPPO_COL(RunRedriedGradeListR, DeletedFlag, 28, None),
    VRDPPO_COL(RunRedriedGradeListR, GreenGradeId, 32, None),
    VRDPPO_COL(RunRedriedGradeListR, GradeCode, 36, None),
    VRDPPO_COL(RunRedriedGradeListR, ScrapGrade, 56, None),
};
constexpr RecordLayout kRunRedriedGradeListLayout = makeLayout<RunRedriedGradeListR, 66>(
    kRunRedriedGradeListColumns, VRDPPO_TRAILING(RunRedriedGradeListR, Blank, 58, u""));
constexpr ViewConfig kRunRedriedGradeList{u"VRUNREDRIEDGRADELIST", LoadStyle::Star, TopArg::None,
                                          &kRunRedriedGradeListLayout};

using ProdGreenGradeListR = ProdGreenGradeListRecord;
constexpr Column kProdGreenGradeListColumns[] = {
    VRDPPO_COL(ProdGreenGradeListR, ProductionGreenGradeId, 0, None),
    VRDPPO_COL(ProdGreenGradeListR, ProductionGradeId, 4, None),
    VRDPPO_COL(ProdGreenGradeListR, GreenGradeId, 8, None),
    VRDPPO_COL(ProdGreenGradeListR, TargetPercentage, 12, None),
    VRDPPO_COL(ProdGreenGradeListR, SortSequence, 20, None),
    VRDPPO_COL(ProdGreenGradeListR, DeletedFlag, 24, None),
    VRDPPO_COL(ProdGreenGradeListR, ProductionGradeCode, 26, None),
    VRDPPO_COL(ProdGreenGradeListR, GradeCode, 46, None),
};
constexpr RecordLayout kProdGreenGradeListLayout = makeLayout<ProdGreenGradeListR, 63>(
    kProdGreenGradeListColumns, VRDPPO_TRAILING(ProdGreenGradeListR, Blank, 66, u""));
// C is 63, below the sum of its fields; 126 bytes still hold the record.
constexpr ViewConfig kProdGreenGradeList{u"VPRODGREENGRADELIST", LoadStyle::Star, TopArg::None,
                                         &kProdGreenGradeListLayout};

}  // namespace

cvRunGreenGradeListPersist::cvRunGreenGradeListPersist()
    : ViewPersist<RunGreenGradeListRecord>(kRunGreenGradeList) {}
const ClassInfo& cvRunGreenGradeListPersist::info() {
  static const ClassInfo i =
      viewClass<cvRunGreenGradeListPersist>("cvRunGreenGradeListPersist", kRunGreenGradeList);
  return i;
}

cvRunStemTypesPersist::cvRunStemTypesPersist() : ViewPersist<RunStemTypesRecord>(kRunStemTypes) {}
const ClassInfo& cvRunStemTypesPersist::info() {
  static const ClassInfo i =
      viewClass<cvRunStemTypesPersist>("cvRunStemTypesPersist", kRunStemTypes);
  return i;
}

cvRunByProductTypesPersist::cvRunByProductTypesPersist()
    : ViewPersist<RunByProductTypesRecord>(kRunByProductTypes) {}
const ClassInfo& cvRunByProductTypesPersist::info() {
  static const ClassInfo i =
      viewClass<cvRunByProductTypesPersist>("cvRunByProductTypesPersist", kRunByProductTypes);
  return i;
}

cvRunGreenWeightTotalsPersist::cvRunGreenWeightTotalsPersist()
    : ViewPersist<RunGreenWeightTotalsRecord>(kRunGreenWeightTotals) {}
const ClassInfo& cvRunGreenWeightTotalsPersist::info() {
  static const ClassInfo i = viewClass<cvRunGreenWeightTotalsPersist>(
      "cvRunGreenWeightTotalsPersist", kRunGreenWeightTotals);
  return i;
}

cvRunProdGreenGradesPersist::cvRunProdGreenGradesPersist()
    : ViewPersist<RunProdGreenGradesRecord>(kRunProdGreenGrades) {}
const ClassInfo& cvRunProdGreenGradesPersist::info() {
  static const ClassInfo i =
      viewClass<cvRunProdGreenGradesPersist>("cvRunProdGreenGradesPersist", kRunProdGreenGrades);
  return i;
}

cvRunRedriedGradeListPersist::cvRunRedriedGradeListPersist()
    : ViewPersist<RunRedriedGradeListRecord>(kRunRedriedGradeList) {}
const ClassInfo& cvRunRedriedGradeListPersist::info() {
  static const ClassInfo i =
      viewClass<cvRunRedriedGradeListPersist>("cvRunRedriedGradeListPersist", kRunRedriedGradeList);
  return i;
}

cvProdGreenGradeListPersist::cvProdGreenGradeListPersist()
    : ViewPersist<ProdGreenGradeListRecord>(kProdGreenGradeList) {}
const ClassInfo& cvProdGreenGradeListPersist::info() {
  static const ClassInfo i =
      viewClass<cvProdGreenGradeListPersist>("cvProdGreenGradeListPersist", kProdGreenGradeList);
  return i;
}

}  // namespace vrdppo
