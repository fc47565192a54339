// Advice notes, the list of holds, and the export view of packed and foreign matter results.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct LabAdviceNoteRecord {
  Long LabAdviceNoteID;
  Long AdviceNoteNum;
  Long NumberOfCases;
  FixedString<1> CutOff;
  FixedString<15> KeyName;
};
struct LabOnHoldRecord {
  FixedString<10> CompanyCode;
  FixedString<100> CompanyName;
  FixedString<10> ProductionGradeCode;
  FixedString<20> GradeCode;
  Long OnHoldID;
  Long LabHeaderID;
  Long ProductionGradeId;
  Long LabSeason;
  Long ContainerNumber;
  FixedString<2> ResultCode;
  FixedString<3> SampleType;
  FixedString<3> OnHoldType;
  Date SampleDateTime;
  FixedString<10> ScrapCode;
  FixedString<20> StemCode;
  FixedString<19> Blank;
};
struct LabPackedChinaExportRecord {
  Date SampleDateTime;
  Long ContainerNumber;
  Long SampleWeight;
  Currency Temperature;
  Currency OvenPct;
  FixedString<1> StripAppearance;
  FixedString<1> PackingCartons;
  Currency Reweigh;
  Currency PackDensityVarPct;
  Currency SuckersWt;
  Currency StalkWt;
  Currency StrawWt;
  Currency GrassWt;
  Currency StringsWt;
  Currency LintWt;
  Currency FeathersWt;
  Currency PaperWt;
  Currency PlasticWt;
  Currency InsulationWt;
  Currency FoamWt;
  Currency RubberWt;
  Currency RocksWt;
  Currency WoodWt;
  Currency Extra1Wt;
  Currency Extra2Wt;
  Currency Other1Wt;
  Currency Other2Wt;
  Currency HairWt;
  Currency InsectOrCocoonsWt;
  Currency StainedLeavesWt;
  Currency FurWt;
  Currency WoolWt;
  Currency MetalWt;
  Currency FruitOrNutsWt;
  Currency SeedWt;
  Currency Other3Wt;
  Long ProductionGradeId;
  Long LabPackedID;
  Long LabForeignID;
  Long LabHeaderID;
  FixedString<17> Blank;
};
#pragma pack(pop)
static_assert(sizeof(LabAdviceNoteRecord) == 44);
static_assert(sizeof(LabOnHoldRecord) == 424);
static_assert(sizeof(LabPackedChinaExportRecord) == 320);

class cLabAdviceNotePersist final : public TablePersist<LabAdviceNoteRecord> {
 public:
  cLabAdviceNotePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
  void qsp_LabSyncAdvice(const std::u16string& sConnect);
};

class cvLabOnHoldPersist final : public ViewPersist<LabOnHoldRecord> {
 public:
  cvLabOnHoldPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvLabPackedChinaExportPersist final : public ViewPersist<LabPackedChinaExportRecord> {
 public:
  cvLabPackedChinaExportPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
