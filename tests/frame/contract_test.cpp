// The contracts against the exact statement texts of the worked examples, on a scripted provider.
#include <gtest/gtest.h>

#include <cstring>

#include "support/class_cases.hpp"
#include "support/scripted_provider.hpp"
#include "vrdppo/buffer.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/reference/grades.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;
using vrdppo::testing::ScriptedProvider;

namespace {

const std::u16string kConnect = u"DSN=plant";

std::u16string stem(Long key) {
  return newState<cStemsPersist>([key](StemsRecord& r) {
    r.StemsId = key;
    r.TotalNetWeight = 125.5;
    r.ContainerStart = 0;
    r.ContainerEnd = 12;
    r.StemTypeID = 3;
    r.ProductionRunId = 77;
  });
}

using Contract = vrdppo::testing::ScriptedTest;

}  // namespace

TEST_F(Contract, StemsStateHoldsTheRecordThenZeros) {
  const std::u16string s = stem(901);
  ASSERT_EQ(s.size(), 43u);
  EXPECT_EQ(s[0], 901);
  EXPECT_EQ(s.substr(14, 6), u"StemId");  // the literal at byte 28
  EXPECT_EQ(s.substr(20, 9), std::u16string(9, u' '));
  EXPECT_EQ(s.substr(29), std::u16string(14, u'\0'));  // bytes 58 and 59 are padding
  cStemsPersist fresh;
  EXPECT_EQ(fresh.GetState(), std::u16string(43, u'\0'));  // a new object's record is zero bytes
}

