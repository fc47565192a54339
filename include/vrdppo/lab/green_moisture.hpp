// Green moisture samples along the line, and the links of their summary rows.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct LabGreenMoistureRecord {
  Long LabGreenMoistureID;
  Long LabHeaderID;
  Long ProductionGradeId;
  Long LabSeason;
  Long Shift;
  FixedString<3> SampleType;
  Long SampleCount;
  FixedString<1> RangeAmount;
  Long SampleRange;
  Date SampleDateTime;
  Long PackedPressureCount;
  Currency PackedPressure;
  Currency PackedTemp;
  Long PackedTempCount;
  Currency ABlendMoistPct;
  Currency ABlendOvenPct;
  Long ABlendMoistCount;
  Long ABlendOvenCount;
  Currency A1DrumMoistPct;
  Currency A1DrumOvenPct;
  Long A1DrumMoistCount;
  Long A1DrumOvenCount;
  Currency A2DrumMoistPct;
  Currency A2DrumOvenPct;
  Long A2DrumMoistCount;
  Long A2DrumOvenCount;
  Currency CBlendMoistPct;
  Currency CBlendOvenPct;
  Long CBlendMoistCount;
  Long CBlendOvenCount;
  Currency C1DrumMoistPct;
  Currency C1DrumOvenPct;
  Long C1DrumMoistCount;
  Long C1DrumOvenCount;
  Currency C2DrumMoistPct;
  Currency C2DrumOvenPct;
  Long C2DrumMoistCount;
  Long C2DrumOvenCount;
  Currency LaminaMoistPct;
  Currency LaminaOvenPct;
  Long LaminaMoistcount;
  Long LaminaOvenCount;
  Currency RCoolerMoistPct;
  Currency RCoolerOvenPct;
  Long RCoolerMoistCount;
  Long RCoolerOvenCount;
  Currency LCoolerMoistPct;
  Currency LCoolerOvenPct;
  Long LCoolerMoistCount;
  Long LCoolerOvenCount;
  Currency CoolerMoistDiff;
  Currency CoolerOvenDiff;
  Long CoolerMoistDiffCount;
  Long CoolerOvenDiffCount;
  Currency StemMoistPct;
  Currency StemOvenPct;
  Long StemMoistCount;
  Long StemOvenCount;
  Currency ExitSiloMoistPct;
  Currency ExitSiloOvenPct;
  Long ExitSiloMoistCount;
  Long ExitSiloOvenCount;
  Currency PackedPressure2;
  Currency PackedTemp2;
  Currency ABlendMoistPct2;
  Currency ABlendOvenPct2;
  Currency A2DrumMoistPct2;
  Currency A2DrumOvenPct2;
  Currency CBlendMoistPct2;
  Currency CBlendOvenPct2;
  Currency C2DrumMoistPct2;
  Currency C2DrumOvenPct2;
  Currency LaminaMoistPct2;
  Currency LaminaOvenPct2;
  Currency RCoolerMoistPct2;
  Currency RCoolerOvenPct2;
  Currency LCoolerMoistPct2;
  Currency LCoolerOvenPct2;
  Currency CoolerMoistDiff2;
  Currency CoolerOvenDiff2;
  Currency StemMoistPct2;
  Currency StemOvenPct2;
  Currency ExitSiloMoistPct2;
  Currency ExitSiloOvenPct2;
  Long ExitSiloMoistCount2;
  Long ExitSiloOvenCount2;
  Date LastUpdated;
  Long UpdatedByID;
  Currency RCoolerMoist2Pct;
  Currency RCoolerOven2Pct;
  Long RCoolerMoist2Count;
  Long RCoolerOven2Count;
  Currency LCoolerMoist2Pct;
  Currency LCoolerOven2Pct;
  Long LCoolerMoist2Count;
  Long LCoolerOven2Count;
  Currency CoolerMoist2Diff;
  Currency CoolerOven2Diff;
  Long CoolerMoist2DiffCount;
  Long CoolerOven2DiffCount;
  Currency RCoolerMoist2Pct2;
  Currency RCoolerOven2Pct2;
  Currency LCoolerMoist2Pct2;
  Currency LCoolerOven2Pct2;
  Currency CoolerMoist2Diff2;
  Currency CoolerOven2Diff2;
  Currency AllCoolerMoistPct;
  Currency AllCoolerOvenPct;
  Long AllCoolerMoistCount;
  Long AllCoolerOvenCount;
  Currency AllCoolerMoistPct2;
  Currency AllCoolerOvenPct2;
  Currency ABlendTemp;
  Currency A1DrumTemp;
  Currency A2DrumTemp;
  Currency CBlendTemp;
  Currency C1DrumTemp;
  Currency C2DrumTemp;
  Long ABlendTempCount;
  Long A1DrumTempCount;
  Long A2DrumTempCount;
  Long CBlendTempCount;
  Long C1DrumTempCount;
  Long C2DrumTempCount;
  Currency ABlendTemp2;
  Currency A2DrumTemp2;
  Currency CBlendTemp2;
  Currency C2DrumTemp2;
  Long PackedPressureCountB;
  Currency PackedPressureB;
  Currency PackedPressureB2;
  Currency Redryer1MoistPct;
  Currency Redryer1OvenPct;
  Currency Redryer1MoistPct2;
  Currency Redryer1OvenPct2;
  Long Redryer1MoistCount;
  Long Redryer1OvenCount;
  Currency Redryer1Zone1Temp;
  Currency Redryer1Zone2Temp;
  Currency Redryer1Zone3Temp;
  Currency Redryer1Zone4Temp;
  Currency Redryer1CoolerTemp;
  Currency Redryer1EndTemp;
  Long Redryer1Zone1Count;
  Long Redryer1Zone2Count;
  Long Redryer1Zone3Count;
  Long Redryer1Zone4Count;
  Long Redryer1CoolerCount;
  Long Redryer1EndCount;
  Currency Redryer2MoistPct;
  Currency Redryer2OvenPct;
  Currency Redryer2MoistPct2;
  Currency Redryer2OvenPct2;
  Long Redryer2MoistCount;
  Long Redryer2OvenCount;
  Currency Redryer2Zone1Temp;
  Currency Redryer2Zone2Temp;
  Currency Redryer2Zone3Temp;
  Currency Redryer2Zone4Temp;
  Currency Redryer2CoolerTemp;
  Currency Redryer2EndTemp;
  Long Redryer2Zone1Count;
  Long Redryer2Zone2Count;
  Long Redryer2Zone3Count;
  Long Redryer2Zone4Count;
  Long Redryer2CoolerCount;
  Long Redryer2EndCount;
  FixedString<21> KeyName;
};
struct LabGreenMoistSumRecord {
  Long LabGreenMoistSumID;
  Long ParentID;
  Long ChildID;
  Long SumType;
  FixedString<18> KeyName;
};
#pragma pack(pop)
static_assert(sizeof(LabGreenMoistureRecord) == 1108);
static_assert(sizeof(LabGreenMoistSumRecord) == 52);

class cLabGreenMoisturePersist final : public TablePersist<LabGreenMoistureRecord> {
 public:
  cLabGreenMoisturePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cLabGreenMoistSumPersist final : public TablePersist<LabGreenMoistSumRecord> {
 public:
  cLabGreenMoistSumPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
