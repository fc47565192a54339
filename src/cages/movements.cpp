#include "vrdppo/cages/movements.hpp"

#include <cstddef>
#include <span>
#include <vector>

#include "vrdppo/operations.hpp"

namespace vrdppo {

namespace {

using CM = CageMovementRecord;
// Read as MovementTs, written as MovementTS: the same column to the server. The time goes out
// to the second, and a 1900/01/01 as Null.
constexpr Column kCageMovementColumns[] = {
    VRDPPO_COL(CM, CageMovementID, 0, None),
    VRDPPO_COL(CM, MovementType, 4, S0),
    VRDPPO_COL2(CM, MovementTs, 44, u"MovementTs", u"MovementTS", T0, u"yyyy/MM/dd HH:MM:SS"),
    VRDPPO_COL(CM, OperatorId, 52, L0),
    VRDPPO_COL(CM, StationId, 56, L0),
    VRDPPO_COL(CM, ShiftNumber, 60, L0),
    VRDPPO_COL(CM, ProductionRunId, 64, L0),
    VRDPPO_COL(CM, Executed, 68, S),
};
constexpr RecordLayout kCageMovementLayout =
    makeLayout<CM, 72>(kCageMovementColumns, VRDPPO_TRAILING(CM, KeyName, 70, u"CageMovementId"));
constexpr TableConfig kCageMovement =
    firstGeneration(u"CAGEMOVEMENT", u"CAGEMOVEMENTID", DeleteStyle::Hard, kCageMovementLayout);

using CL = CageLogRecord;
// CageMovementID is read so and written CageMovementId. The weights in and out are D (0 stays
// 0) while the grades and statuses beside them store Null for 0.
constexpr Column kCageLogColumns[] = {
    VRDPPO_COL(CL, CageLogId, 0, None),
    VRDPPO_COL(CL, CageId, 4, L),
    VRDPPO_COL2(CL, CageMovementID, 8, u"CageMovementID", u"CageMovementId", L0),
    VRDPPO_COL(CL, Sequence, 12, L0),
    VRDPPO_COL(CL, InGreenGradeId, 16, L0),
    VRDPPO_COL(CL, InWeight, 20, D),
    VRDPPO_COL(CL, FromStatusId, 28, L0),
    VRDPPO_COL(CL, OutGreenGradeId, 32, L0),
    VRDPPO_COL(CL, OutWeight, 36, D),
    VRDPPO_COL(CL, ToStatusId, 44, L0),
    VRDPPO_COL(CL, CageGross, 48, D0),
    VRDPPO_COL(CL, CageTare, 56, D0),
    VRDPPO_COL(CL, CageNet, 64, D0),
    VRDPPO_COL(CL, CardPrinted, 72, S),
};
constexpr RecordLayout kCageLogLayout =
    makeLayout<CL, 88>(kCageLogColumns, VRDPPO_TRAILING(CL, KeyName, 74, u"CageLogId"));
constexpr TableConfig kCageLog =
    firstGeneration(u"CAGELOG", u"CAGELOGID", DeleteStyle::Hard, kCageLogLayout);

using MC = CageMoveCommentRecord;
constexpr Column kCageMoveCommentColumns[] = {
    VRDPPO_COL(MC, CageMoveCommentID, 0, None),
    VRDPPO_COL(MC, CageMovementID, 4, L),
    VRDPPO_COL(MC, Comment, 8, S),
};
constexpr RecordLayout kCageMoveCommentLayout = makeLayout<MC, 153>(
    kCageMoveCommentColumns, VRDPPO_TRAILING(MC, KeyName, 264, u"CageMoveCommentID"));
// No delete flag on this table, so CriteriaDelete has no bHardDelete.
constexpr TableConfig kCageMoveComment =
    secondGeneration(u"CAGEMOVECOMMENT", u"CAGEMOVECOMMENTID", DeleteStyle::Hard, TopArg::Optional,
                     CriteriaDeleteForm::Second, kCageMoveCommentLayout);

using LV = CageLogViewRecord;
constexpr Column kCageLogViewColumns[] = {
    VRDPPO_COL(LV, CageMovementID, 0, None),   VRDPPO_COL(LV, MovementType, 4, None),
    VRDPPO_COL(LV, MovementTs, 44, None),      VRDPPO_COL(LV, OperatorId, 52, None),
    VRDPPO_COL(LV, StationId, 56, None),       VRDPPO_COL(LV, ShiftNumber, 60, None),
    VRDPPO_COL(LV, ProductionRunId, 64, None), VRDPPO_COL(LV, Executed, 68, None),
    VRDPPO_COL(LV, UserName, 70, None),        VRDPPO_COL(LV, StationCode, 110, None),
    VRDPPO_COL(LV, CageLogId, 152, None),      VRDPPO_COL(LV, CageId, 156, None),
    VRDPPO_COL(LV, CageCode, 160, None),       VRDPPO_COL(LV, Sequence, 180, None),
    VRDPPO_COL(LV, InGreenGradeId, 184, None), VRDPPO_COL(LV, InWeight, 188, None),
    VRDPPO_COL(LV, InGradeCode, 196, None),    VRDPPO_COL(LV, FromStatusId, 216, None),
    VRDPPO_COL(LV, FromStatus, 220, None),     VRDPPO_COL(LV, OutGreenGradeId, 240, None),
    VRDPPO_COL(LV, OutWeight, 244, None),      VRDPPO_COL(LV, OutGradeCode, 252, None),
    VRDPPO_COL(LV, ToStatusId, 272, None),     VRDPPO_COL(LV, ToStatus, 276, None),
    VRDPPO_COL(LV, CageGross, 296, None),      VRDPPO_COL(LV, CageTare, 304, None),
    VRDPPO_COL(LV, CageNet, 312, None),
};
constexpr RecordLayout kCageLogViewLayout =
    makeLayout<LV, 230>(kCageLogViewColumns, VRDPPO_TRAILING(LV, Blank, 320, u""));
constexpr ViewConfig kCageLogView{u"VCAGELOG", LoadStyle::Star, TopArg::None, &kCageLogViewLayout};

std::vector<MemberInfo> cageMovementMembers() {
  auto m = tableMembers(kCageMovement);
  m.push_back(method<cCageMovementPersist>(
      "Post", {ArgInfo{"sBuffer", ValueType::String}, ArgInfo{"sConnect", ValueType::String}},
      ValueType::Boolean, [](cCageMovementPersist& o, std::span<const Variant> a) {
        return Variant(o.Post(a[0].str(), a[1].str()));
      }));
  return m;
}

}  // namespace

cCageMovementPersist::cCageMovementPersist() : TablePersist<CageMovementRecord>(kCageMovement) {}
const ClassInfo& cCageMovementPersist::info() {
  static const ClassInfo i = tableClass<cCageMovementPersist>("cCageMovementPersist", kCageMovement,
                                                              cageMovementMembers());
  return i;
}

bool cCageMovementPersist::Post(const std::u16string& sBuffer, const std::u16string& sConnect) {
  const auto call = lock();
  SetState(sBuffer);
  return postOnOwnConnection(sConnect,
                             u"EXEC sp_PostCageMovement " + longText(record().CageMovementID));
}

cCageLogPersist::cCageLogPersist() : TablePersist<CageLogRecord>(kCageLog) {}
const ClassInfo& cCageLogPersist::info() {
  static const ClassInfo i = tableClass<cCageLogPersist>("cCageLogPersist", kCageLog);
  return i;
}

cCageMoveCommentPersist::cCageMoveCommentPersist()
    : TablePersist<CageMoveCommentRecord>(kCageMoveComment) {}
const ClassInfo& cCageMoveCommentPersist::info() {
  static const ClassInfo i =
      tableClass<cCageMoveCommentPersist>("cCageMoveCommentPersist", kCageMoveComment);
  return i;
}

cvCageLogPersist::cvCageLogPersist() : ViewPersist<CageLogViewRecord>(kCageLogView) {}
const ClassInfo& cvCageLogPersist::info() {
  static const ClassInfo i = viewClass<cvCageLogPersist>("cvCageLogPersist", kCageLogView);
  return i;
}

}  // namespace vrdppo
