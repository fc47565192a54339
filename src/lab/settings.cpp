#include "vrdppo/lab/settings.hpp"

#include <array>
#include <cstddef>
#include <iterator>

namespace vrdppo {

namespace {

// The green limits are C, every other limit C0; the switches mix S and S0. Both are kept as
// the tables have always been written.
using LS = LabSettingRecord;
constexpr Column kLabSettingColumns[] = {
    VRDPPO_COL(LS, LabSettingID, 0, None),
    VRDPPO_COL2(LS, CompanyId, 4, u"CompanyId", u"CompanyID", L),
    VRDPPO_COL2(LS, ProductionGradeId, 8, u"ProductionGradeId", u"ProductionGradeID", L0),
    VRDPPO_COL(LS, GreenDegradation, 12, S),
    VRDPPO_COL(LS, GreenDegCases, 16, L0),
    VRDPPO_COL(LS, GreenDegMinutes, 20, L0),
    VRDPPO_COL(LS, GrnTotStemTgt, 24, C),
    VRDPPO_COL(LS, GrnTotStemRet, 32, C),
    VRDPPO_COL(LS, GrnTotStemRer, 40, C),
    VRDPPO_COL(LS, GrnPctObjTgt, 48, C),
    VRDPPO_COL(LS, GrnPctObjRet, 56, C),
    VRDPPO_COL(LS, GrnPctObjRer, 64, C),
    VRDPPO_COL(LS, GrnLabel1, 72, S0),
    VRDPPO_COL(LS, GrnLabel2, 112, S0),
    VRDPPO_COL(LS, GrnLabel3, 152, S0),
    VRDPPO_COL(LS, GrnLabel4, 192, S0),
    VRDPPO_COL(LS, GrnLabel5, 232, S0),
    VRDPPO_COL(LS, GrnLabel6, 272, S0),
    VRDPPO_COL(LS, GrnLabel7, 312, S0),
    VRDPPO_COL(LS, GrnLabel8, 352, S0),
    VRDPPO_COL(LS, GrnLabel9, 392, S0),
    VRDPPO_COL(LS, StrLabel1, 432, S0),
    VRDPPO_COL(LS, StrLabel2, 472, S0),
    VRDPPO_COL(LS, StrLabel3, 512, S0),
    VRDPPO_COL(LS, StrLabel4, 552, S0),
    VRDPPO_COL(LS, StrLabel5, 592, S0),
    VRDPPO_COL(LS, StrLabel6, 632, S0),
    VRDPPO_COL(LS, StrLabel7, 672, S0),
    VRDPPO_COL(LS, StrLabel8, 712, S0),
    VRDPPO_COL(LS, StrLabel9, 752, S0),
    VRDPPO_COL(LS, ScrLabel1, 792, S0),
    VRDPPO_COL(LS, ScrLabel2, 832, S0),
    VRDPPO_COL(LS, ScrLabel3, 872, S0),
    VRDPPO_COL(LS, ScrLabel4, 912, S0),
    VRDPPO_COL(LS, ScrLabel5, 952, S0),
    VRDPPO_COL(LS, ScrLabel6, 992, S0),
    VRDPPO_COL(LS, ScrLabel7, 1032, S0),
    VRDPPO_COL(LS, ScrLabel8, 1072, S0),
    VRDPPO_COL(LS, ScrLabel9, 1112, S0),
    VRDPPO_COL(LS, StmLabel1, 1152, S0),
    VRDPPO_COL(LS, StmLabel2, 1192, S0),
    VRDPPO_COL(LS, StmLabel3, 1232, S0),
    VRDPPO_COL(LS, StmLabel4, 1272, S0),
    VRDPPO_COL(LS, StmLabel5, 1312, S0),
    VRDPPO_COL(LS, StmLabel6, 1352, S0),
    VRDPPO_COL(LS, StmLabel7, 1392, S0),
    VRDPPO_COL(LS, StmLabel8, 1432, S0),
    VRDPPO_COL(LS, StmLabel9, 1472, S0),
    VRDPPO_COL(LS, StripDegradation, 1512, S),
    VRDPPO_COL(LS, StripDegCases, 1516, L0),
    VRDPPO_COL(LS, StripDegMinutes, 1520, L0),
    VRDPPO_COL(LS, TotStemTarget, 1524, C0),
    VRDPPO_COL(LS, TotStemRetest, 1532, C0),
    VRDPPO_COL(LS, TotStemRerun, 1540, C0),
    VRDPPO_COL(LS, PctObjTarget, 1548, C0),
    VRDPPO_COL(LS, PctObjRetest, 1556, C0),
    VRDPPO_COL(LS, PctObjRerun, 1564, C0),
    VRDPPO_COL(LS, ScrapDegradation, 1572, S),
    VRDPPO_COL(LS, ScrapDegCases, 1576, L0),
    VRDPPO_COL(LS, ScrapDegMinutes, 1580, L0),
    VRDPPO_COL(LS, StemDegradation, 1584, S0),
    VRDPPO_COL(LS, StemDegCases, 1588, L0),
    VRDPPO_COL(LS, StemDegMinutes, 1592, L0),
    VRDPPO_COL(LS, PackedStrip, 1596, S),
    VRDPPO_COL(LS, PackedStripCases, 1600, L0),
    VRDPPO_COL(LS, PackedStripMinutes, 1604, L0),
    VRDPPO_COL(LS, PackedScrap, 1608, S0),
    VRDPPO_COL(LS, PackedScrapCases, 1612, L0),
    VRDPPO_COL(LS, PackedScrapMinutes, 1616, L0),
    VRDPPO_COL(LS, StemInScrap, 1620, S0),
    VRDPPO_COL(LS, PackedStem, 1622, S0),
    VRDPPO_COL(LS, PackedStemCases, 1624, L0),
    VRDPPO_COL(LS, PackedStemMinutes, 1628, L0),
    VRDPPO_COL(LS, LaminaOnStem, 1632, S),
    VRDPPO_COL(LS, StemLength, 1634, S),
    VRDPPO_COL(LS, StemLengthDetail, 1636, S0),
    VRDPPO_COL(LS, GreenMoisture, 1638, S),
    VRDPPO_COL(LS, GreenMinutes, 1640, L0),
    VRDPPO_COL(LS, GreenStemMoisture, 1644, S0),
    VRDPPO_COL(LS, StripMoistureTarget, 1648, C0),
    VRDPPO_COL(LS, StripMoistureRetest, 1656, C0),
    VRDPPO_COL(LS, StripMoistureRerun, 1664, C0),
    VRDPPO_COL(LS, StemMoistureTarget, 1672, C0),
    VRDPPO_COL(LS, StemMoistureRetest, 1680, C0),
    VRDPPO_COL(LS, StemMoistureRerun, 1688, C0),
    VRDPPO_COL(LS, ScrapMoistureTarget, 1696, C0),
    VRDPPO_COL(LS, ScrapMoistureRetest, 1704, C0),
    VRDPPO_COL(LS, ScrapMoistureRerun, 1712, C0),
    VRDPPO_COL(LS, ExitSiloMoisture, 1720, S),
    VRDPPO_COL(LS, ExitSiloCases, 1724, L0),
    VRDPPO_COL(LS, ExitSiloMinutes, 1728, L0),
    VRDPPO_COL(LS, ForeignMatter, 1732, S),
    VRDPPO_COL(LS, ForeignMatterCases, 1736, L0),
    VRDPPO_COL(LS, ForeignMatterMinutes, 1740, L0),
};
constexpr RecordLayout kLabSettingLayout =
    makeLayout<LS, 1011>(kLabSettingColumns, VRDPPO_TRAILING(LS, KeyName, 1744, u"LabSettingID"));

using SL = LabSettingListRecord;
constexpr Column kLabSettingListColumns[] = {
    VRDPPO_COL(SL, LabSettingID, 0, None),
    VRDPPO_COL2(SL, ProductionGradeId, 4, u"ProductionGradeId", u"ProductionGradeID", None),
    VRDPPO_COL2(SL, CompanyId, 8, u"CompanyId", u"CompanyID", None),
    VRDPPO_COL(SL, CompanyCode, 12, None),
    VRDPPO_COL(SL, CompanyName, 32, None),
    VRDPPO_COL(SL, ProductionGradeCode, 232, None),
};
constexpr RecordLayout kLabSettingListLayout =
    makeLayout<SL, 151>(kLabSettingListColumns, VRDPPO_TRAILING(SL, Blank, 252, u""));

constexpr TableConfig kLabSetting =
    secondGeneration(u"LABSETTING", u"LABSETTINGID", DeleteStyle::Hard, TopArg::Optional,
                     CriteriaDeleteForm::Second, kLabSettingLayout);
constexpr ViewConfig kLabSettingList{u"VLABSETTINGLIST", LoadStyle::List, TopArg::Optional,
                                     &kLabSettingListLayout};

// The snapshot's record is the setting's, field for field; only the key's name differs.
constexpr auto kLabSettingSnapshotColumns = [] {
  std::array<Column, std::size(kLabSettingColumns)> a{};
  for (std::size_t i = 0; i < a.size(); ++i) a[i] = kLabSettingColumns[i];
  a[0].read = a[0].write = u"LabSettingSnapshotID";
  return a;
}();
constexpr RecordLayout kLabSettingSnapshotLayout{
    kLabSettingLayout.bytes, kLabSettingLayout.stateChars, kLabSettingSnapshotColumns,
    TrailingField{kLabSettingLayout.trailing.offset, kLabSettingLayout.trailing.length,
                  u"LabSettingSnapshotID"}};
constexpr TableConfig kLabSettingSnapshot =
    secondGeneration(u"LABSETTINGSNAPSHOT", u"LABSETTINGSNAPSHOTID", DeleteStyle::Hard,
                     TopArg::Optional, CriteriaDeleteForm::Second, kLabSettingSnapshotLayout);

}  // namespace

cLabSettingPersist::cLabSettingPersist() : TablePersist<LabSettingRecord>(kLabSetting) {}
const ClassInfo& cLabSettingPersist::info() {
  static const ClassInfo i = tableClass<cLabSettingPersist>("cLabSettingPersist", kLabSetting);
  return i;
}

cvLabSettingListPersist::cvLabSettingListPersist()
    : ViewPersist<LabSettingListRecord>(kLabSettingList) {}
const ClassInfo& cvLabSettingListPersist::info() {
  static const ClassInfo i =
      viewClass<cvLabSettingListPersist>("cvLabSettingListPersist", kLabSettingList);
  return i;
}

cLabSettingSnapshotPersist::cLabSettingSnapshotPersist()
    : TablePersist<LabSettingRecord>(kLabSettingSnapshot) {}
const ClassInfo& cLabSettingSnapshotPersist::info() {
  static const ClassInfo i =
      tableClass<cLabSettingSnapshotPersist>("cLabSettingSnapshotPersist", kLabSettingSnapshot);
  return i;
}

}  // namespace vrdppo
