#include "vrdppo/greenleaf/physical.hpp"

#include <cstddef>
#include <span>
#include <vector>

#include "vrdppo/dbhelp.hpp"

namespace vrdppo {

namespace {

using PI = PhysicalInventoryRecord;
// Customer holds a three-character code; StatusTS goes out to the second, always as a date.
constexpr Column kPhysicalInventoryColumns[] = {
    VRDPPO_COL(PI, PhysicalInventoryId, 0, None),
    VRDPPO_COL(PI, CageCode, 4, S),
    VRDPPO_COL(PI, Customer, 24, S),
    VRDPPO_COL(PI, GradeCode, 30, S),
    VRDPPO_COL(PI, Weight, 60, D),
    VRDPPO_COL(PI, Status, 68, S),
    VRDPPO_COL(PI, Operator, 72, S),
    VRDPPO_DATE(PI, StatusTS, 80, T, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(PI, Memo, 88, S),
};
constexpr RecordLayout kPhysicalInventoryLayout = makeLayout<PI, 100>(
    kPhysicalInventoryColumns, VRDPPO_TRAILING(PI, KeyName, 128, u"PhysicalInventoryId"));
// Unlike most of its generation, the insert doubles every " of the values.
constexpr TableConfig kPhysicalInventory = [] {
  TableConfig c = firstGeneration(u"PHYSICALINVENTORY", u"PHYSICALINVENTORYID", DeleteStyle::Hard,
                                  kPhysicalInventoryLayout);
  c.doubleQuotesInInsert = true;
  return c;
}();

using PP = PrepPhysicalRecord;
constexpr Column kPrepPhysicalColumns[] = {
    VRDPPO_COL(PP, CageCode, 0, None),      VRDPPO_COL(PP, CompanyCode, 20, None),
    VRDPPO_COL(PP, CompanyId, 40, None),    VRDPPO_COL(PP, GradeCode, 44, None),
    VRDPPO_COL(PP, GreenGradeId, 64, None), VRDPPO_COL(PP, NetWeight, 68, None),
};
constexpr RecordLayout kPrepPhysicalLayout =
    makeLayout<PP, 58>(kPrepPhysicalColumns, VRDPPO_TRAILING(PP, Blank, 76, u""));
constexpr ViewConfig kPrepPhysical{u"VPREPPHYSICAL", LoadStyle::Star, TopArg::None,
                                   &kPrepPhysicalLayout};

using NS = NewSeasonLogRecord;
constexpr Column kNewSeasonLogColumns[] = {
    VRDPPO_COL(NS, NewSeasonLogId, 0, None),
    VRDPPO_COL(NS, TableName, 4, S),
    VRDPPO_COL(NS, OldId, 104, L),
    VRDPPO_COL(NS, NewId, 108, L),
};
constexpr RecordLayout kNewSeasonLogLayout =
    makeLayout<NS, 76>(kNewSeasonLogColumns, VRDPPO_TRAILING(NS, KeyName, 112, u"NewSeasonLogId"));
// Doubles " in the insert, as the physical inventory does.
constexpr TableConfig kNewSeasonLog = [] {
  TableConfig c =
      firstGeneration(u"NEWSEASONLOG", u"NEWSEASONLOGID", DeleteStyle::Hard, kNewSeasonLogLayout);
  c.doubleQuotesInInsert = true;
  return c;
}();

std::vector<MemberInfo> physicalInventoryMembers() {
  auto m = tableMembers(kPhysicalInventory);
  m.push_back(method<cPhysicalInventoryPersist>(
      "Clear", {ArgInfo{"sConnect", ValueType::String}}, ValueType::None,
      [](cPhysicalInventoryPersist& o, std::span<const Variant> a) {
        o.Clear(a[0].str());
        return Variant();
      }));
  return m;
}

}  // namespace

cPhysicalInventoryPersist::cPhysicalInventoryPersist()
    : TablePersist<PhysicalInventoryRecord>(kPhysicalInventory) {}
const ClassInfo& cPhysicalInventoryPersist::info() {
  static const ClassInfo i = tableClass<cPhysicalInventoryPersist>(
      "cPhysicalInventoryPersist", kPhysicalInventory, physicalInventoryMembers());
  return i;
}
void cPhysicalInventoryPersist::Clear(const std::u16string& sConnect) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  const auto rs = dbHelp::OpenRecordset(u"DELETE FROM PHYSICALINVENTORY");
  if (rs->State() == adStateOpen) rs->Close();
}

cvPrepPhysicalPersist::cvPrepPhysicalPersist() : ViewPersist<PrepPhysicalRecord>(kPrepPhysical) {}
const ClassInfo& cvPrepPhysicalPersist::info() {
  static const ClassInfo i =
      viewClass<cvPrepPhysicalPersist>("cvPrepPhysicalPersist", kPrepPhysical);
  return i;
}

cNewSeasonLogPersist::cNewSeasonLogPersist() : TablePersist<NewSeasonLogRecord>(kNewSeasonLog) {}
const ClassInfo& cNewSeasonLogPersist::info() {
  static const ClassInfo i =
      tableClass<cNewSeasonLogPersist>("cNewSeasonLogPersist", kNewSeasonLog);
  return i;
}

}  // namespace vrdppo
