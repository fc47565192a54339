#include "vrdppo/greenleaf/inventory.hpp"

#include <cstddef>
#include <span>
#include <vector>

#include "vrdppo/dbhelp.hpp"
#include "vrdppo/operations.hpp"

namespace vrdppo {

namespace {

using GI = GreenInventoryRecord;
constexpr Column kGreenInventoryColumns[] = {
    VRDPPO_COL(GI, GreenInventoryId, 0, None),    VRDPPO_COL(GI, GrossWeight, 4, D),
    VRDPPO_COL(GI, GreenContainerTypeId, 12, L0), VRDPPO_COL(GI, GreenGradeId, 16, L),
    VRDPPO_COL(GI, WeightUomId, 20, L),           VRDPPO_COL(GI, BinLocationId, 24, L0),
};
constexpr RecordLayout kGreenInventoryLayout = makeLayout<GI, 48>(
    kGreenInventoryColumns, VRDPPO_TRAILING(GI, KeyName, 28, u"GreenInventoryId"));
constexpr TableConfig kGreenInventory = firstGeneration(u"GREENINVENTORY", u"GREENINVENTORYID",
                                                        DeleteStyle::Hard, kGreenInventoryLayout);

using GH = GreenInHouseRecord;
constexpr Column kGreenInHouseColumns[] = {
    VRDPPO_COL(GH, GreenInHouseID, 0, None), VRDPPO_COL(GH, GreenGradeId, 4, L0),
    VRDPPO_COL(GH, PoundRecTod, 8, L),       VRDPPO_COL(GH, PoundRecYTD, 12, L),
    VRDPPO_COL(GH, PoundProTod, 16, L),      VRDPPO_COL(GH, PoundProYTD, 20, L),
};
constexpr RecordLayout kGreenInHouseLayout =
    makeLayout<GH, 38>(kGreenInHouseColumns, VRDPPO_TRAILING(GH, KeyName, 24, u"GreenInHouseID"));
constexpr TableConfig kGreenInHouse =
    firstGeneration(u"GREENINHOUSE", u"GREENINHOUSEID", DeleteStyle::Hard, kGreenInHouseLayout);

using IR = InHouseRecGradesRecord;
// GradeCode alone is S0: a row without a grade stores Null there, the other codes ''.
constexpr Column kInHouseRecGradesColumns[] = {
    VRDPPO_COL(IR, InHouseRecGradesID, 0, None),
    VRDPPO_COL(IR, ProductionGradeId, 4, L),
    VRDPPO_COL(IR, GreenGradeId, 8, L),
    VRDPPO_COL(IR, ProductionGradeCode, 12, S),
    VRDPPO_COL(IR, GreenGradeCode, 32, S),
    VRDPPO_COL(IR, CompanyId, 52, L),
    VRDPPO_COL(IR, CompanyCode, 56, S),
    VRDPPO_COL(IR, TargetPercentage, 76, L),
    VRDPPO_COL(IR, GradeId, 80, L0),
    VRDPPO_COL(IR, GradeCode, 84, S0),
};
constexpr RecordLayout kInHouseRecGradesLayout = makeLayout<IR, 83>(
    kInHouseRecGradesColumns, VRDPPO_TRAILING(IR, KeyName, 104, u"InHouseRecGradesID"));
constexpr TableConfig kInHouseRecGrades = firstGeneration(
    u"INHOUSERECGRADES", u"INHOUSERECGRADESID", DeleteStyle::Hard, kInHouseRecGradesLayout);

using IV = InHouseRecGradesViewRecord;
constexpr Column kInHouseRecGradesViewColumns[] = {
    VRDPPO_COL(IV, ProductionGradeId, 0, None),   VRDPPO_COL(IV, GreenGradeId, 4, None),
    VRDPPO_COL(IV, ProductionGradeCode, 8, None), VRDPPO_COL(IV, GreenGradeCode, 28, None),
    VRDPPO_COL(IV, CompanyId, 48, None),          VRDPPO_COL(IV, CompanyCode, 52, None),
    VRDPPO_COL(IV, TargetPercentage, 72, None),   VRDPPO_COL(IV, GradeId, 76, None),
    VRDPPO_COL(IV, GradeCode, 80, None),
};
constexpr RecordLayout kInHouseRecGradesViewLayout =
    makeLayout<IV, 79>(kInHouseRecGradesViewColumns, VRDPPO_TRAILING(IV, Blank, 100, u""));
constexpr ViewConfig kInHouseRecGradesView{u"VINHOUSERECGRADES", LoadStyle::Star, TopArg::None,
                                           &kInHouseRecGradesViewLayout};

using GP = GreenProdRecord;
constexpr Column kGreenProdColumns[] = {
    VRDPPO_COL(GP, ProductionDate, 0, None),
    VRDPPO_COL(GP, GreenGradeId, 8, None),
    VRDPPO_COL(GP, RunWeight, 12, None),
};
constexpr RecordLayout kGreenProdLayout =
    makeLayout<GP, 42>(kGreenProdColumns, VRDPPO_TRAILING(GP, Blank, 20, u""));
constexpr ViewConfig kGreenProd{u"VGREENPROD", LoadStyle::Star, TopArg::None, &kGreenProdLayout};

using PG = ProcessGreenRecord;
constexpr Column kProcessGreenColumns[] = {
    VRDPPO_COL(PG, ProductionRunId, 0, None),
    VRDPPO_COL(PG, ProductionGradeId, 4, None),
    VRDPPO_COL(PG, ProductionGradeCode, 8, None),
    VRDPPO_COL(PG, GreenGradeCode, 28, None),
    VRDPPO_COL(PG, GreenWeight, 48, None),
    VRDPPO_COL(PG, TargetPercentage, 56, None),
    VRDPPO_COL(PG, ThisRunWeight, 64, None),
    VRDPPO_COL(PG, ThisRunPercentage, 72, None),
    VRDPPO_COL(PG, WeightUsed, 80, None),
    VRDPPO_COL(PG, Comment, 88, None),
    VRDPPO_COL(PG, GreenGradeId, 288, None),
    VRDPPO_COL(PG, ProductionGreenGradeId, 292, None),
    VRDPPO_COL(PG, ReportingCompanyId, 296, None),
    VRDPPO_COL(PG, CompanyId, 300, None),
    VRDPPO_COL(PG, SortSequence, 304, None),
    VRDPPO_COL(PG, ReportingProductionGradeId, 308, None),
};
constexpr RecordLayout kProcessGreenLayout =
    makeLayout<PG, 218>(kProcessGreenColumns, VRDPPO_TRAILING(PG, Blank, 312, u""));
constexpr ViewConfig kProcessGreen{u"VPROCESSGREEN", LoadStyle::Star, TopArg::None,
                                   &kProcessGreenLayout};

template <class Class>
std::vector<MemberInfo> withDeleteAll(const TableConfig& config) {
  auto m = tableMembers(config);
  m.push_back(method<Class>("DeleteAll", {ArgInfo{"sConnect", ValueType::String}}, ValueType::None,
                            [](Class& o, std::span<const Variant> a) {
                              o.DeleteAll(a[0].str());
                              return Variant();
                            }));
  return m;
}

}  // namespace

cGreenInventoryPersist::cGreenInventoryPersist()
    : TablePersist<GreenInventoryRecord>(kGreenInventory) {}
const ClassInfo& cGreenInventoryPersist::info() {
  static const ClassInfo i =
      tableClass<cGreenInventoryPersist>("cGreenInventoryPersist", kGreenInventory);
  return i;
}

cGreenInHousePersist::cGreenInHousePersist() : TablePersist<GreenInHouseRecord>(kGreenInHouse) {}
const ClassInfo& cGreenInHousePersist::info() {
  static const ClassInfo i = tableClass<cGreenInHousePersist>(
      "cGreenInHousePersist", kGreenInHouse, withDeleteAll<cGreenInHousePersist>(kGreenInHouse));
  return i;
}
// The fixed text is in mixed case, unlike the class's other statements.
void cGreenInHousePersist::DeleteAll(const std::u16string& sConnect) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  runStatement(u"DELETE FROM GreenInHouse");
}

