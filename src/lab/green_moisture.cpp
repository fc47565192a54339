#include "vrdppo/lab/green_moisture.hpp"

#include <cstddef>

namespace vrdppo {

namespace {

// LaminaMoistcount keeps its small c in the lists as in the table.
using GM = LabGreenMoistureRecord;
constexpr Column kLabGreenMoistureColumns[] = {
    VRDPPO_COL(GM, LabGreenMoistureID, 0, None),
    VRDPPO_COL(GM, LabHeaderID, 4, L0),
    VRDPPO_COL2(GM, ProductionGradeId, 8, u"ProductionGradeId", u"ProductionGradeID", L),
    VRDPPO_COL(GM, LabSeason, 12, L),
    VRDPPO_COL(GM, Shift, 16, L),
    VRDPPO_COL(GM, SampleType, 20, S),
    VRDPPO_COL(GM, SampleCount, 28, L),
    VRDPPO_COL(GM, RangeAmount, 32, S0),
    VRDPPO_COL(GM, SampleRange, 36, L0),
    VRDPPO_DATE(GM, SampleDateTime, 40, T, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(GM, PackedPressureCount, 48, L),
    VRDPPO_COL(GM, PackedPressure, 52, C),
    VRDPPO_COL(GM, PackedTemp, 60, C),
    VRDPPO_COL(GM, PackedTempCount, 68, L),
    VRDPPO_COL(GM, ABlendMoistPct, 72, C),
    VRDPPO_COL(GM, ABlendOvenPct, 80, C),
    VRDPPO_COL(GM, ABlendMoistCount, 88, L),
    VRDPPO_COL(GM, ABlendOvenCount, 92, L),
    VRDPPO_COL(GM, A1DrumMoistPct, 96, C),
    VRDPPO_COL(GM, A1DrumOvenPct, 104, C),
    VRDPPO_COL(GM, A1DrumMoistCount, 112, L),
    VRDPPO_COL(GM, A1DrumOvenCount, 116, L),
    VRDPPO_COL(GM, A2DrumMoistPct, 120, C),
    VRDPPO_COL(GM, A2DrumOvenPct, 128, C),
    VRDPPO_COL(GM, A2DrumMoistCount, 136, L),
    VRDPPO_COL(GM, A2DrumOvenCount, 140, L),
    VRDPPO_COL(GM, CBlendMoistPct, 144, C),
    VRDPPO_COL(GM, CBlendOvenPct, 152, C),
    VRDPPO_COL(GM, CBlendMoistCount, 160, L),
    VRDPPO_COL(GM, CBlendOvenCount, 164, L),
    VRDPPO_COL(GM, C1DrumMoistPct, 168, C),
    VRDPPO_COL(GM, C1DrumOvenPct, 176, C),
    VRDPPO_COL(GM, C1DrumMoistCount, 184, L),
    VRDPPO_COL(GM, C1DrumOvenCount, 188, L),
    VRDPPO_COL(GM, C2DrumMoistPct, 192, C),
    VRDPPO_COL(GM, C2DrumOvenPct, 200, C),
    VRDPPO_COL(GM, C2DrumMoistCount, 208, L),
    VRDPPO_COL(GM, C2DrumOvenCount, 212, L),
    VRDPPO_COL(GM, LaminaMoistPct, 216, C),
    VRDPPO_COL(GM, LaminaOvenPct, 224, C),
    VRDPPO_COL(GM, LaminaMoistcount, 232, L),
    VRDPPO_COL(GM, LaminaOvenCount, 236, L),
    VRDPPO_COL(GM, RCoolerMoistPct, 240, C),
    VRDPPO_COL(GM, RCoolerOvenPct, 248, C),
    VRDPPO_COL(GM, RCoolerMoistCount, 256, L),
    VRDPPO_COL(GM, RCoolerOvenCount, 260, L),
    VRDPPO_COL(GM, LCoolerMoistPct, 264, C),
    VRDPPO_COL(GM, LCoolerOvenPct, 272, C),
    VRDPPO_COL(GM, LCoolerMoistCount, 280, L),
    VRDPPO_COL(GM, LCoolerOvenCount, 284, L),
    VRDPPO_COL(GM, CoolerMoistDiff, 288, C),
    VRDPPO_COL(GM, CoolerOvenDiff, 296, C),
    VRDPPO_COL(GM, CoolerMoistDiffCount, 304, L),
    VRDPPO_COL(GM, CoolerOvenDiffCount, 308, L),
    VRDPPO_COL(GM, StemMoistPct, 312, C),
    VRDPPO_COL(GM, StemOvenPct, 320, C),
    VRDPPO_COL(GM, StemMoistCount, 328, L),
    VRDPPO_COL(GM, StemOvenCount, 332, L),
    VRDPPO_COL(GM, ExitSiloMoistPct, 336, C),
    VRDPPO_COL(GM, ExitSiloOvenPct, 344, C),
    VRDPPO_COL(GM, ExitSiloMoistCount, 352, L),
    VRDPPO_COL(GM, ExitSiloOvenCount, 356, L),
    VRDPPO_COL(GM, PackedPressure2, 360, C),
    VRDPPO_COL(GM, PackedTemp2, 368, C),
    VRDPPO_COL(GM, ABlendMoistPct2, 376, C),
    VRDPPO_COL(GM, ABlendOvenPct2, 384, C),
    VRDPPO_COL(GM, A2DrumMoistPct2, 392, C),
    VRDPPO_COL(GM, A2DrumOvenPct2, 400, C),
    VRDPPO_COL(GM, CBlendMoistPct2, 408, C),
    VRDPPO_COL(GM, CBlendOvenPct2, 416, C),
    VRDPPO_COL(GM, C2DrumMoistPct2, 424, C),
    VRDPPO_COL(GM, C2DrumOvenPct2, 432, C),
    VRDPPO_COL(GM, LaminaMoistPct2, 440, C),
    VRDPPO_COL(GM, LaminaOvenPct2, 448, C),
    VRDPPO_COL(GM, RCoolerMoistPct2, 456, C),
    VRDPPO_COL(GM, RCoolerOvenPct2, 464, C),
    VRDPPO_COL(GM, LCoolerMoistPct2, 472, C),
    VRDPPO_COL(GM, LCoolerOvenPct2, 480, C),
    VRDPPO_COL(GM, CoolerMoistDiff2, 488, C),
    VRDPPO_COL(GM, CoolerOvenDiff2, 496, C),
    VRDPPO_COL(GM, StemMoistPct2, 504, C),
    VRDPPO_COL(GM, StemOvenPct2, 512, C),
    VRDPPO_COL(GM, ExitSiloMoistPct2, 520, C),
    VRDPPO_COL(GM, ExitSiloOvenPct2, 528, C),
    VRDPPO_COL(GM, ExitSiloMoistCount2, 536, L),
    VRDPPO_COL(GM, ExitSiloOvenCount2, 540, L),
    VRDPPO_DATE(GM, LastUpdated, 544, T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(GM, UpdatedByID, 552, L0),
    VRDPPO_COL(GM, RCoolerMoist2Pct, 556, C),
    VRDPPO_COL(GM, RCoolerOven2Pct, 564, C),
    VRDPPO_COL(GM, RCoolerMoist2Count, 572, L),
    VRDPPO_COL(GM, RCoolerOven2Count, 576, L),
    VRDPPO_COL(GM, LCoolerMoist2Pct, 580, C),
    VRDPPO_COL(GM, LCoolerOven2Pct, 588, C),
    VRDPPO_COL(GM, LCoolerMoist2Count, 596, L),
    VRDPPO_COL(GM, LCoolerOven2Count, 600, L),
    VRDPPO_COL(GM, CoolerMoist2Diff, 604, C),
    VRDPPO_COL(GM, CoolerOven2Diff, 612, C),
    VRDPPO_COL(GM, CoolerMoist2DiffCount, 620, L),
    VRDPPO_COL(GM, CoolerOven2DiffCount, 624, L),
    VRDPPO_COL(GM, RCoolerMoist2Pct2, 628, C),
    VRDPPO_COL(GM, RCoolerOven2Pct2, 636, C),
    VRDPPO_COL(GM, LCoolerMoist2Pct2, 644, C),
    VRDPPO_COL(GM, LCoolerOven2Pct2, 652, C),
    VRDPPO_COL(GM, CoolerMoist2Diff2, 660, C),
    VRDPPO_COL(GM, CoolerOven2Diff2, 668, C),
    VRDPPO_COL(GM, AllCoolerMoistPct, 676, C),
    VRDPPO_COL(GM, AllCoolerOvenPct, 684, C),
    VRDPPO_COL(GM, AllCoolerMoistCount, 692, L),
    VRDPPO_COL(GM, AllCoolerOvenCount, 696, L),
    VRDPPO_COL(GM, AllCoolerMoistPct2, 700, C),
    VRDPPO_COL(GM, AllCoolerOvenPct2, 708, C),
    VRDPPO_COL(GM, ABlendTemp, 716, C),
    VRDPPO_COL(GM, A1DrumTemp, 724, C),
    VRDPPO_COL(GM, A2DrumTemp, 732, C),
    VRDPPO_COL(GM, CBlendTemp, 740, C),
    VRDPPO_COL(GM, C1DrumTemp, 748, C),
    VRDPPO_COL(GM, C2DrumTemp, 756, C),
    VRDPPO_COL(GM, ABlendTempCount, 764, L),
    VRDPPO_COL(GM, A1DrumTempCount, 768, L),
    VRDPPO_COL(GM, A2DrumTempCount, 772, L),
    VRDPPO_COL(GM, CBlendTempCount, 776, L),
    VRDPPO_COL(GM, C1DrumTempCount, 780, L),
    VRDPPO_COL(GM, C2DrumTempCount, 784, L),
    VRDPPO_COL(GM, ABlendTemp2, 788, C),
    VRDPPO_COL(GM, A2DrumTemp2, 796, C),
    VRDPPO_COL(GM, CBlendTemp2, 804, C),
    VRDPPO_COL(GM, C2DrumTemp2, 812, C),
    VRDPPO_COL(GM, PackedPressureCountB, 820, L),
    VRDPPO_COL(GM, PackedPressureB, 824, C),
    VRDPPO_COL(GM, PackedPressureB2, 832, C),
    VRDPPO_COL(GM, Redryer1MoistPct, 840, C),
    VRDPPO_COL(GM, Redryer1OvenPct, 848, C),
    VRDPPO_COL(GM, Redryer1MoistPct2, 856, C),
    VRDPPO_COL(GM, Redryer1OvenPct2, 864, C),
    VRDPPO_COL(GM, Redryer1MoistCount, 872, L),
    VRDPPO_COL(GM, Redryer1OvenCount, 876, L),
    VRDPPO_COL(GM, Redryer1Zone1Temp, 880, C),
    VRDPPO_COL(GM, Redryer1Zone2Temp, 888, C),
    VRDPPO_COL(GM, Redryer1Zone3Temp, 896, C),
    VRDPPO_COL(GM, Redryer1Zone4Temp, 904, C),
    VRDPPO_COL(GM, Redryer1CoolerTemp, 912, C),
    VRDPPO_COL(GM, Redryer1EndTemp, 920, C),
    VRDPPO_COL(GM, Redryer1Zone1Count, 928, L),
    VRDPPO_COL(GM, Redryer1Zone2Count, 932, L),
    VRDPPO_COL(GM, Redryer1Zone3Count, 936, L),
    VRDPPO_COL(GM, Redryer1Zone4Count, 940, L),
    VRDPPO_COL(GM, Redryer1CoolerCount, 944, L),
    VRDPPO_COL(GM, Redryer1EndCount, 948, L),
    VRDPPO_COL(GM, Redryer2MoistPct, 952, C),
    VRDPPO_COL(GM, Redryer2OvenPct, 960, C),
    VRDPPO_COL(GM, Redryer2MoistPct2, 968, C),
    VRDPPO_COL(GM, Redryer2OvenPct2, 976, C),
    VRDPPO_COL(GM, Redryer2MoistCount, 984, L),
    VRDPPO_COL(GM, Redryer2OvenCount, 988, L),
    VRDPPO_COL(GM, Redryer2Zone1Temp, 992, C),
    VRDPPO_COL(GM, Redryer2Zone2Temp, 1000, C),
    VRDPPO_COL(GM, Redryer2Zone3Temp, 1008, C),
    VRDPPO_COL(GM, Redryer2Zone4Temp, 1016, C),
    VRDPPO_COL(GM, Redryer2CoolerTemp, 1024, C),
    VRDPPO_COL(GM, Redryer2EndTemp, 1032, C),
    VRDPPO_COL(GM, Redryer2Zone1Count, 1040, L),
    VRDPPO_COL(GM, Redryer2Zone2Count, 1044, L),
    VRDPPO_COL(GM, Redryer2Zone3Count, 1048, L),
    VRDPPO_COL(GM, Redryer2Zone4Count, 1052, L),
    VRDPPO_COL(GM, Redryer2CoolerCount, 1056, L),
    VRDPPO_COL(GM, Redryer2EndCount, 1060, L),
};
constexpr RecordLayout kLabGreenMoistureLayout = makeLayout<GM, 1093>(
    kLabGreenMoistureColumns, VRDPPO_TRAILING(GM, KeyName, 1064, u"LabGreenMoistureID"));

using GS = LabGreenMoistSumRecord;
constexpr Column kLabGreenMoistSumColumns[] = {
    VRDPPO_COL(GS, LabGreenMoistSumID, 0, None),
    VRDPPO_COL(GS, ParentID, 4, L),
    VRDPPO_COL(GS, ChildID, 8, L),
    VRDPPO_COL(GS, SumType, 12, L),
};
constexpr RecordLayout kLabGreenMoistSumLayout = makeLayout<GS, 34>(
    kLabGreenMoistSumColumns, VRDPPO_TRAILING(GS, KeyName, 16, u"LabGreenMoistSumID"));

constexpr TableConfig kLabGreenMoisture =
    secondGeneration(u"LABGREENMOISTURE", u"LABGREENMOISTUREID", DeleteStyle::Hard,
                     TopArg::Required, CriteriaDeleteForm::Second, kLabGreenMoistureLayout);
constexpr TableConfig kLabGreenMoistSum =
    secondGeneration(u"LABGREENMOISTSUM", u"LABGREENMOISTSUMID", DeleteStyle::Hard,
                     TopArg::Required, CriteriaDeleteForm::Second, kLabGreenMoistSumLayout);

}  // namespace

cLabGreenMoisturePersist::cLabGreenMoisturePersist()
    : TablePersist<LabGreenMoistureRecord>(kLabGreenMoisture) {}
const ClassInfo& cLabGreenMoisturePersist::info() {
  static const ClassInfo i =
      tableClass<cLabGreenMoisturePersist>("cLabGreenMoisturePersist", kLabGreenMoisture);
  return i;
}

cLabGreenMoistSumPersist::cLabGreenMoistSumPersist()
    : TablePersist<LabGreenMoistSumRecord>(kLabGreenMoistSum) {}
const ClassInfo& cLabGreenMoistSumPersist::info() {
  static const ClassInfo i =
      tableClass<cLabGreenMoistSumPersist>("cLabGreenMoistSumPersist", kLabGreenMoistSum);
  return i;
}

}  // namespace vrdppo
