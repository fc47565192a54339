// The demo's laboratory section: a shift in the laboratory, from the settings it works under to
// the advice notes, holds and the export it hands on.
#include <fmt/format.h>

#include <ostream>

#include "commands.hpp"
#include "demo.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/lab/advice.hpp"
#include "vrdppo/lab/degradation.hpp"
#include "vrdppo/lab/foreign.hpp"
#include "vrdppo/lab/headers.hpp"
#include "vrdppo/lab/packed.hpp"
#include "vrdppo/lab/settings.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::cli {

namespace {

constexpr Long kSeason = 2019;

Long packedSample(DemoContext& d, Long header, Long container, Currency temperature) {
  cLabPackedPersist packed;
  packed.Commit(newState<cLabPackedPersist>([&](LabPackedRecord& r) {
                  r.LabHeaderID = header;
                  r.ProductionGradeId = d.productionGrade;
                  r.LabSeason = kSeason;
                  r.SampleDateTime = makeDate(2019, 3, 7, 7, 30);
                  r.Shift = 1;
                  put(r.TestType, u"PKD");
                  put(r.SampleType, u"PKS");
                  r.SampleCount = 1;
                  r.ContainerNumber = container;
                  r.Temperature = temperature;
                  r.OvenPct = Currency{121500};
                  put(r.ResultCode, u"OK");
                  put(r.StripAppearance, u"G");
                }),
                d.connect);
  return packed.record().LabPackedID;
}

}  // namespace