cInHouseRecGradesPersist::cInHouseRecGradesPersist()
    : TablePersist<InHouseRecGradesRecord>(kInHouseRecGrades) {}
const ClassInfo& cInHouseRecGradesPersist::info() {
  static const ClassInfo i = tableClass<cInHouseRecGradesPersist>(
      "cInHouseRecGradesPersist", kInHouseRecGrades,
      withDeleteAll<cInHouseRecGradesPersist>(kInHouseRecGrades));
  return i;
}
void cInHouseRecGradesPersist::DeleteAll(const std::u16string& sConnect) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  runStatement(u"DELETE FROM InHouseRecGrades");
}

cvInHouseRecGradesPersist::cvInHouseRecGradesPersist()
    : ViewPersist<InHouseRecGradesViewRecord>(kInHouseRecGradesView) {}
const ClassInfo& cvInHouseRecGradesPersist::info() {
  static const ClassInfo i =
      viewClass<cvInHouseRecGradesPersist>("cvInHouseRecGradesPersist", kInHouseRecGradesView);
  return i;
}

cvGreenProdPersist::cvGreenProdPersist() : ViewPersist<GreenProdRecord>(kGreenProd) {}
const ClassInfo& cvGreenProdPersist::info() {
  static const ClassInfo i = viewClass<cvGreenProdPersist>("cvGreenProdPersist", kGreenProd);
  return i;
}

cvProcessGreenPersist::cvProcessGreenPersist() : ViewPersist<ProcessGreenRecord>(kProcessGreen) {}
const ClassInfo& cvProcessGreenPersist::info() {
  static const ClassInfo i =
      viewClass<cvProcessGreenPersist>("cvProcessGreenPersist", kProcessGreen);
  return i;
}

}  // namespace vrdppo
