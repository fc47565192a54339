#include "vrdppo/reference/stations.hpp"

#include <cstddef>

#include "vrdppo/dbhelp.hpp"
#include "vrdppo/operations.hpp"
#include "vrdppo/provider.hpp"

namespace vrdppo {

namespace {

using SN = StationRecord;
constexpr Column kStationColumns[] = {
    VRDPPO_COL(SN, StationId, 0, None),       VRDPPO_COL(SN, StationCode, 4, S),
    VRDPPO_COL(SN, Description, 44, S),       VRDPPO_COL(SN, DeletedFlag, 244, S),
    VRDPPO_COL(SN, ScannerPort, 246, S0),     VRDPPO_COL(SN, ScannerBaud, 256, L0),
    VRDPPO_COL(SN, ScannerParity, 260, S0),   VRDPPO_COL(SN, ScannerData, 262, S0),
    VRDPPO_COL(SN, ScannerStop, 264, S0),     VRDPPO_COL(SN, ScalePort, 266, S0),
    VRDPPO_COL(SN, ScaleBaud, 276, L0),       VRDPPO_COL(SN, ScaleParity, 280, S0),
    VRDPPO_COL(SN, ScaleData, 282, S0),       VRDPPO_COL(SN, ScaleStop, 284, S0),
    VRDPPO_COL(SN, TareTolerance, 288, L0),   VRDPPO_COL(SN, RealTimeLabels, 292, S0),
    VRDPPO_COL(SN, NotifyInterval, 296, L0),  VRDPPO_COL(SN, DateTimeLabels, 300, S0),
    VRDPPO_COL(SN, PrintDelay, 304, L0),      VRDPPO_COL(SN, StationType, 308, S0),
    VRDPPO_COL(SN, AccessAllRuns, 312, S0),   VRDPPO_COL(SN, VerifyBigBales, 314, S0),
    VRDPPO_COL(SN, ModelCode, 316, S0),       VRDPPO_COL(SN, cbGreenUnitTypeId, 320, L0),
    VRDPPO_COL(SN, DefaultRecvLine, 324, L0), VRDPPO_COL(SN, DefaultRecvMode, 328, S0),
};
// C is 216, two below the sum of the fields; 432 bytes still hold the record's 412.
constexpr RecordLayout kStationLayout =
    makeLayout<SN, 216>(kStationColumns, VRDPPO_TRAILING(SN, KeyName, 378, u"StationId"));
constexpr TableConfig kStation =
    secondGeneration(u"STATION", u"STATIONID", DeleteStyle::Soft, TopArg::Required,
                     CriteriaDeleteForm::SecondWithHardDelete, kStationLayout);

using PS = ProductionSettingsRecord;
constexpr Column kProductionSettingsColumns[] = {
    VRDPPO_COL(PS, ProductionSettingsId, 0, None),
    VRDPPO_COL(PS, GrossBaleWeight, 4, D),
    VRDPPO_COL(PS, TareValue, 12, D),
    VRDPPO_COL(PS, TareUnitCount, 20, L),
    VRDPPO_COL(PS, PreferredUom, 24, L0),
    VRDPPO_DATE(PS, SeasonStartDate, 28, T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(PS, Shift1Line, 36, S0),
    VRDPPO_COL(PS, Shift1CC, 56, S0),
    VRDPPO_COL(PS, Shift1Redrier, 116, S0),
    VRDPPO_COL(PS, Shift2Line, 176, S0),
    VRDPPO_COL(PS, Shift2CC, 196, S0),
    VRDPPO_COL(PS, Shift2Redrier, 256, S0),
    VRDPPO_COL(PS, Shift3Line, 316, S0),
    VRDPPO_COL(PS, Shift3CC, 336, S0),
    VRDPPO_COL(PS, Shift3Redrier, 396, S0),
    VRDPPO_COL(PS, ExtranetDir, 456, S0),
    VRDPPO_COL(PS, LabelFormatDir, 556, S0),
    VRDPPO_COL(PS, ExcelExtractDir, 656, S0),
    VRDPPO_COL(PS, BTDSN, 756, S0),
    VRDPPO_COL(PS, DateTimeLabelFormat, 856, S0),
    VRDPPO_COL(PS, ImperialLabelDir, 1368, S0),
    // The two strings of the record that write blanks as '' rather than Null.
    VRDPPO_COL(PS, PrintRemTicket, 1880, S),
    VRDPPO_COL(PS, BarcodePrefix, 1882, S),
    VRDPPO_COL(PS, ReweighTolerance, 1896, L0),
    VRDPPO_COL(PS, LbsPerLoad, 1900, L0),
};
constexpr RecordLayout kProductionSettingsLayout = makeLayout<PS, 1001>(
    kProductionSettingsColumns, VRDPPO_TRAILING(PS, KeyName, 1904, u"ProductionSettingsId"));
// Hard delete, and CriteriaDelete without bHardDelete.
constexpr TableConfig kProductionSettings =
    secondGeneration(u"PRODUCTIONSETTINGS", u"PRODUCTIONSETTINGSID", DeleteStyle::Hard,
                     TopArg::Required, CriteriaDeleteForm::Second, kProductionSettingsLayout);

using CA = CalibrationRecord;
constexpr Column kCalibrationColumns[] = {
    VRDPPO_COL(CA, CalibrationId, 0, None),
    // Always a date, the default date included.
    VRDPPO_DATE(CA, CalibrationTS, 4, T, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(CA, OperatorId, 12, L),
    VRDPPO_COL(CA, StationId, 16, L),
    VRDPPO_COL(CA, ShiftNumber, 20, L),
    VRDPPO_COL(CA, ProductionRunId, 24, L0),
    VRDPPO_COL(CA, OnScale, 28, D),
    VRDPPO_COL(CA, ScaleReading, 36, D),
};
constexpr RecordLayout kCalibrationLayout =
    makeLayout<CA, 67>(kCalibrationColumns, VRDPPO_TRAILING(CA, KeyName, 44, u"CalibrationId"));
constexpr TableConfig kCalibration =
    firstGeneration(u"CALIBRATION", u"CALIBRATIONID", DeleteStyle::Hard, kCalibrationLayout);

// No cursor location, no quoted-identifier setting, no audit id and no time-out: the procedure
// runs under the connection's defaults, and the empty string is not replaced by the default.
void runOwn(const std::u16string& sConnection, const char16_t* procedure) {
  Connection connection;
  dbHelp::ConnectString = sConnection;
  connection.Open(dbHelp::ConnectString, {}, {}, adOptionUnspecified);
  connection.Execute(procedure, adOptionUnspecified);
  connection.Close();
}

}  // namespace

cStationPersist::cStationPersist() : TablePersist<StationRecord>(kStation) {}
const ClassInfo& cStationPersist::info() {
  static const ClassInfo i = tableClass<cStationPersist>("cStationPersist", kStation);
  return i;
}

cProductionSettingsPersist::cProductionSettingsPersist()
    : TablePersist<ProductionSettingsRecord>(kProductionSettings) {}
const ClassInfo& cProductionSettingsPersist::info() {
  static const ClassInfo i = [] {
    auto members = tableMembers(kProductionSettings);
    for (const char* name : {"sp_CreateGreenInventory", "sp_CreatecbGreenInventory"}) {
      const bool cb = name[9] == 'c';
      members.push_back(method<cProductionSettingsPersist>(
          name, {stringArg("sConnection")}, ValueType::None,
          [cb](cProductionSettingsPersist& o, std::span<const Variant> a) {
            if (cb) {
              o.sp_CreatecbGreenInventory(a[0].str());
            } else {
              o.sp_CreateGreenInventory(a[0].str());
            }
            return Variant();
          }));
    }
    return tableClass<cProductionSettingsPersist>("cProductionSettingsPersist", kProductionSettings,
                                                  std::move(members));
  }();
  return i;
}

void cProductionSettingsPersist::sp_CreateGreenInventory(const std::u16string& sConnection) {
  const auto call = lock();
  runOwn(sConnection, u"qsp_CreateGreenInventory");
}

void cProductionSettingsPersist::sp_CreatecbGreenInventory(const std::u16string& sConnection) {
  const auto call = lock();
  runOwn(sConnection, u"qsp_CreatecbGreenInventory");
}

cCalibrationPersist::cCalibrationPersist() : TablePersist<CalibrationRecord>(kCalibration) {}
const ClassInfo& cCalibrationPersist::info() {
  static const ClassInfo i = tableClass<cCalibrationPersist>("cCalibrationPersist", kCalibration);
  return i;
}

}  // namespace vrdppo
