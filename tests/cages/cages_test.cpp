// The cage classes against the exact statements they send, on a scripted provider.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/class_cases.hpp"
#include "support/own_connection.hpp"
#include "support/scripted_provider.hpp"
#include "support/statements.hpp"
#include "vrdppo/buffer.hpp"
#include "vrdppo/cages/cages.hpp"
#include "vrdppo/cages/movements.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/render.hpp"

using namespace vrdppo;
using vrdppo::testing::providerError;
using vrdppo::testing::ScriptedProvider;
using vrdppo::testing::Statements;
using vrdppo::testing::statementsFor;
using vrdppo::testing::TableCase;

namespace {

const std::u16string kConnect = u"DSN=plant";

std::u16string emptyCage(Long key) {
  return newState<cCagePersist>([key](CageRecord& r) {
    r.CageId = key;
    put(r.CageCode, u"O'Neil");
    r.StatusTS = makeDate(1900, 1, 1, 14, 30);  // any time on that day is Null
  });
}

std::u16string loadedCage(Long key) {
  return newState<cCagePersist>([key](CageRecord& r) {
    r.CageId = key;
    put(r.CageCode, u"C-17");
    r.TareWeight = 85.5;
    put(r.DeletedFlag, u"N");
    r.OperatorId = 3;
    r.GreenGradeId = 5;
    r.GrossWeight = 600;
    r.NetWeight = 514.5;
    r.StatusId = 2;
    r.StatusTS = makeDate(2019, 3, 7, 14, 5, 9);
    r.PrevStatusId = 1;
    r.PrevStatusTS = Date{0};  // 1899/12/30 is a date like any other
  });
}

std::u16string movement(Long key) {
  return newState<cCageMovementPersist>([key](CageMovementRecord& r) {
    r.CageMovementID = key;
    put(r.MovementType, u"TRANSFER");
    r.MovementTs = makeDate(2019, 3, 7, 14, 5, 9);
    r.OperatorId = 3;
    r.StationId = 4;
    r.ShiftNumber = 2;
    r.ProductionRunId = 77;
    put(r.Executed, u"N");
  });
}

std::vector<TableCase> tableCases() {
  return {
      {"empty cage", [] { return std::make_unique<cCagePersist>(); }, emptyCage,
       statementsFor(u"CAGE", u"CAGEID", 12,
                     {{u"CageCode", u"'O''Neil'"},
                      {u"TareWeight", u"0"},  // D: a tare of 0 is stored
                      {u"DeletedFlag", u"''"},
                      {u"OperatorId", u"Null"},
                      {u"GreenGradeId", u"Null"},
                      {u"GrossWeight", u"Null"},
                      {u"NetWeight", u"Null"},
                      {u"StatusId", u"0"},  // L, unlike PrevStatusId
                      {u"StatusTS", u"Null"},
                      {u"PrevOperatorId", u"Null"},
                      {u"PrevGreenGradeId", u"Null"},
                      {u"PrevGrossWeight", u"Null"},
                      {u"PrevNetWeight", u"Null"},
                      {u"PrevStatusId", u"Null"},
                      {u"PrevStatusTS", u"Null"}})},
      {"loaded cage", [] { return std::make_unique<cCagePersist>(); }, loadedCage,
       statementsFor(u"CAGE", u"CAGEID", 12,
                     {{u"CageCode", u"'C-17'"},
                      {u"TareWeight", u"85.5"},
                      {u"DeletedFlag", u"'N'"},
                      {u"OperatorId", u"3"},
                      {u"GreenGradeId", u"5"},
                      {u"GrossWeight", u"600"},
                      {u"NetWeight", u"514.5"},
                      {u"StatusId", u"2"},
                      {u"StatusTS", u"'2019/03/07 14:05'"},  // to the minute
                      {u"PrevOperatorId", u"Null"},
                      {u"PrevGreenGradeId", u"Null"},
                      {u"PrevGrossWeight", u"Null"},
                      {u"PrevNetWeight", u"Null"},
                      {u"PrevStatusId", u"1"},
                      {u"PrevStatusTS", u"'1899/12/30 00:00'"}})},
      {"status", [] { return std::make_unique<cCageStatusPersist>(); },
       [](Long key) {
         return newState<cCageStatusPersist>([key](CageStatusRecord& r) {
           r.CageStatusId = key;
           put(r.CageStatus, u"FULL");
         });
       },
       statementsFor(
           u"CAGESTATUS", u"CAGESTATUSID", 12,
           {{u"CageStatus", u"'FULL'"}, {u"Description", u"Null"}, {u"Sequence", u"Null"}})},
      {"content", [] { return std::make_unique<cCageContentPersist>(); },
       [](Long key) {
         return newState<cCageContentPersist>(
             [key](CageContentRecord& r) { r.CageContentId = key; });
       },
       statementsFor(u"CAGECONTENT", u"CAGECONTENTID", 12,
                     {{u"CageId", u"0"}, {u"GreenGradeId", u"0"}, {u"NetWeight", u"Null"}})},
      {"movement", [] { return std::make_unique<cCageMovementPersist>(); }, movement,
       statementsFor(u"CAGEMOVEMENT", u"CAGEMOVEMENTID", 12,
                     {{u"MovementType", u"'TRANSFER'"},
                      {u"MovementTS", u"'2019/03/07 14:05:09'"},
                      {u"OperatorId", u"3"},
                      {u"StationId", u"4"},
                      {u"ShiftNumber", u"2"},
                      {u"ProductionRunId", u"77"},
                      {u"Executed", u"'N'"}})},
      {"blank movement", [] { return std::make_unique<cCageMovementPersist>(); },
       [](Long key) {
         return newState<cCageMovementPersist>([key](CageMovementRecord& r) {
           r.CageMovementID = key;
           r.MovementTs = makeDate(1900, 1, 1, 8, 0, 1);
         });
       },
       statementsFor(u"CAGEMOVEMENT", u"CAGEMOVEMENTID", 12,
                     {{u"MovementType", u"Null"},
                      {u"MovementTS", u"Null"},
                      {u"OperatorId", u"Null"},
                      {u"StationId", u"Null"},
                      {u"ShiftNumber", u"Null"},
                      {u"ProductionRunId", u"Null"},
                      {u"Executed", u"''"}})},
      {"log", [] { return std::make_unique<cCageLogPersist>(); },
       [](Long key) {
         return newState<cCageLogPersist>([key](CageLogRecord& r) {
           r.CageLogId = key;
           r.CageMovementID = 9;
         });
       },
       statementsFor(u"CAGELOG", u"CAGELOGID", 12,
                     {{u"CageId", u"0"},
                      {u"CageMovementId", u"9"},
                      {u"Sequence", u"Null"},
                      {u"InGreenGradeId", u"Null"},
                      {u"InWeight", u"0"},
                      {u"FromStatusId", u"Null"},
                      {u"OutGreenGradeId", u"Null"},
                      {u"OutWeight", u"0"},
                      {u"ToStatusId", u"Null"},
                      {u"CageGross", u"Null"},
                      {u"CageTare", u"Null"},
                      {u"CageNet", u"Null"},
                      {u"CardPrinted", u"''"}})},
  };
}

using Cages = vrdppo::testing::ScriptedTest;

}  // namespace

