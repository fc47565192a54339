// The run's input, output, test and result tables and the run views against the statement texts
// and layouts of their tables, on a scripted provider.
#include <gtest/gtest.h>

#include <cstring>

#include "support/class_cases.hpp"
#include "support/scripted_provider.hpp"
#include "vrdppo/buffer.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/production/inputs.hpp"
#include "vrdppo/production/results.hpp"
#include "vrdppo/production/run.hpp"
#include "vrdppo/production/tests.hpp"
#include "vrdppo/production/views.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/render.hpp"

using namespace vrdppo;
using vrdppo::testing::ScriptedProvider;

namespace {

const std::u16string kConnect = u"DSN=plant";

// The state of a record as the class's initialiser leaves it.
std::u16string initialState(PersistObject& o) {
  initialiseRecord(o.layout(), o.recordBytes());
  return o.GetState();
}

using Statements = vrdppo::testing::ScriptedTest;

}  // namespace

TEST_F(Statements, LayoutsMatchTheirTables) {
  vrdppo::testing::expectLayouts({
      {"cProductionRunPersist", 748, 420, "PRODUCTIONRUN", u""},
      {"cvProductionRunListPersist", 168, 106, "VPRODUCTIONRUNLIST", u""},
      {"cvProductionRunPrizingPersist", 652, 355, "VPRODUCTIONRUNPRIZING", u""},
      {"cProductionRunGradePersist", 84, 62, "PRODUCTIONRUNGRADE", u"ProductionRunGradeId"},
      {"cProductionGreenGradePersist", 72, 47, "PRODUCTIONGREENGRADE", u"ProductionGreenGradeId"},
      {"cPickingsPersist", 52, 35, "PICKINGS", u"PickingsId"},
      {"cByProductsPersist", 68, 49, "BYPRODUCTS", u"ByProductsId"},
      {"cProductionRunTargetPersist", 280, 158, "PRODUCTIONRUNTARGET", u"ProductionRunTargetId"},
      {"cProductionRunRedriedPersist", 64, 42, "PRODUCTIONRUNREDRIED", u"ProductionRunRedriedId"},
      {"cDegradationPersist", 136, 127, "DEGRADATION", u"DegradationId"},
      {"cOvenMoisturePersist", 80, 69, "OVENMOISTURE", u"OvenMoistureId"},
      {"cPackedMoisturePersist", 80, 72, "PACKEDMOISTURE", u"PackedMoistureId"},
      {"cGreenMoisturePersist", 80, 71, "GREENMOISTURE", u"GreenMoistureId"},
      {"cByProductsTestPersist", 60, 51, "BYPRODUCTSTEST", u"ByProductTestId"},
      {"cSugarNicotinePersist", 68, 59, "SUGARNICOTINE", u"SugarNicotineId"},
      {"cSandPersist", 72, 51, "SAND", u"SandId"},
      {"cSwingPersist", 180, 161, "SWING", u"SwingID"},
      {"cStripPersist", 56, 39, "STRIP", u"StripId"},
      {"cLaminaPersist", 60, 51, "LAMINA", u"LaminaId"},
      {"cProductionStatsPersist", 284, 165, "PRODUCTIONSTATS", u"ProductionStatsId"},
      {"cDegradationPYTDPersist", 144, 125, "DEGRADATIONPYTD", u"DegradationPYTDId"},
      {"cvRunGreenGradeListPersist", 60, 38, "VRUNGREENGRADELIST", u""},
      {"cvRunStemTypesPersist", 56, 45, "VRUNSTEMTYPES", u""},
      {"cvRunByProductTypesPersist", 52, 44, "VRUNBYPRODUCTTYPES", u""},
      {"cvRunGreenWeightTotalsPersist", 100, 74, "VRUNGREENWEIGHTTOTALS", u""},
      {"cvRunProdGreenGradesPersist", 68, 54, "VRUNPRODGREENGRADES", u""},
      {"cvRunRedriedGradeListPersist", 104, 66, "VRUNREDRIEDGRADELIST", u""},
      {"cvProdGreenGradeListPersist", 112, 63, "VPRODGREENGRADELIST", u""},
  });
}

