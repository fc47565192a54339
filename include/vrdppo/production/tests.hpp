// In-process tests of a run: sieve degradation, moisture at three points, sugar and nicotine,
// sand, lamina on stem, strip weights, and the limits (swing) of a production grade.
#pragma once

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct DegradationRecord {
  Long DegradationId;
  Long TestType;
  Long ProductionRunId;
  Long TestNumber;
  Date SampleTime;
  Double Weight;
  Double Over1;
  Double OverHalf;
  Double FourXFour;
  Double EightXEight;
  Double StripOnPan;
  Double ThruQuarter;
  Double NonObj;
  Double ObjStem;
  Double StemOnPan;
  FixedString<15> KeyName;
};
struct OvenMoistureRecord {
  Long OvenMoistureId;
  Long TobaccoType;
  Date SampleTime;
  Long CaseNumber;
  Double PackedTemperature;
  Double Percentage;
  Long ProductionRunId;
  Long StemTypeID;
  FixedString<17> KeyName;
};
struct PackedMoistureRecord {
  Long PackedMoistureId;
  Date SampleTime;
  Double PackedPressure;
  Double Temperature;
  Double CoolerRight;
  Double CoolerLeft;
  Long ProductionRunId;
  FixedString<16> KeyName;
};
struct GreenMoistureRecord {
  Long GreenMoistureId;
  Date SampleTime;
  Double Blending;
  Double CondCylinder;
  Double StripThresh;
  Double StemThresh;
  Long ProductionRunId;
  FixedString<15> KeyName;
};
struct ByProductsTestRecord {
  Long ByProductsTestId;
  Long ByProductsId;
  Date SampleTime;
  Long CaseNumber;
  Double Value;
  FixedString<15> KeyName;
};
struct SugarNicotineRecord {
  Long SugarNicotineId;
  Date SampleTime;
  Long CaseNumber;
  Double PercentSugar;
  Double PercentNicotine;
  Long ProductionRunId;
  FixedString<15> KeyName;
};
struct SandRecord {
  Long SandId;
  Long ProductionRunId;
  Long StripCaseNumber;
  Double StripCasePercentage;
  Long VSSCaseNumber;
  Double VSSCasePercentage;
  FixedString<19> KeyName;
};
struct SwingRecord {
  Long SwingID;
  Long ProductionGradeId;
  Double TotStemMin;
  Double TotStemMax;
  Double ObjectMin;
  Double ObjectMax;
  Double Over1Min;
  Double Over1Max;
  Double OverHalfMin;
  Double OverHalfMax;
  Double TotThruQuarterMin;
  Double TotThruQuarterMax;
  Double OnPanMin;
  Double OnPanMax;
  Double VSSCode;
  Double StripLow;
  Double StripHigh;
  Double StemLow;
  Double StemHigh;
  FixedString<17> KeyName;
};
struct StripRecord {
  Long StripId;
  Double TotalNetWeight;
  Long ContainerStart;
  Long ContainerEnd;
  Long ProductionRunId;
  FixedString<15> KeyName;
};
struct LaminaRecord {
  Long LaminaId;
  Long TestNumber;
  Date SampleTime;
  Double LaminaOnStem;
  Long ProductionRunId;
  FixedString<15> KeyName;
};
#pragma pack(pop)
static_assert(sizeof(DegradationRecord) == 136);
static_assert(sizeof(OvenMoistureRecord) == 80);
static_assert(sizeof(PackedMoistureRecord) == 80);
static_assert(sizeof(GreenMoistureRecord) == 80);
static_assert(sizeof(ByProductsTestRecord) == 60);
static_assert(sizeof(SugarNicotineRecord) == 68);
static_assert(sizeof(SandRecord) == 72);
static_assert(sizeof(SwingRecord) == 180);
static_assert(sizeof(StripRecord) == 56);
static_assert(sizeof(LaminaRecord) == 60);

class cDegradationPersist final : public TablePersist<DegradationRecord> {
 public:
  cDegradationPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cOvenMoisturePersist final : public TablePersist<OvenMoistureRecord> {
 public:
  cOvenMoisturePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cPackedMoisturePersist final : public TablePersist<PackedMoistureRecord> {
 public:
  cPackedMoisturePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cGreenMoisturePersist final : public TablePersist<GreenMoistureRecord> {
 public:
  cGreenMoisturePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cByProductsTestPersist final : public TablePersist<ByProductsTestRecord> {
 public:
  cByProductsTestPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cSugarNicotinePersist final : public TablePersist<SugarNicotineRecord> {
 public:
  cSugarNicotinePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cSandPersist final : public TablePersist<SandRecord> {
 public:
  cSandPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cSwingPersist final : public TablePersist<SwingRecord> {
 public:
  cSwingPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cStripPersist final : public TablePersist<StripRecord> {
 public:
  cStripPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cLaminaPersist final : public TablePersist<LaminaRecord> {
 public:
  cLaminaPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
