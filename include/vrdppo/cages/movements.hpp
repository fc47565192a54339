// Cage movements: the event's header, the log row of each cage in it, a comment, and the view
// that reads header and log together.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct CageMovementRecord {
  Long CageMovementID;
  FixedString<20> MovementType;
  Date MovementTs;
  Long OperatorId;
  Long StationId;
  Long ShiftNumber;
  Long ProductionRunId;
  FixedString<1> Executed;
  FixedString<15> KeyName;
};
struct CageLogRecord {
  Long CageLogId;
  Long CageId;
  Long CageMovementID;
  Long Sequence;
  Long InGreenGradeId;
  Double InWeight;
  Long FromStatusId;
  Long OutGreenGradeId;
  Double OutWeight;
  Long ToStatusId;
  Double CageGross;
  Double CageTare;
  Double CageNet;
  FixedString<1> CardPrinted;
  FixedString<15> KeyName;
};
struct CageMoveCommentRecord {
  Long CageMoveCommentID;
  Long CageMovementID;
  FixedString<128> Comment;
  FixedString<17> KeyName;
};
struct CageLogViewRecord {
  Long CageMovementID;
  FixedString<20> MovementType;
  Date MovementTs;
  Long OperatorId;
  Long StationId;
  Long ShiftNumber;
  Long ProductionRunId;
  FixedString<1> Executed;
  FixedString<20> UserName;
  FixedString<20> StationCode;
  Long CageLogId;
  Long CageId;
  FixedString<10> CageCode;
  Long Sequence;
  Long InGreenGradeId;
  Double InWeight;
  FixedString<10> InGradeCode;
  Long FromStatusId;
  FixedString<10> FromStatus;
  Long OutGreenGradeId;
  Double OutWeight;
  FixedString<10> OutGradeCode;
  Long ToStatusId;
  FixedString<10> ToStatus;
  Double CageGross;
  Double CageTare;
  Double CageNet;
  FixedString<15> Blank;
};
#pragma pack(pop)
static_assert(sizeof(CageMovementRecord) == 100);
static_assert(sizeof(CageLogRecord) == 104);
static_assert(sizeof(CageMoveCommentRecord) == 300);
static_assert(sizeof(CageLogViewRecord) == 352);

class cCageMovementPersist final : public TablePersist<CageMovementRecord> {
 public:
  cCageMovementPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  // Hands the movement in sBuffer to sp_PostCageMovement on a connection of its own; False for
  // any failure, which it never raises.
  bool Post(const std::u16string& sBuffer, const std::u16string& sConnect);
};

class cCageLogPersist final : public TablePersist<CageLogRecord> {
 public:
  cCageLogPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cCageMoveCommentPersist final : public TablePersist<CageMoveCommentRecord> {
 public:
  cCageMoveCommentPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvCageLogPersist final : public ViewPersist<CageLogViewRecord> {
 public:
  cvCageLogPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