TEST_F(Contract, StemsWorkedExamples) {
  db.answerRows(u"sp_InsertStatement", {u"Identity"}, {{Decimal{"901"}}});
  cStemsPersist s;
  EXPECT_TRUE(s.Commit(stem(0), kConnect));
  EXPECT_EQ(db.statements().back(),
            u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO STEMS (TotalNetWeight, "
            u"ContainerStart, ContainerEnd, StemTypeId, ProductionRunId) VALUES (125.5, Null, 12, "
            u"3, 77)\"");
  EXPECT_EQ(s.record().StemsId, 901);
  EXPECT_EQ(s.GetState(), stem(901));
  EXPECT_EQ(db.handedOut().back()->State(), adStateClosed);  // the identity's rowset is closed

  EXPECT_TRUE(s.Commit(stem(901), kConnect));
  EXPECT_EQ(db.statements().back(),
            u"UPDATE STEMS SET TotalNetWeight = 125.5, ContainerStart = Null, ContainerEnd = 12, "
            u"StemTypeId = 3, ProductionRunId = 77 WHERE STEMSID = 901");
  EXPECT_TRUE(s.Delete(stem(901), kConnect));
  EXPECT_EQ(db.statements().back(), u"DELETE FROM STEMS WHERE STEMSID = 901");
  EXPECT_EQ(dbHelp::ConnectString, kConnect);  // stays set after the call
}

TEST_F(Contract, StemsLoadFillsABufferByReadSpelling) {
  db.answerRows(u"SELECT * FROM STEMS",
                {u"STEMSID", u"totalnetweight", u"ContainerStart", u"ContainerEnd", u"StemTypeID",
                 u"ProductionRunId", u"Extra"},
                {{int32_t{1}, 125.5, Variant::null(), int32_t{12}, int32_t{3}, int32_t{77}, u"x"},
                 {int32_t{2}, Currency{15000}, int32_t{4}, 12.5, u"3", int32_t{77}, u"y"}});
  cStemsPersist s;
  const std::u16string state = s.Load(u"ProductionRunId = 77", kConnect);
  EXPECT_EQ(db.statements().back(), u"SELECT * FROM STEMS WHERE ProductionRunId = 77");
  ASSERT_EQ(state.size(), 95u);
  Buffer b;
  b.SetState(state);
  EXPECT_EQ(b.Length(), 43);
  EXPECT_EQ(b.Count(), 2);
  EXPECT_EQ(readBufferHeader(state).estimate, 10);
  EXPECT_EQ(b.Item(1), stem(1));
  cStemsPersist second;
  second.SetState(b.Item(2));
  EXPECT_EQ(double{second.record().TotalNetWeight}, 1.5);
  EXPECT_EQ(second.record().ContainerEnd, 12);  // 12.5 rounds to even
  EXPECT_EQ(s.GetState(), b.Item(2));           // the record holds the last row read
  EXPECT_EQ(db.handedOut().back()->State(), adStateClosed);
}

TEST_F(Contract, LoadOfNothingAndBlankCriteria) {
  db.answerRows(u"STEMS", {u"StemsId"}, {});
  cStemsPersist first;
  const auto a = first.Load(u"   ", kConnect);  // blanks only: no WHERE
  EXPECT_EQ(db.statements().back(), u"SELECT * FROM STEMS");
  EXPECT_EQ(a.size(), 9u);
  EXPECT_EQ(readBufferHeader(a).estimate, 10);
  EXPECT_EQ(readBufferHeader(a).capacity, 10);

  db.answerRows(u"PRODUCTIONGRADE", {u"ProductionGradeId"}, {});
  cProductionGradePersist second;
  const auto b = second.Load(u"", kConnect, 0);
  EXPECT_EQ(db.statements().back(),
            u"SELECT ProductionGradeId, ProductionGradeCode, GradeId, DeletedFlag, Active, "
            u"EnforcePercent, FineCut, ReportingCompanyId, ChinaReporting FROM PRODUCTIONGRADE");
  EXPECT_EQ(b.size(), 9u);
  EXPECT_EQ(readBufferHeader(b).estimate, 1);
  EXPECT_EQ(readBufferHeader(b).capacity, 1);
  // Released without a Close when empty.
  EXPECT_EQ(db.handedOut().back()->State(), adStateOpen);
}

TEST_F(Contract, TopInEachForm) {
  cProductionGradePersist pg;
  db.answerRows(
      u"TOP 3",
      {u"ProductionGradeId", u"ProductionGradeCode", u"GradeId", u"DeletedFlag", u"Active",
       u"EnforcePercent", u"FineCut", u"ReportingCompanyId", u"ChinaReporting"},
      {{int32_t{1}, u"A", int32_t{2}, u" ", u"Y", u"N", u"N", int32_t{3}, u"N"}});
  db.answerRows(u"SELECT", {}, {});
  const auto s = pg.Load(u"GradeId = 2", kConnect, 3);
  EXPECT_EQ(db.statements().back(),
            u"SELECT TOP 3 ProductionGradeId, ProductionGradeCode, GradeId, DeletedFlag, Active, "
            u"EnforcePercent, FineCut, ReportingCompanyId, ChinaReporting FROM PRODUCTIONGRADE "
            u"WHERE GradeId = 2");
  EXPECT_EQ(readBufferHeader(s).estimate, 3);
  EXPECT_EQ(readBufferHeader(s).capacity, 3);
  pg.Load(u"", kConnect, -4);
  EXPECT_EQ(db.statements().back().substr(0, 28), u"SELECT ProductionGradeId, Pr");

  cGreenGradePersist gg;
  const auto g = gg.Load(u"CompanyId = 3", kConnect, 5);
  EXPECT_EQ(db.statements().back(), u"SELECT TOP 5 * FROM GREENGRADE WHERE CompanyId = 3");
  EXPECT_EQ(readBufferHeader(g).estimate, 10);  // the estimate stays 10 here
  gg.Load(u"", kConnect);
  EXPECT_EQ(db.statements().back(), u"SELECT * FROM GREENGRADE");
}

TEST_F(Contract, InsertQuotesPerGeneration) {
  db.answerRows(u"InsertStatement", {u"Identity"}, {{int32_t{5}}});
  // Second generation: two blanks, qsp_, every " doubled.
  cProductionGradePersist pg;
  pg.Commit(newState<cProductionGradePersist>([](ProductionGradeRecord& r) {
              put(r.ProductionGradeCode, u"A\"B'C");
              put(r.Active, u"Y");
              r.ReportingCompanyId = 3;
            }),
            kConnect);
  EXPECT_EQ(db.statements().back(),
            u"EXEC qsp_InsertStatement @p_Stmt = \"INSERT INTO PRODUCTIONGRADE  "
            u"(ProductionGradeCode, GradeId, DeletedFlag, Active, EnforcePercent, FineCut, "
            u"ReportingCompanyId, ChinaReporting) VALUES ('A\"\"B''C', Null, '', 'Y', '', '', 3, "
            u"'')\"");
  // First generation, green grades: doubled too.
  cGreenGradePersist gg;
  gg.Commit(newState<cGreenGradePersist>([](GreenGradeRecord& r) { put(r.GradeCode, u"6\"X"); }),
            kConnect);
  EXPECT_EQ(db.statements().back(),
            u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO GREENGRADE (GradeCode, DeletedFlag, "
            u"CompanyId, ReportingProductionGradeId, ScrapGrade) VALUES ('6\"\"X', '', 0, Null, "
            u"'')\"");
  // Other first-generation classes send it as it is.
  cStemsPersist st;
  EXPECT_EQ(st.InsertValues(), u"0, Null, Null, 0, 0");  // a new object's record is zeros
}

TEST_F(Contract, DeleteStylesAndCriteriaDeleteForms) {
  const auto pgState =
      newState<cProductionGradePersist>([](ProductionGradeRecord& r) { r.ProductionGradeId = 4; });
  cProductionGradePersist pg;
  EXPECT_TRUE(pg.Delete(pgState, kConnect));
  EXPECT_EQ(db.statements().back(),
            u"UPDATE PRODUCTIONGRADE SET DELETEDFLAG = 'Y' WHERE PRODUCTIONGRADEID = 4");
  EXPECT_TRUE(pg.CriteriaDelete(pgState, kConnect, u" ", false));
  EXPECT_EQ(db.statements().back(), u"UPDATE PRODUCTIONGRADE SET DELETEDFLAG = 'Y'");
  EXPECT_TRUE(pg.CriteriaDelete(pgState, kConnect, u"GradeId = 2", true));
  EXPECT_EQ(db.statements().back(), u"DELETE FROM PRODUCTIONGRADE WHERE GradeId = 2");

  cProductionGradeSpecPersist spec;
  EXPECT_TRUE(spec.CriteriaDelete(u"", kConnect, u""));
  EXPECT_EQ(db.statements().back(), u"DELETE FROM PRODUCTIONGRADESPEC");

  cGreenGradePersist gg;
  EXPECT_TRUE(gg.Delete(std::u16string(50, u'\0'), u"DSN=other"));  // key 0: still True
  EXPECT_EQ(db.statements().back(),
            u"UPDATE GREENGRADE SET DELETEDFLAG = 'Y' WHERE GREENGRADEID = 0");
  EXPECT_EQ(dbHelp::ConnectString, u"DSN=other");
}

TEST_F(Contract, SetStateCutsAndPadsWithBlanks) {
  cStemsPersist s;
  s.SetState(u"");
  EXPECT_EQ(s.record().StemsId, 2097184);  // two blanks as bytes
  EXPECT_EQ(s.record().ProductionRunId, 2097184);
  s.SetState(stem(5) + u"trailing characters have no effect");
  EXPECT_EQ(s.GetState(), stem(5));
  // Commit("") goes the update path with that key.
  s.Commit(u"", kConnect);
  EXPECT_EQ(toUtf8(db.statements().back()).substr(0, 17), "UPDATE STEMS SET ");
  EXPECT_NE(db.statements().back().find(u"WHERE STEMSID = 2097184"), std::u16string::npos);
}

// A class's own SetState copies a whole record at once; through the base it goes field by byte.
// Every length of state, short ones padded, must leave both records alike.
TEST_F(Contract, SetStateOfTheClassAgreesWithTheBase) {
  std::u16string state;
  for (char16_t c = 0; c < 50; ++c) state += static_cast<char16_t>(0x4101 + 3 * c);
  for (std::size_t n = 0; n <= state.size(); ++n) {
    cStemsPersist own;
    cStemsPersist base;
    own.SetState(std::u16string_view(state).substr(0, n));
    static_cast<PersistObject&>(base).SetState(std::u16string_view(state).substr(0, n));
    EXPECT_EQ(std::memcmp(own.recordBytes(), base.recordBytes(), sizeof(StemsRecord)), 0) << n;
    EXPECT_EQ(own.GetState(), base.GetState()) << n;
  }
}

TEST_F(Contract, RenderingFollowsTheCodes) {
  const auto spec = newState<cProductionGradeSpecPersist>([](ProductionGradeSpecRecord& r) {
    r.ProductionGradeId = 9;
    r.MinOverHalf = 0;
    r.StripMoisture = 1.0 / 30;
    r.CaseStraps = 0;
    r.CaseSize = 1e15;
  });
  cProductionGradeSpecPersist s;
  s.SetState(spec);
  EXPECT_EQ(s.FieldValue(u"minoverhalf"), u"0");  // D goes out at 0
  EXPECT_EQ(s.FieldValue(u"StripMoisture"), u"3.33333333333333E-02");
  EXPECT_EQ(s.FieldValue(u"StripCaseWeight"), u"Null");  // D0
  EXPECT_EQ(s.FieldValue(u"CaseSize"), u"1E+15");
  EXPECT_EQ(s.FieldValue(u"CaseStraps"), u"Null");
  EXPECT_EQ(s.FieldValue(u"ProductionGradeSpecId"), u"NULL");  // the key has no branch
  EXPECT_EQ(s.FieldValue(u"NoSuchColumn"), u"NULL");

  cProductionGradePersist g;
  g.SetState(newState<cProductionGradePersist>([](ProductionGradeRecord& r) {
    put(r.ProductionGradeCode, u" O'Neil");
    r.ProductionGradeCode.c[8] = u'\0';
  }));
  EXPECT_EQ(g.FieldValue(u"ProductionGradeCode"), std::u16string(u"'O''Neil \0'", 11));
  EXPECT_EQ(g.record().ProductionGradeCode.view(), std::u16string_view(u" O'Neil \0 ", 10));
  EXPECT_EQ(g.FieldValue(u"Active"), u"''");  // S: a blank field is '' and not Null
}

TEST_F(Contract, DispatchIdentifiersFollowTheMemberOrder) {
  struct Case {
    const ClassInfo& info;
    const char* member;
    int place;
    bool isPublic;
  } cases[] = {
      {cStemsPersist::info(), "Load", 7, true},
      {cStemsPersist::info(), "RecordToObj", 0, true},
      {cStemsPersist::info(), "SetState", 2, false},
      {cProductionGradePersist::info(), "Load", 8, true},
      {cProductionGradePersist::info(), "InsertValues", 3, false},
      {cProductionGradePersist::info(), "CriteriaDelete", 11, true},
      {cGreenGradePersist::info(), "Load", 9, true},
      {cGreenGradePersist::info(), "Commit", 7, true},
      {cvRunPickingTypesPersist::info(), "Load", 4, true},
      {cvRunPickingTypesPersist::info(), "FieldValue", 3, false},
  };
  for (const auto& c : cases) {
    const MemberInfo* m = c.info.member(c.member);
    ASSERT_NE(m, nullptr) << c.info.name << "." << c.member;
    EXPECT_EQ(m->dispatchId, 0x60030000 + c.place) << c.info.name << "." << c.member;
    EXPECT_EQ(m->isPublic, c.isPublic) << c.info.name << "." << c.member;
  }
  EXPECT_EQ(cGreenGradePersist::info().member("CriteriaDelete"), nullptr);
  EXPECT_EQ(cProductionGradePersist::info().member("CriteriaDelete")->args.back().name,
            "bHardDelete");
}

TEST_F(Contract, ViewLoadReadsNullDatesAsTheDefault) {
  db.answerRows(u"VRUNPICKINGTYPES", {u"ProductionRunId", u"ProductionDate", u"PickingTypeId"},
                {{int32_t{77}, Variant::null(), int32_t{4}},
                 {int32_t{77}, makeDate(2019, 3, 7), int32_t{5}}});
  cvRunPickingTypesPersist v;
  const auto state = v.Load(u"ProductionRunId = 77", kConnect);
  EXPECT_EQ(db.statements().back(), u"SELECT * FROM VRUNPICKINGTYPES WHERE ProductionRunId = 77");
  Buffer b;
  b.SetState(state);
  ASSERT_EQ(b.Count(), 2);
  EXPECT_EQ(b.Length(), 39);
  cvRunPickingTypesPersist row;
  std::memcpy(row.recordBytes(), b.Item(1).data(), sizeof(RunPickingTypesRecord));
  EXPECT_EQ(double{row.record().ProductionDate.days}, 2.0);
  EXPECT_EQ(row.record().Blank.view(), std::u16string(15, u' '));
  EXPECT_EQ(v.record().PickingTypeId, 5);  // GetState gives the last row, without a header
  EXPECT_EQ(v.GetState(), b.Item(2));
}

TEST_F(Contract, AMissingColumnRaisesAtTheFirstRowAfterTheInitialiser) {
  cStemsPersist s;
  s.SetState(stem(901));
  // ContainerStart, the third field, is missing: the two before it are read, then it raises.
  db.answerRows(u"STEMS", {u"StemsId", u"TotalNetWeight", u"ContainerEnd"},
                {{int32_t{1}, 2.5, int32_t{3}}}, 1);
  try {
    s.Load(u"", kConnect);
    ADD_FAILURE();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), err::kItemNotFound);
    EXPECT_EQ(e.statement(), u"SELECT * FROM STEMS");
    EXPECT_EQ(e.column(), u"ContainerStart");
    EXPECT_EQ(e.row(), 1);
  }
  cStemsPersist fresh;
  initialiseRecord(fresh.layout(), fresh.recordBytes());
  fresh.record().StemsId = 1;
  fresh.record().TotalNetWeight = 2.5;
  EXPECT_EQ(s.GetState(), fresh.GetState());

  // Without a row nothing is looked up.
  db.answerRows(u"STEMS", {u"StemsId"}, {});
  EXPECT_EQ(s.Load(u"", kConnect).size(), 9u);
}

