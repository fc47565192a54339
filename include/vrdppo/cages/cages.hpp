// Cages: the cage with its current and previous state, the statuses a cage can be in, and what
// it holds grade by grade.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct CageRecord {
  Long CageId;
  FixedString<10> CageCode;
  Double TareWeight;
  FixedString<1> DeletedFlag;
  // The current state.
  Long OperatorId;
  Long GreenGradeId;
  Double GrossWeight;
  Double NetWeight;
  Long StatusId;
  Date StatusTS;
  // The same six values as they stood before the last change of state.
  Long PrevOperatorId;
  Long PrevGreenGradeId;
  Double PrevGrossWeight;
  Double PrevNetWeight;
  Long PrevStatusId;
  Date PrevStatusTS;
  FixedString<16> KeyName;
};
struct CageStatusRecord {
  Long CageStatusId;
  FixedString<10> CageStatus;
  FixedString<100> Description;
  Long Sequence;
  FixedString<12> KeyName;
};
struct CageContentRecord {
  Long CageContentId;
  Long CageId;
  Long GreenGradeId;
  Double NetWeight;
  FixedString<13> KeyName;
};
struct CageContentViewRecord {
  Long CageContentId;
  Long CageId;
  FixedString<10> CageCode;
  Long GreenGradeId;
  FixedString<10> GradeCode;
  Double NetWeight;
  FixedString<13> Blank;
};
#pragma pack(pop)
static_assert(sizeof(CageRecord) == 140);
static_assert(sizeof(CageStatusRecord) == 252);
static_assert(sizeof(CageContentRecord) == 48);
static_assert(sizeof(CageContentViewRecord) == 88);

class cCagePersist final : public TablePersist<CageRecord> {
 public:
  cCagePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  // Asks the server, through qsp_SendAlert on a connection of its own, to raise an alert about
  // a cage. Every step that fails is passed over; nothing is reported.
  void SendAlert(std::u16string sConnect, Long lAlertID, Long lCageId) noexcept;
};

class cCageStatusPersist final : public TablePersist<CageStatusRecord> {
 public:
  cCageStatusPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cCageContentPersist final : public TablePersist<CageContentRecord> {
 public:
  cCageContentPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvCageContentPersist final : public ViewPersist<CageContentViewRecord> {
 public:
  cvCageContentPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
