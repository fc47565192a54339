// The green leaf classes against the exact statements they send, on a scripted provider.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/class_cases.hpp"
#include "support/own_connection.hpp"
#include "support/scripted_provider.hpp"
#include "support/statements.hpp"
#include "vrdppo/buffer.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/greenleaf/inventory.hpp"
#include "vrdppo/greenleaf/physical.hpp"
#include "vrdppo/greenleaf/receipts.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;
using vrdppo::testing::providerError;
using vrdppo::testing::ScriptedProvider;
using vrdppo::testing::Statements;
using vrdppo::testing::statementsFor;
using vrdppo::testing::TableCase;

namespace {

const std::u16string kConnect = u"DSN=plant";

using GreenLeaf = vrdppo::testing::ScriptedTest;

std::u16string receipt(Long key) {
  return newState<cGreenReceiptPersist>([key](GreenReceiptRecord& r) {
    r.greenreceiptid = key;
    r.GreenGradeId = 5;
    r.receiptdate = makeDate(2019, 3, 7, 14, 30);
    r.GrossWeight = 1250.5;
    r.TareValue = 2.25;
    put(r.Status, u"A");
    put(r.receipttype, u"RCV");
    r.WeightUomId = 1;
  });
}

std::vector<TableCase> tableCases() {
  return {
      {"GreenReceipt", [] { return std::make_unique<cGreenReceiptPersist>(); }, receipt,
       statementsFor(u"GREENRECEIPT", u"GREENRECEIPTID", 12,
                     {{u"GreenGradeId", u"5"},
                      {u"ReceiptDate", u"'2019/03/07'"},  // by day
                      {u"GrossWeight", u"1250.5"},
                      {u"GrossBaleWeight", u"Null"},
                      {u"TareValue", u"2.25"},
                      {u"TareUnitCount", u"Null"},
                      {u"Posted", u"''"},  // S: blank is an empty string
                      {u"Status", u"'A'"},
                      {u"ReceiptType", u"'RCV'"},
                      {u"WeightUomId", u"1"},
                      {u"ToGreenGradeId", u"Null"},
                      {u"ProductionRunId", u"Null"},
                      {u"WeightRemaining", u"0"}})},
      {"GreenInventory", [] { return std::make_unique<cGreenInventoryPersist>(); },
       [](Long key) {
         return newState<cGreenInventoryPersist>([key](GreenInventoryRecord& r) {
           r.GreenInventoryId = key;
           r.GreenGradeId = 0;
           r.WeightUomId = 0;
         });
       },
       statementsFor(u"GREENINVENTORY", u"GREENINVENTORYID", 12,
                     {{u"GrossWeight", u"0"},
                      {u"GreenContainerTypeId", u"Null"},
                      {u"GreenGradeId", u"0"},
                      {u"WeightUomId", u"0"},
                      {u"BinLocationId", u"Null"}})},
      {"GreenInHouse", [] { return std::make_unique<cGreenInHousePersist>(); },
       [](Long key) {
         return newState<cGreenInHousePersist>([key](GreenInHouseRecord& r) {
           r.GreenInHouseID = key;
           r.PoundRecTod = 1200;
           r.PoundProYTD = -3;
         });
       },
       statementsFor(u"GREENINHOUSE", u"GREENINHOUSEID", 12,
                     {{u"GreenGradeId", u"Null"},
                      {u"PoundRecTod", u"1200"},
                      {u"PoundRecYTD", u"0"},
                      {u"PoundProTod", u"0"},
                      {u"PoundProYTD", u"-3"}})},
      {"InHouseRecGrades", [] { return std::make_unique<cInHouseRecGradesPersist>(); },
       [](Long key) {
         return newState<cInHouseRecGradesPersist>([key](InHouseRecGradesRecord& r) {
           r.InHouseRecGradesID = key;
           r.ProductionGradeId = 2;
           r.GreenGradeId = 0;
           put(r.GreenGradeCode, u"L1O");
           r.TargetPercentage = 40;
         });
       },
       statementsFor(u"INHOUSERECGRADES", u"INHOUSERECGRADESID", 12,
                     {{u"ProductionGradeId", u"2"},
                      {u"GreenGradeId", u"0"},
                      {u"ProductionGradeCode", u"''"},  // S
                      {u"GreenGradeCode", u"'L1O'"},
                      {u"CompanyId", u"0"},
                      {u"CompanyCode", u"''"},
                      {u"TargetPercentage", u"40"},
                      {u"GradeId", u"Null"},
                      {u"GradeCode", u"Null"}})},  // S0
      {"PhysicalInventory", [] { return std::make_unique<cPhysicalInventoryPersist>(); },
       [](Long key) {
         return newState<cPhysicalInventoryPersist>([key](PhysicalInventoryRecord& r) {
           r.PhysicalInventoryId = key;
           put(r.CageCode, u"C-17");
           put(r.Customer, u"TTX");
           put(r.GradeCode, u"L1O");
           r.Weight = 1.0 / 3;
           put(r.Operator, u"JB");
         });
       },
       statementsFor(u"PHYSICALINVENTORY", u"PHYSICALINVENTORYID", 12,
                     {{u"CageCode", u"'C-17'"},
                      {u"Customer", u"'TTX'"},
                      {u"GradeCode", u"'L1O'"},
                      {u"Weight", u"0.333333333333333"},
                      {u"Status", u"''"},
                      {u"Operator", u"'JB'"},
                      {u"StatusTS", u"'1900/01/01 00:00:00'"},  // T: never Null
                      {u"Memo", u"''"}})},
      {"NewSeasonLog", [] { return std::make_unique<cNewSeasonLogPersist>(); },
       [](Long key) {
         return newState<cNewSeasonLogPersist>([key](NewSeasonLogRecord& r) {
           r.NewSeasonLogId = key;
           put(r.TableName, u"GreenGrade");
           r.OldId = 0;
           r.NewId = 31;
         });
       },
       statementsFor(u"NEWSEASONLOG", u"NEWSEASONLOGID", 12,
                     {{u"TableName", u"'GreenGrade'"}, {u"OldId", u"0"}, {u"NewId", u"31"}})},
  };
}

}  // namespace

