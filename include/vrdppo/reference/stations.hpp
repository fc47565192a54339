// Scanning and weighing stations, the plant's production settings, and scale calibrations.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct StationRecord {
  Long StationId;
  FixedString<20> StationCode;
  FixedString<100> Description;
  FixedString<1> DeletedFlag;
  FixedString<5> ScannerPort;
  Long ScannerBaud;
  FixedString<1> ScannerParity;
  FixedString<1> ScannerData;
  FixedString<1> ScannerStop;
  FixedString<5> ScalePort;
  Long ScaleBaud;
  FixedString<1> ScaleParity;
  FixedString<1> ScaleData;
  FixedString<1> ScaleStop;
  Long TareTolerance;
  FixedString<1> RealTimeLabels;
  Long NotifyInterval;
  FixedString<1> DateTimeLabels;
  Long PrintDelay;
  FixedString<2> StationType;
  FixedString<1> AccessAllRuns;
  FixedString<1> VerifyBigBales;
  FixedString<1> ModelCode;
  Long cbGreenUnitTypeId;
  Long DefaultRecvLine;
  FixedString<25> DefaultRecvMode;
  FixedString<17> KeyName;
};
struct ProductionSettingsRecord {
  Long ProductionSettingsId;
  Double GrossBaleWeight;
  Double TareValue;
  Long TareUnitCount;
  Long PreferredUom;
  Date SeasonStartDate;
  FixedString<10> Shift1Line;
  FixedString<30> Shift1CC;
  FixedString<30> Shift1Redrier;
  FixedString<10> Shift2Line;
  FixedString<30> Shift2CC;
  FixedString<30> Shift2Redrier;
  FixedString<10> Shift3Line;
  FixedString<30> Shift3CC;
  FixedString<30> Shift3Redrier;
  FixedString<50> ExtranetDir;
  FixedString<50> LabelFormatDir;
  FixedString<50> ExcelExtractDir;
  FixedString<50> BTDSN;
  FixedString<256> DateTimeLabelFormat;
  FixedString<256> ImperialLabelDir;
  FixedString<1> PrintRemTicket;
  FixedString<6> BarcodePrefix;
  Long ReweighTolerance;
  Long LbsPerLoad;
  FixedString<20> KeyName;
};
struct CalibrationRecord {
  Long CalibrationId;
  Date CalibrationTS;
  Long OperatorId;
  Long StationId;
  Long ShiftNumber;
  Long ProductionRunId;
  Double OnScale;
  Double ScaleReading;
  FixedString<15> KeyName;
};
#pragma pack(pop)
static_assert(sizeof(StationRecord) == 412);
static_assert(sizeof(ProductionSettingsRecord) == 1944);
static_assert(sizeof(CalibrationRecord) == 76);

class cStationPersist final : public TablePersist<StationRecord> {
 public:
  cStationPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cProductionSettingsPersist final : public TablePersist<ProductionSettingsRecord> {
 public:
  cProductionSettingsPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  // Each runs its procedure on a connection of its own, opened with sConnection as given.
  void sp_CreateGreenInventory(const std::u16string& sConnection);
  void sp_CreatecbGreenInventory(const std::u16string& sConnection);
};

class cCalibrationPersist final : public TablePersist<CalibrationRecord> {
 public:
  cCalibrationPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
