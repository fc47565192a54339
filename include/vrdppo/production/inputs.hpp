// What a run consumes and yields: grades used, the recipe, pickings, by-products, targets and
// redried grades (stems stand in stems.hpp).
#pragma once

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct ProductionRunGradeRecord {
  Long ProductionRunGradeId;
  Long ProductionGreenGradeId;
  Long ProductionRunId;
  Double WeightUsed;
  Double GrossBaleWeight;
  Double TareValue;
  Long TareUnitCount;
  FixedString<22> KeyName;
};
struct ProductionGreenGradeRecord {
  Long ProductionGreenGradeId;
  Long ProductionGradeId;
  Long GreenGradeId;
  Double TargetPercentage;
  Long SortSequence;
  FixedString<1> DeletedFlag;
  FixedString<22> KeyName;
};
struct PickingsRecord {
  Long PickingsId;
  Long ProductionRunId;
  Double Weight;
  Long PickingTypeId;
  FixedString<15> KeyName;
};
struct ByProductsRecord {
  Long ByProductsId;
  Long ByProductsTypeId;
  Long ProductionRunId;
  Long ContainerStart;
  Long ContainerEnd;
  Double TotalNetWeight;
  Long SumLink;
  FixedString<1> DiscardFlag;
  FixedString<16> KeyName;
};
struct ProductionRunTargetRecord {
  Long ProductionRunTargetId;
  Long ProductionGreenGradeId;
  Double TargetPercentage;
  Double ThisRunWeight;
  FixedString<100> Comment;
  Double ThisRunPercentage;
  Long ProductionRunId;
  FixedString<22> KeyName;
};
struct ProductionRunRedriedRecord {
  Long ProductionRunRedriedId;
  Long ProductionGreenGradeId;
  Long ProductionRunId;
  Double WeightUsed;
  FixedString<22> KeyName;
};
#pragma pack(pop)
static_assert(sizeof(ProductionRunGradeRecord) == 84);
static_assert(sizeof(ProductionGreenGradeRecord) == 72);
static_assert(sizeof(PickingsRecord) == 52);
static_assert(sizeof(ByProductsRecord) == 68);
static_assert(sizeof(ProductionRunTargetRecord) == 280);
static_assert(sizeof(ProductionRunRedriedRecord) == 64);

class cProductionRunGradePersist final : public TablePersist<ProductionRunGradeRecord> {
 public:
  cProductionRunGradePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cProductionGreenGradePersist final : public TablePersist<ProductionGreenGradeRecord> {
 public:
  cProductionGreenGradePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cPickingsPersist final : public TablePersist<PickingsRecord> {
 public:
  cPickingsPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cByProductsPersist final : public TablePersist<ByProductsRecord> {
 public:
  cByProductsPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cProductionRunTargetPersist final : public TablePersist<ProductionRunTargetRecord> {
 public:
  cProductionRunTargetPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cProductionRunRedriedPersist final : public TablePersist<ProductionRunRedriedRecord> {
 public:
  cProductionRunRedriedPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
