#include "vrdppo/production/tests.hpp"

#include <cstddef>

namespace vrdppo {

namespace {

using DegradationR = DegradationRecord;
constexpr Column kDegradationColumns[] = {
    VRDPPO_COL(DegradationR, DegradationId, 0, None),
    VRDPPO_COL(DegradationR, TestType, 4, L),
    VRDPPO_COL(DegradationR, ProductionRunId, 8, L),
    VRDPPO_COL(DegradationR, TestNumber, 12, L),
    VRDPPO_DATE(DegradationR, SampleTime, 16, T, u"yyyy/MM/dd HH:MM"),
    VRDPPO_COL(DegradationR, Weight, 24, D),
    VRDPPO_COL(DegradationR, Over1, 32, D),
    VRDPPO_COL(DegradationR, OverHalf, 40, D),
    VRDPPO_COL(DegradationR, FourXFour, 48, D),
    VRDPPO_COL(DegradationR, EightXEight, 56, D),
    VRDPPO_COL(DegradationR, StripOnPan, 64, D),
    VRDPPO_COL(DegradationR, ThruQuarter, 72, D),
    VRDPPO_COL(DegradationR, NonObj, 80, D),
    VRDPPO_COL(DegradationR, ObjStem, 88, D),
    VRDPPO_COL(DegradationR, StemOnPan, 96, D),
};
constexpr RecordLayout kDegradationLayout = makeLayout<DegradationR, 127>(
    kDegradationColumns, VRDPPO_TRAILING(DegradationR, KeyName, 104, u"DegradationId"));
constexpr TableConfig kDegradation =
    firstGeneration(u"DEGRADATION", u"DEGRADATIONID", DeleteStyle::Hard, kDegradationLayout,
                    CriteriaDeleteForm::First);

using OvenMoistureR = OvenMoistureRecord;
// The stem type is read as StemTypeID and written as StemTypeId.
constexpr Column kOvenMoistureColumns[] = {
    VRDPPO_COL(OvenMoistureR, OvenMoistureId, 0, None),
    VRDPPO_COL(OvenMoistureR, TobaccoType, 4, L),
    VRDPPO_DATE(OvenMoistureR, SampleTime, 8, T, u"yyyy/MM/dd HH:MM"),
    VRDPPO_COL(OvenMoistureR, CaseNumber, 16, L),
    VRDPPO_COL(OvenMoistureR, PackedTemperature, 20, D0),
    VRDPPO_COL(OvenMoistureR, Percentage, 28, D),
    VRDPPO_COL(OvenMoistureR, ProductionRunId, 36, L),
    VRDPPO_COL2(OvenMoistureR, StemTypeID, 40, u"StemTypeID", u"StemTypeId", L0),
};
constexpr RecordLayout kOvenMoistureLayout = makeLayout<OvenMoistureR, 69>(
    kOvenMoistureColumns, VRDPPO_TRAILING(OvenMoistureR, KeyName, 44, u"OvenMoistureId"));
constexpr TableConfig kOvenMoisture =
    firstGeneration(u"OVENMOISTURE", u"OVENMOISTUREID", DeleteStyle::Hard, kOvenMoistureLayout,
                    CriteriaDeleteForm::First);

using PackedMoistureR = PackedMoistureRecord;
constexpr Column kPackedMoistureColumns[] = {
    VRDPPO_COL(PackedMoistureR, PackedMoistureId, 0, None),
    VRDPPO_DATE(PackedMoistureR, SampleTime, 4, T, u"yyyy/MM/dd HH:MM"),
    VRDPPO_COL(PackedMoistureR, PackedPressure, 12, D),
    VRDPPO_COL(PackedMoistureR, Temperature, 20, D),
    VRDPPO_COL(PackedMoistureR, CoolerRight, 28, D),
    VRDPPO_COL(PackedMoistureR, CoolerLeft, 36, D),
    VRDPPO_COL(PackedMoistureR, ProductionRunId, 44, L),
};
constexpr RecordLayout kPackedMoistureLayout = makeLayout<PackedMoistureR, 72>(
    kPackedMoistureColumns, VRDPPO_TRAILING(PackedMoistureR, KeyName, 48, u"PackedMoistureId"));
constexpr TableConfig kPackedMoisture =
    firstGeneration(u"PACKEDMOISTURE", u"PACKEDMOISTUREID", DeleteStyle::Hard,
                    kPackedMoistureLayout, CriteriaDeleteForm::First);

using GreenMoistureR = GreenMoistureRecord;
constexpr Column kGreenMoistureColumns[] = {
    VRDPPO_COL(GreenMoistureR, GreenMoistureId, 0, None),
    VRDPPO_DATE(GreenMoistureR, SampleTime, 4, T, u"yyyy/MM/dd HH:MM"),
    VRDPPO_COL(GreenMoistureR, Blending, 12, D),
    VRDPPO_COL(GreenMoistureR, CondCylinder, 20, D),
    VRDPPO_COL(GreenMoistureR, StripThresh, 28, D),
    VRDPPO_COL(GreenMoistureR, StemThresh, 36, D),
    VRDPPO_COL(GreenMoistureR, ProductionRunId, 44, L),
};
constexpr RecordLayout kGreenMoistureLayout = makeLayout<GreenMoistureR, 71>(
    kGreenMoistureColumns, VRDPPO_TRAILING(GreenMoistureR, KeyName, 48, u"GreenMoistureId"));
constexpr TableConfig kGreenMoisture =
    firstGeneration(u"GREENMOISTURE", u"GREENMOISTUREID", DeleteStyle::Hard, kGreenMoistureLayout,
                    CriteriaDeleteForm::First);

using ByProductsTestR = ByProductsTestRecord;
// Alone of its family it writes a default SampleTime as Null; its key-name literal lacks the "s".
constexpr Column kByProductsTestColumns[] = {
    VRDPPO_COL(ByProductsTestR, ByProductsTestId, 0, None),
    VRDPPO_COL(ByProductsTestR, ByProductsId, 4, L),
    VRDPPO_DATE(ByProductsTestR, SampleTime, 8, T0, u"yyyy/MM/dd HH:MM"),
    VRDPPO_COL(ByProductsTestR, CaseNumber, 16, L0),
    VRDPPO_COL(ByProductsTestR, Value, 20, D),
};
constexpr RecordLayout kByProductsTestLayout = makeLayout<ByProductsTestR, 51>(
    kByProductsTestColumns, VRDPPO_TRAILING(ByProductsTestR, KeyName, 28, u"ByProductTestId"));
constexpr TableConfig kByProductsTest =
    firstGeneration(u"BYPRODUCTSTEST", u"BYPRODUCTSTESTID", DeleteStyle::Hard,
                    kByProductsTestLayout, CriteriaDeleteForm::First);

using SugarNicotineR = SugarNicotineRecord;
constexpr Column kSugarNicotineColumns[] = {
    VRDPPO_COL(SugarNicotineR, SugarNicotineId, 0, None),
    VRDPPO_DATE(SugarNicotineR, SampleTime, 4, T, u"yyyy/MM/dd HH:MM"),
    VRDPPO_COL(SugarNicotineR, CaseNumber, 12, L),
    VRDPPO_COL(SugarNicotineR, PercentSugar, 16, D),
    VRDPPO_COL(SugarNicotineR, PercentNicotine, 24, D),
    VRDPPO_COL(SugarNicotineR, ProductionRunId, 32, L),
};
constexpr RecordLayout kSugarNicotineLayout = makeLayout<SugarNicotineR, 59>(
    kSugarNicotineColumns, VRDPPO_TRAILING(SugarNicotineR, KeyName, 36, u"SugarNicotineId"));
constexpr TableConfig kSugarNicotine =
    firstGeneration(u"SUGARNICOTINE", u"SUGARNICOTINEID", DeleteStyle::Hard, kSugarNicotineLayout,
                    CriteriaDeleteForm::First);

using SandR = SandRecord;
constexpr Column kSandColumns[] = {
    VRDPPO_COL(SandR, SandId, 0, None),       VRDPPO_COL(SandR, ProductionRunId, 4, L),
    VRDPPO_COL(SandR, StripCaseNumber, 8, L), VRDPPO_COL(SandR, StripCasePercentage, 12, D),
    VRDPPO_COL(SandR, VSSCaseNumber, 20, L),  VRDPPO_COL(SandR, VSSCasePercentage, 24, D),
};
constexpr RecordLayout kSandLayout =
    makeLayout<SandR, 51>(kSandColumns, VRDPPO_TRAILING(SandR, KeyName, 32, u"SandId"));
constexpr TableConfig kSand =
    firstGeneration(u"SAND", u"SANDID", DeleteStyle::Hard, kSandLayout, CriteriaDeleteForm::First);

using SwingR = SwingRecord;
// The grade is read as ProductionGradeId and written as ProductionGradeID.
constexpr Column kSwingColumns[] = {
    VRDPPO_COL(SwingR, SwingID, 0, None),
    VRDPPO_COL2(SwingR, ProductionGradeId, 4, u"ProductionGradeId", u"ProductionGradeID", L),
    VRDPPO_COL(SwingR, TotStemMin, 8, D),
    VRDPPO_COL(SwingR, TotStemMax, 16, D),
    VRDPPO_COL(SwingR, ObjectMin, 24, D),
    VRDPPO_COL(SwingR, ObjectMax, 32, D),
    VRDPPO_COL(SwingR, Over1Min, 40, D),
    VRDPPO_COL(SwingR, Over1Max, 48, D),
    VRDPPO_COL(SwingR, OverHalfMin, 56, D),
    VRDPPO_COL(SwingR, OverHalfMax, 64, D),
    VRDPPO_COL(SwingR, TotThruQuarterMin, 72, D),
    VRDPPO_COL(SwingR, TotThruQuarterMax, 80, D),
    VRDPPO_COL(SwingR, OnPanMin, 88, D),
    VRDPPO_COL(SwingR, OnPanMax, 96, D),
    VRDPPO_COL(SwingR, VSSCode, 104, D),
    VRDPPO_COL(SwingR, StripLow, 112, D),
    VRDPPO_COL(SwingR, StripHigh, 120, D),
    VRDPPO_COL(SwingR, StemLow, 128, D),
    VRDPPO_COL(SwingR, StemHigh, 136, D),
};
constexpr RecordLayout kSwingLayout =
    makeLayout<SwingR, 161>(kSwingColumns, VRDPPO_TRAILING(SwingR, KeyName, 144, u"SwingID"));
constexpr TableConfig kSwing =
    firstGeneration(u"SWING", u"SWINGID", DeleteStyle::Hard, kSwingLayout);

using StripR = StripRecord;
// Container numbers go out as numbers even when 0, unlike the stems'.
constexpr Column kStripColumns[] = {
    VRDPPO_COL(StripR, StripId, 0, None),       VRDPPO_COL(StripR, TotalNetWeight, 4, D),
    VRDPPO_COL(StripR, ContainerStart, 12, L),  VRDPPO_COL(StripR, ContainerEnd, 16, L),
    VRDPPO_COL(StripR, ProductionRunId, 20, L),
};
constexpr RecordLayout kStripLayout =
    makeLayout<StripR, 39>(kStripColumns, VRDPPO_TRAILING(StripR, KeyName, 24, u"StripId"));
constexpr TableConfig kStrip =
    firstGeneration(u"STRIP", u"STRIPID", DeleteStyle::Hard, kStripLayout);

using LaminaR = LaminaRecord;
constexpr Column kLaminaColumns[] = {
    VRDPPO_COL(LaminaR, LaminaId, 0, None),
    VRDPPO_COL(LaminaR, TestNumber, 4, L),
    VRDPPO_DATE(LaminaR, SampleTime, 8, T, u"yyyy/MM/dd HH:MM"),
    VRDPPO_COL(LaminaR, LaminaOnStem, 16, D),
    VRDPPO_COL(LaminaR, ProductionRunId, 24, L),
};
constexpr RecordLayout kLaminaLayout =
    makeLayout<LaminaR, 51>(kLaminaColumns, VRDPPO_TRAILING(LaminaR, KeyName, 28, u"LaminaId"));
constexpr TableConfig kLamina = firstGeneration(u"LAMINA", u"LAMINAID", DeleteStyle::Hard,
                                                kLaminaLayout, CriteriaDeleteForm::First);

}  // namespace

cDegradationPersist::cDegradationPersist() : TablePersist<DegradationRecord>(kDegradation) {}
const ClassInfo& cDegradationPersist::info() {
  static const ClassInfo i = tableClass<cDegradationPersist>("cDegradationPersist", kDegradation);
  return i;
}

cOvenMoisturePersist::cOvenMoisturePersist() : TablePersist<OvenMoistureRecord>(kOvenMoisture) {}
const ClassInfo& cOvenMoisturePersist::info() {
  static const ClassInfo i =
      tableClass<cOvenMoisturePersist>("cOvenMoisturePersist", kOvenMoisture);
  return i;
}

cPackedMoisturePersist::cPackedMoisturePersist()
    : TablePersist<PackedMoistureRecord>(kPackedMoisture) {}
const ClassInfo& cPackedMoisturePersist::info() {
  static const ClassInfo i =
      tableClass<cPackedMoisturePersist>("cPackedMoisturePersist", kPackedMoisture);
  return i;
}

cGreenMoisturePersist::cGreenMoisturePersist()
    : TablePersist<GreenMoistureRecord>(kGreenMoisture) {}
const ClassInfo& cGreenMoisturePersist::info() {
  static const ClassInfo i =
      tableClass<cGreenMoisturePersist>("cGreenMoisturePersist", kGreenMoisture);
  return i;
}

cByProductsTestPersist::cByProductsTestPersist()
    : TablePersist<ByProductsTestRecord>(kByProductsTest) {}
const ClassInfo& cByProductsTestPersist::info() {
  static const ClassInfo i =
      tableClass<cByProductsTestPersist>("cByProductsTestPersist", kByProductsTest);
  return i;
}

cSugarNicotinePersist::cSugarNicotinePersist()
    : TablePersist<SugarNicotineRecord>(kSugarNicotine) {}
const ClassInfo& cSugarNicotinePersist::info() {
  static const ClassInfo i =
      tableClass<cSugarNicotinePersist>("cSugarNicotinePersist", kSugarNicotine);
  return i;
}

cSandPersist::cSandPersist() : TablePersist<SandRecord>(kSand) {}
const ClassInfo& cSandPersist::info() {
  static const ClassInfo i = tableClass<cSandPersist>("cSandPersist", kSand);
  return i;
}

cSwingPersist::cSwingPersist() : TablePersist<SwingRecord>(kSwing) {}
const ClassInfo& cSwingPersist::info() {
  static const ClassInfo i = tableClass<cSwingPersist>("cSwingPersist", kSwing);
  return i;
}

cStripPersist::cStripPersist() : TablePersist<StripRecord>(kStrip) {}
const ClassInfo& cStripPersist::info() {
  static const ClassInfo i = tableClass<cStripPersist>("cStripPersist", kStrip);
  return i;
}

cLaminaPersist::cLaminaPersist() : TablePersist<LaminaRecord>(kLamina) {}
const ClassInfo& cLaminaPersist::info() {
  static const ClassInfo i = tableClass<cLaminaPersist>("cLaminaPersist", kLamina);
  return i;
}

}  // namespace vrdppo
