// Stems taken from a run, and the picking types a run has.
#pragma once

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct StemsRecord {
  Long StemsId;
  Double TotalNetWeight;
  Long ContainerStart;
  Long ContainerEnd;
  Long StemTypeID;
  Long ProductionRunId;
  FixedString<15> KeyName;
};
struct RunPickingTypesRecord {
  Long ProductionRunId;
  Date ProductionDate;
  Long PickingTypeId;
  FixedString<15> Blank;
};
#pragma pack(pop)
static_assert(sizeof(StemsRecord) == 60);
static_assert(sizeof(RunPickingTypesRecord) == 48);

class cStemsPersist final : public TablePersist<StemsRecord> {
 public:
  cStemsPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvRunPickingTypesPersist final : public ViewPersist<RunPickingTypesRecord> {
 public:
  cvRunPickingTypesPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
