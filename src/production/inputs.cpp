#include "vrdppo/production/inputs.hpp"

#include <cstddef>

namespace vrdppo {

namespace {

using RG = ProductionRunGradeRecord;
constexpr Column kRunGradeColumns[] = {
    VRDPPO_COL(RG, ProductionRunGradeId, 0, None), VRDPPO_COL(RG, ProductionGreenGradeId, 4, L),
    VRDPPO_COL(RG, ProductionRunId, 8, L),         VRDPPO_COL(RG, WeightUsed, 12, D),
    VRDPPO_COL(RG, GrossBaleWeight, 20, D0),       VRDPPO_COL(RG, TareValue, 28, D0),
    VRDPPO_COL(RG, TareUnitCount, 36, L0),
};
constexpr RecordLayout kRunGradeLayout =
    makeLayout<RG, 62>(kRunGradeColumns, VRDPPO_TRAILING(RG, KeyName, 40, u"ProductionRunGradeId"));
constexpr TableConfig kRunGrade =
    firstGeneration(u"PRODUCTIONRUNGRADE", u"PRODUCTIONRUNGRADEID", DeleteStyle::Hard,
                    kRunGradeLayout, CriteriaDeleteForm::First);

using GG = ProductionGreenGradeRecord;
constexpr Column kGreenGradeColumns[] = {
    VRDPPO_COL(GG, ProductionGreenGradeId, 0, None),
    VRDPPO_COL(GG, ProductionGradeId, 4, L),
    VRDPPO_COL(GG, GreenGradeId, 8, L0),
    VRDPPO_COL(GG, TargetPercentage, 12, D),
    VRDPPO_COL(GG, SortSequence, 20, L),
    VRDPPO_COL(GG, DeletedFlag, 24, S),
};
constexpr RecordLayout kGreenGradeLayout = makeLayout<GG, 47>(
    kGreenGradeColumns, VRDPPO_TRAILING(GG, KeyName, 26, u"ProductionGreenGradeId"));
// Soft: runs that use a recipe line keep it.
constexpr TableConfig kGreenGrade = firstGeneration(
    u"PRODUCTIONGREENGRADE", u"PRODUCTIONGREENGRADEID", DeleteStyle::Soft, kGreenGradeLayout);

using PK = PickingsRecord;
constexpr Column kPickingsColumns[] = {
    VRDPPO_COL(PK, PickingsId, 0, None),
    VRDPPO_COL(PK, ProductionRunId, 4, L),
    VRDPPO_COL(PK, Weight, 8, D),
    VRDPPO_COL(PK, PickingTypeId, 16, L0),
};
constexpr RecordLayout kPickingsLayout =
    makeLayout<PK, 35>(kPickingsColumns, VRDPPO_TRAILING(PK, KeyName, 20, u"PickingsId"));
constexpr TableConfig kPickings =
    firstGeneration(u"PICKINGS", u"PICKINGSID", DeleteStyle::Hard, kPickingsLayout);

using BP = ByProductsRecord;
constexpr Column kByProductsColumns[] = {
    VRDPPO_COL(BP, ByProductsId, 0, None), VRDPPO_COL(BP, ByProductsTypeId, 4, L),
    VRDPPO_COL(BP, ProductionRunId, 8, L), VRDPPO_COL(BP, ContainerStart, 12, L0),
    VRDPPO_COL(BP, ContainerEnd, 16, L0),  VRDPPO_COL(BP, TotalNetWeight, 20, D),
    VRDPPO_COL(BP, SumLink, 28, L),        VRDPPO_COL(BP, DiscardFlag, 32, S),
};
constexpr RecordLayout kByProductsLayout =
    makeLayout<BP, 49>(kByProductsColumns, VRDPPO_TRAILING(BP, KeyName, 34, u"ByProductsId"));
constexpr TableConfig kByProducts =
    firstGeneration(u"BYPRODUCTS", u"BYPRODUCTSID", DeleteStyle::Hard, kByProductsLayout);

using TG = ProductionRunTargetRecord;
constexpr Column kTargetColumns[] = {
    VRDPPO_COL(TG, ProductionRunTargetId, 0, None),
    VRDPPO_COL(TG, ProductionGreenGradeId, 4, L),
    VRDPPO_COL(TG, TargetPercentage, 8, D0),
    VRDPPO_COL(TG, ThisRunWeight, 16, D),
    VRDPPO_COL(TG, Comment, 24, S0),
    VRDPPO_COL(TG, ThisRunPercentage, 224, D0),
    VRDPPO_COL(TG, ProductionRunId, 232, L),
};
constexpr RecordLayout kTargetLayout = makeLayout<TG, 158>(
    kTargetColumns, VRDPPO_TRAILING(TG, KeyName, 236, u"ProductionRunTargetId"));
// Comment is sent undoubled in the insert: a " in it ends the literal.
constexpr TableConfig kTarget =
    firstGeneration(u"PRODUCTIONRUNTARGET", u"PRODUCTIONRUNTARGETID", DeleteStyle::Hard,
                    kTargetLayout, CriteriaDeleteForm::First);

using RR = ProductionRunRedriedRecord;
constexpr Column kRedriedColumns[] = {
    VRDPPO_COL(RR, ProductionRunRedriedId, 0, None),
    VRDPPO_COL(RR, ProductionGreenGradeId, 4, L),
    VRDPPO_COL(RR, ProductionRunId, 8, L),
    VRDPPO_COL(RR, WeightUsed, 12, D),
};
constexpr RecordLayout kRedriedLayout = makeLayout<RR, 42>(
    kRedriedColumns, VRDPPO_TRAILING(RR, KeyName, 20, u"ProductionRunRedriedId"));
constexpr TableConfig kRedried = [] {
  TableConfig c = firstGeneration(u"PRODUCTIONRUNREDRIED", u"PRODUCTIONRUNREDRIEDID",
                                  DeleteStyle::Hard, kRedriedLayout, CriteriaDeleteForm::First);
  // Unlike its neighbours, the insert doubles every ".
  c.doubleQuotesInInsert = true;
  return c;
}();

}  // namespace

cProductionRunGradePersist::cProductionRunGradePersist()
    : TablePersist<ProductionRunGradeRecord>(kRunGrade) {}
const ClassInfo& cProductionRunGradePersist::info() {
  static const ClassInfo i =
      tableClass<cProductionRunGradePersist>("cProductionRunGradePersist", kRunGrade);
  return i;
}

cProductionGreenGradePersist::cProductionGreenGradePersist()
    : TablePersist<ProductionGreenGradeRecord>(kGreenGrade) {}
const ClassInfo& cProductionGreenGradePersist::info() {
  static const ClassInfo i =
      tableClass<cProductionGreenGradePersist>("cProductionGreenGradePersist", kGreenGrade);
  return i;
}

cPickingsPersist::cPickingsPersist() : TablePersist<PickingsRecord>(kPickings) {}
const ClassInfo& cPickingsPersist::info() {
  static const ClassInfo i = tableClass<cPickingsPersist>("cPickingsPersist", kPickings);
  return i;
}

cByProductsPersist::cByProductsPersist() : TablePersist<ByProductsRecord>(kByProducts) {}
const ClassInfo& cByProductsPersist::info() {
  static const ClassInfo i = tableClass<cByProductsPersist>("cByProductsPersist", kByProducts);
  return i;
}

cProductionRunTargetPersist::cProductionRunTargetPersist()
    : TablePersist<ProductionRunTargetRecord>(kTarget) {}
const ClassInfo& cProductionRunTargetPersist::info() {
  static const ClassInfo i =
      tableClass<cProductionRunTargetPersist>("cProductionRunTargetPersist", kTarget);
  return i;
}

cProductionRunRedriedPersist::cProductionRunRedriedPersist()
    : TablePersist<ProductionRunRedriedRecord>(kRedried) {}
const ClassInfo& cProductionRunRedriedPersist::info() {
  static const ClassInfo i =
      tableClass<cProductionRunRedriedPersist>("cProductionRunRedriedPersist", kRedried);
  return i;
}

}  // namespace vrdppo
