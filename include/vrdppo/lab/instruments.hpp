// Instrument readings: stem length, Infraalyzer, moisture oven cups and bias figures.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct LabStemLengthRecord {
  Long LabStemLengthID;
  Long LabHeaderID;
  Long ProductionGradeId;
  Long LabSeason;
  Date SampleDateTime;
  Long Shift;
  Long StemTypeID;
  FixedString<3> SampleType;
  Long SampleCount;
  FixedString<1> RangeAmount;
  Long SampleRange;
  Long ContainerNumber;
  Currency WtUnder05;
  Currency Wt05to10;
  Currency Wt10to15;
  Currency Wt15to20;
  Currency Wt20to25;
  Currency Wt25to30;
  Currency Wt30to35;
  Currency Wt35to40;
  Currency WtOver40;
  Currency TotalWt;
  Currency WtUnder05Pct;
  Currency Wt05to10Pct;
  Currency Wt10to15Pct;
  Currency Wt15to20Pct;
  Currency Wt20to25Pct;
  Currency Wt25to30Pct;
  Currency Wt30to35Pct;
  Currency Wt35to40Pct;
  Currency WtOver40Pct;
  Long NumberOfStems;
  Currency AverageLength;
  Date LaminaSampleTime;
  Currency LaminaOnStemPct;
  Date FibreSampleTime;
  Currency FibreInScrapPct;
  Date LastUpdated;
  Long UpdatedByID;
  FixedString<17> KeyName;
};
struct LabInfraalyzerRecord {
  Long LabInfraalyzerID;
  Long LabHeaderID;
  Long ProductionGradeId;
  Long LabSeason;
  Date SampleDateTime;
  Long Shift;
  FixedString<3> TestType;
  Long ByProductID;
  FixedString<3> SampleType;
  Long SampleCount;
  FixedString<1> RangeAmount;
  Long SampleRange;
  Long ContainerNumber;
  FixedString<1> SampleOne;
  Currency SampleOneNicPct;
  Currency SampleOneSugPct;
  Currency SampleOneMoistPct;
  FixedString<1> SampleTwo;
  Currency SampleTwoNicPct;
  Currency SampleTwoSugPct;
  Currency SampleTwoMoistPct;
  Long Temperature;
  Currency InfNicPct;
  Currency InfSugPct;
  Currency InfMoistPct;
  Currency InfOtherMoistPct;
  FixedString<2> ResultCode;
  Date LastUpdated;
  Long UpdatedByID;
  FixedString<17> KeyName;
};
struct LabMoistureRecord {
  Long LabMoistureID;
  Long LabHeaderID;
  Long ProductionGradeId;
  Long LabSeason;
  Long Shift;
  FixedString<3> TestType;
  Long StemTypeID;
  Long ByProductID;
  FixedString<3> SampleType;
  Long SampleCount;
  FixedString<1> RangeAmount;
  Long SampleRange;
  Long ContainerNumber;
  Long CupNumber;
  Date TimeIn;
  Date TimeOut;
  Currency QuickMoistPct;
  Currency OvenMoistPct;
  FixedString<2> ResultCode;
  Date LastUpdated;
  Long UpdatedByID;
  FixedString<17> KeyName;
};
struct LabBiasRecord {
  Long LabBiasID;
  Long ProductionGradeId;
  Long ByProductsTypeId;
  Currency Nic;
  Currency Sugar;
  Currency Moisture;
  FixedString<17> KeyName;
};
#pragma pack(pop)
static_assert(sizeof(LabStemLengthRecord) == 300);
static_assert(sizeof(LabInfraalyzerRecord) == 208);
static_assert(sizeof(LabMoistureRecord) == 148);
static_assert(sizeof(LabBiasRecord) == 72);

class cLabStemLengthPersist final : public TablePersist<LabStemLengthRecord> {
 public:
  cLabStemLengthPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
  bool LabAddStemLength(const std::u16string& sBuffer, const std::u16string& sConnect, Long lID);
  bool LabRemoveDegradation(const std::u16string& sBuffer, const std::u16string& sConnect,
                            Long lID);
};

class cLabInfraalyzerPersist final : public TablePersist<LabInfraalyzerRecord> {
 public:
  cLabInfraalyzerPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
  bool LabAddInfraalyzer(const std::u16string& sBuffer, const std::u16string& sConnect, Long lID);
  bool LabRemoveInfraalyzer(const std::u16string& sBuffer, const std::u16string& sConnect,
                            Long lID);
};

class cLabMoisturePersist final : public TablePersist<LabMoistureRecord> {
 public:
  cLabMoisturePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cLabBiasPersist final : public TablePersist<LabBiasRecord> {
 public:
  cLabBiasPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
