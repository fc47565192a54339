// The run views: the grades, picking, stem and by-product types of a run, the weights it drew,
// and the recipe lists.
#pragma once

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct RunGreenGradeListRecord {
  Long ProductionRunId;
  Long ProductionGradeId;
  Long GreenGradeId;
  Long ProductionGreenGradeId;
  FixedString<22> Blank;
};
struct RunStemTypesRecord {
  Long ProductionRunId;
  Date ProductionDate;
  Long StemTypeID;
  Long ProductionGradeId;
  FixedString<17> Blank;
};
struct RunByProductTypesRecord {
  Long ProductionRunId;
  Date ProductionDate;
  Long ByProductsTypeId;
  Long CompanyId;
  FixedString<16> Blank;
};
struct RunGreenWeightTotalsRecord {
  Long ProductionRunId;
  FixedString<10> GradeCode;
  Long GreenGradeId;
  Long GreenInventoryId;
  Double inventoryweight;
  Double RunWeight;
  Double GrossBaleWeight;
  Double TareValue;
  Long TareUnitCount;
  FixedString<16> Blank;
};
struct RunProdGreenGradesRecord {
  Long ProductionRunId;
  Date ProductionDate;
  Long ProductionGradeId;
  Long ProductionGreenGradeId;
  Long GreenGradeId;
  FixedString<22> Blank;
};
struct RunRedriedGradeListRecord {
  Long ProductionGreenGradeId;
  Long ProductionRunRedriedId;
  Double WeightUsed;
  Long ProductionRunId;
  Long ProductionGradeId;
  Long SortSequence;
  FixedString<1> DeletedFlag;
  Long GreenGradeId;
  FixedString<10> GradeCode;
  FixedString<1> ScrapGrade;
  FixedString<22> Blank;
};
struct ProdGreenGradeListRecord {
  Long ProductionGreenGradeId;
  Long ProductionGradeId;
  Long GreenGradeId;
  Double TargetPercentage;
  Long SortSequence;
  FixedString<1> DeletedFlag;
  FixedString<10> ProductionGradeCode;
  FixedString<10> GradeCode;
  FixedString<22> Blank;
};
#pragma pack(pop)
static_assert(sizeof(RunGreenGradeListRecord) == 60);
static_assert(sizeof(RunStemTypesRecord) == 56);
static_assert(sizeof(RunByProductTypesRecord) == 52);
static_assert(sizeof(RunGreenWeightTotalsRecord) == 100);
static_assert(sizeof(RunProdGreenGradesRecord) == 68);
static_assert(sizeof(RunRedriedGradeListRecord) == 104);
static_assert(sizeof(ProdGreenGradeListRecord) == 112);

class cvRunGreenGradeListPersist final : public ViewPersist<RunGreenGradeListRecord> {
 public:
  cvRunGreenGradeListPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvRunStemTypesPersist final : public ViewPersist<RunStemTypesRecord> {
 public:
  cvRunStemTypesPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvRunByProductTypesPersist final : public ViewPersist<RunByProductTypesRecord> {
 public:
  cvRunByProductTypesPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvRunGreenWeightTotalsPersist final : public ViewPersist<RunGreenWeightTotalsRecord> {
 public:
  cvRunGreenWeightTotalsPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvRunProdGreenGradesPersist final : public ViewPersist<RunProdGreenGradesRecord> {
 public:
  cvRunProdGreenGradesPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvRunRedriedGradeListPersist final : public ViewPersist<RunRedriedGradeListRecord> {
 public:
  cvRunRedriedGradeListPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvProdGreenGradeListPersist final : public ViewPersist<ProdGreenGradeListRecord> {
 public:
  cvProdGreenGradeListPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
