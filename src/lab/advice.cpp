#include "vrdppo/lab/advice.hpp"

#include <cstddef>
#include <exception>

#include "lab/lab_calls.hpp"
#include "vrdppo/provider.hpp"

namespace vrdppo {

namespace {

using AN = LabAdviceNoteRecord;
constexpr Column kLabAdviceNoteColumns[] = {
    VRDPPO_COL(AN, LabAdviceNoteID, 0, None),
    VRDPPO_COL(AN, AdviceNoteNum, 4, L),
    VRDPPO_COL(AN, NumberOfCases, 8, L),
    VRDPPO_COL(AN, CutOff, 12, S),
};
constexpr RecordLayout kLabAdviceNoteLayout =
    makeLayout<AN, 28>(kLabAdviceNoteColumns, VRDPPO_TRAILING(AN, KeyName, 14, u"LabAdviceNoteID"));

using OH = LabOnHoldRecord;
constexpr Column kLabOnHoldColumns[] = {
    VRDPPO_COL(OH, CompanyCode, 0, None),
    VRDPPO_COL(OH, CompanyName, 20, None),
    VRDPPO_COL(OH, ProductionGradeCode, 220, None),
    VRDPPO_COL(OH, GradeCode, 240, None),
    VRDPPO_COL(OH, OnHoldID, 280, None),
    VRDPPO_COL(OH, LabHeaderID, 284, None),
    VRDPPO_COL2(OH, ProductionGradeId, 288, u"ProductionGradeId", u"ProductionGradeID", None),
    VRDPPO_COL(OH, LabSeason, 292, None),
    VRDPPO_COL(OH, ContainerNumber, 296, None),
    VRDPPO_COL(OH, ResultCode, 300, None),
    VRDPPO_COL(OH, SampleType, 304, None),
    VRDPPO_COL(OH, OnHoldType, 310, None),
    VRDPPO_COL(OH, SampleDateTime, 316, None),
    VRDPPO_COL(OH, ScrapCode, 324, None),
    VRDPPO_COL(OH, StemCode, 344, None),
};
constexpr RecordLayout kLabOnHoldLayout =
    makeLayout<OH, 233>(kLabOnHoldColumns, VRDPPO_TRAILING(OH, Blank, 384, u""));

// Extra1Wt to Other2Wt stand behind WoodWt and Other3Wt behind SeedWt: the order callers read.
using CE = LabPackedChinaExportRecord;
constexpr Column kLabPackedChinaExportColumns[] = {
    VRDPPO_COL(CE, SampleDateTime, 0, None),
    VRDPPO_COL(CE, ContainerNumber, 8, None),
    VRDPPO_COL(CE, SampleWeight, 12, None),
    VRDPPO_COL(CE, Temperature, 16, None),
    VRDPPO_COL(CE, OvenPct, 24, None),
    VRDPPO_COL(CE, StripAppearance, 32, None),
    VRDPPO_COL(CE, PackingCartons, 34, None),
    VRDPPO_COL(CE, Reweigh, 36, None),
    VRDPPO_COL(CE, PackDensityVarPct, 44, None),
    VRDPPO_COL(CE, SuckersWt, 52, None),
    VRDPPO_COL(CE, StalkWt, 60, None),
    VRDPPO_COL(CE, StrawWt, 68, None),
    VRDPPO_COL(CE, GrassWt, 76, None),
    VRDPPO_COL(CE, StringsWt, 84, None),
    VRDPPO_COL(CE, LintWt, 92, None),
    VRDPPO_COL(CE, FeathersWt, 100, None),
    VRDPPO_COL(CE, PaperWt, 108, None),
    VRDPPO_COL(CE, PlasticWt, 116, None),
    VRDPPO_COL(CE, InsulationWt, 124, None),
    VRDPPO_COL(CE, FoamWt, 132, None),
    VRDPPO_COL(CE, RubberWt, 140, None),
    VRDPPO_COL(CE, RocksWt, 148, None),
    VRDPPO_COL(CE, WoodWt, 156, None),
    VRDPPO_COL(CE, Extra1Wt, 164, None),
    VRDPPO_COL(CE, Extra2Wt, 172, None),
    VRDPPO_COL(CE, Other1Wt, 180, None),
    VRDPPO_COL(CE, Other2Wt, 188, None),
    VRDPPO_COL(CE, HairWt, 196, None),
    VRDPPO_COL(CE, InsectOrCocoonsWt, 204, None),
    VRDPPO_COL(CE, StainedLeavesWt, 212, None),
    VRDPPO_COL(CE, FurWt, 220, None),
    VRDPPO_COL(CE, WoolWt, 228, None),
    VRDPPO_COL(CE, MetalWt, 236, None),
    VRDPPO_COL(CE, FruitOrNutsWt, 244, None),
    VRDPPO_COL(CE, SeedWt, 252, None),
    VRDPPO_COL(CE, Other3Wt, 260, None),
    VRDPPO_COL2(CE, ProductionGradeId, 268, u"ProductionGradeId", u"ProductionGradeID", None),
    VRDPPO_COL(CE, LabPackedID, 272, None),
    VRDPPO_COL(CE, LabForeignID, 276, None),
    VRDPPO_COL(CE, LabHeaderID, 280, None),
};
constexpr RecordLayout kLabPackedChinaExportLayout =
    makeLayout<CE, 307>(kLabPackedChinaExportColumns, VRDPPO_TRAILING(CE, Blank, 284, u""));

constexpr TableConfig kLabAdviceNote =
    secondGeneration(u"LABADVICENOTE", u"LABADVICENOTEID", DeleteStyle::Hard, TopArg::Optional,
                     CriteriaDeleteForm::Second, kLabAdviceNoteLayout);
constexpr ViewConfig kLabOnHold{u"VLABONHOLD", LoadStyle::List, TopArg::Optional,
                                &kLabOnHoldLayout};
constexpr ViewConfig kLabPackedChinaExport{u"VLABPACKEDCHINAEXPORT", LoadStyle::List,
                                           TopArg::Required, &kLabPackedChinaExportLayout};

}  // namespace

cLabAdviceNotePersist::cLabAdviceNotePersist()
    : TablePersist<LabAdviceNoteRecord>(kLabAdviceNote) {}
const ClassInfo& cLabAdviceNotePersist::info() {
  static const ClassInfo i = [] {
    auto m = tableMembers(kLabAdviceNote);
    using C = cLabAdviceNotePersist;
    m.push_back(method<C>("qsp_LabSyncAdvice", {stringArg("sConnect")}, ValueType::None,
                          [](C& o, std::span<const Variant> a) {
                            o.qsp_LabSyncAdvice(a[0].str());
                            return Variant();
                          }));
    return tableClass<cLabAdviceNotePersist>("cLabAdviceNotePersist", kLabAdviceNote, std::move(m));
  }();
  return i;
}

cvLabOnHoldPersist::cvLabOnHoldPersist() : ViewPersist<LabOnHoldRecord>(kLabOnHold) {}
const ClassInfo& cvLabOnHoldPersist::info() {
  static const ClassInfo i = viewClass<cvLabOnHoldPersist>("cvLabOnHoldPersist", kLabOnHold);
  return i;
}

cvLabPackedChinaExportPersist::cvLabPackedChinaExportPersist()
    : ViewPersist<LabPackedChinaExportRecord>(kLabPackedChinaExport) {}
const ClassInfo& cvLabPackedChinaExportPersist::info() {
  static const ClassInfo i = viewClass<cvLabPackedChinaExportPersist>(
      "cvLabPackedChinaExportPersist", kLabPackedChinaExport);
  return i;
}

// Its own connection, with sConnect alone: no ConnectString, no default, no APP=, no SET
// QUOTED_IDENTIFIER, no audit id and the connection's own time-out. Every failure is
// swallowed, and the connection is then let go unclosed.
void cLabAdviceNotePersist::qsp_LabSyncAdvice(const std::u16string& sConnect) {
  const auto call = lock();
  try {
    Connection connection;
    connection.setCursorLocation(adUseClient);
    connection.Open(sConnect, {}, {}, adOptionUnspecified);
    connection.Execute(u"qsp_LabSyncAdvice", adOptionUnspecified);
    connection.Close();
  } catch (const std::exception&) {
    // A synchronisation that failed looks like one that succeeded.
  }
}

}  // namespace vrdppo
