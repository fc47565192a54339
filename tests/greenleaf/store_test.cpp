// The green leaf classes on a real embedded store: the views over what the tables hold, and the
// posting of receipts (every table's round trip is the one of all tables).
#include <gtest/gtest.h>

#include "endtoend/store_fixture.hpp"
#include "vrdppo/cages/cages.hpp"
#include "vrdppo/greenleaf/inventory.hpp"
#include "vrdppo/greenleaf/physical.hpp"
#include "vrdppo/greenleaf/receipts.hpp"
#include "vrdppo/reference/grades.hpp"

using namespace vrdppo;
using namespace vrdppo::testing;

namespace {

using GreenLeafStore = StoreTest;

Long greenGrade(const std::u16string& connect, std::u16string_view code, Long company,
                std::u16string_view deleted = u"N") {
  cGreenGradePersist g;
  g.Commit(newState<cGreenGradePersist>([&](GreenGradeRecord& r) {
             put(r.GradeCode, code);
             put(r.DeletedFlag, deleted);
             r.CompanyId = company;
           }),
           connect);
  return g.record().GreenGradeId;
}

}  // namespace

TEST_F(GreenLeafStore, ReceiptListJoinsGradesAndCompany) {
  const Long company = insert(
      u"INSERT INTO COMPANY (CompanyCode, CompanyName, DeletedFlag) VALUES ('TT', 'Traders', 'N')");
  const Long from = greenGrade(connect, u"L1O", company);
  const Long to = greenGrade(connect, u"X2F", company, u"Y");
  cGreenReceiptPersist receipts;
  ASSERT_TRUE(receipts.Commit(newState<cGreenReceiptPersist>([&](GreenReceiptRecord& r) {
                                r.GreenGradeId = from;
                                r.receiptdate = makeDate(2019, 3, 7);
                                r.GrossWeight = 800.5;
                                put(r.posted, u"N");
                                put(r.Status, u"OP");
                                put(r.receipttype, u"XFER");
                                r.WeightUomId = 1;
                                r.togreengradeid = to;
                                r.weightremaining = 10.25;
                              }),
                              connect));
  cvGreenReceiptListPersist list;
  const auto rows = rowsOf<cvGreenReceiptListPersist>(list.Load(u"posted = 'N'", connect));
  ASSERT_EQ(rows.size(), 1u);
  const auto& r = rows[0];
  EXPECT_EQ(r.greenreceiptid, receipts.record().greenreceiptid);
  EXPECT_EQ(r.GreenGradeId, from);
  EXPECT_EQ(text(r.Status), u"OP");
  EXPECT_EQ(text(r.receipttype), u"XFER");
  EXPECT_EQ(double{r.receiptdate.days}, makeDate(2019, 3, 7).days);
  EXPECT_EQ(text(r.GradeCode), u"L1O");
  EXPECT_EQ(r.togreengradeid, to);
  EXPECT_EQ(text(r.togradecode), u"X2F");
  EXPECT_EQ(double{r.GrossWeight}, 800.5);
  EXPECT_EQ(r.CompanyId, company);
  EXPECT_EQ(text(r.CompanyCode), u"TT");
  EXPECT_EQ(text(r.greengradedeleted), u"N");
  EXPECT_EQ(text(r.companydeleted), u"N");
  EXPECT_EQ(double{r.weightremaining}, 10.25);
}

TEST_F(GreenLeafStore, PostReceiptsMovesThePendingWeightsIntoInventory) {
  const Long a = greenGrade(connect, u"A", 0);
  const Long b = greenGrade(connect, u"B", 0);
  cGreenReceiptPersist receipts;
  const auto receipt = [&](Long grade, double weight, Long to) {
    return newState<cGreenReceiptPersist>([&](GreenReceiptRecord& r) {
      r.GreenGradeId = grade;
      r.receiptdate = makeDate(2019, 3, 7);
      r.GrossWeight = weight;
      put(r.posted, u"N");
      r.WeightUomId = 1;
      r.togreengradeid = to;
    });
  };
  receipts.Commit(receipt(a, 1000, 0), connect);
  receipts.Commit(receipt(a, 250.5, 0), connect);
  receipts.Commit(receipt(a, 200, b), connect);  // a transfer from A to B
  dbHelp::ConnectString.clear();
  EXPECT_TRUE(receipts.PostReceipts(connect, 0));
  EXPECT_TRUE(dbHelp::ConnectString.empty());  // the gateway's string is left alone

  cGreenInventoryPersist inventory;
  const auto weightOf = [&](Long grade) {
    const auto rows = rowsOf<cGreenInventoryPersist>(
        inventory.Load(u"GreenGradeId = " + longText(grade), connect));
    double sum = 0;
    for (const auto& r : rows) sum += double{r.GrossWeight};
    return sum;
  };
  EXPECT_EQ(weightOf(a), 1050.5);
  EXPECT_EQ(weightOf(b), 200.0);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM GREENRECEIPT WHERE Posted = 'y'"), 3);

  // Posted receipts are not posted again.
  EXPECT_TRUE(receipts.PostReceipts(connect, 17));
  EXPECT_EQ(weightOf(a), 1050.5);

  // A connection string that opens nothing gives False, with nothing raised.
  EXPECT_FALSE(receipts.PostReceipts(u"Provider=vrdppo.Embedded;Data Source=/no/such/dir/x.db", 0));
  EXPECT_FALSE(receipts.PostReceipts(u"", 0));
}

