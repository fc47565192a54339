// Lab settings, their frozen snapshots, and the list of settings by company and grade.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct LabSettingRecord {
  Long LabSettingID;
  Long CompanyId;
  Long ProductionGradeId;
  FixedString<1> GreenDegradation;
  Long GreenDegCases;
  Long GreenDegMinutes;
  Currency GrnTotStemTgt;
  Currency GrnTotStemRet;
  Currency GrnTotStemRer;
  Currency GrnPctObjTgt;
  Currency GrnPctObjRet;
  Currency GrnPctObjRer;
  FixedString<20> GrnLabel1;
  FixedString<20> GrnLabel2;
  FixedString<20> GrnLabel3;
  FixedString<20> GrnLabel4;
  FixedString<20> GrnLabel5;
  FixedString<20> GrnLabel6;
  FixedString<20> GrnLabel7;
  FixedString<20> GrnLabel8;
  FixedString<20> GrnLabel9;
  FixedString<20> StrLabel1;
  FixedString<20> StrLabel2;
  FixedString<20> StrLabel3;
  FixedString<20> StrLabel4;
  FixedString<20> StrLabel5;
  FixedString<20> StrLabel6;
  FixedString<20> StrLabel7;
  FixedString<20> StrLabel8;
  FixedString<20> StrLabel9;
  FixedString<20> ScrLabel1;
  FixedString<20> ScrLabel2;
  FixedString<20> ScrLabel3;
  FixedString<20> ScrLabel4;
  FixedString<20> ScrLabel5;
  FixedString<20> ScrLabel6;
  FixedString<20> ScrLabel7;
  FixedString<20> ScrLabel8;
  FixedString<20> ScrLabel9;
  FixedString<20> StmLabel1;
  FixedString<20> StmLabel2;
  FixedString<20> StmLabel3;
  FixedString<20> StmLabel4;
  FixedString<20> StmLabel5;
  FixedString<20> StmLabel6;
  FixedString<20> StmLabel7;
  FixedString<20> StmLabel8;
  FixedString<20> StmLabel9;
  FixedString<1> StripDegradation;
  Long StripDegCases;
  Long StripDegMinutes;
  Currency TotStemTarget;
  Currency TotStemRetest;
  Currency TotStemRerun;
  Currency PctObjTarget;
  Currency PctObjRetest;
  Currency PctObjRerun;
  FixedString<1> ScrapDegradation;
  Long ScrapDegCases;
  Long ScrapDegMinutes;
  FixedString<1> StemDegradation;
  Long StemDegCases;
  Long StemDegMinutes;
  FixedString<1> PackedStrip;
  Long PackedStripCases;
  Long PackedStripMinutes;
  FixedString<1> PackedScrap;
  Long PackedScrapCases;
  Long PackedScrapMinutes;
  FixedString<1> StemInScrap;
  FixedString<1> PackedStem;
  Long PackedStemCases;
  Long PackedStemMinutes;
  FixedString<1> LaminaOnStem;
  FixedString<1> StemLength;
  FixedString<1> StemLengthDetail;
  FixedString<1> GreenMoisture;
  Long GreenMinutes;
  FixedString<1> GreenStemMoisture;
  Currency StripMoistureTarget;
  Currency StripMoistureRetest;
  Currency StripMoistureRerun;
  Currency StemMoistureTarget;
  Currency StemMoistureRetest;
  Currency StemMoistureRerun;
  Currency ScrapMoistureTarget;
  Currency ScrapMoistureRetest;
  Currency ScrapMoistureRerun;
  FixedString<1> ExitSiloMoisture;
  Long ExitSiloCases;
  Long ExitSiloMinutes;
  FixedString<1> ForeignMatter;
  Long ForeignMatterCases;
  Long ForeignMatterMinutes;
  FixedString<20> KeyName;
};
struct LabSettingListRecord {
  Long LabSettingID;
  Long ProductionGradeId;
  Long CompanyId;
  FixedString<10> CompanyCode;
  FixedString<100> CompanyName;
  FixedString<10> ProductionGradeCode;
  FixedString<19> Blank;
};
#pragma pack(pop)
static_assert(sizeof(LabSettingRecord) == 1784);
static_assert(sizeof(LabSettingListRecord) == 292);

class cLabSettingPersist final : public TablePersist<LabSettingRecord> {
 public:
  cLabSettingPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

// The same record on the snapshot table; the key at offset 0 is LabSettingSnapshotID there.
class cLabSettingSnapshotPersist final : public TablePersist<LabSettingRecord> {
 public:
  cLabSettingSnapshotPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvLabSettingListPersist final : public ViewPersist<LabSettingListRecord> {
 public:
  cvLabSettingListPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
