#include "vrdppo/production/run.hpp"

#include <cstddef>

#include "vrdppo/dbhelp.hpp"
#include "vrdppo/operations.hpp"
#include "vrdppo/provider.hpp"

namespace vrdppo {

namespace {

using PR = ProductionRunRecord;
constexpr Column kProductionRunColumns[] = {
    VRDPPO_COL(PR, ProductionRunId, 0, None),
    // By day only, and always a date: 1900/01/01 goes out as that date.
    VRDPPO_DATE(PR, ProductionDate, 4, T, u"yyyy/MM/dd"),
    VRDPPO_COL(PR, ShiftNumber, 12, L),
    VRDPPO_COL(PR, Status, 16, S0),
    VRDPPO_COL(PR, ProductionGradeId, 20, L),
    VRDPPO_COL(PR, ProductionLine, 24, S0),
    VRDPPO_COL(PR, CCOperator, 44, S0),
    VRDPPO_COL(PR, RedrierOperator, 104, S0),
    VRDPPO_COL(PR, MachineMinutes, 164, L0),
    VRDPPO_COL(PR, Picked, 168, S),
    VRDPPO_COL(PR, Comments, 170, S0),
    VRDPPO_COL(PR, RemainderIn, 680, D0),
    VRDPPO_COL(PR, RemainderOut, 688, D0),
    VRDPPO_COL(PR, WeightUomId, 696, L0),
    VRDPPO_COL(PR, GrossBaleWeight, 700, D0),
    VRDPPO_COL(PR, TareValue, 708, D0),
    VRDPPO_COL(PR, TareUnitCount, 716, L0),
    VRDPPO_COL(PR, FedIn, 720, D0),
    VRDPPO_COL(PR, ScanningComplete, 728, S),
    VRDPPO_COL(PR, PrizingStatus, 730, S0),
    VRDPPO_COL(PR, RunSequence, 736, L0),
    VRDPPO_COL(PR, AbsoluteSequence, 740, L0),
    VRDPPO_COL(PR, UsesSilos, 744, S0),
};
static_assert(offsetof(PR, UsesSilos) == 744);
// This record has no key-name field: an empty trailing field behind UsesSilos.
constexpr RecordLayout kProductionRunLayout =
    makeLayout<PR, 420>(kProductionRunColumns, TrailingField{746, 0, u""});
constexpr TableConfig kProductionRun = [] {
  TableConfig c = firstGeneration(u"PRODUCTIONRUN", u"PRODUCTIONRUNID", DeleteStyle::Procedure,
                                  kProductionRunLayout);
  // A " in Comments or an operator's name survives the insert.
  c.doubleQuotesInInsert = true;
  return c;
}();

using PL = ProductionRunListRecord;
constexpr Column kProductionRunListColumns[] = {
    VRDPPO_COL(PL, ProductionRunId, 0, None),
    VRDPPO_COL(PL, ProductionDate, 4, None),
    VRDPPO_COL(PL, ShiftNumber, 12, None),
    VRDPPO_COL(PL, ProductionGradeId, 16, None),
    VRDPPO_COL(PL, ProductionGradeCode, 20, None),
    VRDPPO_COL(PL, companydeleted, 40, None),
    VRDPPO_COL(PL, GradeId, 44, None),
    VRDPPO_COL(PL, GradeCode, 48, None),
    VRDPPO_COL(PL, CompanyId, 88, None),
    VRDPPO_COL(PL, CompanyCode, 92, None),
    VRDPPO_COL(PL, Status, 112, None),
    VRDPPO_COL(PL, ScanningComplete, 116, None),
    VRDPPO_COL(PL, PrizingStatus, 118, None),
    VRDPPO_COL(PL, RunSequence, 124, None),
    VRDPPO_COL(PL, ChinaReporting, 128, None),
};
constexpr RecordLayout kProductionRunListLayout =
    makeLayout<PL, 106>(kProductionRunListColumns, VRDPPO_TRAILING(PL, Blank, 130, u""));
constexpr ViewConfig kProductionRunList{u"VPRODUCTIONRUNLIST", LoadStyle::List, TopArg::Required,
                                        &kProductionRunListLayout};

using PZ = ProductionRunPrizingRecord;
constexpr Column kProductionRunPrizingColumns[] = {
    VRDPPO_COL(PZ, ProductionDate, 0, None),       VRDPPO_COL(PZ, ProductionGradeId, 8, None),
    VRDPPO_COL(PZ, ProductionGradeCode, 12, None), VRDPPO_COL(PZ, Status, 32, None),
    VRDPPO_COL(PZ, ScanningComplete, 36, None),    VRDPPO_COL(PZ, ProductionRunId, 40, None),
    VRDPPO_COL(PZ, GradeCode, 44, None),           VRDPPO_COL(PZ, GradeId, 84, None),
    VRDPPO_COL(PZ, Description, 88, None),         VRDPPO_COL(PZ, GrowingYear, 188, None),
    VRDPPO_COL(PZ, PrizedGradeCode, 192, None),    VRDPPO_COL(PZ, PrizedCompanyCode, 232, None),
    VRDPPO_COL(PZ, TypeCode, 252, None),           VRDPPO_COL(PZ, SortSequence, 264, None),
    VRDPPO_COL(PZ, GradeType, 268, None),          VRDPPO_COL(PZ, GradeTypeId, 368, None),
    VRDPPO_COL(PZ, CompanyId, 372, None),          VRDPPO_COL(PZ, CompanyCode, 376, None),
    VRDPPO_COL(PZ, CompanyName, 396, None),        VRDPPO_COL(PZ, PrizingStatus, 596, None),
    VRDPPO_COL(PZ, RunSequence, 600, None),        VRDPPO_COL(PZ, FedIn, 604, None),
};
constexpr RecordLayout kProductionRunPrizingLayout =
    makeLayout<PZ, 355>(kProductionRunPrizingColumns, VRDPPO_TRAILING(PZ, Blank, 612, u""));
constexpr ViewConfig kProductionRunPrizing{u"VPRODUCTIONRUNPRIZING", LoadStyle::List,
                                           TopArg::Required, &kProductionRunPrizingLayout};

using O = cProductionRunPersist;

// A prizing method that takes the record and the connection by value and answers nothing.
MemberInfo prizing(std::string name, void (O::*f)(std::u16string, std::u16string)) {
  return method<O>(std::move(name), {stringArg("sBuffer", false), stringArg("sConnect", false)},
                   ValueType::None, [f](O& o, std::span<const Variant> a) {
                     (o.*f)(a[0].str(), a[1].str());
                     return Variant();
                   });
}

std::vector<MemberInfo> productionRunMembers() {
  // The contract's members in the first generation's order; the lists and FieldValue are
  // private in this class.
  auto m = tableMembers(kProductionRun,
                        {"RecordToObj", "GetState", "SetState", "InsertValues", "InsertFields",
                         "UpdateFields", "FieldValue", "Load", "Commit"});
  for (auto& member : m) {
    if (member.name == "InsertValues" || member.name == "InsertFields" ||
        member.name == "UpdateFields") {
      member.isPublic = false;
    }
  }
  m.push_back(method<O>("Post",
                        {stringArg("sConnect"), longArg("lSecurityProfileId"), longArg("lRunId"),
                         booleanArg("bOldMode")},
                        ValueType::Boolean, [](O& o, std::span<const Variant> a) {
                          return Variant(
                              o.Post(a[0].str(), a[1].lng(), a[2].lng(), a[3].boolean()));
                        }));
  m.push_back(method<O>("CreatePrizedStageHeaders",
                        {stringArg("sBuffer", false), stringArg("sConnect", false)},
                        ValueType::Long, [](O& o, std::span<const Variant> a) {
                          return Variant(o.CreatePrizedStageHeaders(a[0].str(), a[1].str()));
                        }));
  m.push_back(
      method<O>("AssignRunSequence",
                {stringArg("sBuffer", false), stringArg("sConnect", false), longArg("lSwapId")},
                ValueType::None, [](O& o, std::span<const Variant> a) {
                  o.AssignRunSequence(a[0].str(), a[1].str(), a[2].lng());
                  return Variant();
                }));
  m.push_back(prizing("UpdatePrizingStatus", &O::UpdatePrizingStatus));
  m.push_back(prizing("ReleaseToPrizing", &O::ReleaseToPrizing));
  m.push_back(method<O>(
      "CompletePrizing",
      {stringArg("sBuffer", false), stringArg("sConnect", false), longArg("lStationId", false)},
      ValueType::None, [](O& o, std::span<const Variant> a) {
        o.CompletePrizing(a[0].str(), a[1].str(), a[2].lng());
        return Variant();
      }));
  m.push_back(method<O>("bGradeChangeInProgress",
                        {stringArg("sBuffer", false), stringArg("sConnect", false)},
                        ValueType::Boolean, [](O& o, std::span<const Variant> a) {
                          return Variant(o.bGradeChangeInProgress(a[0].str(), a[1].str()));
                        }));
  m.push_back(method<O>("sCanDeleteProductionRun",
                        {stringArg("sBuffer", false), stringArg("sConnect", false)},
                        ValueType::String, [](O& o, std::span<const Variant> a) {
                          return Variant(o.sCanDeleteProductionRun(a[0].str(), a[1].str()));
                        }));
  m.push_back(tableMember(kProductionRun, "Delete"));
  return m;
}

}  // namespace

cProductionRunPersist::cProductionRunPersist()
    : TablePersist<ProductionRunRecord>(kProductionRun) {}
const ClassInfo& cProductionRunPersist::info() {
  static const ClassInfo i = tableClass<cProductionRunPersist>(
      "cProductionRunPersist", kProductionRun, productionRunMembers());
  return i;
}

bool cProductionRunPersist::Post(const std::u16string& sConnect, Long lSecurityProfileId,
                                 Long lRunId, bool bOldMode) {
  const auto call = lock();
  // The flag goes as 1 or 0, not as the Boolean's -1.
  return postOnOwnConnection(sConnect, u"EXEC sp_PostProductionRun " +
                                           longText(lSecurityProfileId) + u", " + longText(lRunId) +
                                           u", " + (bOldMode ? u"1" : u"0"));
}

std::u16string cProductionRunPersist::sCanDeleteProductionRun(std::u16string sBuffer,
                                                              std::u16string sConnect) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  std::u16string result;
  SetState(sBuffer);
  const auto rs = dbHelp::OpenRecordset(u"EXEC qsp_CanDeleteProductionRun " +
                                        longText(record().ProductionRunId));
  const Variant& retVal = rs->Fields(u"RetVal");
  // A Null RetVal compares as no difference, and ErrorText stays unread.
  if (!retVal.isNull() && toDouble(retVal) != 0) result = toString(rs->Fields(u"ErrorText"));
  rs->Close();
  return result;
}

