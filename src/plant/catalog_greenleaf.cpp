// Green leaf: receipts, inventory, in-house figures, physical inventory, the new season log.
#include <vector>

#include "plant/catalog.hpp"
#include "providers/embedded/session.hpp"

namespace vrdppo::embedded {

namespace {

// Adds a weight to a grade's stock at no particular bin, making the row when there is none.
void addToInventory(Session& s, const Variant& grade, const Variant& uom, double weight) {
  s.run(
      "UPDATE GREENINVENTORY SET GrossWeight = COALESCE(GrossWeight, 0) + ?1 "
      "WHERE GreenGradeId = ?2 AND BinLocationId IS NULL",
      {Variant(weight), grade});
  if (s.changes() == 0) {
    s.run("INSERT INTO GREENINVENTORY (GrossWeight, GreenGradeId, WeightUomId) VALUES (?1, ?2, ?3)",
          {Variant(weight), grade, uom});
  }
}

// Posts every receipt not yet posted: its weight goes into the grade's inventory, or for a
// receipt that names a target grade, moves from the grade to the target. One transaction, so
// that a failure posts nothing. The contact is taken and not used by this store.
std::shared_ptr<Recordset> postGreenReceipts(Session& session, const ProcArgs& args) {
  (void)args.get(0, u"p_ContactId");
  session.transaction([&] {
    const auto rs = session.run(
        "SELECT GREENRECEIPTID, GreenGradeId, ToGreenGradeId, GrossWeight, WeightUomId "
        "FROM GREENRECEIPT WHERE COALESCE(Posted, '') <> 'Y' ORDER BY GREENRECEIPTID");
    while (rs->State() == adStateOpen && !rs->EOF_()) {
      const Variant& grade = rs->Fields(std::size_t{1});
      const Variant& target = rs->Fields(std::size_t{2});
      const Variant& gross = rs->Fields(std::size_t{3});
      const double weight = gross.isNull() ? 0.0 : toDouble(gross);
      if (!grade.isNull()) {
        addToInventory(session, grade, rs->Fields(std::size_t{4}),
                       target.isNull() ? weight : -weight);
      }
      if (!target.isNull()) addToInventory(session, target, rs->Fields(std::size_t{4}), weight);
      session.run("UPDATE GREENRECEIPT SET Posted = 'Y' WHERE GREENRECEIPTID = ?1",
                  {rs->Fields(std::size_t{0})});
      rs->MoveNext();
    }
  });
  return nullptr;
}

}  // namespace

void addGreenLeafCatalog(Catalog& c) {
  c.table("GREENRECEIPT", R"(
    GREENRECEIPTID INTEGER PRIMARY KEY AUTOINCREMENT,
    GreenGradeId INT,
    ReceiptDate DATETIME,
    GrossWeight FLOAT,
    GrossBaleWeight FLOAT,
    TareValue FLOAT,
    TareUnitCount INT,
    Posted VARCHAR(1),
    Status VARCHAR(2),
    ReceiptType VARCHAR(4),
    WeightUomId INT,
    ToGreenGradeId INT,
    ProductionRunId INT,
    WeightRemaining FLOAT)");

  c.table("GREENINVENTORY", R"(
    GREENINVENTORYID INTEGER PRIMARY KEY AUTOINCREMENT,
    GrossWeight FLOAT,
    GreenContainerTypeId INT,
    GreenGradeId INT,
    WeightUomId INT,
    BinLocationId INT)");

  c.table("GREENINHOUSE", R"(
    GREENINHOUSEID INTEGER PRIMARY KEY AUTOINCREMENT,
    GreenGradeId INT,
    PoundRecTod INT,
    PoundRecYTD INT,
    PoundProTod INT,
    PoundProYTD INT)");

  // The in-house report's flat rows: the columns of VINHOUSERECGRADES, in its order.
  c.table("INHOUSERECGRADES", R"(
    INHOUSERECGRADESID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionGradeId INT,
    GreenGradeId INT,
    ProductionGradeCode VARCHAR(10),
    GreenGradeCode VARCHAR(10),
    CompanyId INT,
    CompanyCode VARCHAR(10),
    TargetPercentage INT,
    GradeId INT,
    GradeCode VARCHAR(10))");

  c.table("PHYSICALINVENTORY", R"(
    PHYSICALINVENTORYID INTEGER PRIMARY KEY AUTOINCREMENT,
    CageCode VARCHAR(10),
    Customer VARCHAR(3),
    GradeCode VARCHAR(15),
    Weight FLOAT,
    Status VARCHAR(2),
    Operator VARCHAR(3),
    StatusTS DATETIME,
    Memo VARCHAR(20))");

  c.table("NEWSEASONLOG", R"(
    NEWSEASONLOGID INTEGER PRIMARY KEY AUTOINCREMENT,
    TableName VARCHAR(50),
    OldId INT,
    NewId INT)");

  // Receipts with the codes of their grade, target grade and the grade's company.
  c.view("VGREENRECEIPTLIST", R"(
    SELECT r.GREENRECEIPTID AS greenreceiptid, r.GreenGradeId AS GreenGradeId,
           r.Status AS Status, r.ReceiptType AS receipttype, r.ReceiptDate AS receiptdate,
           g.GradeCode AS GradeCode, r.ToGreenGradeId AS togreengradeid,
           t.GradeCode AS togradecode, r.GrossWeight AS GrossWeight, r.Posted AS posted,
           g.CompanyId AS CompanyId, c.CompanyCode AS CompanyCode,
           g.DeletedFlag AS greengradedeleted, c.DeletedFlag AS companydeleted,
           r.WeightRemaining AS weightremaining
    FROM GREENRECEIPT r
    LEFT JOIN GREENGRADE g ON g.GREENGRADEID = r.GreenGradeId
    LEFT JOIN GREENGRADE t ON t.GREENGRADEID = r.ToGreenGradeId
    LEFT JOIN COMPANY c ON c.CompanyId = g.CompanyId)");

  // The recipes of the production grades in use: each green grade a production grade takes,
  // with the codes that the in-house report keeps beside the ids.
  c.view("VINHOUSERECGRADES", R"(
    SELECT pgg.ProductionGradeId AS ProductionGradeId, pgg.GreenGradeId AS GreenGradeId,
           p.ProductionGradeCode AS ProductionGradeCode, g.GradeCode AS GreenGradeCode,
           g.CompanyId AS CompanyId, c.CompanyCode AS CompanyCode,
           pgg.TargetPercentage AS TargetPercentage, p.GradeId AS GradeId,
           gr.GradeCode AS GradeCode
    FROM PRODUCTIONGREENGRADE pgg
    INNER JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = pgg.ProductionGradeId
    INNER JOIN GREENGRADE g ON g.GREENGRADEID = pgg.GreenGradeId
    LEFT JOIN COMPANY c ON c.CompanyId = g.CompanyId
    LEFT JOIN GRADE gr ON gr.GradeId = p.GradeId
    WHERE COALESCE(pgg.DeletedFlag, 'N') <> 'Y')");

  // Weight of each green grade run on each production date.
  c.view("VGREENPROD", R"(
    SELECT r.ProductionDate AS ProductionDate, pgg.GreenGradeId AS GreenGradeId,
           SUM(prg.WeightUsed) AS RunWeight
    FROM PRODUCTIONRUNGRADE prg
    INNER JOIN PRODUCTIONRUN r ON r.PRODUCTIONRUNID = prg.ProductionRunId
    INNER JOIN PRODUCTIONGREENGRADE pgg
      ON pgg.PRODUCTIONGREENGRADEID = prg.ProductionGreenGradeId
    GROUP BY r.ProductionDate, pgg.GreenGradeId)");

  // A run's green grades: the recipe of the run's production grade, the run's targets, the
  // weight of each grade in stock and the weight the run has used of it.
  c.view("VPROCESSGREEN", R"(
    SELECT r.PRODUCTIONRUNID AS ProductionRunId, r.ProductionGradeId AS ProductionGradeId,
           p.ProductionGradeCode AS ProductionGradeCode, g.GradeCode AS GreenGradeCode,
           (SELECT SUM(i.GrossWeight) FROM GREENINVENTORY i
             WHERE i.GreenGradeId = pgg.GreenGradeId) AS GreenWeight,
           pgg.TargetPercentage AS TargetPercentage, t.ThisRunWeight AS ThisRunWeight,
           t.ThisRunPercentage AS ThisRunPercentage,
           (SELECT SUM(u.WeightUsed) FROM PRODUCTIONRUNGRADE u
             WHERE u.ProductionRunId = r.PRODUCTIONRUNID
               AND u.ProductionGreenGradeId = pgg.PRODUCTIONGREENGRADEID) AS WeightUsed,
           t.Comment AS Comment, pgg.GreenGradeId AS GreenGradeId,
           pgg.PRODUCTIONGREENGRADEID AS ProductionGreenGradeId,
           p.ReportingCompanyId AS ReportingCompanyId, g.CompanyId AS CompanyId,
           pgg.SortSequence AS SortSequence,
           g.ReportingProductionGradeId AS ReportingProductionGradeId
    FROM PRODUCTIONRUN r
    INNER JOIN PRODUCTIONGREENGRADE pgg ON pgg.ProductionGradeId = r.ProductionGradeId
    INNER JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = r.ProductionGradeId
    LEFT JOIN GREENGRADE g ON g.GREENGRADEID = pgg.GreenGradeId
    LEFT JOIN PRODUCTIONRUNTARGET t
      ON t.ProductionRunId = r.PRODUCTIONRUNID
     AND t.ProductionGreenGradeId = pgg.PRODUCTIONGREENGRADEID
    WHERE COALESCE(pgg.DeletedFlag, 'N') <> 'Y')");

  // What the cages in the plant hold, grade by grade, for a physical count; retired cages are
  // left out.
  c.view("VPREPPHYSICAL", R"(
    SELECT ca.CageCode AS CageCode, c.CompanyCode AS CompanyCode, g.CompanyId AS CompanyId,
           g.GradeCode AS GradeCode, cc.GreenGradeId AS GreenGradeId, cc.NetWeight AS NetWeight
    FROM CAGECONTENT cc
    INNER JOIN CAGE ca ON ca.CAGEID = cc.CageId
    LEFT JOIN GREENGRADE g ON g.GREENGRADEID = cc.GreenGradeId
    LEFT JOIN COMPANY c ON c.CompanyId = g.CompanyId
    WHERE COALESCE(ca.DeletedFlag, 'N') <> 'Y')");

  c.procedure(u"sp_PostGreenReceipts", {u"p_ContactId"}, postGreenReceipts);

  c.statement(
      "CREATE INDEX IF NOT EXISTS IX_GREENINVENTORY_GRADE ON GREENINVENTORY (GreenGradeId)");
  c.statement("CREATE INDEX IF NOT EXISTS IX_GREENRECEIPT_GRADE ON GREENRECEIPT (GreenGradeId)");
}

}  // namespace vrdppo::embedded