TEST_F(GreenLeafStore, InHouseFiguresAndTheirViewsThenDeleteAll) {
  const Long company = insert(
      u"INSERT INTO COMPANY (CompanyCode, CompanyName, DeletedFlag) VALUES ('TT', 'Traders', 'N')");
  const Long grade = insert(u"INSERT INTO GRADE (GradeCode, CompanyId) VALUES ('FLUE', " +
                            longText(company) + u")");
  const Long green = greenGrade(connect, u"L1O", company);
  cProductionGradePersist production;
  production.Commit(newState<cProductionGradePersist>([&](ProductionGradeRecord& r) {
                      put(r.ProductionGradeCode, u"STRIP");
                      r.GradeId = grade;
                      r.ReportingCompanyId = company;
                    }),
                    connect);
  const Long pg = production.record().ProductionGradeId;
  const Long pgg = insert(
      u"INSERT INTO PRODUCTIONGREENGRADE (ProductionGradeId, GreenGradeId, TargetPercentage, "
      u"SortSequence, DeletedFlag) VALUES (" +
      longText(pg) + u", " + longText(green) + u", 37.5, 2, 'N')");

  cvInHouseRecGradesPersist view;
  const auto rows = rowsOf<cvInHouseRecGradesPersist>(view.Load(u"", connect));
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].ProductionGradeId, pg);
  EXPECT_EQ(rows[0].GreenGradeId, green);
  EXPECT_EQ(text(rows[0].ProductionGradeCode), u"STRIP");
  EXPECT_EQ(text(rows[0].GreenGradeCode), u"L1O");
  EXPECT_EQ(rows[0].CompanyId, company);
  EXPECT_EQ(text(rows[0].CompanyCode), u"TT");
  EXPECT_EQ(rows[0].TargetPercentage, 38);  // a fraction does not survive
  EXPECT_EQ(rows[0].GradeId, grade);
  EXPECT_EQ(text(rows[0].GradeCode), u"FLUE");

  // The report's table takes the view's rows as they are.
  cInHouseRecGradesPersist table;
  cGreenInHousePersist inHouse;
  for (int i = 0; i < 3; ++i) {
    table.Commit(newState<cInHouseRecGradesPersist>([&](InHouseRecGradesRecord& r) {
                   r.ProductionGradeId = rows[0].ProductionGradeId;
                   r.GreenGradeId = rows[0].GreenGradeId;
                   r.ProductionGradeCode = rows[0].ProductionGradeCode;
                   r.TargetPercentage = rows[0].TargetPercentage;
                 }),
                 connect);
    inHouse.Commit(newState<cGreenInHousePersist>([&](GreenInHouseRecord& r) {
                     r.GreenGradeId = green;
                     r.PoundRecTod = i;
                   }),
                   connect);
  }
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM INHOUSERECGRADES WHERE GradeCode IS NULL"), 3);
  const auto before = table.GetState();
  table.DeleteAll(connect);
  EXPECT_EQ(table.GetState(), before);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM INHOUSERECGRADES"), 0);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM GREENINHOUSE"), 3);
  inHouse.DeleteAll(connect);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM GREENINHOUSE"), 0);
  inHouse.DeleteAll(connect);  // on an empty table as well

  // The run views over the same recipe.
  const Long run = insert(
      u"INSERT INTO PRODUCTIONRUN (ProductionDate, ProductionGradeId) VALUES ('2019/03/07', " +
      longText(pg) + u")");
  for (const char16_t* w : {u"100.5", u"200"}) {
    insert(
        u"INSERT INTO PRODUCTIONRUNGRADE (ProductionGreenGradeId, ProductionRunId, WeightUsed) "
        u"VALUES (" +
        longText(pgg) + u", " + longText(run) + u", " + w + u")");
  }
  insert(
      u"INSERT INTO PRODUCTIONRUNTARGET (ProductionGreenGradeId, TargetPercentage, "
      u"ThisRunWeight, Comment, ThisRunPercentage, ProductionRunId) VALUES (" +
      longText(pgg) + u", 37.5, 300, 'dry lot', 40.5, " + longText(run) + u")");
  cGreenInventoryPersist inventory;
  inventory.Commit(newState<cGreenInventoryPersist>([&](GreenInventoryRecord& r) {
                     r.GrossWeight = 5000.25;
                     r.GreenGradeId = green;
                     r.WeightUomId = 1;
                   }),
                   connect);

  cvGreenProdPersist prod;
  const auto p =
      rowsOf<cvGreenProdPersist>(prod.Load(u"GreenGradeId = " + longText(green), connect));
  ASSERT_EQ(p.size(), 1u);
  EXPECT_EQ(double{p[0].ProductionDate.days}, makeDate(2019, 3, 7).days);
  EXPECT_EQ(double{p[0].RunWeight}, 300.5);

  cvProcessGreenPersist process;
  const auto g =
      rowsOf<cvProcessGreenPersist>(process.Load(u"ProductionRunId = " + longText(run), connect));
  ASSERT_EQ(g.size(), 1u);
  EXPECT_EQ(g[0].ProductionGradeId, pg);
  EXPECT_EQ(text(g[0].ProductionGradeCode), u"STRIP");
  EXPECT_EQ(text(g[0].GreenGradeCode), u"L1O");
  EXPECT_EQ(double{g[0].GreenWeight}, 5000.25);
  EXPECT_EQ(double{g[0].TargetPercentage}, 37.5);
  EXPECT_EQ(double{g[0].ThisRunWeight}, 300.0);
  EXPECT_EQ(double{g[0].ThisRunPercentage}, 40.5);
  EXPECT_EQ(double{g[0].WeightUsed}, 300.5);
  EXPECT_EQ(text(g[0].Comment), u"dry lot");
  EXPECT_EQ(g[0].GreenGradeId, green);
  EXPECT_EQ(g[0].ProductionGreenGradeId, pgg);
  EXPECT_EQ(g[0].ReportingCompanyId, company);
  EXPECT_EQ(g[0].CompanyId, company);
  EXPECT_EQ(g[0].SortSequence, 2);
}

