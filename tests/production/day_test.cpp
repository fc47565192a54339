// A run's day on a real store: the run and what it consumes and yields written through the table
// classes, read back through the run views, then posted, prized and zapped by procedure.
#include <gtest/gtest.h>

#include "endtoend/store_fixture.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/production/inputs.hpp"
#include "vrdppo/production/run.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/production/tests.hpp"
#include "vrdppo/production/views.hpp"
#include "vrdppo/reference/grades.hpp"

using namespace vrdppo;
using namespace vrdppo::testing;

namespace {

constexpr double kMarch7 = 43531.0;

class Day : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    company = insert(
        u"INSERT INTO COMPANY (CompanyCode, CompanyName, DeletedFlag) VALUES "
        u"('LGC', 'Leaf Growers Co-op', 'N')");
    gradeType = insert(
        u"INSERT INTO GRADETYPE (TypeCode, GradeType, SortSequence) VALUES "
        u"('STR', 'Strip', 2)");
    grade = insert(
        u"INSERT INTO GRADE (GradeCode, CompanyId, Description, GrowingYear, "
        u"GradeTypeId, PrizedGradeCode, PrizedCompanyCode) VALUES ('FCV-A', " +
        longText(company) + u", 'Flue cured A', 2019, " + longText(gradeType) +
        u", 'PA1', 'PLGC')");
    productionGrade = insert(
        u"INSERT INTO PRODUCTIONGRADE (ProductionGradeCode, GradeId, ChinaReporting) "
        u"VALUES ('PG1', " +
        longText(grade) + u", 'Y')");
    green1 = insert(u"INSERT INTO GREENGRADE (GradeCode, CompanyId, ScrapGrade) VALUES ('G1', " +
                    longText(company) + u", 'N')");
    green2 = insert(u"INSERT INTO GREENGRADE (GradeCode, CompanyId, ScrapGrade) VALUES ('G2', " +
                    longText(company) + u", 'Y')");
  }

  Long recipeLine(Long green, double percentage, Long sort) {
    cProductionGreenGradePersist o;
    EXPECT_TRUE(o.Commit(newState<cProductionGreenGradePersist>([&](auto& r) {
                           r.ProductionGradeId = productionGrade;
                           r.GreenGradeId = green;
                           r.TargetPercentage = percentage;
                           r.SortSequence = sort;
                           put(r.DeletedFlag, u"N");
                         }),
                         connect));
    return o.record().ProductionGreenGradeId;
  }

  Long newRun() {
    cProductionRunPersist o;
    EXPECT_TRUE(o.Commit(newState<cProductionRunPersist>([&](ProductionRunRecord& r) {
                           r.ProductionDate = Date{kMarch7};
                           r.ShiftNumber = 2;
                           put(r.Status, u"O");
                           r.ProductionGradeId = productionGrade;
                           put(r.ProductionLine, u"L1");
                           put(r.Comments, u"a \"wet\" day");
                           r.FedIn = 12000.5;
                           put(r.ScanningComplete, u"Y");
                         }),
                         connect));
    return o.record().ProductionRunId;
  }

  template <class Class>
  auto view(const std::u16string& criteria) {
    Class v;
    return rowsOf<Class>(v.Load(criteria, connect));
  }

  Long company = 0, gradeType = 0, grade = 0, productionGrade = 0, green1 = 0, green2 = 0;
};

}  // namespace

