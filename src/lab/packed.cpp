#include "vrdppo/lab/packed.hpp"

#include <cstddef>
#include <memory>
#include <string_view>

#include "lab/lab_calls.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/recordset.hpp"

namespace vrdppo {

namespace {

// SampleDateTime goes out even on the default day, ContainerNumber even at 0.
using LP = LabPackedRecord;
constexpr Column kLabPackedColumns[] = {
    VRDPPO_COL(LP, LabPackedID, 0, None),
    VRDPPO_COL(LP, LabHeaderID, 4, L0),
    VRDPPO_COL2(LP, ProductionGradeId, 8, u"ProductionGradeId", u"ProductionGradeID", L),
    VRDPPO_COL(LP, LabSeason, 12, L),
    VRDPPO_DATE(LP, SampleDateTime, 16, T, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(LP, Shift, 24, L),
    VRDPPO_COL(LP, TestType, 28, S),
    VRDPPO_COL(LP, StemTypeID, 36, L0),
    VRDPPO_COL(LP, ByProductID, 40, L0),
    VRDPPO_COL(LP, SampleType, 44, S),
    VRDPPO_COL(LP, SampleCount, 52, L),
    VRDPPO_COL(LP, RangeAmount, 56, S0),
    VRDPPO_COL(LP, SampleRange, 60, L0),
    VRDPPO_COL(LP, ContainerNumber, 64, L),
    VRDPPO_COL(LP, Temperature, 68, C),
    VRDPPO_COL(LP, Temperature2, 76, C),
    VRDPPO_COL(LP, TempCount, 84, L),
    VRDPPO_COL(LP, NicotinePct, 88, C),
    VRDPPO_COL(LP, NicotinePct2, 96, C),
    VRDPPO_COL(LP, SugarPct, 104, C),
    VRDPPO_COL(LP, SugarPct2, 112, C),
    VRDPPO_COL(LP, InfCount, 120, L),
    VRDPPO_COL(LP, MoisturePct, 124, C),
    VRDPPO_COL(LP, MoisturePct2, 132, C),
    VRDPPO_COL(LP, MoistureCount, 140, L),
    VRDPPO_COL(LP, OvenPct, 144, C),
    VRDPPO_COL(LP, OvenPct2, 152, C),
    VRDPPO_COL(LP, OvenCount, 160, L),
    VRDPPO_COL(LP, NumberStems, 164, L),
    VRDPPO_COL(LP, AverageLength, 168, C),
    VRDPPO_COL(LP, AverageLength2, 176, C),
    VRDPPO_COL(LP, StemLengthCount, 184, L),
    VRDPPO_COL(LP, LaminaInStemPct, 188, C),
    VRDPPO_COL(LP, LaminaInStemPct2, 196, C),
    VRDPPO_COL(LP, LaminaInStemCount, 204, L),
    VRDPPO_COL(LP, StemInScrapPct, 208, C),
    VRDPPO_COL(LP, StemInScrapPct2, 216, C),
    VRDPPO_COL(LP, StemInScrapCount, 224, L),
    VRDPPO_COL(LP, ResultCode, 228, S),
    VRDPPO_COL(LP, WtUnder05, 232, C),
    VRDPPO_COL(LP, Wt05to10, 240, C),
    VRDPPO_COL(LP, Wt10to15, 248, C),
    VRDPPO_COL(LP, Wt15to20, 256, C),
    VRDPPO_COL(LP, Wt20to25, 264, C),
    VRDPPO_COL(LP, Wt25to30, 272, C),
    VRDPPO_COL(LP, Wt30to35, 280, C),
    VRDPPO_COL(LP, Wt35to40, 288, C),
    VRDPPO_COL(LP, WtOver40, 296, C),
    VRDPPO_COL(LP, TotalWt, 304, C),
    VRDPPO_COL(LP, WtUnder05Pct, 312, C),
    VRDPPO_COL(LP, Wt05to10Pct, 320, C),
    VRDPPO_COL(LP, Wt10to15Pct, 328, C),
    VRDPPO_COL(LP, Wt15to20Pct, 336, C),
    VRDPPO_COL(LP, Wt20to25Pct, 344, C),
    VRDPPO_COL(LP, Wt25to30Pct, 352, C),
    VRDPPO_COL(LP, Wt30to35Pct, 360, C),
    VRDPPO_COL(LP, Wt35to40Pct, 368, C),
    VRDPPO_COL(LP, WtOver40Pct, 376, C),
    VRDPPO_COL(LP, StemDetailsCount, 384, L),
    VRDPPO_DATE(LP, LastUpdated, 388, T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(LP, UpdatedByID, 396, L0),
    VRDPPO_COL(LP, StemInLam1, 400, C),
    VRDPPO_COL(LP, StemInLam2, 408, C),
    VRDPPO_COL(LP, StemInLam3, 416, C),
    VRDPPO_COL(LP, StemInLam4, 424, C),
    VRDPPO_COL(LP, StemInLam5, 432, C),
    VRDPPO_COL(LP, StemInLamPct1, 440, C),
    VRDPPO_COL(LP, StemInLamPct2, 448, C),
    VRDPPO_COL(LP, StemInLamPct3, 456, C),
    VRDPPO_COL(LP, StemInLamPct4, 464, C),
    VRDPPO_COL(LP, StemInLamPct5, 472, C),
    VRDPPO_COL(LP, StemInLamCount, 480, L),
    VRDPPO_COL(LP, StripAppearance, 484, S),
    VRDPPO_COL(LP, PackingCartons, 486, S),
    VRDPPO_COL(LP, Reweigh, 488, C),
    VRDPPO_COL(LP, PackDensityVarPct, 496, C),
};
constexpr RecordLayout kLabPackedLayout =
    makeLayout<LP, 520>(kLabPackedColumns, VRDPPO_TRAILING(LP, KeyName, 504, u"LabPackedID"));

using PS = LabPackedSumRecord;
constexpr Column kLabPackedSumColumns[] = {
    VRDPPO_COL(PS, LabPackedSumID, 0, None),
    VRDPPO_COL(PS, ParentID, 4, L),
    VRDPPO_COL(PS, ChildID, 8, L),
    VRDPPO_COL(PS, SumType, 12, L),
};
constexpr RecordLayout kLabPackedSumLayout =
    makeLayout<PS, 30>(kLabPackedSumColumns, VRDPPO_TRAILING(PS, KeyName, 16, u"LabPackedSumID"));

constexpr TableConfig kLabPacked =
    secondGeneration(u"LABPACKED", u"LABPACKEDID", DeleteStyle::Hard, TopArg::Required,
                     CriteriaDeleteForm::Second, kLabPackedLayout);
constexpr TableConfig kLabPackedSum =
    secondGeneration(u"LABPACKEDSUM", u"LABPACKEDSUMID", DeleteStyle::Hard, TopArg::Required,
                     CriteriaDeleteForm::Second, kLabPackedSumLayout);

}  // namespace

cLabPackedPersist::cLabPackedPersist() : TablePersist<LabPackedRecord>(kLabPacked) {}
const ClassInfo& cLabPackedPersist::info() {
  static const ClassInfo i = [] {
    auto m = tableMembers(kLabPacked);
    using C = cLabPackedPersist;
    m.push_back(lab::onHoldCheckMember<C>());
    m.push_back(lab::containerPrizedMember<C>());
    m.push_back(lab::idCallMember<C, &C::LabAddPacked>("LabAddPacked"));
    m.push_back(lab::idCallMember<C, &C::LabRemovePacked>("LabRemovePacked"));
    m.push_back(method<C>(
        "CreateAdviceNotes",
        {stringArg("sBuffer"), stringArg("sConnect"), longArg("lCompanyID"), longArg("lSeason")},
        ValueType::Boolean, [](C& o, std::span<const Variant> a) {
          return Variant(o.CreateAdviceNotes(a[0].str(), a[1].str(), a[2].lng(), a[3].lng()));
        }));
    m.push_back(method<C>("DeleteAdviceNotes",
                          {stringArg("sConnect"), longArg("lCompanyID"), longArg("lSeason")},
                          ValueType::None, [](C& o, std::span<const Variant> a) {
                            o.DeleteAdviceNotes(a[0].str(), a[1].lng(), a[2].lng());
                            return Variant();
                          }));
    m.push_back(method<C>("SyncAdviceNotes", {stringArg("sConnect"), longArg("lSeason")},
                          ValueType::None, [](C& o, std::span<const Variant> a) {
                            o.SyncAdviceNotes(a[0].str(), a[1].lng());
                            return Variant();
                          }));
    return tableClass<cLabPackedPersist>("cLabPackedPersist", kLabPacked, std::move(m));
  }();
  return i;
}

cLabPackedSumPersist::cLabPackedSumPersist() : TablePersist<LabPackedSumRecord>(kLabPackedSum) {}
const ClassInfo& cLabPackedSumPersist::info() {
  static const ClassInfo i =
      tableClass<cLabPackedSumPersist>("cLabPackedSumPersist", kLabPackedSum);
  return i;
}

bool cLabPackedPersist::qsp_OnHoldCheck(const std::u16string& sBuffer,
                                        const std::u16string& sConnect, Long GradeId,
                                        Long ContainerNumber, const std::u16string& Status,
                                        Long UserID) {
  const auto call = lock();
  return lab::onHoldCheck(*this, sBuffer, sConnect, GradeId, ContainerNumber, Status, UserID);
}

bool cLabPackedPersist::qsp_ContainerPrized(const std::u16string& sBuffer,
                                            const std::u16string& sConnect, Long GradeId,
                                            Long ContainerNumber) {
  const auto call = lock();
  return lab::containerPrized(*this, sBuffer, sConnect, GradeId, ContainerNumber);
}

bool cLabPackedPersist::LabAddPacked(const std::u16string& sBuffer, const std::u16string& sConnect,
                                     Long lID) {
  const auto call = lock();
  lab::begin(*this, sBuffer, sConnect);
  return lab::retried(u"EXEC qsp_LabAddPacked @p_PackedID= " + longText(lID), {0});
}

bool cLabPackedPersist::LabRemovePacked(const std::u16string& sBuffer,
                                        const std::u16string& sConnect, Long lID) {
  const auto call = lock();
  lab::begin(*this, sBuffer, sConnect);
  return lab::retried(u"EXEC qsp_LabRemovePacked @p_PackedID= " + longText(lID), {0});
}

// Nothing of the procedure's answer is read: only a raised error says that no notes came of it.
bool cLabPackedPersist::CreateAdviceNotes(const std::u16string& sBuffer,
                                          const std::u16string& sConnect, Long lCompanyID,
                                          Long lSeason) {
  const auto call = lock();
  lab::begin(*this, sBuffer, sConnect);
  runStatement(u"EXEC qsp_LabCreateAdviceNotes @p_CompanyID= " + longText(lCompanyID) +
               u", @p_Season = " + longText(lSeason));
  return true;
}

// Withdraws the advice notes of a company and season in all three sample families. In each,
// the sum rows go first, found through their parents' sample type, which the update then
// takes away; six statements, no transaction, so a rerun finishes what a failure left.
void cLabPackedPersist::DeleteAdviceNotes(const std::u16string& sConnect, Long lCompanyID,
                                          Long lSeason) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  struct Family {
    std::u16string_view sums, key, samples;
  };
  static constexpr Family kFamilies[] = {
      {u"LabPackedSum", u"LabPackedID", u"LabPacked"},
      {u"LabDegSum", u"LabDegradationID", u"LabDegradation"},
      {u"LabGreenMoistSum", u"LabGreenMoistureID", u"LabGreenMoisture"},
  };
  // The season comes first in the text and the company last, against the argument order.
  const std::u16string byCompany = longText(lSeason) +
                                   u" AND SampleType IN ('ADA','ADS') AND ProductionGradeID"
                                   u" IN (SELECT ProductionGradeID FROM ProductionGrade WHERE "
                                   u"GradeID"
                                   u" IN (SELECT GradeID FROM Grade WHERE CompanyID = " +
                                   longText(lCompanyID);
  std::shared_ptr<Recordset> rs;
  for (const Family& f : kFamilies) {
    rs = dbHelp::OpenRecordset(u"DELETE FROM " + std::u16string(f.sums) +
                               u" Where ParentID  IN (Select " + std::u16string(f.key) + u" FROM " +
                               std::u16string(f.samples) + u" WHERE LabSeason = " + byCompany +
                               u")))");
    rs = dbHelp::OpenRecordset(u"UPDATE " + std::u16string(f.samples) +
                               u" SET SampleType = '999' WHERE LabSeason = " + byCompany + u"))");
  }
  if (rs->State() == adStateOpen) rs->Close();
}

void cLabPackedPersist::SyncAdviceNotes(const std::u16string& sConnect, Long lSeason) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  runStatement(u"EXEC qsp_LabSyncAdvice @p_Season = " + longText(lSeason));
}

}  // namespace vrdppo