TEST_F(GreenLeafStore, PhysicalCountPreparedFromTheCagesThenCleared) {
  const Long company = insert(
      u"INSERT INTO COMPANY (CompanyCode, CompanyName, DeletedFlag) VALUES ('TT', 'Traders', 'N')");
  const Long green = greenGrade(connect, u"L1O", company);
  cCagePersist cages;
  cCageContentPersist contents;
  for (const auto& [code, flag] : {std::pair{u"C-1", u"N"}, {u"C-2", u"Y"}}) {
    cages.Commit(newState<cCagePersist>([&](CageRecord& r) {
                   put(r.CageCode, code);
                   put(r.DeletedFlag, flag);
                 }),
                 connect);
    contents.Commit(newState<cCageContentPersist>([&](CageContentRecord& r) {
                      r.CageId = cages.record().CageId;
                      r.GreenGradeId = green;
                      r.NetWeight = 420.5;
                    }),
                    connect);
  }
  cvPrepPhysicalPersist prep;
  const auto rows = rowsOf<cvPrepPhysicalPersist>(prep.Load(u"", connect));
  ASSERT_EQ(rows.size(), 1u);  // the retired cage is not counted
  EXPECT_EQ(text(rows[0].CageCode), u"C-1");
  EXPECT_EQ(text(rows[0].CompanyCode), u"TT");
  EXPECT_EQ(rows[0].CompanyId, company);
  EXPECT_EQ(text(rows[0].GradeCode), u"L1O");
  EXPECT_EQ(rows[0].GreenGradeId, green);
  EXPECT_EQ(double{rows[0].NetWeight}, 420.5);

  cPhysicalInventoryPersist count;
  for (int i = 0; i < 2; ++i) {
    count.Commit(newState<cPhysicalInventoryPersist>([&](PhysicalInventoryRecord& r) {
                   r.CageCode = rows[0].CageCode;
                   r.Weight = rows[0].NetWeight;
                 }),
                 connect);
  }
  const auto before = count.GetState();
  count.Clear(connect);
  EXPECT_EQ(count.GetState(), before);
  EXPECT_EQ(count.Load(u"", connect).size(), 9u);
}