TEST_F(GreenLeaf, TablesInsertUpdateAndDeleteByTheirLists) {
  vrdppo::testing::expectInsertUpdateDelete(db, tableCases(), kConnect);
}

TEST_F(GreenLeaf, DoubleQuotesAreDoubledOnlyWhereTheClassDoesIt) {
  db.answerRows(u"sp_InsertStatement", {u"Identity"}, {{int32_t{1}}});
  cPhysicalInventoryPersist physical;
  physical.Commit(newState<cPhysicalInventoryPersist>([](PhysicalInventoryRecord& r) {
                    put(r.Memo, u"6\" 'x'");
                    r.StatusTS = makeDate(2019, 3, 7, 14, 5, 9);
                  }),
                  kConnect);
  EXPECT_EQ(db.statements().back(),
            u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO PHYSICALINVENTORY (CageCode, "
            u"Customer, GradeCode, Weight, Status, Operator, StatusTS, Memo) VALUES ('', '', '', "
            u"0, '', '', '2019/03/07 14:05:09', '6\"\" ''x''')\"");
  cNewSeasonLogPersist season;
  season.Commit(
      newState<cNewSeasonLogPersist>([](NewSeasonLogRecord& r) { put(r.TableName, u"a\"b"); }),
      kConnect);
  EXPECT_EQ(db.statements().back(),
            u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO NEWSEASONLOG (TableName, OldId, "
            u"NewId) VALUES ('a\"\"b', 0, 0)\"");
  // The receipt's insert leaves a " as it is, and the update never doubles one.
  cGreenReceiptPersist receipts;
  const auto quoted =
      newState<cGreenReceiptPersist>([](GreenReceiptRecord& r) { put(r.Status, u"\""); });
  receipts.Commit(quoted, kConnect);
  EXPECT_NE(db.statements().back().find(u"'', '\"', ''"), std::u16string::npos);
  cPhysicalInventoryPersist update;
  update.Commit(newState<cPhysicalInventoryPersist>([](PhysicalInventoryRecord& r) {
                  r.PhysicalInventoryId = 4;
                  put(r.Memo, u"\"");
                }),
                kConnect);
  EXPECT_NE(db.statements().back().find(u"Memo = '\"' WHERE"), std::u16string::npos);
}

TEST_F(GreenLeaf, ViewsLoadStarWithTheirOwnName) {
  struct Case {
    const char* name;
    std::function<std::u16string()> load;
    std::u16string sql;
    std::size_t chars;
  } cases[] = {
      {"list", [] { return cvGreenReceiptListPersist().Load(u"posted = 'N'", kConnect); },
       u"SELECT * FROM VGREENRECEIPTLIST WHERE posted = 'N'", 104},
      {"in-house", [] { return cvInHouseRecGradesPersist().Load(u"  ", kConnect); },
       u"SELECT * FROM VINHOUSERECGRADES", 79},
      {"prod", [] { return cvGreenProdPersist().Load(u"GreenGradeId = 3", kConnect); },
       u"SELECT * FROM VGREENPROD WHERE GreenGradeId = 3", 42},
      {"process", [] { return cvProcessGreenPersist().Load(u"", kConnect); },
       u"SELECT * FROM VPROCESSGREEN", 218},
      {"physical", [] { return cvPrepPhysicalPersist().Load(u"", kConnect); },
       u"SELECT * FROM VPREPPHYSICAL", 58},
  };
  db.answerRows(u"SELECT", {u"x"}, {});
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto state = c.load();
    EXPECT_EQ(db.statements().back(), c.sql);
    EXPECT_EQ(state.size(), 9u);
    EXPECT_EQ(readBufferHeader(state).recordLength, static_cast<int>(c.chars));
    EXPECT_EQ(readBufferHeader(state).estimate, 10);
  }
}

TEST_F(GreenLeaf, DeleteAllAndClearGoThroughTheGatewayWithTheirFixedTexts) {
  struct Case {
    const char* name;
    std::function<void()> run;
    std::u16string sql;
  } cases[] = {
      {"in-house", [] { cGreenInHousePersist().DeleteAll(kConnect); }, u"DELETE FROM GreenInHouse"},
      {"rec grades", [] { cInHouseRecGradesPersist().DeleteAll(kConnect); },
       u"DELETE FROM InHouseRecGrades"},
      {"physical", [] { cPhysicalInventoryPersist().Clear(kConnect); },
       u"DELETE FROM PHYSICALINVENTORY"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    db.clear();
    dbHelp::ConnectString.clear();
    c.run();
    EXPECT_EQ(dbHelp::ConnectString, kConnect);
    EXPECT_EQ(db.log(),
              (std::vector<std::string>{"create", "cursor 3", "open DSN=plant|||-1",
                                        "execute SET QUOTED_IDENTIFIER OFF|-1", "timeout 0",
                                        "execute " + toUtf8(c.sql) + "|-1", "close", "release"}));
  }
  // The record is neither read nor changed, and a failure raises.
  cPhysicalInventoryPersist p;
  const auto before = p.GetState();
  db.failExecute(u"DELETE", providerError());
  EXPECT_THROW(p.Clear(kConnect), Error);
  EXPECT_THROW(cGreenInHousePersist().DeleteAll(kConnect), Error);
  EXPECT_EQ(p.GetState(), before);
}

TEST_F(GreenLeaf, PostReceiptsOnItsOwnConnection) {
  dbHelp::ConnectString = u"DSN=other";
  cGreenReceiptPersist r;
  const auto before = r.GetState();
  EXPECT_TRUE(r.PostReceipts(kConnect, 0));
  EXPECT_EQ(db.log(), (std::vector<std::string>{"create", "open DSN=plant|||-1",
                                                "execute EXEC sp_PostGreenReceipts 0|-1", "close",
                                                "release"}));
  EXPECT_EQ(dbHelp::ConnectString, u"DSN=other");  // neither read nor changed
  EXPECT_EQ(r.GetState(), before);

  vrdppo::testing::expectTrappedOnOwnConnection([&] { return r.PostReceipts(kConnect, -42); },
                                                "DSN=plant", "EXEC sp_PostGreenReceipts -42");
}