// A value that will not convert stops the Load where it stands: the record holds the failing
// row's fields up to that one and the initialiser's from there on.
TEST_F(Contract, AFailedConversionLeavesTheRowBegunByTheInitialiser) {
  const std::vector<std::u16string> columns{u"StemsId",      u"TotalNetWeight", u"ContainerStart",
                                            u"ContainerEnd", u"StemTypeID",     u"ProductionRunId"};
  db.answerRows(u"STEMS", columns,
                {{int32_t{1}, 1.5, int32_t{2}, int32_t{3}, int32_t{4}, int32_t{5}},
                 {int32_t{6}, 7.5, Variant(u"eight"), int32_t{9}, int32_t{10}, int32_t{11}}});
  cStemsPersist s;
  try {
    s.Load(u"", kConnect);
    ADD_FAILURE();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), err::kTypeMismatch);
    EXPECT_EQ(e.statement(), u"SELECT * FROM STEMS");
  }
  EXPECT_EQ(s.record().StemsId, 6);
  EXPECT_EQ(double{s.record().TotalNetWeight}, 7.5);
  EXPECT_EQ(s.record().ContainerStart, 0);
  EXPECT_EQ(s.record().ContainerEnd, 0);
  EXPECT_EQ(s.record().ProductionRunId, 0);
}
