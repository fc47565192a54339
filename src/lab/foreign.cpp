#include "vrdppo/lab/foreign.hpp"

#include <cstddef>

namespace vrdppo {

namespace {

// LabHeaderID is L here (0 goes out as 0), and of the weights only SuckersWt is C0.
using LF = LabForeignRecord;
constexpr Column kLabForeignColumns[] = {
    VRDPPO_COL(LF, LabForeignID, 0, None),
    VRDPPO_COL(LF, LabHeaderID, 4, L),
    VRDPPO_COL2(LF, ProductionGradeId, 8, u"ProductionGradeId", u"ProductionGradeID", L),
    VRDPPO_COL(LF, LabSeason, 12, L),
    VRDPPO_DATE(LF, SampleDateTime, 16, T, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(LF, Shift, 24, L),
    VRDPPO_COL(LF, TestType, 28, S),
    VRDPPO_COL(LF, StemTypeID, 36, L0),
    VRDPPO_COL(LF, ByProductID, 40, L0),
    VRDPPO_COL(LF, ContainerNumber, 44, L),
    VRDPPO_COL(LF, SampleWeight, 48, L),
    VRDPPO_COL(LF, Suckers, 52, L),
    VRDPPO_COL(LF, Stalk, 56, L),
    VRDPPO_COL(LF, Straw, 60, L),
    VRDPPO_COL(LF, Grass, 64, L),
    VRDPPO_COL(LF, Strings, 68, L),
    VRDPPO_COL(LF, Lint, 72, L),
    VRDPPO_COL(LF, Feathers, 76, L),
    VRDPPO_COL(LF, Paper, 80, L),
    VRDPPO_COL(LF, Plastic, 84, L),
    VRDPPO_COL(LF, Insulation, 88, L),
    VRDPPO_COL(LF, Foam, 92, L),
    VRDPPO_COL(LF, Rubber, 96, L),
    VRDPPO_COL(LF, Rocks, 100, L),
    VRDPPO_COL(LF, Wood, 104, L),
    VRDPPO_COL(LF, Hair, 108, L),
    VRDPPO_COL(LF, InsectOrCocoons, 112, L),
    VRDPPO_COL(LF, StainedLeaves, 116, L),
    VRDPPO_COL(LF, Fur, 120, L),
    VRDPPO_COL(LF, Wool, 124, L),
    VRDPPO_COL(LF, Metal, 128, L),
    VRDPPO_COL(LF, FruitOrNuts, 132, L),
    VRDPPO_COL(LF, Seed, 136, L),
    VRDPPO_COL(LF, Extra1, 140, L),
    VRDPPO_COL(LF, Extra2, 144, L),
    VRDPPO_COL(LF, Other1, 148, L),
    VRDPPO_COL(LF, Other1Desc, 152, S0),
    VRDPPO_COL(LF, Other2, 192, L),
    VRDPPO_COL(LF, Other2Desc, 196, S0),
    VRDPPO_COL(LF, Other3, 236, L),
    VRDPPO_COL(LF, Other3Desc, 240, S0),
    VRDPPO_COL(LF, SuckersWt, 280, C0),
    VRDPPO_COL(LF, StalkWt, 288, C),
    VRDPPO_COL(LF, StrawWt, 296, C),
    VRDPPO_COL(LF, GrassWt, 304, C),
    VRDPPO_COL(LF, StringsWt, 312, C),
    VRDPPO_COL(LF, LintWt, 320, C),
    VRDPPO_COL(LF, FeathersWt, 328, C),
    VRDPPO_COL(LF, PaperWt, 336, C),
    VRDPPO_COL(LF, PlasticWt, 344, C),
    VRDPPO_COL(LF, InsulationWt, 352, C),
    VRDPPO_COL(LF, FoamWt, 360, C),
    VRDPPO_COL(LF, RubberWt, 368, C),
    VRDPPO_COL(LF, RocksWt, 376, C),
    VRDPPO_COL(LF, WoodWt, 384, C),
    VRDPPO_COL(LF, HairWt, 392, C),
    VRDPPO_COL(LF, InsectOrCocoonsWt, 400, C),
    VRDPPO_COL(LF, StainedLeavesWt, 408, C),
    VRDPPO_COL(LF, FurWt, 416, C),
    VRDPPO_COL(LF, WoolWt, 424, C),
    VRDPPO_COL(LF, MetalWt, 432, C),
    VRDPPO_COL(LF, FruitOrNutsWt, 440, C),
    VRDPPO_COL(LF, SeedWt, 448, C),
    VRDPPO_COL(LF, Extra1Wt, 456, C),
    VRDPPO_COL(LF, Extra2Wt, 464, C),
    VRDPPO_COL(LF, Other1Wt, 472, C),
    VRDPPO_COL(LF, Other2Wt, 480, C),
    VRDPPO_COL(LF, Other3Wt, 488, C),
    VRDPPO_COL(LF, Total, 496, C),
    VRDPPO_COL(LF, TotalWt, 504, C),
    VRDPPO_DATE(LF, LastUpdated, 512, T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(LF, UpdatedByID, 520, L0),
    VRDPPO_COL(LF, cbProductionBaleNTRMId, 524, L0),
};
constexpr RecordLayout kLabForeignLayout =
    makeLayout<LF, 501>(kLabForeignColumns, VRDPPO_TRAILING(LF, KeyName, 528, u"LabForeignID"));

// Against the table: the bale columns in front, TestType before Shift, Feathers before Lint.
using FB = LabForeignBaleRecord;
constexpr Column kLabForeignBaleColumns[] = {
    VRDPPO_COL(FB, InternalCode, 0, None),
    VRDPPO_COL(FB, NTRMStatus, 20, None),
    VRDPPO_COL(FB, cbProductionBaleNTRMId, 28, None),
    VRDPPO_COL(FB, LabForeignID, 32, None),
    VRDPPO_COL(FB, LabHeaderID, 36, None),
    VRDPPO_COL2(FB, ProductionGradeId, 40, u"ProductionGradeId", u"ProductionGradeID", None),
    VRDPPO_COL(FB, LabSeason, 44, None),
    VRDPPO_COL(FB, SampleDateTime, 48, None),
    VRDPPO_COL(FB, TestType, 56, None),
    VRDPPO_COL(FB, Shift, 64, None),
    VRDPPO_COL(FB, StemTypeID, 68, None),
    VRDPPO_COL(FB, ByProductID, 72, None),
    VRDPPO_COL(FB, ContainerNumber, 76, None),
    VRDPPO_COL(FB, SampleWeight, 80, None),
    VRDPPO_COL(FB, Suckers, 84, None),
    VRDPPO_COL(FB, Stalk, 88, None),
    VRDPPO_COL(FB, Straw, 92, None),
    VRDPPO_COL(FB, Grass, 96, None),
    VRDPPO_COL(FB, Strings, 100, None),
    VRDPPO_COL(FB, Feathers, 104, None),
    VRDPPO_COL(FB, Lint, 108, None),
    VRDPPO_COL(FB, Paper, 112, None),
    VRDPPO_COL(FB, Plastic, 116, None),
    VRDPPO_COL(FB, Insulation, 120, None),
    VRDPPO_COL(FB, Foam, 124, None),
    VRDPPO_COL(FB, Rubber, 128, None),
    VRDPPO_COL(FB, Rocks, 132, None),
    VRDPPO_COL(FB, Wood, 136, None),
    VRDPPO_COL(FB, Hair, 140, None),
    VRDPPO_COL(FB, InsectOrCocoons, 144, None),
    VRDPPO_COL(FB, StainedLeaves, 148, None),
    VRDPPO_COL(FB, Fur, 152, None),
    VRDPPO_COL(FB, Wool, 156, None),
    VRDPPO_COL(FB, Metal, 160, None),
    VRDPPO_COL(FB, FruitOrNuts, 164, None),
    VRDPPO_COL(FB, Seed, 168, None),
    VRDPPO_COL(FB, Extra1, 172, None),
    VRDPPO_COL(FB, Extra2, 176, None),
    VRDPPO_COL(FB, Other1, 180, None),
    VRDPPO_COL(FB, Other1Desc, 184, None),
    VRDPPO_COL(FB, Other2, 224, None),
    VRDPPO_COL(FB, Other2Desc, 228, None),
    VRDPPO_COL(FB, Other3, 268, None),
    VRDPPO_COL(FB, Other3Desc, 272, None),
    VRDPPO_COL(FB, SuckersWt, 312, None),
    VRDPPO_COL(FB, StalkWt, 320, None),
    VRDPPO_COL(FB, StrawWt, 328, None),
    VRDPPO_COL(FB, GrassWt, 336, None),
    VRDPPO_COL(FB, StringsWt, 344, None),
    VRDPPO_COL(FB, LintWt, 352, None),
    VRDPPO_COL(FB, FeathersWt, 360, None),
    VRDPPO_COL(FB, PaperWt, 368, None),
    VRDPPO_COL(FB, PlasticWt, 376, None),
    VRDPPO_COL(FB, InsulationWt, 384, None),
    VRDPPO_COL(FB, FoamWt, 392, None),
    VRDPPO_COL(FB, RubberWt, 400, None),
    VRDPPO_COL(FB, RocksWt, 408, None),
    VRDPPO_COL(FB, WoodWt, 416, None),
    VRDPPO_COL(FB, HairWt, 424, None),
    VRDPPO_COL(FB, InsectOrCocoonsWt, 432, None),
    VRDPPO_COL(FB, StainedLeavesWt, 440, None),
    VRDPPO_COL(FB, FurWt, 448, None),
    VRDPPO_COL(FB, WoolWt, 456, None),
    VRDPPO_COL(FB, MetalWt, 464, None),
    VRDPPO_COL(FB, FruitOrNutsWt, 472, None),
    VRDPPO_COL(FB, SeedWt, 480, None),
    VRDPPO_COL(FB, Extra1Wt, 488, None),
    VRDPPO_COL(FB, Extra2Wt, 496, None),
    VRDPPO_COL(FB, Other1Wt, 504, None),
    VRDPPO_COL(FB, Other2Wt, 512, None),
    VRDPPO_COL(FB, Other3Wt, 520, None),
    VRDPPO_COL(FB, Total, 528, None),
    VRDPPO_COL(FB, TotalWt, 536, None),
    VRDPPO_COL(FB, LastUpdated, 544, None),
    VRDPPO_COL(FB, UpdatedByID, 552, None),
    VRDPPO_COL(FB, BlendWeight, 556, None),
    VRDPPO_COL(FB, BarCode, 564, None),
};
constexpr RecordLayout kLabForeignBaleLayout =
    makeLayout<FB, 542>(kLabForeignBaleColumns, VRDPPO_TRAILING(FB, Blank, 604, u""));

constexpr TableConfig kLabForeign =
    secondGeneration(u"LABFOREIGN", u"LABFOREIGNID", DeleteStyle::Hard, TopArg::Required,
                     CriteriaDeleteForm::Second, kLabForeignLayout);
constexpr ViewConfig kLabForeignBale{u"VLABFOREIGNBALE", LoadStyle::List, TopArg::Required,
                                     &kLabForeignBaleLayout};

}  // namespace

cLabForeignPersist::cLabForeignPersist() : TablePersist<LabForeignRecord>(kLabForeign) {}
const ClassInfo& cLabForeignPersist::info() {
  static const ClassInfo i = tableClass<cLabForeignPersist>("cLabForeignPersist", kLabForeign);
  return i;
}

cvLabForeignBalePersist::cvLabForeignBalePersist()
    : ViewPersist<LabForeignBaleRecord>(kLabForeignBale) {}
const ClassInfo& cvLabForeignBalePersist::info() {
  static const ClassInfo i =
      viewClass<cvLabForeignBalePersist>("cvLabForeignBalePersist", kLabForeignBale);
  return i;
}

}  // namespace vrdppo