bool cProductionRunPersist::Delete(const std::u16string& sBuffer, const std::u16string& sConnect) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  // Lower-case exec, as the class always sent it.
  runStatement(u"exec qsp_ZapProductionRun " + longText(record().ProductionRunId));
  return true;
}

Long cProductionRunPersist::CreatePrizedStageHeaders(std::u16string sBuffer,
                                                     std::u16string sConnect) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  const auto rs = dbHelp::OpenRecordset(u"EXEC qsp_PrizingCreateHeaderStage " +
                                        longText(record().ProductionRunId));
  const Long code = toLong(rs->Fields(u"ErrorCode"));
  if (rs->State() == adStateOpen) rs->Close();
  return code;
}

void cProductionRunPersist::AssignRunSequence(std::u16string sBuffer, std::u16string sConnect,
                                              Long lSwapId) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  runStatement(u"EXEC qsp_PrizingAssignRunSequence " + longText(record().ProductionRunId) + u", " +
               longText(lSwapId));
}

void cProductionRunPersist::UpdatePrizingStatus(std::u16string sBuffer, std::u16string sConnect) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  runStatement(u"EXEC qsp_PrizingSynchRunStatus " + longText(record().ProductionRunId));
}

void cProductionRunPersist::ReleaseToPrizing(std::u16string sBuffer, std::u16string sConnect) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  runStatement(u"EXEC qsp_PrizingReleaseRun " + longText(record().ProductionRunId));
}

