#include "vrdppo/production/results.hpp"

#include <cstddef>

#include "vrdppo/dbhelp.hpp"
#include "vrdppo/operations.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {

namespace {

using ProductionStatsR = ProductionStatsRecord;
constexpr Column kProductionStatsColumns[] = {
    VRDPPO_COL(ProductionStatsR, ProductionStatsId, 0, None),
    VRDPPO_COL(ProductionStatsR, ObjectTypeId, 4, L),
    VRDPPO_COL(ProductionStatsR, ObjectId, 8, L),
    VRDPPO_COL(ProductionStatsR, ProductionGradeId, 12, L0),
    VRDPPO_COL(ProductionStatsR, ObjectCode, 16, S),
    VRDPPO_COL(ProductionStatsR, YTD, 216, D0),
    VRDPPO_COL(ProductionStatsR, PYTD, 224, D0),
    VRDPPO_COL(ProductionStatsR, PYTD2, 232, D0),
    VRDPPO_COL(ProductionStatsR, CurrentValue, 240, D0),
};
constexpr RecordLayout kProductionStatsLayout = makeLayout<ProductionStatsR, 165>(
    kProductionStatsColumns, VRDPPO_TRAILING(ProductionStatsR, KeyName, 248, u"ProductionStatsId"));
constexpr TableConfig kProductionStats = firstGeneration(u"PRODUCTIONSTATS", u"PRODUCTIONSTATSID",
                                                         DeleteStyle::Hard, kProductionStatsLayout);

using DegradationPYTDR = DegradationPYTDRecord;
constexpr Column kDegradationPYTDColumns[] = {
    VRDPPO_COL(DegradationPYTDR, DegradationPYTDId, 0, None),
    VRDPPO_COL(DegradationPYTDR, ProductionGradeId, 4, L),
    VRDPPO_COL(DegradationPYTDR, TestType, 8, L),
    VRDPPO_COL(DegradationPYTDR, DegradationType, 12, L),
    VRDPPO_COL(DegradationPYTDR, SeasonYear, 16, L),
    VRDPPO_COL(DegradationPYTDR, Over1, 20, D),
    VRDPPO_COL(DegradationPYTDR, TotalOverHalf, 28, D),
    VRDPPO_COL(DegradationPYTDR, OverHalf, 36, D),
    VRDPPO_COL(DegradationPYTDR, FourXFour, 44, D),
    VRDPPO_COL(DegradationPYTDR, EightXEight, 52, D),
    VRDPPO_COL(DegradationPYTDR, StripOnPan, 60, D),
    VRDPPO_COL(DegradationPYTDR, ThruQuarter, 68, D),
    VRDPPO_COL(DegradationPYTDR, NonObj, 76, D),
    VRDPPO_COL(DegradationPYTDR, ObjStem, 84, D),
    VRDPPO_COL(DegradationPYTDR, TotalStem, 92, D),
    VRDPPO_COL(DegradationPYTDR, StemOnPan, 100, D),
};
constexpr RecordLayout kDegradationPYTDLayout = makeLayout<DegradationPYTDR, 125>(
    kDegradationPYTDColumns, VRDPPO_TRAILING(DegradationPYTDR, KeyName, 108, u"DegradationPYTDId"));
constexpr TableConfig kDegradationPYTD = firstGeneration(u"DEGRADATIONPYTD", u"DEGRADATIONPYTDID",
                                                         DeleteStyle::Hard, kDegradationPYTDLayout);

}  // namespace

cProductionStatsPersist::cProductionStatsPersist()
    : TablePersist<ProductionStatsRecord>(kProductionStats) {}
const ClassInfo& cProductionStatsPersist::info() {
  using O = cProductionStatsPersist;
  static const ClassInfo i = [] {
    auto members = tableMembers(kProductionStats);
    members.push_back(
        method<O>("CriteriaDelete", {longArg("lID"), stringArg("sCriteria"), stringArg("sConnect")},
                  ValueType::Boolean, [](O& o, std::span<const Variant> a) {
                    return Variant(o.CriteriaDelete(a[0].lng(), a[1].str(), a[2].str()));
                  }));
    return tableClass<O>("cProductionStatsPersist", kProductionStats, std::move(members));
  }();
  return i;
}

bool cProductionStatsPersist::CriteriaDelete(Long /*lID*/, const std::u16string& sCriteria,
                                             const std::u16string& sConnect) {
  const auto call = lock();
  if (trimBlanks(sCriteria).empty()) return false;
  dbHelp::ConnectString = sConnect;
  SetState(u"");
  // Mixed case here, unlike the class's other statements.
  runStatement(u"DELETE FROM ProductionStats WHERE " + sCriteria);
  return true;
}

cDegradationPYTDPersist::cDegradationPYTDPersist()
    : TablePersist<DegradationPYTDRecord>(kDegradationPYTD) {}
const ClassInfo& cDegradationPYTDPersist::info() {
  static const ClassInfo i =
      tableClass<cDegradationPYTDPersist>("cDegradationPYTDPersist", kDegradationPYTD);
  return i;
}

}  // namespace vrdppo
