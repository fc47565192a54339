#include "vrdppo/cages/cages.hpp"

#include <cstddef>
#include <span>
#include <vector>

#include "vrdppo/dbhelp.hpp"
#include "vrdppo/provider.hpp"

namespace vrdppo {

namespace {

using CG = CageRecord;
// StatusId is L, so a current status of 0 is stored as 0; every other value of the current and
// previous state stores Null for 0 (PrevStatusId included). TareWeight is D: a tare of 0 is 0.
constexpr Column kCageColumns[] = {
    VRDPPO_COL(CG, CageId, 0, None),
    VRDPPO_COL(CG, CageCode, 4, S),
    VRDPPO_COL(CG, TareWeight, 24, D),
    VRDPPO_COL(CG, DeletedFlag, 32, S),
    VRDPPO_COL(CG, OperatorId, 36, L0),
    VRDPPO_COL(CG, GreenGradeId, 40, L0),
    VRDPPO_COL(CG, GrossWeight, 44, D0),
    VRDPPO_COL(CG, NetWeight, 52, D0),
    VRDPPO_COL(CG, StatusId, 60, L),
    VRDPPO_DATE(CG, StatusTS, 64, T0, u"yyyy/MM/dd HH:MM"),
    VRDPPO_COL(CG, PrevOperatorId, 72, L0),
    VRDPPO_COL(CG, PrevGreenGradeId, 76, L0),
    VRDPPO_COL(CG, PrevGrossWeight, 80, D0),
    VRDPPO_COL(CG, PrevNetWeight, 88, D0),
    VRDPPO_COL(CG, PrevStatusId, 96, L0),
    VRDPPO_DATE(CG, PrevStatusTS, 100, T0, u"yyyy/MM/dd HH:MM"),
};
constexpr RecordLayout kCageLayout =
    makeLayout<CG, 127>(kCageColumns, VRDPPO_TRAILING(CG, KeyName, 108, u"CageId"));
// Deleted by key although the table has a DeletedFlag.
constexpr TableConfig kCage = firstGeneration(u"CAGE", u"CAGEID", DeleteStyle::Hard, kCageLayout);

using CS = CageStatusRecord;
constexpr Column kCageStatusColumns[] = {
    VRDPPO_COL(CS, CageStatusId, 0, None),
    VRDPPO_COL(CS, CageStatus, 4, S),
    VRDPPO_COL(CS, Description, 24, S0),
    VRDPPO_COL(CS, Sequence, 224, L0),
};
constexpr RecordLayout kCageStatusLayout =
    makeLayout<CS, 130>(kCageStatusColumns, VRDPPO_TRAILING(CS, KeyName, 228, u"CageStatusId"));
constexpr TableConfig kCageStatus =
    firstGeneration(u"CAGESTATUS", u"CAGESTATUSID", DeleteStyle::Hard, kCageStatusLayout);

using CC = CageContentRecord;
constexpr Column kCageContentColumns[] = {
    VRDPPO_COL(CC, CageContentId, 0, None),
    VRDPPO_COL(CC, CageId, 4, L),
    VRDPPO_COL(CC, GreenGradeId, 8, L),
    VRDPPO_COL(CC, NetWeight, 12, D0),
};
constexpr RecordLayout kCageContentLayout =
    makeLayout<CC, 33>(kCageContentColumns, VRDPPO_TRAILING(CC, KeyName, 20, u"CageContentId"));
constexpr TableConfig kCageContent =
    firstGeneration(u"CAGECONTENT", u"CAGECONTENTID", DeleteStyle::Hard, kCageContentLayout);

using CV = CageContentViewRecord;
constexpr Column kCageContentViewColumns[] = {
    VRDPPO_COL(CV, CageContentId, 0, None), VRDPPO_COL(CV, CageId, 4, None),
    VRDPPO_COL(CV, CageCode, 8, None),      VRDPPO_COL(CV, GreenGradeId, 28, None),
    VRDPPO_COL(CV, GradeCode, 32, None),    VRDPPO_COL(CV, NetWeight, 52, None),
};
constexpr RecordLayout kCageContentViewLayout =
    makeLayout<CV, 53>(kCageContentViewColumns, VRDPPO_TRAILING(CV, Blank, 60, u""));
constexpr ViewConfig kCageContentView{u"VCAGECONTENT", LoadStyle::Star, TopArg::None,
                                      &kCageContentViewLayout};

std::vector<MemberInfo> cageMembers() {
  auto m = tableMembers(kCage);
  m.push_back(method<cCagePersist>(
      "SendAlert",
      {ArgInfo{"sConnect", ValueType::String, false}, ArgInfo{"lAlertID", ValueType::Long, false},
       ArgInfo{"lCageId", ValueType::Long, false}},
      ValueType::None, [](cCagePersist& o, std::span<const Variant> a) {
        o.SendAlert(a[0].str(), a[1].lng(), a[2].lng());
        return Variant();
      }));
  return m;
}

}  // namespace

cCagePersist::cCagePersist() : TablePersist<CageRecord>(kCage) {}
const ClassInfo& cCagePersist::info() {
  static const ClassInfo i = tableClass<cCagePersist>("cCagePersist", kCage, cageMembers());
  return i;
}

// Each step runs whether the one before it failed or not. The connection is opened with sConnect
// as given (no default, no APP) and keeps the provider's cursor location and time-out; no
// quoted-identifier setting and no audit id are sent.
void cCagePersist::SendAlert(std::u16string sConnect, Long lAlertID, Long lCageId) noexcept {
  try {
    dbHelp::ConnectString = sConnect;
  } catch (...) {
  }
  try {
    const auto call = lock();
    Connection connection;
    try {
      connection.Open(sConnect, {}, {}, adOptionUnspecified);
    } catch (...) {
    }
    try {
      connection.Execute(u"EXEC qsp_SendAlert " + longText(lAlertID) + u"," + longText(lCageId),
                         adOptionUnspecified);
    } catch (...) {
    }
    try {
      connection.Close();
    } catch (...) {
    }
  } catch (...) {
  }
}

cCageStatusPersist::cCageStatusPersist() : TablePersist<CageStatusRecord>(kCageStatus) {}
const ClassInfo& cCageStatusPersist::info() {
  static const ClassInfo i = tableClass<cCageStatusPersist>("cCageStatusPersist", kCageStatus);
  return i;
}

cCageContentPersist::cCageContentPersist() : TablePersist<CageContentRecord>(kCageContent) {}
const ClassInfo& cCageContentPersist::info() {
  static const ClassInfo i = tableClass<cCageContentPersist>("cCageContentPersist", kCageContent);
  return i;
}

cvCageContentPersist::cvCageContentPersist()
    : ViewPersist<CageContentViewRecord>(kCageContentView) {}
const ClassInfo& cvCageContentPersist::info() {
  static const ClassInfo i =
      viewClass<cvCageContentPersist>("cvCageContentPersist", kCageContentView);
  return i;
}

}  // namespace vrdppo