void cProductionRunPersist::CompletePrizing(std::u16string sBuffer, std::u16string sConnect,
                                            Long lStationId) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  runStatement(u"EXEC qsp_PrizingCloseRun " + longText(record().ProductionRunId) + u", " +
               longText(lStationId) + u", 1, 0");
}

bool cProductionRunPersist::bGradeChangeInProgress(std::u16string sBuffer,
                                                   std::u16string sConnect) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  // No run in the text, and a trailing blank: the procedure answers for the plant.
  const auto rs = dbHelp::OpenRecordset(u"EXEC qsp_PrizingGradeChangeInProgress ");
  const Variant& first = rs->Fields(std::size_t{0});
  const bool inProgress = !first.isNull() && toDouble(first) == 1;
  if (rs->State() == adStateOpen) rs->Close();
  return inProgress;
}

cvProductionRunListPersist::cvProductionRunListPersist()
    : ViewPersist<ProductionRunListRecord>(kProductionRunList) {}
const ClassInfo& cvProductionRunListPersist::info() {
  static const ClassInfo i =
      viewClass<cvProductionRunListPersist>("cvProductionRunListPersist", kProductionRunList);
  return i;
}

cvProductionRunPrizingPersist::cvProductionRunPrizingPersist()
    : ViewPersist<ProductionRunPrizingRecord>(kProductionRunPrizing) {}
const ClassInfo& cvProductionRunPrizingPersist::info() {
  static const ClassInfo i = viewClass<cvProductionRunPrizingPersist>(
      "cvProductionRunPrizingPersist", kProductionRunPrizing);
  return i;
}

}  // namespace vrdppo
