// Foreign matter samples, and the view of them beside the production bales.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct LabForeignRecord {
  Long LabForeignID;
  Long LabHeaderID;
  Long ProductionGradeId;
  Long LabSeason;
  Date SampleDateTime;
  Long Shift;
  FixedString<3> TestType;
  Long StemTypeID;
  Long ByProductID;
  Long ContainerNumber;
  Long SampleWeight;
  Long Suckers;
  Long Stalk;
  Long Straw;
  Long Grass;
  Long Strings;
  Long Lint;
  Long Feathers;
  Long Paper;
  Long Plastic;
  Long Insulation;
  Long Foam;
  Long Rubber;
  Long Rocks;
  Long Wood;
  Long Hair;
  Long InsectOrCocoons;
  Long StainedLeaves;
  Long Fur;
  Long Wool;
  Long Metal;
  Long FruitOrNuts;
  Long Seed;
  Long Extra1;
  Long Extra2;
  Long Other1;
  FixedString<20> Other1Desc;
  Long Other2;
  FixedString<20> Other2Desc;
  Long Other3;
  FixedString<20> Other3Desc;
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
  Currency HairWt;
  Currency InsectOrCocoonsWt;
  Currency StainedLeavesWt;
  Currency FurWt;
  Currency WoolWt;
  Currency MetalWt;
  Currency FruitOrNutsWt;
  Currency SeedWt;
  Currency Extra1Wt;
  Currency Extra2Wt;
  Currency Other1Wt;
  Currency Other2Wt;
  Currency Other3Wt;
  Currency Total;
  Currency TotalWt;
  Date LastUpdated;
  Long UpdatedByID;
  Long cbProductionBaleNTRMId;
  FixedString<22> KeyName;
};
struct LabForeignBaleRecord {
  FixedString<10> InternalCode;
  FixedString<3> NTRMStatus;
  Long cbProductionBaleNTRMId;
  Long LabForeignID;
  Long LabHeaderID;
  Long ProductionGradeId;
  Long LabSeason;
  Date SampleDateTime;
  FixedString<3> TestType;
  Long Shift;
  Long StemTypeID;
  Long ByProductID;
  Long ContainerNumber;
  Long SampleWeight;
  Long Suckers;
  Long Stalk;
  Long Straw;
  Long Grass;
  Long Strings;
  Long Feathers;
  Long Lint;
  Long Paper;
  Long Plastic;
  Long Insulation;
  Long Foam;
  Long Rubber;
  Long Rocks;
  Long Wood;
  Long Hair;
  Long InsectOrCocoons;
  Long StainedLeaves;
  Long Fur;
  Long Wool;
  Long Metal;
  Long FruitOrNuts;
  Long Seed;
  Long Extra1;
  Long Extra2;
  Long Other1;
  FixedString<20> Other1Desc;
  Long Other2;
  FixedString<20> Other2Desc;
  Long Other3;
  FixedString<20> Other3Desc;
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
  Currency HairWt;
  Currency InsectOrCocoonsWt;
  Currency StainedLeavesWt;
  Currency FurWt;
  Currency WoolWt;
  Currency MetalWt;
  Currency FruitOrNutsWt;
  Currency SeedWt;
  Currency Extra1Wt;
  Currency Extra2Wt;
  Currency Other1Wt;
  Currency Other2Wt;
  Currency Other3Wt;
  Currency Total;
  Currency TotalWt;
  Date LastUpdated;
  Long UpdatedByID;
  Currency BlendWeight;
  FixedString<20> BarCode;
  FixedString<22> Blank;
};
#pragma pack(pop)
static_assert(sizeof(LabForeignRecord) == 572);
static_assert(sizeof(LabForeignBaleRecord) == 648);

class cLabForeignPersist final : public TablePersist<LabForeignRecord> {
 public:
  cLabForeignPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvLabForeignBalePersist final : public ViewPersist<LabForeignBaleRecord> {
 public:
  cvLabForeignBalePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