void demoLab(DemoContext& d) {
  d.heading("The laboratory's settings, and a frozen snapshot of them (the same 93 columns)");
  cLabSettingPersist setting;
  setting.Commit(newState<cLabSettingPersist>([&](LabSettingRecord& r) {
                   r.CompanyId = d.company;
                   r.ProductionGradeId = d.productionGrade;
                   put(r.PackedStrip, u"Y");
                   r.PackedStripCases = 20;
                   put(r.StripDegradation, u"Y");
                   r.StripDegMinutes = 60;
                   r.TotStemTarget = Currency{5000};
                   put(r.StrLabel1, u"Over 1\"");
                   put(r.ForeignMatter, u"Y");
                 }),
                 d.connect);
  LabSettingRecord frozen = setting.record();
  frozen.LabSettingID = 0;  // key 0: the snapshot is a new row
  cLabSettingSnapshotPersist snapshot;
  snapshot.record() = frozen;
  snapshot.Commit(snapshot.GetState(), d.connect);
  const Long snapshotId = snapshot.record().LabSettingID;
  d.statements();

  d.heading("A lab header under the snapshot: taken by one caller, refused to a second, released");
  cLabHeaderPersist header;
  header.Commit(newState<cLabHeaderPersist>([&](LabHeaderRecord& r) {
                  r.CompanyId = d.company;
                  r.ProductionGradeId = d.productionGrade;
                  r.LabSettingSnapshotID = snapshotId;
                  r.ProductionRunId = d.run;
                  r.StartDate = makeDate(2019, 3, 7, 6);
                  r.StartShift = 1;
                  put(r.LabStatus, u"OP");
                  put(r.DeletedFlag, u"N");
                }),
                d.connect);
  const Long headerId = header.record().LabHeaderID;
  const bool first = header.LockHeader(d.connect, headerId);
  const bool second = header.LockHeader(d.connect, headerId);
  header.ReleaseHeader(d.connect, headerId);
  d.statements();
  d.out << fmt::format("    first LockHeader: {}, second: {}\n", first, second);
  cvLabWorkListPersist work;
  const std::u16string listed = work.Load(u"LabHeaderID = " + longText(headerId), d.connect);
  d.statements();
  d.table(work.layout(), listed);

  d.heading("Packed and degradation samples, counted on their header by retried calls");
  const Long sample = packedSample(d, headerId, 120, Currency{312500});
  packedSample(d, headerId, 121, Currency{305000});
  cLabDegradationPersist degradation;
  degradation.Commit(newState<cLabDegradationPersist>([&](LabDegradationRecord& r) {
                       r.LabHeaderID = headerId;
                       r.ProductionGradeId = d.productionGrade;
                       r.LabSeason = kSeason;
                       r.SampleDateTime = makeDate(2019, 3, 7, 8);
                       r.Shift = 1;
                       put(r.TestType, u"STR");
                       put(r.SampleType, u"DGS");
                       r.SampleWeight = Currency{2000000};
                       r.OverOne = Currency{410000};
                       r.OverOnePct = Currency{205000};
                     }),
                     d.connect);
  const Long degradationId = degradation.record().LabDegradationID;
  cLabPackedPersist packed;
  const bool added = packed.LabAddPacked(u"", d.connect, sample);
  const bool addedDeg = degradation.LabAddDegradation(u"", d.connect, degradationId);
  d.statements();
  d.out << fmt::format("    LabAddPacked: {}, LabAddDegradation: {}\n", added, addedDeg);

  d.heading("Foreign matter found in a bale, and the bale view (Feathers before Lint there)");
  const Long bale = d.insert(
      u"INSERT INTO CBPRODUCTIONBALENTRM (InternalCode, NTRMStatus, BlendWeight, BarCode) "
      u"VALUES ('BL-0042', 'FND', 512.25, '0000420042')");
  cLabForeignPersist foreign;
  foreign.Commit(newState<cLabForeignPersist>([&](LabForeignRecord& r) {
                   r.LabHeaderID = headerId;
                   r.ProductionGradeId = d.productionGrade;
                   r.LabSeason = kSeason;
                   r.SampleDateTime = makeDate(2019, 3, 7, 9);
                   r.Shift = 1;
                   put(r.TestType, u"NTM");
                   r.ContainerNumber = 120;
                   r.SampleWeight = 500;
                   r.Lint = 2;
                   r.Feathers = 1;
                   r.LintWt = Currency{1500};
                   r.FeathersWt = Currency{300};
                   r.Other1 = 1;
                   put(r.Other1Desc, u"Twine");
                   r.Total = Currency{40000};
                   r.TotalWt = Currency{1800};
                   r.cbProductionBaleNTRMId = bale;
                 }),
                 d.connect);
  cvLabForeignBalePersist bales;
  const auto baleRows = recordsOf(bales.Load(u"", d.connect, 0));
  d.statements();
  for (const auto& row : baleRows) {
    bales.SetState(row);
    const auto& r = bales.record();
    d.out << fmt::format("    bale {} ({}): Feathers {}, Lint {}, {} of {}\n",
                         toUtf8(trimBlanks(r.InternalCode.view())),
                         toUtf8(trimBlanks(r.NTRMStatus.view())), Long{r.Feathers}, Long{r.Lint},
                         toUtf8(trimBlanks(r.Other1Desc.view())),
                         toUtf8(trimBlanks(r.BarCode.view())));
  }

  d.heading(
      "Advice notes: created, listed, synchronised twice (once bare on its own "
      "connection), withdrawn");
  packed.CreateAdviceNotes(u"", d.connect, d.company, kSeason);
  cLabAdviceNotePersist advice;
  const std::u16string notes = advice.Load(u"", d.connect);
  d.statements();
  d.table(advice.layout(), notes);
  packed.SyncAdviceNotes(d.connect, kSeason);
  advice.qsp_LabSyncAdvice(d.connect);
  packed.DeleteAdviceNotes(d.connect, d.company, kSeason);
  d.statements();

  d.heading("Intermediate notes for March, withdrawn for the production grade alone");
  header.qsp_LabCreateIntermediateNotes(u"", d.connect, kSeason, d.company, u"2019/03/01",
                                        u"2019/03/31");
  header.DeleteIntermediateNotes(d.connect, kSeason, d.company, Variant(d.productionGrade));
  d.statements();

  d.heading("A container put on hold, checked for prizing, and the list of holds");
  packed.qsp_OnHoldCheck(u"", d.connect, d.productionGrade, 120, u"MOI", 1);
  const bool prized = packed.qsp_ContainerPrized(u"", d.connect, d.productionGrade, 120);
  cvLabOnHoldPersist holds;
  const std::u16string held = holds.Load(u"", d.connect);
  d.statements();
  d.out << fmt::format("    container 120 prized: {}\n", prized);
  d.table(holds.layout(), held);

  d.heading(
      "The export view once the grade reports to China: packed results beside foreign "
      "matter weights");
  dbHelp::ConnectString = d.connect;
  dbHelp::OpenRecordset(
      u"UPDATE PRODUCTIONGRADE SET ChinaReporting = 'Y' WHERE "
      u"PRODUCTIONGRADEID = " +
      longText(d.productionGrade));
  d.trace.take();
  cvLabPackedChinaExportPersist exports;
  const auto exported = recordsOf(exports.Load(u"", d.connect, 0));
  d.statements();
  for (const auto& row : exported) {
    exports.SetState(row);
    const auto& r = exports.record();
    d.out << fmt::format("    container {}: temperature {}, oven {}%, lint {} g, feathers {} g\n",
                         Long{r.ContainerNumber}, toUtf8(currencyText(Currency{r.Temperature.raw})),
                         toUtf8(currencyText(Currency{r.OvenPct.raw})),
                         toUtf8(currencyText(Currency{r.LintWt.raw})),
                         toUtf8(currencyText(Currency{r.FeathersWt.raw})));
  }
}

}  // namespace vrdppo::cli