TEST_F(Day, TheRunViewsShowWhatTheTablesWrote) {
  const Long line1 = recipeLine(green1, 60, 1);
  const Long line2 = recipeLine(green2, 40, 2);
  const Long run = newRun();
  const std::u16string ofRun = u"ProductionRunId = " + longText(run);

  cProductionRunGradePersist used;
  ASSERT_TRUE(used.Commit(newState<cProductionRunGradePersist>([&](auto& r) {
                            r.ProductionGreenGradeId = line1;
                            r.ProductionRunId = run;
                            r.WeightUsed = 7200.25;
                            r.GrossBaleWeight = 95;
                            r.TareValue = 2.5;
                            r.TareUnitCount = 3;
                          }),
                          connect));
  cProductionRunRedriedPersist redried;
  ASSERT_TRUE(redried.Commit(newState<cProductionRunRedriedPersist>([&](auto& r) {
                               r.ProductionGreenGradeId = line2;
                               r.ProductionRunId = run;
                               r.WeightUsed = 800.5;
                             }),
                             connect));
  cPickingsPersist pickings;
  ASSERT_TRUE(pickings.Commit(newState<cPickingsPersist>([&](auto& r) {
                                r.ProductionRunId = run;
                                r.Weight = 40;
                                r.PickingTypeId = 6;
                              }),
                              connect));
  cStemsPersist stems;
  ASSERT_TRUE(stems.Commit(newState<cStemsPersist>([&](StemsRecord& r) {
                             r.ProductionRunId = run;
                             r.TotalNetWeight = 300;
                             r.StemTypeID = 8;
                           }),
                           connect));
  cByProductsPersist byProducts;
  ASSERT_TRUE(byProducts.Commit(newState<cByProductsPersist>([&](auto& r) {
                                  r.ProductionRunId = run;
                                  r.ByProductsTypeId = 9;
                                  r.TotalNetWeight = 55;
                                  put(r.DiscardFlag, u"N");
                                }),
                                connect));
  insert(u"INSERT INTO GREENINVENTORY (GrossWeight, GreenGradeId, WeightUomId) VALUES (50000, " +
         longText(green1) + u", 1)");

  const auto list = view<cvProductionRunListPersist>(ofRun);
  ASSERT_EQ(list.size(), 1u);
  EXPECT_EQ(double{list[0].ProductionDate.days}, kMarch7);
  EXPECT_EQ(text(list[0].ProductionGradeCode), u"PG1");
  EXPECT_EQ(text(list[0].GradeCode), u"FCV-A");
  EXPECT_EQ(text(list[0].CompanyCode), u"LGC");
  EXPECT_EQ(text(list[0].companydeleted), u"N");
  EXPECT_EQ(text(list[0].Status), u"O");
  EXPECT_EQ(text(list[0].ChinaReporting), u"Y");

  const auto prizing = view<cvProductionRunPrizingPersist>(ofRun);
  ASSERT_EQ(prizing.size(), 1u);
  EXPECT_EQ(text(prizing[0].PrizedGradeCode), u"PA1");
  EXPECT_EQ(text(prizing[0].PrizedCompanyCode), u"PLGC");
  EXPECT_EQ(text(prizing[0].TypeCode), u"STR");
  EXPECT_EQ(prizing[0].GrowingYear, 2019);
  EXPECT_EQ(text(prizing[0].CompanyName), u"Leaf Growers Co-op");
  EXPECT_EQ(double{prizing[0].FedIn}, 12000.5);

  const auto greens = view<cvRunGreenGradeListPersist>(ofRun);
  ASSERT_EQ(greens.size(), 1u);
  EXPECT_EQ(greens[0].GreenGradeId, green1);
  EXPECT_EQ(greens[0].ProductionGreenGradeId, line1);
  EXPECT_EQ(greens[0].ProductionGradeId, productionGrade);

  const auto stemTypes = view<cvRunStemTypesPersist>(ofRun);
  ASSERT_EQ(stemTypes.size(), 1u);
  EXPECT_EQ(stemTypes[0].StemTypeID, 8);
  EXPECT_EQ(double{stemTypes[0].ProductionDate.days}, kMarch7);

  const auto byProductTypes = view<cvRunByProductTypesPersist>(ofRun);
  ASSERT_EQ(byProductTypes.size(), 1u);
  EXPECT_EQ(byProductTypes[0].ByProductsTypeId, 9);

  const auto pickingTypes = view<cvRunPickingTypesPersist>(ofRun);
  ASSERT_EQ(pickingTypes.size(), 1u);
  EXPECT_EQ(pickingTypes[0].PickingTypeId, 6);

  const auto totals = view<cvRunGreenWeightTotalsPersist>(ofRun);
  ASSERT_EQ(totals.size(), 1u);
  EXPECT_EQ(text(totals[0].GradeCode), u"G1");
  EXPECT_EQ(double{totals[0].inventoryweight}, 50000.0);
  EXPECT_EQ(double{totals[0].RunWeight}, 7200.25);
  EXPECT_EQ(double{totals[0].TareValue}, 2.5);
  EXPECT_EQ(totals[0].TareUnitCount, 3);

  const auto lines = view<cvRunProdGreenGradesPersist>(ofRun + u" ORDER BY GreenGradeId");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[1].GreenGradeId, green2);
  cvRunProdGreenGradesPersist top;
  EXPECT_EQ(rowsOf<cvRunProdGreenGradesPersist>(top.Load(ofRun, connect, 1)).size(), 1u);

  const auto redriedRows = view<cvRunRedriedGradeListPersist>(ofRun);
  ASSERT_EQ(redriedRows.size(), 1u);
  EXPECT_EQ(double{redriedRows[0].WeightUsed}, 800.5);
  EXPECT_EQ(text(redriedRows[0].GradeCode), u"G2");
  EXPECT_EQ(text(redriedRows[0].ScrapGrade), u"Y");
  EXPECT_EQ(redriedRows[0].SortSequence, 2);

  const auto recipe = view<cvProdGreenGradeListPersist>(
      u"ProductionGradeId = " + longText(productionGrade) + u" ORDER BY SortSequence");
  ASSERT_EQ(recipe.size(), 2u);
  EXPECT_EQ(double{recipe[0].TargetPercentage}, 60.0);
  EXPECT_EQ(text(recipe[0].ProductionGradeCode), u"PG1");
  EXPECT_EQ(text(recipe[1].GradeCode), u"G2");

  // A soft-deleted recipe line leaves the run's lines.
  cProductionGreenGradePersist line;
  line.Delete(
      newState<cProductionGreenGradePersist>([&](auto& r) { r.ProductionGreenGradeId = line2; }),
      connect);
  EXPECT_EQ(view<cvRunProdGreenGradesPersist>(ofRun).size(), 1u);
  EXPECT_EQ(view<cvRunStemTypesPersist>(u"ProductionRunId = 0").size(), 0u);
}

