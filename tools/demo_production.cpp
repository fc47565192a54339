// The demo's production section: a run's day, from its recipe to prizing.
#include <fmt/format.h>

#include <ostream>

#include "commands.hpp"
#include "demo.hpp"
#include "vrdppo/production/inputs.hpp"
#include "vrdppo/production/run.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/production/tests.hpp"
#include "vrdppo/production/views.hpp"
#include "vrdppo/reference/types.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::cli {

namespace {

// The kinds of output the run records: a picking type, a stem type and a by-product type.
struct Kinds {
  Long picking = 0, stem = 0, byProducts = 0;
};

Kinds outputKinds(DemoContext& d) {
  d.heading(
      "Picking, stem and by-product types (cPickingTypePersist, cStemTypePersist, "
      "cByProductsTypePersist: the second generation reads StemTypeID, writes StemTypeId)");
  Kinds k;
  cPickingTypePersist picking;
  picking.Commit(newState<cPickingTypePersist>([](PickingTypeRecord& r) {
                   put(r.Description, u"Green leaf picked out");
                   r.SortSequence = 1;
                   put(r.DeletedFlag, u"N");
                 }),
                 d.connect);
  k.picking = picking.record().PickingTypeId;
  cStemTypePersist stem;
  stem.Commit(newState<cStemTypePersist>([&](StemTypeRecord& r) {
                r.ProductionGradeId = d.productionGrade;
                put(r.Code, u"LS");
                put(r.Description, u"Long stem");
                put(r.DeletedFlag, u"N");
                r.GradeId = d.grade;
              }),
              d.connect);
  k.stem = stem.record().StemTypeID;
  cByProductsTypePersist byProducts;
  for (const auto& [code, sort] : {std::pair{u"DUST", 1}, {u"SCRAP", 2}}) {
    byProducts.Commit(newState<cByProductsTypePersist>([&](ByProductsTypeRecord& r) {
                        r.CompanyId = d.company;
                        put(r.Code, code);
                        put(r.Description, code);
                        r.SortSequence = sort;
                        put(r.DeletedFlag, u"N");
                        put(r.Active, u"Y");
                      }),
                      d.connect);
    if (!k.byProducts) k.byProducts = byProducts.record().ByProductsTypeId;
  }
  // SCRAP moves a place up, ahead of DUST.
  byProducts.AdjustSortSequence(byProducts.GetState(), d.connect, -1,
                                u"CompanyId = " + longText(d.company));
  d.statements();
  cvCompanyByProductsListPersist list;
  d.table(list.layout(),
          list.Load(u"CompanyId = " + longText(d.company) + u" ORDER BY SortSequence", d.connect));
  d.statements();
  return k;
}

Long newRun(DemoContext& d, Long shift, const char16_t* comments) {
  cProductionRunPersist run;
  run.Commit(newState<cProductionRunPersist>([&](ProductionRunRecord& r) {
               r.ProductionDate = Date{43531.0};  // 2019/03/07
               r.ShiftNumber = shift;
               put(r.Status, u"O");
               r.ProductionGradeId = d.productionGrade;
               put(r.ProductionLine, u"LINE 1");
               put(r.CCOperator, u"J. Banda");
               put(r.Picked, u"N");
               put(r.Comments, comments);
               r.FedIn = 24000;
               put(r.ScanningComplete, u"N");
             }),
             d.connect);
  return run.record().ProductionRunId;
}

}  // namespace

