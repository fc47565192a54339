// The production run's operations beyond the contract, on a scripted provider: the texts they
// send, the connections they open, and what each does when the provider fails.
#include <gtest/gtest.h>

#include <functional>

#include "support/class_cases.hpp"
#include "support/own_connection.hpp"
#include "support/scripted_provider.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/production/run.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/render.hpp"

using namespace vrdppo;
using vrdppo::testing::providerError;
using vrdppo::testing::ScriptedProvider;

namespace {

const std::u16string kConnect = u"DSN=plant";
using Log = std::vector<std::string>;

std::u16string run(Long key, std::function<void(ProductionRunRecord&)> more = {}) {
  cProductionRunPersist o;
  initialiseRecord(o.layout(), o.recordBytes());
  auto& r = o.record();
  r.ProductionRunId = key;
  r.ProductionDate = Date{43531.0};  // 2019/03/07
  r.ShiftNumber = 2;
  r.ProductionGradeId = 5;
  if (more) more(r);
  return o.GetState();
}

// The gateway's connection around one statement.
Log gateway(const std::string& sql) {
  return {"create",
          "cursor 3",
          "open DSN=plant|||-1",
          "execute SET QUOTED_IDENTIFIER OFF|-1",
          "timeout 0",
          "execute " + sql + "|-1",
          "close",
          "release"};
}

class Run : public ::testing::Test {
 protected:
  void TearDown() override { dbHelp::ConnectString.clear(); }
  ScriptedProvider db;
  cProductionRunPersist o;
};

}  // namespace

TEST_F(Run, PostOpensItsOwnConnectionWithNothingAhead) {
  dbHelp::ConnectString = u"DSN=before";
  const std::u16string before = o.GetState();
  EXPECT_TRUE(o.Post(kConnect, 12, 3456, true));
  EXPECT_EQ(db.log(),
            (Log{"create", "open DSN=plant|||-1",
                 "execute EXEC sp_PostProductionRun 12, 3456, 1|-1", "close", "release"}));
  EXPECT_EQ(dbHelp::ConnectString, u"DSN=before");  // not stored
  EXPECT_EQ(o.GetState(), before);                  // the record plays no part

  db.clear();
  EXPECT_TRUE(o.Post(kConnect, 0, 7, false));
  EXPECT_EQ(db.statements(), (std::vector<std::u16string>{u"EXEC sp_PostProductionRun 0, 7, 0"}));
}

TEST_F(Run, PostTurnsEveryFailureIntoFalse) {
  vrdppo::testing::expectTrappedOnOwnConnection([&] { return o.Post(kConnect, 1, 2, false); },
                                                "DSN=plant", "EXEC sp_PostProductionRun 1, 2, 0");
}

TEST_F(Run, PostWithAnEmptyConnectionDoesNotFallBackOnTheDefault) {
  db.failOpen(providerError());
  EXPECT_FALSE(o.Post(u"", 1, 2, true));
  EXPECT_EQ(db.log().at(1), "open |||-1");
}

TEST_F(Run, CanDeleteAnswersTheDatabasesReasonOrNothing) {
  db.answerRows(u"qsp_CanDelete", {u"RetVal", u"ErrorText"},
                {{Long{0}, std::u16string(u"ignored")}}, 1);
  db.answerRows(u"qsp_CanDelete", {u"RetVal", u"ErrorText"},
                {{Long{3}, std::u16string(u"Run has been posted")}}, 1);
  EXPECT_EQ(o.sCanDeleteProductionRun(run(77), kConnect), u"");
  EXPECT_EQ(o.sCanDeleteProductionRun(run(77), kConnect), u"Run has been posted");
  EXPECT_EQ(db.statements().back(), u"EXEC qsp_CanDeleteProductionRun 77");
  EXPECT_EQ(dbHelp::ConnectString, kConnect);
  EXPECT_EQ(db.handedOut().back()->State(), adStateClosed);
}