TEST_F(Day, PostPrizeAndZap) {
  const Long run = newRun();
  const Long other = newRun();
  cProductionRunPersist o;
  const auto state = newState<cProductionRunPersist>([&](auto& r) { r.ProductionRunId = run; });
  const std::u16string ofRun = u"PRODUCTIONRUNID = " + longText(run);

  EXPECT_EQ(o.sCanDeleteProductionRun(state, connect), u"");
  EXPECT_EQ(o.CreatePrizedStageHeaders(state, connect), 0);
  o.AssignRunSequence(state, connect, 0);
  o.AssignRunSequence(newState<cProductionRunPersist>([&](auto& r) { r.ProductionRunId = other; }),
                      connect, 0);
  EXPECT_EQ(scalar(u"SELECT RunSequence FROM PRODUCTIONRUN WHERE " + ofRun), 1);
  o.AssignRunSequence(state, connect, other);  // swapped, each taking the other's
  EXPECT_EQ(scalar(u"SELECT RunSequence FROM PRODUCTIONRUN WHERE " + ofRun), 2);
  EXPECT_EQ(
      scalar(u"SELECT RunSequence FROM PRODUCTIONRUN WHERE PRODUCTIONRUNID = " + longText(other)),
      1);
  o.ReleaseToPrizing(state, connect);
  EXPECT_FALSE(o.bGradeChangeInProgress(state, connect));
  o.CompletePrizing(state, connect, 3);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM PRODUCTIONRUN WHERE PrizingStatus = 'C' AND " + ofRun),
            1);
  EXPECT_EQ(o.sCanDeleteProductionRun(state, connect),
            u"Production run " + longText(run) + u" has been released to prizing.");
  EXPECT_EQ(o.CreatePrizedStageHeaders(
                newState<cProductionRunPersist>([](auto& r) { r.ProductionRunId = 999; }), connect),
            1);

  EXPECT_TRUE(o.Post(connect, 12, run, true));
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM PRODUCTIONRUN WHERE Status = 'P' AND " + ofRun), 1);
  EXPECT_FALSE(o.Post(u"", 12, run, true));

  // Zapping takes the run's dependants, by-product tests included, and leaves the other run's.
  for (const Long r : {run, other}) {
    cDegradationPersist d;
    ASSERT_TRUE(
        d.Commit(newState<cDegradationPersist>([&](auto& x) { x.ProductionRunId = r; }), connect));
    cByProductsPersist b;
    ASSERT_TRUE(
        b.Commit(newState<cByProductsPersist>([&](auto& x) { x.ProductionRunId = r; }), connect));
    cByProductsTestPersist t;
    ASSERT_TRUE(t.Commit(newState<cByProductsTestPersist>(
                             [&](auto& x) { x.ByProductsId = b.record().ByProductsId; }),
                         connect));
  }
  EXPECT_TRUE(o.Delete(state, connect));
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM PRODUCTIONRUN"), 1);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM DEGRADATION"), 1);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM BYPRODUCTS"), 1);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM BYPRODUCTSTEST"), 1);
  EXPECT_EQ(o.sCanDeleteProductionRun(state, connect),
            u"Production run " + longText(run) + u" does not exist.");
}

TEST_F(Day, AQuoteInATargetsCommentBreaksItsInsert) {
  cProductionRunTargetPersist target;
  EXPECT_THROW(target.Commit(newState<cProductionRunTargetPersist>(
                                 [](auto& r) { put(r.Comment, u"12\" sieve, then more"); }),
                             connect),
               Error);
  cProductionRunPersist run;
  ASSERT_TRUE(run.Commit(newState<cProductionRunPersist>(
                             [](ProductionRunRecord& r) { put(r.Comments, u"12\" sieve"); }),
                         connect));
  const auto rows = rowsOf<cProductionRunPersist>(run.Load(u"", connect));
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(text(rows[0].Comments), u"12\" sieve");
}

TEST_F(Day, TheReportFillsAndClearsItsTables) {
  newRun();
  cvProductionGradeListPersist report;
  report.Load(u"", connect);  // leaves ConnectString for the report
  report.sp_GenerateProcessingResultsReport(u"2019");
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM ProcessingResultsReport"), 1);
  report.ProcessingResults(2019, u"LGC", Date{kMarch7}, Date{kMarch7}, u"");
  report.ClearProcessingResultsTables();
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM ProcessingResultsReport"), 0);
}
