#include "vrdppo/lab/instruments.hpp"

#include <cstddef>

#include "lab/lab_calls.hpp"

namespace vrdppo {

namespace {

using SLn = LabStemLengthRecord;
constexpr Column kLabStemLengthColumns[] = {
    VRDPPO_COL(SLn, LabStemLengthID, 0, None),
    VRDPPO_COL(SLn, LabHeaderID, 4, L0),
    VRDPPO_COL(SLn, ProductionGradeId, 8, L),
    VRDPPO_COL(SLn, LabSeason, 12, L),
    VRDPPO_DATE(SLn, SampleDateTime, 16, T, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(SLn, Shift, 24, L),
    VRDPPO_COL(SLn, StemTypeID, 28, L),
    VRDPPO_COL(SLn, SampleType, 32, S),
    VRDPPO_COL(SLn, SampleCount, 40, L),
    VRDPPO_COL(SLn, RangeAmount, 44, S0),
    VRDPPO_COL(SLn, SampleRange, 48, L0),
    VRDPPO_COL(SLn, ContainerNumber, 52, L0),
    VRDPPO_COL(SLn, WtUnder05, 56, C),
    VRDPPO_COL(SLn, Wt05to10, 64, C),
    VRDPPO_COL(SLn, Wt10to15, 72, C),
    VRDPPO_COL(SLn, Wt15to20, 80, C),
    VRDPPO_COL(SLn, Wt20to25, 88, C),
    VRDPPO_COL(SLn, Wt25to30, 96, C),
    VRDPPO_COL(SLn, Wt30to35, 104, C),
    VRDPPO_COL(SLn, Wt35to40, 112, C),
    VRDPPO_COL(SLn, WtOver40, 120, C),
    VRDPPO_COL(SLn, TotalWt, 128, C),
    VRDPPO_COL(SLn, WtUnder05Pct, 136, C),
    VRDPPO_COL(SLn, Wt05to10Pct, 144, C),
    VRDPPO_COL(SLn, Wt10to15Pct, 152, C),
    VRDPPO_COL(SLn, Wt15to20Pct, 160, C),
    VRDPPO_COL(SLn, Wt20to25Pct, 168, C),
    VRDPPO_COL(SLn, Wt25to30Pct, 176, C),
    VRDPPO_COL(SLn, Wt30to35Pct, 184, C),
    VRDPPO_COL(SLn, Wt35to40Pct, 192, C),
    VRDPPO_COL(SLn, WtOver40Pct, 200, C),
    VRDPPO_COL(SLn, NumberOfStems, 208, L),
    VRDPPO_COL(SLn, AverageLength, 212, C),
    VRDPPO_DATE(SLn, LaminaSampleTime, 220, T, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(SLn, LaminaOnStemPct, 228, C),
    VRDPPO_DATE(SLn, FibreSampleTime, 236, T, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(SLn, FibreInScrapPct, 244, C),
    VRDPPO_DATE(SLn, LastUpdated, 252, T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(SLn, UpdatedByID, 260, L0),
};
constexpr RecordLayout kLabStemLengthLayout = makeLayout<SLn, 305>(
    kLabStemLengthColumns, VRDPPO_TRAILING(SLn, KeyName, 264, u"LabStemLengthID"));

// Temperature is a whole number here (L), where the packed samples keep Currency.
using IA = LabInfraalyzerRecord;
constexpr Column kLabInfraalyzerColumns[] = {
    VRDPPO_COL(IA, LabInfraalyzerID, 0, None),
    VRDPPO_COL(IA, LabHeaderID, 4, L0),
    VRDPPO_COL(IA, ProductionGradeId, 8, L),
    VRDPPO_COL(IA, LabSeason, 12, L),
    VRDPPO_DATE(IA, SampleDateTime, 16, T, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(IA, Shift, 24, L),
    VRDPPO_COL(IA, TestType, 28, S),
    VRDPPO_COL(IA, ByProductID, 36, L0),
    VRDPPO_COL(IA, SampleType, 40, S),
    VRDPPO_COL(IA, SampleCount, 48, L),
    VRDPPO_COL(IA, RangeAmount, 52, S0),
    VRDPPO_COL(IA, SampleRange, 56, L0),
    VRDPPO_COL(IA, ContainerNumber, 60, L0),
    VRDPPO_COL(IA, SampleOne, 64, S),
    VRDPPO_COL(IA, SampleOneNicPct, 68, C),
    VRDPPO_COL(IA, SampleOneSugPct, 76, C),
    VRDPPO_COL(IA, SampleOneMoistPct, 84, C),
    VRDPPO_COL(IA, SampleTwo, 92, S),
    VRDPPO_COL(IA, SampleTwoNicPct, 96, C),
    VRDPPO_COL(IA, SampleTwoSugPct, 104, C),
    VRDPPO_COL(IA, SampleTwoMoistPct, 112, C),
    VRDPPO_COL(IA, Temperature, 120, L),
    VRDPPO_COL(IA, InfNicPct, 124, C),
    VRDPPO_COL(IA, InfSugPct, 132, C),
    VRDPPO_COL(IA, InfMoistPct, 140, C),
    VRDPPO_COL(IA, InfOtherMoistPct, 148, C),
    VRDPPO_COL(IA, ResultCode, 156, S),
    VRDPPO_DATE(IA, LastUpdated, 160, T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(IA, UpdatedByID, 168, L0),
};
constexpr RecordLayout kLabInfraalyzerLayout = makeLayout<IA, 184>(
    kLabInfraalyzerColumns, VRDPPO_TRAILING(IA, KeyName, 172, u"LabInfraalyzerID"));

using LM = LabMoistureRecord;
constexpr Column kLabMoistureColumns[] = {
    VRDPPO_COL(LM, LabMoistureID, 0, None),
    VRDPPO_COL(LM, LabHeaderID, 4, L0),
    VRDPPO_COL(LM, ProductionGradeId, 8, L),
    VRDPPO_COL(LM, LabSeason, 12, L),
    VRDPPO_COL(LM, Shift, 16, L),
    VRDPPO_COL(LM, TestType, 20, S),
    VRDPPO_COL(LM, StemTypeID, 28, L0),
    VRDPPO_COL(LM, ByProductID, 32, L0),
    VRDPPO_COL(LM, SampleType, 36, S),
    VRDPPO_COL(LM, SampleCount, 44, L),
    VRDPPO_COL(LM, RangeAmount, 48, S0),
    VRDPPO_COL(LM, SampleRange, 52, L0),
    VRDPPO_COL(LM, ContainerNumber, 56, L0),
    VRDPPO_COL(LM, CupNumber, 60, L),
    VRDPPO_DATE(LM, TimeIn, 64, T, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_DATE(LM, TimeOut, 72, T, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(LM, QuickMoistPct, 80, C),
    VRDPPO_COL(LM, OvenMoistPct, 88, C),
    VRDPPO_COL(LM, ResultCode, 96, S),
    VRDPPO_DATE(LM, LastUpdated, 100, T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(LM, UpdatedByID, 108, L0),
};
constexpr RecordLayout kLabMoistureLayout =
    makeLayout<LM, 138>(kLabMoistureColumns, VRDPPO_TRAILING(LM, KeyName, 112, u"LabMoistureID"));

// A zero nicotine bias is stored (C), a zero sugar or moisture bias is not (C0).
using LB = LabBiasRecord;
constexpr Column kLabBiasColumns[] = {
    VRDPPO_COL(LB, LabBiasID, 0, None),
    VRDPPO_COL2(LB, ProductionGradeId, 4, u"ProductionGradeId", u"ProductionGradeID", L0),
    VRDPPO_COL2(LB, ByProductsTypeId, 8, u"ByProductsTypeId", u"ByProductsTypeID", L0),
    VRDPPO_COL(LB, Nic, 12, C),
    VRDPPO_COL(LB, Sugar, 20, C0),
    VRDPPO_COL(LB, Moisture, 28, C0),
};
constexpr RecordLayout kLabBiasLayout =
    makeLayout<LB, 53>(kLabBiasColumns, VRDPPO_TRAILING(LB, KeyName, 36, u"LabBiasID"));

constexpr TableConfig kLabStemLength =
    secondGeneration(u"LABSTEMLENGTH", u"LABSTEMLENGTHID", DeleteStyle::Hard, TopArg::Optional,
                     CriteriaDeleteForm::Second, kLabStemLengthLayout);
constexpr TableConfig kLabInfraalyzer =
    secondGeneration(u"LABINFRAALYZER", u"LABINFRAALYZERID", DeleteStyle::Hard, TopArg::Optional,
                     CriteriaDeleteForm::Second, kLabInfraalyzerLayout);
constexpr TableConfig kLabMoisture =
    secondGeneration(u"LABMOISTURE", u"LABMOISTUREID", DeleteStyle::Hard, TopArg::Optional,
                     CriteriaDeleteForm::Second, kLabMoistureLayout);
constexpr TableConfig kLabBias =
    secondGeneration(u"LABBIAS", u"LABBIASID", DeleteStyle::Hard, TopArg::Required,
                     CriteriaDeleteForm::Second, kLabBiasLayout);

}  // namespace

cLabStemLengthPersist::cLabStemLengthPersist()
    : TablePersist<LabStemLengthRecord>(kLabStemLength) {}
const ClassInfo& cLabStemLengthPersist::info() {
  static const ClassInfo i = [] {
    auto m = tableMembers(kLabStemLength);
    using C = cLabStemLengthPersist;
    m.push_back(lab::idCallMember<C, &C::LabAddStemLength>("LabAddStemLength"));
    m.push_back(lab::idCallMember<C, &C::LabRemoveDegradation>("LabRemoveDegradation"));
    return tableClass<cLabStemLengthPersist>("cLabStemLengthPersist", kLabStemLength, std::move(m));
  }();
  return i;
}

cLabInfraalyzerPersist::cLabInfraalyzerPersist()
    : TablePersist<LabInfraalyzerRecord>(kLabInfraalyzer) {}
const ClassInfo& cLabInfraalyzerPersist::info() {
  static const ClassInfo i = [] {
    auto m = tableMembers(kLabInfraalyzer);
    using C = cLabInfraalyzerPersist;
    m.push_back(lab::idCallMember<C, &C::LabAddInfraalyzer>("LabAddInfraalyzer"));
    m.push_back(lab::idCallMember<C, &C::LabRemoveInfraalyzer>("LabRemoveInfraalyzer"));
    return tableClass<cLabInfraalyzerPersist>("cLabInfraalyzerPersist", kLabInfraalyzer,
                                              std::move(m));
  }();
  return i;
}

cLabMoisturePersist::cLabMoisturePersist() : TablePersist<LabMoistureRecord>(kLabMoisture) {}
const ClassInfo& cLabMoisturePersist::info() {
  static const ClassInfo i = tableClass<cLabMoisturePersist>("cLabMoisturePersist", kLabMoisture);
  return i;
}

cLabBiasPersist::cLabBiasPersist() : TablePersist<LabBiasRecord>(kLabBias) {}
const ClassInfo& cLabBiasPersist::info() {
  static const ClassInfo i = tableClass<cLabBiasPersist>("cLabBiasPersist", kLabBias);
  return i;
}

bool cLabStemLengthPersist::LabAddStemLength(const std::u16string& sBuffer,
                                             const std::u16string& sConnect, Long lID) {
  const auto call = lock();
  lab::begin(*this, sBuffer, sConnect);
  return lab::retried(u"EXEC qsp_LabAddStemLength @p_LabStemLengthID= " + longText(lID), {0});
}

// A stem length sample is removed through the degradation procedure, with its key in the
// degradation parameter; here only 0 counts as success.
bool cLabStemLengthPersist::LabRemoveDegradation(const std::u16string& sBuffer,
                                                 const std::u16string& sConnect, Long lID) {
  const auto call = lock();
  lab::begin(*this, sBuffer, sConnect);
  return lab::retried(u"EXEC qsp_LabRemoveDegradation @p_DegradationID= " + longText(lID), {0});
}

bool cLabInfraalyzerPersist::LabAddInfraalyzer(const std::u16string& sBuffer,
                                               const std::u16string& sConnect, Long lID) {
  const auto call = lock();
  lab::begin(*this, sBuffer, sConnect);
  return lab::retried(u"EXEC qsp_LabAddInfraalyzer @p_InfraalyzerID= " + longText(lID), {0});
}

bool cLabInfraalyzerPersist::LabRemoveInfraalyzer(const std::u16string& sBuffer,
                                                  const std::u16string& sConnect, Long lID) {
  const auto call = lock();
  lab::begin(*this, sBuffer, sConnect);
  return lab::retried(u"EXEC qsp_LabRemoveInfraalyzer @p_InfraalyzerID= " + longText(lID), {0});
}

}  // namespace vrdppo