TEST_F(Cages, TablesInsertUpdateAndDeleteByTheirLists) {
  vrdppo::testing::expectInsertUpdateDelete(db, tableCases(), kConnect);
}

TEST_F(Cages, LoadsSendTheirSelects) {
  struct Case {
    const char* name;
    std::function<std::u16string()> load;
    std::u16string sql;
    int chars;
  } cases[] = {
      {"cage", [] { return cCagePersist().Load(u"CageCode = 'C-17'", kConnect); },
       u"SELECT * FROM CAGE WHERE CageCode = 'C-17'", 127},
      {"status", [] { return cCageStatusPersist().Load(u" ", kConnect); },
       u"SELECT * FROM CAGESTATUS", 130},
      {"content", [] { return cCageContentPersist().Load(u"CageId = 4", kConnect); },
       u"SELECT * FROM CAGECONTENT WHERE CageId = 4", 33},
      {"content view", [] { return cvCageContentPersist().Load(u"", kConnect); },
       u"SELECT * FROM VCAGECONTENT", 53},
      {"movement", [] { return cCageMovementPersist().Load(u"", kConnect); },
       u"SELECT * FROM CAGEMOVEMENT", 72},
      {"log", [] { return cCageLogPersist().Load(u"CageId = 4 ORDER BY Sequence", kConnect); },
       u"SELECT * FROM CAGELOG WHERE CageId = 4 ORDER BY Sequence", 88},
      {"log view", [] { return cvCageLogPersist().Load(u"", kConnect); }, u"SELECT * FROM VCAGELOG",
       230},
  };
  db.answerRows(u"SELECT", {u"x"}, {});
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto state = c.load();
    EXPECT_EQ(db.statements().back(), c.sql);
    EXPECT_EQ(state.size(), 9u);
    EXPECT_EQ(readBufferHeader(state).recordLength, c.chars);
    EXPECT_EQ(readBufferHeader(state).estimate, 10);
  }
}

