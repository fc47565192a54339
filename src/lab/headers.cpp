#include "vrdppo/lab/headers.hpp"

#include <cstddef>

#include "lab/lab_calls.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/recordset.hpp"

namespace vrdppo {

namespace {

// Three columns are read as ...Id and written as ...ID. ForeignCount doubles as the lock.
using LH = LabHeaderRecord;
constexpr Column kLabHeaderColumns[] = {
    VRDPPO_COL(LH, LabHeaderID, 0, None),
    VRDPPO_COL2(LH, CompanyId, 4, u"CompanyId", u"CompanyID", L),
    VRDPPO_COL2(LH, ProductionGradeId, 8, u"ProductionGradeId", u"ProductionGradeID", L),
    VRDPPO_COL(LH, LabSettingSnapshotID, 12, L),
    VRDPPO_COL2(LH, ProductionRunId, 16, u"ProductionRunId", u"ProductionRunID", L0),
    VRDPPO_DATE(LH, StartDate, 20, T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(LH, StartShift, 28, L0),
    VRDPPO_DATE(LH, EndDate, 32, T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(LH, EndShift, 40, L0),
    VRDPPO_COL(LH, LabStatus, 44, S0),
    VRDPPO_COL(LH, DeletedFlag, 48, S),
    VRDPPO_COL(LH, GreenDegCount, 52, L0),
    VRDPPO_COL(LH, StripDegCount, 56, L0),
    VRDPPO_COL(LH, ScrapDegCount, 60, L0),
    VRDPPO_COL(LH, StemDegCount, 64, L0),
    VRDPPO_COL(LH, PackedStripCount, 68, L0),
    VRDPPO_COL(LH, PackedStemCount, 72, L0),
    VRDPPO_COL(LH, PackedScrapCount, 76, L0),
    VRDPPO_COL(LH, GreenMoistureCount, 80, L0),
    VRDPPO_COL(LH, ExitSiloCount, 84, L0),
    VRDPPO_COL(LH, ForeignCount, 88, L0),
};
constexpr RecordLayout kLabHeaderLayout =
    makeLayout<LH, 123>(kLabHeaderColumns, VRDPPO_TRAILING(LH, KeyName, 92, u"LabHeaderID"));

// The list selects CompanyID and ProductionGradeID, and the rows name them ...Id.
using WL = LabWorkListRecord;
constexpr Column kLabWorkListColumns[] = {
    VRDPPO_COL(WL, LabHeaderID, 0, None),
    VRDPPO_COL2(WL, CompanyId, 4, u"CompanyId", u"CompanyID", None),
    VRDPPO_COL2(WL, ProductionGradeId, 8, u"ProductionGradeId", u"ProductionGradeID", None),
    VRDPPO_COL(WL, LabSettingSnapshotID, 12, None),
    VRDPPO_COL(WL, StartDate, 16, None),
    VRDPPO_COL(WL, LabStatus, 24, None),
    VRDPPO_COL(WL, DeletedFlag, 28, None),
    VRDPPO_COL(WL, CompanyCode, 30, None),
    VRDPPO_COL(WL, CompanyName, 50, None),
    VRDPPO_COL(WL, ProductionGradeCode, 250, None),
};
constexpr RecordLayout kLabWorkListLayout =
    makeLayout<WL, 175>(kLabWorkListColumns, VRDPPO_TRAILING(WL, Blank, 270, u""));

constexpr TableConfig kLabHeader =
    secondGeneration(u"LABHEADER", u"LABHEADERID", DeleteStyle::Soft, TopArg::Optional,
                     CriteriaDeleteForm::SecondWithHardDelete, kLabHeaderLayout);
constexpr ViewConfig kLabWorkList{u"VLABWORKLIST", LoadStyle::List, TopArg::Optional,
                                  &kLabWorkListLayout};

}  // namespace

cLabHeaderPersist::cLabHeaderPersist() : TablePersist<LabHeaderRecord>(kLabHeader) {}
const ClassInfo& cLabHeaderPersist::info() {
  static const ClassInfo i = [] {
    auto m = tableMembers(kLabHeader);
    using C = cLabHeaderPersist;
    m.push_back(
        method<C>("qsp_LabCreateIntermediateNotes",
                  {stringArg("sBuffer"), stringArg("sConnect"), longArg("lSeason"),
                   longArg("lCompanyID"), stringArg("sFromDate"), stringArg("sToDate")},
                  ValueType::Boolean, [](C& o, std::span<const Variant> a) {
                    return Variant(o.qsp_LabCreateIntermediateNotes(
                        a[0].str(), a[1].str(), a[2].lng(), a[3].lng(), a[4].str(), a[5].str()));
                  }));
    m.push_back(method<C>("DeleteIntermediateNotes",
                          {stringArg("sConnect"), longArg("lSeason"), longArg("lCompanyID"),
                           ArgInfo{"vProductionGradeId", ValueType::Variant, true, true, {}}},
                          ValueType::None, [](C& o, std::span<const Variant> a) {
                            o.DeleteIntermediateNotes(a[0].str(), a[1].lng(), a[2].lng(), a[3]);
                            return Variant();
                          }));
    m.push_back(method<C>("LockHeader", {stringArg("sConnect"), longArg("lLabHeaderId")},
                          ValueType::Boolean, [](C& o, std::span<const Variant> a) {
                            return Variant(o.LockHeader(a[0].str(), a[1].lng()));
                          }));
    m.push_back(method<C>("ReleaseHeader", {stringArg("sConnect"), longArg("lLabHeaderId")},
                          ValueType::None, [](C& o, std::span<const Variant> a) {
                            o.ReleaseHeader(a[0].str(), a[1].lng());
                            return Variant();
                          }));
    return tableClass<cLabHeaderPersist>("cLabHeaderPersist", kLabHeader, std::move(m));
  }();
  return i;
}

cvLabWorkListPersist::cvLabWorkListPersist() : ViewPersist<LabWorkListRecord>(kLabWorkList) {}
const ClassInfo& cvLabWorkListPersist::info() {
  static const ClassInfo i = viewClass<cvLabWorkListPersist>("cvLabWorkListPersist", kLabWorkList);
  return i;
}

// The dates go in as the caller wrote them: neither formatted nor doubled, nor checked.
bool cLabHeaderPersist::qsp_LabCreateIntermediateNotes(const std::u16string& sBuffer,
                                                       const std::u16string& sConnect, Long lSeason,
                                                       Long lCompanyID,
                                                       const std::u16string& sFromDate,
                                                       const std::u16string& sToDate) {
  const auto call = lock();
  lab::begin(*this, sBuffer, sConnect);
  runStatement(u"EXEC qsp_LabCreateIntermediateNotes @p_Season= " + longText(lSeason) +
               u", @p_CompanyID=" + longText(lCompanyID) + u", @p_FromDate='" + sFromDate +
               u"', @p_ToDate='" + sToDate + u"'");
  return true;
}

// Voids the samples of intermediate notes in the three sample tables, one statement each and
// no transaction around them; the sum tables are left alone.
void cLabHeaderPersist::DeleteIntermediateNotes(const std::u16string& sConnect, Long lSeason,
                                                Long lCompanyID,
                                                const Variant& vProductionGradeId) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  // A given grade wins and the company is not used. Null and Empty count as given: their text
  // is empty, so the selector ends at the equals sign and the statement fails.
  const std::u16string selector =
      vProductionGradeId.isMissing()
          ? u" CompanyId = " + longText(lCompanyID)
          : u" ProductionGrade.ProductionGradeId = " +
                (vProductionGradeId.isNull() ? std::u16string() : toString(vProductionGradeId));
  const std::u16string where =
      longText(lSeason) + u" AND (SampleType = 'ITD' or SampleType = 'ISD') AND " + selector;
  dbHelp::OpenRecordset(
      u"update LabPacked set sampletype = '999' from labpacked inner join ProductionGrade on "
      u"ProductionGrade.productiongradeid = labpacked.ProductionGradeid inner join grade on "
      u"grade.gradeid = ProductionGrade.gradeid WHERE LabSeason = " +
      where);
  dbHelp::OpenRecordset(
      u"update LabDegradation set sampletype = '999' from LabDegradation inner join "
      u"dbo.ProductionGrade on ProductionGrade.ProductionGradeID = "
      u"LabDegradation.ProductionGradeID inner join grade on grade.gradeid = "
      u"ProductionGrade.gradeid WHERE LabSeason = " +
      where);
  runStatement(
      u"update LabGreenMoisture set sampletype = '999' From LabGreenMoisture inner join "
      u"ProductionGrade on ProductionGrade.ProductionGradeID = "
      u"LabGreenMoisture.ProductionGradeID inner join grade on grade.gradeid = "
      u"ProductionGrade.gradeid WHERE LabSeason = " +
      where);
}

// One call, one answer: the server arbitrates, and only a 1 in the first column grants.
bool cLabHeaderPersist::LockHeader(const std::u16string& sConnect, Long lLabHeaderId) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  const auto rs =
      dbHelp::OpenRecordset(u"EXEC qsp_LabLockHeader @p_LabHeaderId = " + longText(lLabHeaderId));
  const bool granted = toDouble(rs->Fields(std::size_t{0})) == 1;
  if (rs->State() == adStateOpen) rs->Close();
  return granted;
}

// The lock lives in ForeignCount; releasing asks nobody whether the caller holds it.
void cLabHeaderPersist::ReleaseHeader(const std::u16string& sConnect, Long lLabHeaderId) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  runStatement(u"UPDATE LabHeader SET ForeignCount = Null WHERE LabHeaderId = " +
               longText(lLabHeaderId));
}

}  // namespace vrdppo
