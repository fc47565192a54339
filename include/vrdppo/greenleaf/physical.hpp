// The physical count of the cages, the view it is prepared from, and the new season's id map.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct PhysicalInventoryRecord {
  Long PhysicalInventoryId;
  FixedString<10> CageCode;
  FixedString<3> Customer;
  FixedString<15> GradeCode;
  Double Weight;
  FixedString<2> Status;
  FixedString<3> Operator;
  Date StatusTS;
  FixedString<20> Memo;
  FixedString<19> KeyName;
};
struct PrepPhysicalRecord {
  FixedString<10> CageCode;
  FixedString<10> CompanyCode;
  Long CompanyId;
  FixedString<10> GradeCode;
  Long GreenGradeId;
  Double NetWeight;
  FixedString<12> Blank;
};
struct NewSeasonLogRecord {
  Long NewSeasonLogId;
  FixedString<50> TableName;
  Long OldId;
  Long NewId;
  FixedString<14> KeyName;
};
#pragma pack(pop)
static_assert(sizeof(PhysicalInventoryRecord) == 168);
static_assert(sizeof(PrepPhysicalRecord) == 100);
static_assert(sizeof(NewSeasonLogRecord) == 140);

class cPhysicalInventoryPersist final : public TablePersist<PhysicalInventoryRecord> {
 public:
  cPhysicalInventoryPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  // Empties the table through the gateway; the record is neither read nor changed.
  void Clear(const std::u16string& sConnect);
};

class cvPrepPhysicalPersist final : public ViewPersist<PrepPhysicalRecord> {
 public:
  cvPrepPhysicalPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cNewSeasonLogPersist final : public TablePersist<NewSeasonLogRecord> {
 public:
  cNewSeasonLogPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