TEST_F(Cages, CommentIsSecondGeneration) {
  db.answerRows(u"qsp_InsertStatement", {u"Identity"}, {{int32_t{3}}});
  db.answerRows(u"SELECT", {u"x"}, {});
  cCageMoveCommentPersist c;
  const auto state = [](Long key, std::u16string_view text) {
    return newState<cCageMoveCommentPersist>([&](CageMoveCommentRecord& r) {
      r.CageMoveCommentID = key;
      r.CageMovementID = 5;
      put(r.Comment, text);
    });
  };
  ASSERT_TRUE(c.Commit(state(0, u"Say \"hi\" o'clock"), kConnect));
  EXPECT_EQ(db.statements().back(),
            u"EXEC qsp_InsertStatement @p_Stmt = \"INSERT INTO CAGEMOVECOMMENT  (CageMovementID, "
            u"Comment) VALUES (5, 'Say \"\"hi\"\" o''clock')\"");
  EXPECT_EQ(c.record().CageMoveCommentID, 3);
  ASSERT_TRUE(c.Commit(state(3, u""), kConnect));
  EXPECT_EQ(db.statements().back(),
            u"UPDATE CAGEMOVECOMMENT SET CageMovementID = 5, Comment = '' WHERE "
            u"CAGEMOVECOMMENTID = 3");
  ASSERT_TRUE(c.Delete(state(3, u""), kConnect));
  EXPECT_EQ(db.statements().back(), u"DELETE FROM CAGEMOVECOMMENT WHERE CAGEMOVECOMMENTID = 3");

  const auto empty = c.Load(u"CageMovementID = 5", kConnect);
  EXPECT_EQ(db.statements().back(),
            u"SELECT CageMoveCommentID, CageMovementID, Comment FROM CAGEMOVECOMMENT WHERE "
            u"CageMovementID = 5");
  EXPECT_EQ(readBufferHeader(empty).estimate, 1);
  c.Load(u"", kConnect, 3);
  EXPECT_EQ(db.statements().back(),
            u"SELECT TOP 3 CageMoveCommentID, CageMovementID, Comment FROM CAGEMOVECOMMENT");

  // sBuffer, sConnect, sCriteria; blank criteria reach every comment.
  EXPECT_TRUE(c.CriteriaDelete(u"", kConnect, u"  "));
  EXPECT_EQ(db.statements().back(), u"DELETE FROM CAGEMOVECOMMENT");
  EXPECT_TRUE(c.CriteriaDelete(u"", kConnect, u"CageMovementID = 5"));
  EXPECT_EQ(db.statements().back(), u"DELETE FROM CAGEMOVECOMMENT WHERE CageMovementID = 5");
}

TEST_F(Cages, SendAlertSkipsEveryFailedStep) {
  struct Case {
    const char* where;
    std::u16string connect;
    std::function<void(ScriptedProvider&)> arm;
    std::vector<std::string> log;
  } cases[] = {
      {"none",
       kConnect,
       [](ScriptedProvider&) {},
       {"create", "open DSN=plant|||-1", "execute EXEC qsp_SendAlert 7,120|-1", "close",
        "release"}},
      {"open",
       kConnect,
       [](ScriptedProvider& p) { p.failOpen(providerError()); },
       {"create", "open DSN=plant|||-1", "release"}},
      // The close still runs after a failed statement.
      {"execute",
       kConnect,
       [](ScriptedProvider& p) { p.failExecute(u"qsp_SendAlert", providerError()); },
       {"create", "open DSN=plant|||-1", "execute EXEC qsp_SendAlert 7,120|-1", "close",
        "release"}},
      {"close",
       kConnect,
       [](ScriptedProvider& p) { p.failClose(providerError()); },
       {"create", "open DSN=plant|||-1", "execute EXEC qsp_SendAlert 7,120|-1", "close",
        "release"}},
      // No built-in default for an empty string.
      {"empty",
       u"",
       [](ScriptedProvider&) {},
       {"create", "open |||-1", "execute EXEC qsp_SendAlert 7,120|-1", "close", "release"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.where);
    ScriptedProvider p;
    c.arm(p);
    dbHelp::ConnectString = u"DSN=other";
    cCagePersist cage;
    cage.SendAlert(c.connect, 7, 120);
    EXPECT_EQ(p.log(), c.log);
    EXPECT_EQ(dbHelp::ConnectString, c.connect);  // stored, as the ordinary operations do
  }
}

TEST_F(Cages, PostSendsTheKeyOnItsOwnConnection) {
  dbHelp::ConnectString = u"DSN=other";
  cCageMovementPersist m;
  EXPECT_TRUE(m.Post(movement(41), kConnect));
  EXPECT_EQ(db.log(), (std::vector<std::string>{"create", "open DSN=plant|||-1",
                                                "execute EXEC sp_PostCageMovement 41|-1", "close",
                                                "release"}));
  EXPECT_EQ(dbHelp::ConnectString, u"DSN=other");  // not stored
  EXPECT_EQ(m.GetState(), movement(41));           // unpacked into the record
  EXPECT_TRUE(m.Post(movement(0), kConnect));      // executed or not, key 0 or not
  EXPECT_EQ(db.statements().back(), u"EXEC sp_PostCageMovement 0");

  vrdppo::testing::expectTrappedOnOwnConnection([&] { return m.Post(movement(41), kConnect); },
                                                "DSN=plant", "EXEC sp_PostCageMovement 41");
}