// The insert of a record as its initialiser leaves it shows each column's render code: which
// write Null for an empty value and which write 0, '' or the default date.
TEST_F(Statements, InsertsOfEmptyRecordsShowEachRenderCode) {
  db.answerRows(u"sp_InsertStatement", {u"Identity"}, {{Long{1}}});
  const struct {
    const char* name;
    std::u16string text;
  } cases[] = {
      {"cProductionRunGradePersist",
       u"INSERT INTO PRODUCTIONRUNGRADE (ProductionGreenGradeId, ProductionRunId, WeightUsed, "
       u"GrossBaleWeight, TareValue, TareUnitCount) VALUES (0, 0, 0, Null, Null, Null)"},
      {"cProductionGreenGradePersist",
       u"INSERT INTO PRODUCTIONGREENGRADE (ProductionGradeId, GreenGradeId, TargetPercentage, "
       u"SortSequence, DeletedFlag) VALUES (0, Null, 0, 0, '')"},
      {"cPickingsPersist",
       u"INSERT INTO PICKINGS (ProductionRunId, Weight, PickingTypeId) VALUES (0, 0, Null)"},
      {"cByProductsPersist",
       u"INSERT INTO BYPRODUCTS (ByProductsTypeId, ProductionRunId, ContainerStart, "
       u"ContainerEnd, TotalNetWeight, SumLink, DiscardFlag) VALUES (0, 0, Null, Null, 0, 0, "
       u"'')"},
      {"cProductionRunTargetPersist",
       u"INSERT INTO PRODUCTIONRUNTARGET (ProductionGreenGradeId, TargetPercentage, "
       u"ThisRunWeight, Comment, ThisRunPercentage, ProductionRunId) VALUES (0, Null, 0, Null, "
       u"Null, 0)"},
      {"cProductionRunRedriedPersist",
       u"INSERT INTO PRODUCTIONRUNREDRIED (ProductionGreenGradeId, ProductionRunId, WeightUsed) "
       u"VALUES (0, 0, 0)"},
      {"cDegradationPersist",
       u"INSERT INTO DEGRADATION (TestType, ProductionRunId, TestNumber, SampleTime, Weight, "
       u"Over1, OverHalf, FourXFour, EightXEight, StripOnPan, ThruQuarter, NonObj, ObjStem, "
       u"StemOnPan) VALUES (0, 0, 0, '1900/01/01 00:00', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"},
      {"cOvenMoisturePersist",
       u"INSERT INTO OVENMOISTURE (TobaccoType, SampleTime, CaseNumber, PackedTemperature, "
       u"Percentage, ProductionRunId, StemTypeId) VALUES (0, '1900/01/01 00:00', 0, Null, 0, "
       u"0, Null)"},
      {"cPackedMoisturePersist",
       u"INSERT INTO PACKEDMOISTURE (SampleTime, PackedPressure, Temperature, CoolerRight, "
       u"CoolerLeft, ProductionRunId) VALUES ('1900/01/01 00:00', 0, 0, 0, 0, 0)"},
      {"cGreenMoisturePersist",
       u"INSERT INTO GREENMOISTURE (SampleTime, Blending, CondCylinder, StripThresh, "
       u"StemThresh, ProductionRunId) VALUES ('1900/01/01 00:00', 0, 0, 0, 0, 0)"},
      {"cByProductsTestPersist",
       u"INSERT INTO BYPRODUCTSTEST (ByProductsId, SampleTime, CaseNumber, Value) VALUES (0, "
       u"Null, Null, 0)"},
      {"cSugarNicotinePersist",
       u"INSERT INTO SUGARNICOTINE (SampleTime, CaseNumber, PercentSugar, PercentNicotine, "
       u"ProductionRunId) VALUES ('1900/01/01 00:00', 0, 0, 0, 0)"},
      {"cSandPersist",
       u"INSERT INTO SAND (ProductionRunId, StripCaseNumber, StripCasePercentage, "
       u"VSSCaseNumber, VSSCasePercentage) VALUES (0, 0, 0, 0, 0)"},
      {"cSwingPersist",
       u"INSERT INTO SWING (ProductionGradeID, TotStemMin, TotStemMax, ObjectMin, ObjectMax, "
       u"Over1Min, Over1Max, OverHalfMin, OverHalfMax, TotThruQuarterMin, TotThruQuarterMax, "
       u"OnPanMin, OnPanMax, VSSCode, StripLow, StripHigh, StemLow, StemHigh) VALUES (0, 0, 0, "
       u"0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"},
      {"cStripPersist",
       u"INSERT INTO STRIP (TotalNetWeight, ContainerStart, ContainerEnd, ProductionRunId) "
       u"VALUES (0, 0, 0, 0)"},
      {"cLaminaPersist",
       u"INSERT INTO LAMINA (TestNumber, SampleTime, LaminaOnStem, ProductionRunId) VALUES (0, "
       u"'1900/01/01 00:00', 0, 0)"},
      {"cProductionStatsPersist",
       u"INSERT INTO PRODUCTIONSTATS (ObjectTypeId, ObjectId, ProductionGradeId, ObjectCode, "
       u"YTD, PYTD, PYTD2, CurrentValue) VALUES (0, 0, Null, '', Null, Null, Null, Null)"},
      {"cDegradationPYTDPersist",
       u"INSERT INTO DEGRADATIONPYTD (ProductionGradeId, TestType, DegradationType, "
       u"SeasonYear, Over1, TotalOverHalf, OverHalf, FourXFour, EightXEight, StripOnPan, "
       u"ThruQuarter, NonObj, ObjStem, TotalStem, StemOnPan) VALUES (0, 0, 0, 0, 0, 0, 0, 0, "
       u"0, 0, 0, 0, 0, 0, 0)"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto o = registry::create(c.name);
    const std::u16string state = initialState(*o);
    ASSERT_TRUE(registry::invoke(*o, "Commit", std::vector<Variant>{state, kConnect}).boolean());
    EXPECT_EQ(db.statements().back(), u"EXEC sp_InsertStatement @p_Stmt = \"" + c.text + u"\"");
  }
}

TEST_F(Statements, OnlyTheRedriedGradeDoublesQuotesAmongTheRunsOutputs) {
  db.answerRows(u"sp_InsertStatement", {u"Identity"}, {{Long{1}}});
  cProductionRunTargetPersist target;
  initialiseRecord(target.layout(), target.recordBytes());
  const char16_t comment[] = u"12\" sieve";
  std::copy_n(comment, 9, target.record().Comment.c);
  target.Commit(target.GetState(), kConnect);
  EXPECT_NE(db.statements().back().find(u"'12\" sieve'"), std::u16string::npos);

  // The redried grade has no string column; its doubling shows in the key of a soft state.
  cProductionRunRedriedPersist redried;
  EXPECT_TRUE(redried.config().doubleQuotesInInsert);
  EXPECT_FALSE(target.config().doubleQuotesInInsert);
}

TEST_F(Statements, FirstFormCriteriaDeleteTakesCriteriaSecond) {
  const struct {
    const char* name;
    const char16_t* table;
  } cases[] = {
      {"cProductionRunGradePersist", u"PRODUCTIONRUNGRADE"},
      {"cProductionRunTargetPersist", u"PRODUCTIONRUNTARGET"},
      {"cProductionRunRedriedPersist", u"PRODUCTIONRUNREDRIED"},
      {"cDegradationPersist", u"DEGRADATION"},
      {"cOvenMoisturePersist", u"OVENMOISTURE"},
      {"cPackedMoisturePersist", u"PACKEDMOISTURE"},
      {"cGreenMoisturePersist", u"GREENMOISTURE"},
      {"cByProductsTestPersist", u"BYPRODUCTSTEST"},
      {"cSugarNicotinePersist", u"SUGARNICOTINE"},
      {"cSandPersist", u"SAND"},
      {"cLaminaPersist", u"LAMINA"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    db.clear();
    dbHelp::ConnectString = u"DSN=before";
    auto o = registry::create(c.name);
    const MemberInfo* m = o->classInfo().member("CriteriaDelete");
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(m->args[1].name, "sCriteria");
    const std::u16string before = o->GetState();
    const std::u16string state = initialState(*o);
    o->SetState(before);
    EXPECT_FALSE(registry::invoke(*o, "CriteriaDelete",
                                  std::vector<Variant>{state, std::u16string(u"   "), kConnect})
                     .boolean());
    EXPECT_TRUE(db.log().empty());
    EXPECT_EQ(dbHelp::ConnectString, u"DSN=before");
    EXPECT_EQ(o->GetState(), before);

    EXPECT_TRUE(registry::invoke(
                    *o, "CriteriaDelete",
                    std::vector<Variant>{state, std::u16string(u" ProductionRunId = 7"), kConnect})
                    .boolean());
    EXPECT_EQ(db.statements().back(),
              u"DELETE FROM " + std::u16string(c.table) + u" WHERE  ProductionRunId = 7");
    EXPECT_EQ(o->GetState(), state);
  }
  for (const char* name :
       {"cSwingPersist", "cStripPersist", "cPickingsPersist", "cByProductsPersist",
        "cProductionGreenGradePersist", "cDegradationPYTDPersist"}) {
    EXPECT_EQ(registry::find(name)->member("CriteriaDelete"), nullptr) << name;
  }
}

TEST_F(Statements, ProductionStatsCriteriaDeleteIgnoresItsIdAndBlanksTheRecord) {
  cProductionStatsPersist o;
  dbHelp::ConnectString = u"DSN=before";
  EXPECT_FALSE(o.CriteriaDelete(5, u"  ", kConnect));
  EXPECT_TRUE(db.log().empty());
  EXPECT_EQ(dbHelp::ConnectString, u"DSN=before");

  EXPECT_TRUE(o.CriteriaDelete(5, u"ObjectTypeId = 2", kConnect));
  EXPECT_EQ(db.statements().back(), u"DELETE FROM ProductionStats WHERE ObjectTypeId = 2");
  EXPECT_EQ(o.record().ProductionStatsId, 2097184);  // two blanks as bytes
  const MemberInfo* m = cProductionStatsPersist::info().member("CriteriaDelete");
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->args[0].name, "lID");
  EXPECT_EQ(m->args[0].type, ValueType::Long);
}

TEST_F(Statements, SpellingsOfTheirOwn) {
  db.answerRows(u"sp_InsertStatement", {u"Identity"}, {{Long{1}}});
  cSwingPersist swing;
  initialiseRecord(swing.layout(), swing.recordBytes());
  swing.record().SwingID = 4;
  swing.record().ProductionGradeId = 9;
  swing.Commit(swing.GetState(), kConnect);
  EXPECT_EQ(db.statements().back().substr(0, 54),
            u"UPDATE SWING SET ProductionGradeID = 9, TotStemMin = 0");
  EXPECT_NE(db.statements().back().find(u" WHERE SWINGID = 4"), std::u16string::npos);

  // Rows are read under the other spelling.
  db.answerRows(u"FROM OVENMOISTURE",
                {u"OvenMoistureId", u"TobaccoType", u"SampleTime", u"CaseNumber",
                 u"PackedTemperature", u"Percentage", u"ProductionRunId", u"StemTypeID"},
                {{Long{1}, Long{2}, Date{43531.5}, Long{3}, 4.5, 5.5, Long{6}, Long{7}}});
  cOvenMoisturePersist oven;
  Buffer b;
  b.SetState(oven.Load(u"", kConnect));
  ASSERT_EQ(b.Count(), 1);
  EXPECT_EQ(oven.record().StemTypeID, 7);
  EXPECT_EQ(oven.InsertFields(),
            u"TobaccoType, SampleTime, CaseNumber, PackedTemperature, Percentage, "
            u"ProductionRunId, StemTypeId");
}

TEST_F(Statements, ViewsLoadWithStarAndEstimateTen) {
  const struct {
    const char* name;
    std::vector<Variant> args;
    std::u16string sql;
  } cases[] = {
      {"cvRunGreenGradeListPersist",
       {u"ProductionRunId = 7"},
       u"SELECT * FROM VRUNGREENGRADELIST WHERE ProductionRunId = 7"},
      {"cvRunStemTypesPersist", {u" "}, u"SELECT * FROM VRUNSTEMTYPES"},
      {"cvRunByProductTypesPersist", {u""}, u"SELECT * FROM VRUNBYPRODUCTTYPES"},
      {"cvRunGreenWeightTotalsPersist",
       {u"x = 1"},
       u"SELECT * FROM VRUNGREENWEIGHTTOTALS WHERE x = 1"},
      {"cvRunProdGreenGradesPersist", {u""}, u"SELECT * FROM VRUNPRODGREENGRADES"},
      {"cvRunProdGreenGradesPersist", {u"", Long{0}}, u"SELECT * FROM VRUNPRODGREENGRADES"},
      {"cvRunProdGreenGradesPersist",
       {u"a = 1", Long{5}},
       u"SELECT TOP 5 * FROM VRUNPRODGREENGRADES WHERE a = 1"},
      {"cvRunRedriedGradeListPersist", {u""}, u"SELECT * FROM VRUNREDRIEDGRADELIST"},
      {"cvProdGreenGradeListPersist", {u""}, u"SELECT * FROM VPRODGREENGRADELIST"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    db.clear();
    auto o = registry::create(c.name);
    std::vector<Variant> args{c.args[0], kConnect};
    if (c.args.size() > 1) args.push_back(c.args[1]);
    db.answerRows(u"SELECT", {u"Nothing"}, {}, 1);
    const std::u16string state = registry::invoke(*o, "Load", args).str();
    EXPECT_EQ(db.statements().back(), c.sql);
    Buffer b;
    b.SetState(state);
    EXPECT_EQ(state.size(), 9u);
    EXPECT_EQ(b.Count(), 0);
  }
  // A TOP of 5 leaves the estimate at 10.
  db.answerRows(u"SELECT",
                {u"ProductionRunId", u"ProductionDate", u"ProductionGradeId",
                 u"ProductionGreenGradeId", u"GreenGradeId"},
                {{Long{7}, Variant::null(), Long{1}, Long{2}, Long{3}}}, 1);
  cvRunProdGreenGradesPersist v;
  const std::u16string state = v.Load(u"", kConnect, 5);
  ASSERT_EQ(state.size(), 9u + 54u);
  EXPECT_EQ(readBufferHeader(state).estimate, 10);
  EXPECT_EQ(readBufferHeader(state).capacity, 10);
  EXPECT_EQ(double{v.record().ProductionDate.days}, 2.0);  // Null reads as 1900/01/01
}

TEST_F(Statements, ListViewsOfRunsSelectTheirColumns) {
  cvProductionRunListPersist list;
  db.answerRows(u"SELECT", {u"x"}, {}, 1);
  list.Load(u"", kConnect, 5);
  EXPECT_EQ(db.statements().back(),
            u"SELECT TOP 5 ProductionRunId, ProductionDate, ShiftNumber, ProductionGradeId, "
            u"ProductionGradeCode, companydeleted, GradeId, GradeCode, CompanyId, CompanyCode, "
            u"Status, ScanningComplete, PrizingStatus, RunSequence, ChinaReporting FROM "
            u"VPRODUCTIONRUNLIST");
  cvProductionRunPrizingPersist prizing;
  db.answerRows(u"SELECT", {u"x"}, {}, 1);
  const std::u16string empty = prizing.Load(u"ProductionRunId = 7", kConnect, 0);
  EXPECT_EQ(db.statements().back(),
            u"SELECT ProductionDate, ProductionGradeId, ProductionGradeCode, Status, "
            u"ScanningComplete, ProductionRunId, GradeCode, GradeId, Description, GrowingYear, "
            u"PrizedGradeCode, PrizedCompanyCode, TypeCode, SortSequence, GradeType, GradeTypeId, "
            u"CompanyId, CompanyCode, CompanyName, PrizingStatus, RunSequence, FedIn FROM "
            u"VPRODUCTIONRUNPRIZING WHERE ProductionRunId = 7");
  EXPECT_EQ(empty.size(), 9u);
  EXPECT_EQ(readBufferHeader(empty).estimate, 1);
  // lTop is required in both.
  EXPECT_FALSE(cvProductionRunListPersist::info().member("Load")->args[2].optional);
  EXPECT_FALSE(cvProductionRunPrizingPersist::info().member("Load")->args[2].optional);
  EXPECT_FALSE(cvProductionRunListPersist::info().member("RecordToObj")->isPublic);
}