TEST_F(Run, CanDeleteRaisesForANullReasonAndForNoRowset) {
  db.answerRows(u"qsp_CanDelete", {u"RetVal", u"ErrorText"}, {{Long{1}, Variant::null()}}, 1);
  EXPECT_THROW(o.sCanDeleteProductionRun(run(77), kConnect), Error);
  db.answer(
      u"qsp_CanDelete", [] { return std::make_shared<Recordset>(); }, 1);
  EXPECT_THROW(o.sCanDeleteProductionRun(run(77), kConnect), Error);
}

TEST_F(Run, DeleteZapsByProcedureInLowerCase) {
  EXPECT_TRUE(o.Delete(run(901), kConnect));
  EXPECT_EQ(db.log(), gateway("exec qsp_ZapProductionRun 901"));
  EXPECT_TRUE(o.Delete(run(0), kConnect));  // no test on the key
  EXPECT_EQ(db.statements().back(), u"exec qsp_ZapProductionRun 0");
}

TEST_F(Run, CommitDoublesQuotesInTheInsertAndWritesEmptyPrizingAsNull) {
  db.answerRows(u"sp_InsertStatement", {u"Identity"}, {{Long{88}}});
  const auto quoted = run(0, [](ProductionRunRecord& r) {
    put(r.Comments, u"6\" bales");
    put(r.Picked, u"N");
    put(r.ScanningComplete, u"N");
  });
  ASSERT_TRUE(o.Commit(quoted, kConnect));
  EXPECT_EQ(db.statements().back(),
            u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO PRODUCTIONRUN (ProductionDate, "
            u"ShiftNumber, Status, ProductionGradeId, ProductionLine, CCOperator, "
            u"RedrierOperator, MachineMinutes, Picked, Comments, RemainderIn, RemainderOut, "
            u"WeightUomId, GrossBaleWeight, TareValue, TareUnitCount, FedIn, ScanningComplete, "
            u"PrizingStatus, RunSequence, AbsoluteSequence, UsesSilos) VALUES ('2019/03/07', 2, "
            u"Null, 5, Null, Null, Null, Null, 'N', '6\"\" bales', Null, Null, Null, Null, Null, "
            u"Null, Null, 'N', Null, Null, Null, Null)\"");
  EXPECT_EQ(o.record().ProductionRunId, 88);

  // The run date goes out as a date even when it is the default.
  ASSERT_TRUE(o.Commit(run(88,
                           [](ProductionRunRecord& r) {
                             r.ProductionDate = Date{2.0};
                             r.RunSequence = 4;
                           }),
                       kConnect));
  const std::u16string update = db.statements().back();
  EXPECT_NE(update.find(u"UPDATE PRODUCTIONRUN SET ProductionDate = '1900/01/01', "),
            std::u16string::npos);
  EXPECT_NE(update.find(u"PrizingStatus = Null, RunSequence = 4, AbsoluteSequence = Null"),
            std::u16string::npos);
  EXPECT_NE(update.find(u" WHERE PRODUCTIONRUNID = 88"), std::u16string::npos);
}

TEST_F(Run, PrizingMethodsSendTheirProcedureForTheRecordsRun) {
  struct Case {
    const char* member;
    std::vector<Variant> extra;
    std::u16string text;
  } cases[] = {
      {"AssignRunSequence", {Long{0}}, u"EXEC qsp_PrizingAssignRunSequence 7, 0"},
      {"AssignRunSequence", {Long{12}}, u"EXEC qsp_PrizingAssignRunSequence 7, 12"},
      {"UpdatePrizingStatus", {}, u"EXEC qsp_PrizingSynchRunStatus 7"},
      {"ReleaseToPrizing", {}, u"EXEC qsp_PrizingReleaseRun 7"},
      {"CompletePrizing", {Long{3}}, u"EXEC qsp_PrizingCloseRun 7, 3, 1, 0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.member);
    db.clear();
    dbHelp::ConnectString.clear();
    std::vector<Variant> args{run(7), kConnect};
    args.insert(args.end(), c.extra.begin(), c.extra.end());
    registry::invoke(o, c.member, args);
    EXPECT_EQ(db.statements().back(), c.text);
    EXPECT_EQ(dbHelp::ConnectString, kConnect);
    EXPECT_EQ(o.record().ProductionRunId, 7);  // the state was taken
  }
}

TEST_F(Run, CreatePrizedStageHeadersAnswersErrorCode) {
  db.answerRows(u"HeaderStage", {u"ErrorCode"}, {{Long{50012}}}, 1);
  EXPECT_EQ(o.CreatePrizedStageHeaders(run(7), kConnect), 50012);
  EXPECT_EQ(db.statements().back(), u"EXEC qsp_PrizingCreateHeaderStage 7");
  EXPECT_EQ(db.handedOut().back()->State(), adStateClosed);
  db.answerRows(u"HeaderStage", {u"ErrorCode"}, {{Variant::null()}}, 1);
  EXPECT_THROW(o.CreatePrizedStageHeaders(run(7), kConnect), Error);
  db.answerRows(u"HeaderStage", {u"ErrorCode"}, {}, 1);
  EXPECT_THROW(o.CreatePrizedStageHeaders(run(7), kConnect), Error);
}

TEST_F(Run, GradeChangeCountsOnlyOneInTheFirstColumn) {
  const struct {
    Variant first;
    bool expected;
  } cases[] = {{Long{1}, true}, {Long{2}, false}, {Long{0}, false}, {1.0, true}};
  for (const auto& c : cases) {
    db.clear();
    db.answerRows(u"GradeChange", {u"Anything"}, {{c.first}}, 1);
    EXPECT_EQ(o.bGradeChangeInProgress(run(7), kConnect), c.expected);
    // The same text whatever the state holds, with its trailing blank.
    EXPECT_EQ(db.statements(),
              (std::vector<std::u16string>{u"SET QUOTED_IDENTIFIER OFF",
                                           u"EXEC qsp_PrizingGradeChangeInProgress "}));
  }
}

TEST_F(Run, OperationsWithoutATrapRaiseTheProvidersError) {
  const std::function<void()> calls[] = {
      [&] { o.Delete(run(7), kConnect); },
      [&] { o.ReleaseToPrizing(run(7), kConnect); },
      [&] { o.CompletePrizing(run(7), kConnect, 3); },
      [&] { o.sCanDeleteProductionRun(run(7), kConnect); },
  };
  const std::function<void(ScriptedProvider&)> failures[] = {
      [](ScriptedProvider& p) { p.failOpen(providerError()); },
      [](ScriptedProvider& p) { p.failExecute(u"7", providerError()); },
      [](ScriptedProvider& p) { p.failClose(providerError()); },
  };
  for (const auto& fail : failures) {
    for (const auto& call : calls) {
      ScriptedProvider p;
      fail(p);  // ahead of the answer: the first rule that matches wins
      p.answerRows(u"qsp_CanDelete", {u"RetVal", u"ErrorText"}, {{Long{0}, Variant::null()}});
      EXPECT_THROW(call(), Error);
      EXPECT_EQ(p.log().back(), "release");
    }
  }
}

TEST_F(Run, MembersStandInTheInterfacesOrder) {
  const ClassInfo& info = cProductionRunPersist::info();
  std::vector<std::string> publicNames;
  for (const auto& m : info.members) {
    if (m.isPublic) publicNames.push_back(m.name);
  }
  EXPECT_EQ(publicNames,
            (std::vector<std::string>{
                "RecordToObj", "GetState", "Load", "Commit", "Post", "CreatePrizedStageHeaders",
                "AssignRunSequence", "UpdatePrizingStatus", "ReleaseToPrizing", "CompletePrizing",
                "bGradeChangeInProgress", "sCanDeleteProductionRun", "Delete"}));
  EXPECT_EQ(info.member("Load")->dispatchId, 0x60030007);
  EXPECT_FALSE(info.member("InsertValues")->isPublic);
  // The prizing methods and the check take the state and the connection by value.
  EXPECT_FALSE(info.member("sCanDeleteProductionRun")->args[0].byRef);
  EXPECT_FALSE(info.member("CompletePrizing")->args[2].byRef);
  EXPECT_TRUE(info.member("AssignRunSequence")->args[2].byRef);
}