void demoProduction(DemoContext& d) {
  const Kinds kinds = outputKinds(d);

  d.heading(
      "The production grade's recipe (cProductionGreenGradePersist) and the run "
      "(cProductionRunPersist doubles the \" in its comment)");
  cProductionGreenGradePersist recipe;
  recipe.Commit(newState<cProductionGreenGradePersist>([&](ProductionGreenGradeRecord& r) {
                  r.ProductionGradeId = d.productionGrade;
                  r.GreenGradeId = d.greenGrade;
                  r.TargetPercentage = 100;
                  r.SortSequence = 1;
                  put(r.DeletedFlag, u"N");
                }),
                d.connect);
  const Long line = recipe.record().ProductionGreenGradeId;
  d.run = newRun(d, 1, u"Start-up on the \"new\" redrier");
  d.statements();

  d.heading("What the run used and aimed at: grades used, redried, targets");
  cProductionRunGradePersist used;
  used.Commit(newState<cProductionRunGradePersist>([&](ProductionRunGradeRecord& r) {
                r.ProductionGreenGradeId = line;
                r.ProductionRunId = d.run;
                r.WeightUsed = 23500.5;
                r.GrossBaleWeight = 95;
                r.TareValue = 2.5;
                r.TareUnitCount = 1;
              }),
              d.connect);
  cProductionRunTargetPersist target;
  target.Commit(newState<cProductionRunTargetPersist>([&](ProductionRunTargetRecord& r) {
                  r.ProductionGreenGradeId = line;
                  r.TargetPercentage = 100;
                  r.ThisRunWeight = 23500.5;
                  r.ThisRunPercentage = 97.9;
                  r.ProductionRunId = d.run;
                }),
                d.connect);
  d.statements();

  d.heading("What the run yielded: pickings, stems and by-products with a test");
  cPickingsPersist pickings;
  pickings.Commit(newState<cPickingsPersist>([&](PickingsRecord& r) {
                    r.ProductionRunId = d.run;
                    r.Weight = 41.5;
                    r.PickingTypeId = kinds.picking;
                  }),
                  d.connect);
  cStemsPersist stems;
  for (const double weight : {125.5, 98.25}) {
    stems.Commit(newState<cStemsPersist>([&](StemsRecord& r) {
                   r.TotalNetWeight = weight;
                   r.ContainerEnd = 12;
                   r.StemTypeID = kinds.stem;
                   r.ProductionRunId = d.run;
                 }),
                 d.connect);
  }
  cByProductsPersist byProducts;
  byProducts.Commit(newState<cByProductsPersist>([&](ByProductsRecord& r) {
                      r.ByProductsTypeId = kinds.byProducts;
                      r.ProductionRunId = d.run;
                      r.ContainerStart = 1;
                      r.ContainerEnd = 4;
                      r.TotalNetWeight = 310;
                      put(r.DiscardFlag, u"N");
                    }),
                    d.connect);
  cByProductsTestPersist byProductsTest;
  byProductsTest.Commit(newState<cByProductsTestPersist>([&](ByProductsTestRecord& r) {
                          r.ByProductsId = byProducts.record().ByProductsId;
                          r.Value = 3.25;  // no sample time: it goes out as Null
                        }),
                        d.connect);
  d.statements();

  d.heading(
      "In-process tests: a sieve test, oven moisture, sugar and nicotine, sand, lamina, "
      "strip (a CriteriaDelete with blank criteria sends nothing)");
  cDegradationPersist degradation;
  degradation.Commit(newState<cDegradationPersist>([&](DegradationRecord& r) {
                       r.TestType = 1;
                       r.ProductionRunId = d.run;
                       r.TestNumber = 1;
                       r.SampleTime = Date{43531.0 + 9.5 / 24};
                       r.Weight = 500;
                       r.Over1 = 48.2;
                       r.OverHalf = 31.1;
                     }),
                     d.connect);
  cOvenMoisturePersist oven;
  oven.Commit(newState<cOvenMoisturePersist>([&](OvenMoistureRecord& r) {
                r.TobaccoType = 1;
                r.SampleTime = Date{43531.0 + 10.0 / 24};
                r.CaseNumber = 3;
                r.Percentage = 12.4;
                r.ProductionRunId = d.run;
              }),
              d.connect);
  cSugarNicotinePersist sugar;
  sugar.Commit(newState<cSugarNicotinePersist>([&](SugarNicotineRecord& r) {
                 r.SampleTime = Date{43531.0 + 11.0 / 24};
                 r.CaseNumber = 3;
                 r.PercentSugar = 14.2;
                 r.PercentNicotine = 2.6;
                 r.ProductionRunId = d.run;
               }),
               d.connect);
  cSandPersist sand;
  sand.Commit(newState<cSandPersist>([&](SandRecord& r) {
                r.ProductionRunId = d.run;
                r.StripCaseNumber = 3;
                r.StripCasePercentage = 0.4;
              }),
              d.connect);
  cLaminaPersist lamina;
  lamina.Commit(newState<cLaminaPersist>([&](LaminaRecord& r) {
                  r.TestNumber = 1;
                  r.SampleTime = Date{43531.0 + 12.0 / 24};
                  r.LaminaOnStem = 1.8;
                  r.ProductionRunId = d.run;
                }),
                d.connect);
  cStripPersist strip;
  strip.Commit(newState<cStripPersist>([&](StripRecord& r) {
                 r.TotalNetWeight = 19800;
                 r.ContainerEnd = 99;
                 r.ProductionRunId = d.run;
               }),
               d.connect);
  d.out << fmt::format("    CriteriaDelete with blank criteria: {}\n",
                       lamina.CriteriaDelete(lamina.GetState(), u"  ", d.connect));
  d.statements();

  d.heading("The run views read back (plain shape: SELECT *, estimate 10)");
  const std::u16string ofRun = u"ProductionRunId = " + longText(d.run);
  cvRunGreenGradeListPersist greens;
  d.table(greens.layout(), greens.Load(ofRun, d.connect));
  cvRunPickingTypesPersist pickingTypes;
  d.table(pickingTypes.layout(), pickingTypes.Load(ofRun, d.connect));
  cvRunStemTypesPersist stemTypes;
  d.table(stemTypes.layout(), stemTypes.Load(ofRun, d.connect));
  cvRunByProductTypesPersist byProductTypes;
  d.table(byProductTypes.layout(), byProductTypes.Load(ofRun, d.connect));
  cvRunGreenWeightTotalsPersist totals;
  d.table(totals.layout(), totals.Load(ofRun, d.connect));
  cvRunProdGreenGradesPersist lines;
  d.table(lines.layout(), lines.Load(ofRun, d.connect, 5));
  d.statements();

  d.heading("The run's stems back through Load: a Buffer state of 43-character records");
  const std::u16string state = stems.Load(ofRun + u" ORDER BY StemsId", d.connect);
  d.statements();
  d.out << "    state: " << state.size() << " characters; its first record as state text:\n    "
        << escapeState(recordsOf(state).at(0)) << "\n";
  d.table(stems.layout(), state);

  d.heading(
      "Posting and prizing: sp_PostProductionRun on a connection of its own (nothing sent "
      "ahead of it), then the qsp_Prizing procedures");
  cProductionRunPersist run;
  const std::u16string runState =
      newState<cProductionRunPersist>([&](ProductionRunRecord& r) { r.ProductionRunId = d.run; });
  d.out << fmt::format("    may the run be deleted? \"{}\"\n",
                       toUtf8(run.sCanDeleteProductionRun(runState, d.connect)));
  d.out << fmt::format("    Post: {}\n", run.Post(d.connect, 12, d.run, true));
  d.out << fmt::format("    CreatePrizedStageHeaders: ErrorCode {}\n",
                       run.CreatePrizedStageHeaders(runState, d.connect));
  run.AssignRunSequence(runState, d.connect, 0);
  run.ReleaseToPrizing(runState, d.connect);
  run.UpdatePrizingStatus(runState, d.connect);
  d.out << fmt::format("    bGradeChangeInProgress: {}\n",
                       run.bGradeChangeInProgress(runState, d.connect));
  run.CompletePrizing(runState, d.connect, 3);
  d.statements();
  cvProductionRunPrizingPersist prizing;
  d.table(prizing.layout(), prizing.Load(ofRun, d.connect, 0));
  cvProductionRunListPersist list;
  d.table(list.layout(), list.Load(u"", d.connect, 5));
  d.statements();

  d.heading("A run entered by mistake, checked and zapped with all that hangs from it");
  const Long mistake = newRun(d, 2, u"entered twice");
  cPickingsPersist extra;
  extra.Commit(newState<cPickingsPersist>([&](PickingsRecord& r) {
                 r.ProductionRunId = mistake;
                 r.Weight = 1;
               }),
               d.connect);
  const std::u16string mistakeState =
      newState<cProductionRunPersist>([&](ProductionRunRecord& r) { r.ProductionRunId = mistake; });
  d.out << fmt::format("    may it be deleted? \"{}\"; may the posted run? \"{}\"\n",
                       toUtf8(run.sCanDeleteProductionRun(mistakeState, d.connect)),
                       toUtf8(run.sCanDeleteProductionRun(runState, d.connect)));
  run.Delete(mistakeState, d.connect);
  d.statements();
}

}  // namespace vrdppo::cli
