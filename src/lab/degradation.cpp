#include "vrdppo/lab/degradation.hpp"

#include <cstddef>

#include "lab/lab_calls.hpp"

namespace vrdppo {

namespace {

// Unlike its neighbours: SampleDateTime T0, Shift L0 and ContainerNumber L0.
using LD = LabDegradationRecord;
constexpr Column kLabDegradationColumns[] = {
    VRDPPO_COL(LD, LabDegradationID, 0, None),
    VRDPPO_COL(LD, LabHeaderID, 4, L0),
    VRDPPO_COL2(LD, ProductionGradeId, 8, u"ProductionGradeId", u"ProductionGradeID", L),
    VRDPPO_COL(LD, LabSeason, 12, L),
    VRDPPO_DATE(LD, SampleDateTime, 16, T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(LD, Shift, 24, L0),
    VRDPPO_COL(LD, TestType, 28, S),
    VRDPPO_COL(LD, CaseType, 34, S),
    VRDPPO_COL(LD, SampleType, 40, S),
    VRDPPO_COL(LD, SampleCount, 48, L),
    VRDPPO_COL(LD, RangeAmount, 52, S0),
    VRDPPO_COL(LD, SampleRange, 56, L0),
    VRDPPO_COL(LD, ByProductID, 60, L0),
    VRDPPO_COL(LD, StemTypeID, 64, L0),
    VRDPPO_COL(LD, ContainerNumber, 68, L0),
    VRDPPO_COL(LD, SampleWeight, 72, C),
    VRDPPO_COL(LD, SampleWeightPct, 80, C),
    VRDPPO_COL(LD, OverOne, 88, C),
    VRDPPO_COL(LD, OverOnePct, 96, C),
    VRDPPO_COL(LD, OverHalf, 104, C),
    VRDPPO_COL(LD, OverHalfPct, 112, C),
    VRDPPO_COL(LD, TotalOverHalf, 120, C),
    VRDPPO_COL(LD, TotalOverHalfPct, 128, C),
    VRDPPO_COL(LD, OverQuarter, 136, C),
    VRDPPO_COL(LD, OverQuarterPct, 144, C),
    VRDPPO_COL(LD, OverEighth, 152, C),
    VRDPPO_COL(LD, OverEighthPct, 160, C),
    VRDPPO_COL(LD, OnPan, 168, C),
    VRDPPO_COL(LD, OnPanPct, 176, C),
    VRDPPO_COL(LD, ThruQuarter, 184, C),
    VRDPPO_COL(LD, ThruQuarterPct, 192, C),
    VRDPPO_COL(LD, TotalWeight, 200, C),
    VRDPPO_COL(LD, TotalWeightPct, 208, C),
    VRDPPO_COL(LD, Unaccountable, 216, C),
    VRDPPO_COL(LD, UnaccountablePct, 224, C),
    VRDPPO_COL(LD, Screen8, 232, C),
    VRDPPO_COL(LD, Screen8Pct, 240, C),
    VRDPPO_COL(LD, Screen9, 248, C),
    VRDPPO_COL(LD, Screen9Pct, 256, C),
    VRDPPO_COL(LD, StemSampleWeight, 264, C),
    VRDPPO_COL(LD, Weight7And12, 272, C),
    VRDPPO_COL(LD, WeightObj, 280, C),
    VRDPPO_COL(LD, WeightPan, 288, C),
    VRDPPO_COL(LD, TotalStemPct, 296, C),
    VRDPPO_COL(LD, ObjPct, 304, C),
    VRDPPO_COL(LD, PanPct, 312, C),
    VRDPPO_COL(LD, NonObjPct, 320, C),
    VRDPPO_COL(LD, StemInLamCount, 328, L),
    VRDPPO_COL(LD, ResultCode, 332, S),
    VRDPPO_DATE(LD, LastUpdated, 336, T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(LD, UpdatedByID, 344, L0),
};
constexpr RecordLayout kLabDegradationLayout = makeLayout<LD, 365>(
    kLabDegradationColumns, VRDPPO_TRAILING(LD, KeyName, 348, u"LabDegradationID"));

using DS = LabDegSumRecord;
constexpr Column kLabDegSumColumns[] = {
    VRDPPO_COL(DS, LabDegSumID, 0, None),
    VRDPPO_COL(DS, ParentID, 4, L),
    VRDPPO_COL(DS, ChildID, 8, L),
    VRDPPO_COL(DS, SumType, 12, L),
};
constexpr RecordLayout kLabDegSumLayout =
    makeLayout<DS, 27>(kLabDegSumColumns, VRDPPO_TRAILING(DS, KeyName, 16, u"LabDegSumID"));

constexpr TableConfig kLabDegradation =
    secondGeneration(u"LABDEGRADATION", u"LABDEGRADATIONID", DeleteStyle::Hard, TopArg::Optional,
                     CriteriaDeleteForm::Second, kLabDegradationLayout);
constexpr TableConfig kLabDegSum =
    secondGeneration(u"LABDEGSUM", u"LABDEGSUMID", DeleteStyle::Hard, TopArg::Required,
                     CriteriaDeleteForm::Second, kLabDegSumLayout);

}  // namespace

cLabDegradationPersist::cLabDegradationPersist()
    : TablePersist<LabDegradationRecord>(kLabDegradation) {}
const ClassInfo& cLabDegradationPersist::info() {
  static const ClassInfo i = [] {
    auto m = tableMembers(kLabDegradation);
    using C = cLabDegradationPersist;
    m.push_back(lab::idCallMember<C, &C::LabAddDegradation>("LabAddDegradation"));
    m.push_back(lab::idCallMember<C, &C::LabRemoveDegradation>("LabRemoveDegradation"));
    m.push_back(lab::onHoldCheckMember<C>());
    m.push_back(lab::containerPrizedMember<C>());
    return tableClass<cLabDegradationPersist>("cLabDegradationPersist", kLabDegradation,
                                              std::move(m));
  }();
  return i;
}

cLabDegSumPersist::cLabDegSumPersist() : TablePersist<LabDegSumRecord>(kLabDegSum) {}
const ClassInfo& cLabDegSumPersist::info() {
  static const ClassInfo i = tableClass<cLabDegSumPersist>("cLabDegSumPersist", kLabDegSum);
  return i;
}

bool cLabDegradationPersist::LabAddDegradation(const std::u16string& sBuffer,
                                               const std::u16string& sConnect, Long lID) {
  const auto call = lock();
  lab::begin(*this, sBuffer, sConnect);
  return lab::retried(u"EXEC qsp_LabAddDegradation @p_DegradationID= " + longText(lID), {0});
}

// A removal also succeeds on -2, unlike every other retried call.
bool cLabDegradationPersist::LabRemoveDegradation(const std::u16string& sBuffer,
                                                  const std::u16string& sConnect, Long lID) {
  const auto call = lock();
  lab::begin(*this, sBuffer, sConnect);
  return lab::retried(u"EXEC qsp_LabRemoveDegradation @p_DegradationID= " + longText(lID), {0, -2});
}

bool cLabDegradationPersist::qsp_OnHoldCheck(const std::u16string& sBuffer,
                                             const std::u16string& sConnect, Long GradeId,
                                             Long ContainerNumber, const std::u16string& Status,
                                             Long UserID) {
  const auto call = lock();
  return lab::onHoldCheck(*this, sBuffer, sConnect, GradeId, ContainerNumber, Status, UserID);
}

bool cLabDegradationPersist::qsp_ContainerPrized(const std::u16string& sBuffer,
                                                 const std::u16string& sConnect, Long GradeId,
                                                 Long ContainerNumber) {
  const auto call = lock();
  return lab::containerPrized(*this, sBuffer, sConnect, GradeId, ContainerNumber);
}

}  // namespace vrdppo
