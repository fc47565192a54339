// Green inventory by grade and location, the in-house report's tables, and the views over them.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct GreenInventoryRecord {
  Long GreenInventoryId;
  Double GrossWeight;
  Long GreenContainerTypeId;
  Long GreenGradeId;
  Long WeightUomId;
  Long BinLocationId;
  FixedString<20> KeyName;
};
// Whole pounds, today and year to date, received and processed.
struct GreenInHouseRecord {
  Long GreenInHouseID;
  Long GreenGradeId;
  Long PoundRecTod;
  Long PoundRecYTD;
  Long PoundProTod;
  Long PoundProYTD;
  FixedString<14> KeyName;
};
struct InHouseRecGradesRecord {
  Long InHouseRecGradesID;
  Long ProductionGradeId;
  Long GreenGradeId;
  FixedString<10> ProductionGradeCode;
  FixedString<10> GreenGradeCode;
  Long CompanyId;
  FixedString<10> CompanyCode;
  Long TargetPercentage;  // whole percent: a fraction does not survive into this table
  Long GradeId;
  FixedString<10> GradeCode;
  FixedString<19> KeyName;
};
struct InHouseRecGradesViewRecord {
  Long ProductionGradeId;
  Long GreenGradeId;
  FixedString<10> ProductionGradeCode;
  FixedString<10> GreenGradeCode;
  Long CompanyId;
  FixedString<10> CompanyCode;
  Long TargetPercentage;
  Long GradeId;
  FixedString<10> GradeCode;
  FixedString<19> Blank;
};
struct GreenProdRecord {
  Date ProductionDate;
  Long GreenGradeId;
  Double RunWeight;
  FixedString<14> Blank;
};
struct ProcessGreenRecord {
  Long ProductionRunId;
  Long ProductionGradeId;
  FixedString<10> ProductionGradeCode;
  FixedString<10> GreenGradeCode;
  Double GreenWeight;
  Double TargetPercentage;
  Double ThisRunWeight;
  Double ThisRunPercentage;
  Double WeightUsed;
  FixedString<100> Comment;
  Long GreenGradeId;
  Long ProductionGreenGradeId;
  Long ReportingCompanyId;
  Long CompanyId;
  Long SortSequence;
  Long ReportingProductionGradeId;
  FixedString<26> Blank;
};
#pragma pack(pop)
static_assert(sizeof(GreenInventoryRecord) == 68);
static_assert(sizeof(GreenInHouseRecord) == 52);
static_assert(sizeof(InHouseRecGradesRecord) == 144);
static_assert(sizeof(InHouseRecGradesViewRecord) == 140);
static_assert(sizeof(GreenProdRecord) == 48);
static_assert(sizeof(ProcessGreenRecord) == 364);

class cGreenInventoryPersist final : public TablePersist<GreenInventoryRecord> {
 public:
  cGreenInventoryPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cGreenInHousePersist final : public TablePersist<GreenInHouseRecord> {
 public:
  cGreenInHousePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  // Empties the table through the gateway; the record is neither read nor changed.
  void DeleteAll(const std::u16string& sConnect);
};

class cInHouseRecGradesPersist final : public TablePersist<InHouseRecGradesRecord> {
 public:
  cInHouseRecGradesPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  void DeleteAll(const std::u16string& sConnect);
};

class cvInHouseRecGradesPersist final : public ViewPersist<InHouseRecGradesViewRecord> {
 public:
  cvInHouseRecGradesPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvGreenProdPersist final : public ViewPersist<GreenProdRecord> {
 public:
  cvGreenProdPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvProcessGreenPersist final : public ViewPersist<ProcessGreenRecord> {
 public:
  cvProcessGreenPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
