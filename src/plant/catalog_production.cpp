// Production runs: the run, what it consumes and yields, the in-process tests, the results by
// year, the run views, and the procedures that post, check, zap and prize a run.
#include <string>

#include "plant/catalog.hpp"
#include "providers/embedded/session.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

// The tables that hang from a run by ProductionRunId; a zapped run takes their rows with it.
constexpr const char* kRunChildren[] = {"PRODUCTIONRUNGRADE",
                                        "PICKINGS",
                                        "STEMS",
                                        "PRODUCTIONRUNTARGET",
                                        "PRODUCTIONRUNREDRIED",
                                        "DEGRADATION",
                                        "OVENMOISTURE",
                                        "PACKEDMOISTURE",
                                        "GREENMOISTURE",
                                        "SUGARNICOTINE",
                                        "SAND",
                                        "STRIP",
                                        "LAMINA"};

std::int32_t runArg(const ProcArgs& args) {
  const Variant& v = args.get(0, u"p_ProductionRunId");
  return v.isNull() ? 0 : toLong(v);
}

std::shared_ptr<Recordset> none() {
  return std::make_shared<Recordset>();
}

std::shared_ptr<Recordset> oneRow(std::vector<std::u16string> columns, std::vector<Variant> row) {
  auto rs = std::make_shared<Recordset>(std::move(columns));
  rs->addRow(std::move(row));
  rs->rewind();
  return rs;
}

bool runExists(Session& session, std::int32_t run) {
  const auto rs =
      session.run("SELECT 1 FROM PRODUCTIONRUN WHERE PRODUCTIONRUNID = ?", {Variant(run)});
  return rs->State() == adStateOpen && !rs->EOF_();
}

// Posting marks the run as posted ("P"); the security profile and the mode are accepted.
std::shared_ptr<Recordset> postProductionRun(Session& session, const ProcArgs& args) {
  const Variant& run = args.get(1, u"p_ProductionRunId");
  session.run("UPDATE PRODUCTIONRUN SET Status = 'P' WHERE PRODUCTIONRUNID = ?",
              {Variant(run.isNull() ? 0 : toLong(run))});
  return none();
}

// RetVal 0 when the run may go; otherwise 1 and the reason in ErrorText.
std::shared_ptr<Recordset> canDeleteProductionRun(Session& session, const ProcArgs& args) {
  const std::int32_t run = runArg(args);
  std::u16string reason;
  if (!runExists(session, run)) {
    reason = u"Production run " + longText(run) + u" does not exist.";
  } else {
    const auto rs =
        session.run("SELECT Status, PrizingStatus FROM PRODUCTIONRUN WHERE PRODUCTIONRUNID = ?",
                    {Variant(run)});
    const Variant& status = rs->Fields(std::size_t{0});
    const Variant& prizing = rs->Fields(std::size_t{1});
    if (!status.isNull() && toString(status) == u"P") {
      reason = u"Production run " + longText(run) + u" has been posted.";
    } else if (!prizing.isNull() && !trimBlanks(toString(prizing)).empty()) {
      reason = u"Production run " + longText(run) + u" has been released to prizing.";
    }
  }
  if (reason.empty()) return oneRow({u"RetVal", u"ErrorText"}, {Variant(0), Variant::null()});
  return oneRow({u"RetVal", u"ErrorText"}, {Variant(1), Variant(reason)});
}

// The run and everything that hangs from it, by-product tests included, in one transaction.
std::shared_ptr<Recordset> zapProductionRun(Session& session, const ProcArgs& args) {
  const Variant run(runArg(args));
  session.transaction([&] {
    session.run(
        "DELETE FROM BYPRODUCTSTEST WHERE ByProductsId IN "
        "(SELECT BYPRODUCTSID FROM BYPRODUCTS WHERE ProductionRunId = ?)",
        {run});
    session.run("DELETE FROM BYPRODUCTS WHERE ProductionRunId = ?", {run});
    for (const char* table : kRunChildren) {
      session.run(std::string("DELETE FROM ") + table + " WHERE ProductionRunId = ?", {run});
    }
    session.run("DELETE FROM PRODUCTIONRUN WHERE PRODUCTIONRUNID = ?", {run});
  });
  return none();
}

// Stages the run for prizing ("S"); ErrorCode 0, or 1 for a run that does not exist.
std::shared_ptr<Recordset> prizingCreateHeaderStage(Session& session, const ProcArgs& args) {
  const std::int32_t run = runArg(args);
  if (!runExists(session, run)) return oneRow({u"ErrorCode"}, {Variant(1)});
  session.run("UPDATE PRODUCTIONRUN SET PrizingStatus = 'S' WHERE PRODUCTIONRUNID = ?",
              {Variant(run)});
  return oneRow({u"ErrorCode"}, {Variant(0)});
}

// With no swap the run takes the next sequence; else it swaps sequences with run lSwapId.
std::shared_ptr<Recordset> prizingAssignRunSequence(Session& session, const ProcArgs& args) {
  const Variant run(runArg(args));
  const Variant& swapArg = args.get(1, u"p_SwapId");
  const Variant swap(swapArg.isNull() ? 0 : toLong(swapArg));
  session.transaction([&] {
    if (swap.lng() == 0) {
      session.run(
          "UPDATE PRODUCTIONRUN SET "
          "RunSequence = (SELECT IFNULL(MAX(RunSequence), 0) + 1 FROM PRODUCTIONRUN), "
          "AbsoluteSequence = (SELECT IFNULL(MAX(AbsoluteSequence), 0) + 1 FROM PRODUCTIONRUN) "
          "WHERE PRODUCTIONRUNID = ?",
          {run});
      return;
    }
    // Both sequences are read before either is written: SQLite's UPDATE runs its subqueries
    // row by row against rows already changed, where a server reads them as they were.
    const auto sequenceOf = [&](const Variant& id) {
      const auto rs =
          session.run("SELECT RunSequence FROM PRODUCTIONRUN WHERE PRODUCTIONRUNID = ?", {id});
      if (rs->State() != adStateOpen || rs->EOF_()) return Variant::null();
      return rs->Fields(std::size_t{0});
    };
    const Variant runSequence = sequenceOf(run);
    const Variant swapSequence = sequenceOf(swap);
    session.run("UPDATE PRODUCTIONRUN SET RunSequence = ? WHERE PRODUCTIONRUNID = ?",
                {swapSequence, run});
    session.run("UPDATE PRODUCTIONRUN SET RunSequence = ? WHERE PRODUCTIONRUNID = ?",
                {runSequence, swap});
  });
  return none();
}

// A run whose scanning is complete is done ("D"); otherwise it stays as it is.
std::shared_ptr<Recordset> prizingSynchRunStatus(Session& session, const ProcArgs& args) {
  session.run(
      "UPDATE PRODUCTIONRUN SET PrizingStatus = 'D' "
      "WHERE PRODUCTIONRUNID = ? AND ScanningComplete = 'Y'",
      {Variant(runArg(args))});
  return none();
}

std::shared_ptr<Recordset> prizingReleaseRun(Session& session, const ProcArgs& args) {
  session.run("UPDATE PRODUCTIONRUN SET PrizingStatus = 'R' WHERE PRODUCTIONRUNID = ?",
              {Variant(runArg(args))});
  return none();
}

// Closes the run's prizing ("C") and its scanning; the station and the flags are accepted.
std::shared_ptr<Recordset> prizingCloseRun(Session& session, const ProcArgs& args) {
  session.run(
      "UPDATE PRODUCTIONRUN SET PrizingStatus = 'C', ScanningComplete = 'Y' "
      "WHERE PRODUCTIONRUNID = ?",
      {Variant(runArg(args))});
  return none();
}

// 1 while any run is in a grade change ("G"), else 0.
std::shared_ptr<Recordset> prizingGradeChangeInProgress(Session& session, const ProcArgs&) {
  return session.run(
      "SELECT CASE WHEN EXISTS (SELECT 1 FROM PRODUCTIONRUN WHERE PrizingStatus = 'G') "
      "THEN 1 ELSE 0 END AS InProgress");
}

// The report's rows: per production grade, its runs and what they were fed; per stem type, the
// stems' weight. The caller's arguments are accepted as they come.
std::shared_ptr<Recordset> generateProcResultsReport(Session& session, const ProcArgs&) {
  session.transaction([&] {
    session.run(
        "INSERT INTO ProcessingResultsReport (ProductionGradeId, RunCount, FedIn) "
        "SELECT ProductionGradeId, COUNT(*), SUM(IFNULL(FedIn, 0)) FROM PRODUCTIONRUN "
        "GROUP BY ProductionGradeId");
    session.run(
        "INSERT INTO ProcessingResultsStems (StemTypeId, TotalNetWeight) "
        "SELECT StemTypeID, SUM(IFNULL(TotalNetWeight, 0)) FROM STEMS GROUP BY StemTypeID");
  });
  return none();
}

// The laboratory's share of the report lies with the laboratory's tables; here it answers
// nothing.
std::shared_ptr<Recordset> labProcessingResults(Session&, const ProcArgs&) {
  return none();
}

}  // namespace

void addProductionCatalog(Catalog& c) {
  c.table("PRODUCTIONRUN", R"(
    PRODUCTIONRUNID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionDate DATETIME,
    ShiftNumber INT,
    Status VARCHAR(2),
    ProductionGradeId INT,
    ProductionLine VARCHAR(10),
    CCOperator VARCHAR(30),
    RedrierOperator VARCHAR(30),
    MachineMinutes INT,
    Picked VARCHAR(1),
    Comments VARCHAR(255),
    RemainderIn FLOAT,
    RemainderOut FLOAT,
    WeightUomId INT,
    GrossBaleWeight FLOAT,
    TareValue FLOAT,
    TareUnitCount INT,
    FedIn FLOAT,
    ScanningComplete VARCHAR(1),
    PrizingStatus VARCHAR(2),
    RunSequence INT,
    AbsoluteSequence INT,
    UsesSilos VARCHAR(1))");

  c.table("PRODUCTIONRUNGRADE", R"(
    PRODUCTIONRUNGRADEID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionGreenGradeId INT,
    ProductionRunId INT,
    WeightUsed FLOAT,
    GrossBaleWeight FLOAT,
    TareValue FLOAT,
    TareUnitCount INT)");

  c.table("PRODUCTIONGREENGRADE", R"(
    PRODUCTIONGREENGRADEID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionGradeId INT,
    GreenGradeId INT,
    TargetPercentage FLOAT,
    SortSequence INT,
    DeletedFlag VARCHAR(1))");

  c.table("PICKINGS", R"(
    PICKINGSID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionRunId INT,
    Weight FLOAT,
    PickingTypeId INT)");

  c.table("BYPRODUCTS", R"(
    BYPRODUCTSID INTEGER PRIMARY KEY AUTOINCREMENT,
    ByProductsTypeId INT,
    ProductionRunId INT,
    ContainerStart INT,
    ContainerEnd INT,
    TotalNetWeight FLOAT,
    SumLink INT,
    DiscardFlag VARCHAR(1))");

  c.table("STEMS", R"(
    STEMSID INTEGER PRIMARY KEY AUTOINCREMENT,
    TotalNetWeight FLOAT,
    ContainerStart INT,
    ContainerEnd INT,
    StemTypeID INT,
    ProductionRunId INT)");

  c.table("PRODUCTIONRUNTARGET", R"(
    PRODUCTIONRUNTARGETID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionGreenGradeId INT,
    TargetPercentage FLOAT,
    ThisRunWeight FLOAT,
    Comment VARCHAR(100),
    ThisRunPercentage FLOAT,
    ProductionRunId INT)");

  c.table("PRODUCTIONRUNREDRIED", R"(
    PRODUCTIONRUNREDRIEDID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionGreenGradeId INT,
    ProductionRunId INT,
    WeightUsed FLOAT)");

  // The picking types a run has picked, each once, with the run's date.
  c.view("VRUNPICKINGTYPES", R"(
    SELECT DISTINCT pk.ProductionRunId AS ProductionRunId, r.ProductionDate AS ProductionDate,
           pk.PickingTypeId AS PickingTypeId
    FROM PICKINGS pk INNER JOIN PRODUCTIONRUN r ON r.PRODUCTIONRUNID = pk.ProductionRunId
    WHERE pk.PickingTypeId IS NOT NULL)");

  // In-process tests.
  c.table("DEGRADATION", R"(
    DEGRADATIONID INTEGER PRIMARY KEY AUTOINCREMENT,
    TestType INT,
    ProductionRunId INT,
    TestNumber INT,
    SampleTime DATETIME,
    Weight FLOAT,
    Over1 FLOAT,
    OverHalf FLOAT,
    FourXFour FLOAT,
    EightXEight FLOAT,
    StripOnPan FLOAT,
    ThruQuarter FLOAT,
    NonObj FLOAT,
    ObjStem FLOAT,
    StemOnPan FLOAT)");

  c.table("OVENMOISTURE", R"(
    OVENMOISTUREID INTEGER PRIMARY KEY AUTOINCREMENT,
    TobaccoType INT,
    SampleTime DATETIME,
    CaseNumber INT,
    PackedTemperature FLOAT,
    Percentage FLOAT,
    ProductionRunId INT,
    StemTypeID INT)");

  c.table("PACKEDMOISTURE", R"(
    PACKEDMOISTUREID INTEGER PRIMARY KEY AUTOINCREMENT,
    SampleTime DATETIME,
    PackedPressure FLOAT,
    Temperature FLOAT,
    CoolerRight FLOAT,
    CoolerLeft FLOAT,
    ProductionRunId INT)");

  c.table("GREENMOISTURE", R"(
    GREENMOISTUREID INTEGER PRIMARY KEY AUTOINCREMENT,
    SampleTime DATETIME,
    Blending FLOAT,
    CondCylinder FLOAT,
    StripThresh FLOAT,
    StemThresh FLOAT,
    ProductionRunId INT)");

  c.table("BYPRODUCTSTEST", R"(
    BYPRODUCTSTESTID INTEGER PRIMARY KEY AUTOINCREMENT,
    ByProductsId INT,
    SampleTime DATETIME,
    CaseNumber INT,
    Value FLOAT)");

  c.table("SUGARNICOTINE", R"(
    SUGARNICOTINEID INTEGER PRIMARY KEY AUTOINCREMENT,
    SampleTime DATETIME,
    CaseNumber INT,
    PercentSugar FLOAT,
    PercentNicotine FLOAT,
    ProductionRunId INT)");

  c.table("SAND", R"(
    SANDID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionRunId INT,
    StripCaseNumber INT,
    StripCasePercentage FLOAT,
    VSSCaseNumber INT,
    VSSCasePercentage FLOAT)");

  c.table("SWING", R"(
    SWINGID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionGradeId INT,
    TotStemMin FLOAT,
    TotStemMax FLOAT,
    ObjectMin FLOAT,
    ObjectMax FLOAT,
    Over1Min FLOAT,
    Over1Max FLOAT,
    OverHalfMin FLOAT,
    OverHalfMax FLOAT,
    TotThruQuarterMin FLOAT,
    TotThruQuarterMax FLOAT,
    OnPanMin FLOAT,
    OnPanMax FLOAT,
    VSSCode FLOAT,
    StripLow FLOAT,
    StripHigh FLOAT,
    StemLow FLOAT,
    StemHigh FLOAT)");

  c.table("STRIP", R"(
    STRIPID INTEGER PRIMARY KEY AUTOINCREMENT,
    TotalNetWeight FLOAT,
    ContainerStart INT,
    ContainerEnd INT,
    ProductionRunId INT)");

  c.table("LAMINA", R"(
    LAMINAID INTEGER PRIMARY KEY AUTOINCREMENT,
    TestNumber INT,
    SampleTime DATETIME,
    LaminaOnStem FLOAT,
    ProductionRunId INT)");

  // Results by year, and the report's tables.
  c.table("PRODUCTIONSTATS", R"(
    PRODUCTIONSTATSID INTEGER PRIMARY KEY AUTOINCREMENT,
    ObjectTypeId INT,
    ObjectId INT,
    ProductionGradeId INT,
    ObjectCode VARCHAR(100),
    YTD FLOAT,
    PYTD FLOAT,
    PYTD2 FLOAT,
    CurrentValue FLOAT)");

  c.table("DEGRADATIONPYTD", R"(
    DEGRADATIONPYTDID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionGradeId INT,
    TestType INT,
    DegradationType INT,
    SeasonYear INT,
    Over1 FLOAT,
    TotalOverHalf FLOAT,
    OverHalf FLOAT,
    FourXFour FLOAT,
    EightXEight FLOAT,
    StripOnPan FLOAT,
    ThruQuarter FLOAT,
    NonObj FLOAT,
    ObjStem FLOAT,
    TotalStem FLOAT,
    StemOnPan FLOAT)");

  c.table("ProcessingResultsReport", R"(
    ProcessingResultsReportId INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionGradeId INT,
    RunCount INT,
    FedIn FLOAT)");

  c.table("ProcessingResultsStems", R"(
    ProcessingResultsStemsId INTEGER PRIMARY KEY AUTOINCREMENT,
    StemTypeId INT,
    TotalNetWeight FLOAT)");

  // Runs with their production grade, grade and company.
  c.view("VPRODUCTIONRUNLIST", R"(
    SELECT r.PRODUCTIONRUNID AS ProductionRunId, r.ProductionDate AS ProductionDate,
           r.ShiftNumber AS ShiftNumber, r.ProductionGradeId AS ProductionGradeId,
           p.ProductionGradeCode AS ProductionGradeCode, co.DeletedFlag AS companydeleted,
           p.GradeId AS GradeId, g.GradeCode AS GradeCode, g.CompanyId AS CompanyId,
           co.CompanyCode AS CompanyCode, r.Status AS Status,
           r.ScanningComplete AS ScanningComplete, r.PrizingStatus AS PrizingStatus,
           r.RunSequence AS RunSequence, p.ChinaReporting AS ChinaReporting
    FROM PRODUCTIONRUN r
    LEFT JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = r.ProductionGradeId
    LEFT JOIN GRADE g ON g.GradeId = p.GradeId
    LEFT JOIN COMPANY co ON co.CompanyId = g.CompanyId)");

  // Runs with their grade, its prizing codes and type, and the company.
  c.view("VPRODUCTIONRUNPRIZING", R"(
    SELECT r.ProductionDate AS ProductionDate, r.ProductionGradeId AS ProductionGradeId,
           p.ProductionGradeCode AS ProductionGradeCode, r.Status AS Status,
           r.ScanningComplete AS ScanningComplete, r.PRODUCTIONRUNID AS ProductionRunId,
           g.GradeCode AS GradeCode, g.GradeId AS GradeId, g.Description AS Description,
           g.GrowingYear AS GrowingYear, g.PrizedGradeCode AS PrizedGradeCode,
           g.PrizedCompanyCode AS PrizedCompanyCode, t.TypeCode AS TypeCode,
           t.SortSequence AS SortSequence, t.GradeType AS GradeType,
           g.GradeTypeId AS GradeTypeId, g.CompanyId AS CompanyId, co.CompanyCode AS CompanyCode,
           co.CompanyName AS CompanyName, r.PrizingStatus AS PrizingStatus,
           r.RunSequence AS RunSequence, r.FedIn AS FedIn
    FROM PRODUCTIONRUN r
    LEFT JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = r.ProductionGradeId
    LEFT JOIN GRADE g ON g.GradeId = p.GradeId
    LEFT JOIN GRADETYPE t ON t.GradeTypeId = g.GradeTypeId
    LEFT JOIN COMPANY co ON co.CompanyId = g.CompanyId)");

  // The recipe lines a run drew on.
  c.view("VRUNGREENGRADELIST", R"(
    SELECT rg.ProductionRunId AS ProductionRunId, pg.ProductionGradeId AS ProductionGradeId,
           pg.GreenGradeId AS GreenGradeId, rg.ProductionGreenGradeId AS ProductionGreenGradeId
    FROM PRODUCTIONRUNGRADE rg
    INNER JOIN PRODUCTIONGREENGRADE pg ON pg.PRODUCTIONGREENGRADEID = rg.ProductionGreenGradeId)");

  c.view("VRUNSTEMTYPES", R"(
    SELECT DISTINCT s.ProductionRunId AS ProductionRunId, r.ProductionDate AS ProductionDate,
           s.StemTypeID AS StemTypeID, r.ProductionGradeId AS ProductionGradeId
    FROM STEMS s INNER JOIN PRODUCTIONRUN r ON r.PRODUCTIONRUNID = s.ProductionRunId
    WHERE s.StemTypeID IS NOT NULL)");

  c.view("VRUNBYPRODUCTTYPES", R"(
    SELECT DISTINCT b.ProductionRunId AS ProductionRunId, r.ProductionDate AS ProductionDate,
           b.ByProductsTypeId AS ByProductsTypeId, t.CompanyId AS CompanyId
    FROM BYPRODUCTS b INNER JOIN PRODUCTIONRUN r ON r.PRODUCTIONRUNID = b.ProductionRunId
    LEFT JOIN BYPRODUCTSTYPE t ON t.BYPRODUCTSTYPEID = b.ByProductsTypeId)");

  // A run's green weights beside the stock of each grade (summed over the grade's rows); the
  // stock is the green-leaf tables' GREENINVENTORY.
  c.view("VRUNGREENWEIGHTTOTALS", R"(
    SELECT rg.ProductionRunId AS ProductionRunId, gg.GradeCode AS GradeCode,
           pg.GreenGradeId AS GreenGradeId, gi.GreenInventoryId AS GreenInventoryId,
           gi.GrossWeight AS inventoryweight, rg.WeightUsed AS RunWeight,
           rg.GrossBaleWeight AS GrossBaleWeight, rg.TareValue AS TareValue,
           rg.TareUnitCount AS TareUnitCount
    FROM PRODUCTIONRUNGRADE rg
    INNER JOIN PRODUCTIONGREENGRADE pg ON pg.PRODUCTIONGREENGRADEID = rg.ProductionGreenGradeId
    LEFT JOIN GREENGRADE gg ON gg.GREENGRADEID = pg.GreenGradeId
    LEFT JOIN (SELECT GreenGradeId, MIN(GREENINVENTORYID) AS GreenInventoryId,
                      SUM(GrossWeight) AS GrossWeight
               FROM GREENINVENTORY GROUP BY GreenGradeId) gi
      ON gi.GreenGradeId = pg.GreenGradeId)");

  // Each run beside every live recipe line of its production grade.
  c.view("VRUNPRODGREENGRADES", R"(
    SELECT r.PRODUCTIONRUNID AS ProductionRunId, r.ProductionDate AS ProductionDate,
           r.ProductionGradeId AS ProductionGradeId,
           pg.PRODUCTIONGREENGRADEID AS ProductionGreenGradeId, pg.GreenGradeId AS GreenGradeId
    FROM PRODUCTIONRUN r
    INNER JOIN PRODUCTIONGREENGRADE pg ON pg.ProductionGradeId = r.ProductionGradeId
    WHERE COALESCE(pg.DeletedFlag, '') <> 'Y')");

  c.view("VRUNREDRIEDGRADELIST", R"(
    SELECT rr.ProductionGreenGradeId AS ProductionGreenGradeId,
           rr.PRODUCTIONRUNREDRIEDID AS ProductionRunRedriedId, rr.WeightUsed AS WeightUsed,
           rr.ProductionRunId AS ProductionRunId, pg.ProductionGradeId AS ProductionGradeId,
           pg.SortSequence AS SortSequence, pg.DeletedFlag AS DeletedFlag,
           pg.GreenGradeId AS GreenGradeId, gg.GradeCode AS GradeCode,
           gg.ScrapGrade AS ScrapGrade
    FROM PRODUCTIONRUNREDRIED rr
    LEFT JOIN PRODUCTIONGREENGRADE pg ON pg.PRODUCTIONGREENGRADEID = rr.ProductionGreenGradeId
    LEFT JOIN GREENGRADE gg ON gg.GREENGRADEID = pg.GreenGradeId)");

  c.view("VPRODGREENGRADELIST", R"(
    SELECT pg.PRODUCTIONGREENGRADEID AS ProductionGreenGradeId,
           pg.ProductionGradeId AS ProductionGradeId, pg.GreenGradeId AS GreenGradeId,
           pg.TargetPercentage AS TargetPercentage, pg.SortSequence AS SortSequence,
           pg.DeletedFlag AS DeletedFlag, p.ProductionGradeCode AS ProductionGradeCode,
           gg.GradeCode AS GradeCode
    FROM PRODUCTIONGREENGRADE pg
    LEFT JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = pg.ProductionGradeId
    LEFT JOIN GREENGRADE gg ON gg.GREENGRADEID = pg.GreenGradeId)");

  c.procedure(u"sp_PostProductionRun", {u"p_SecurityProfileId", u"p_ProductionRunId", u"p_OldMode"},
              postProductionRun);
  c.procedure(u"qsp_CanDeleteProductionRun", {u"p_ProductionRunId"}, canDeleteProductionRun);
  c.procedure(u"qsp_ZapProductionRun", {u"p_ProductionRunId"}, zapProductionRun);
  c.procedure(u"qsp_PrizingCreateHeaderStage", {u"p_ProductionRunId"}, prizingCreateHeaderStage);
  c.procedure(u"qsp_PrizingAssignRunSequence", {u"p_ProductionRunId", u"p_SwapId"},
              prizingAssignRunSequence);
  c.procedure(u"qsp_PrizingSynchRunStatus", {u"p_ProductionRunId"}, prizingSynchRunStatus);
  c.procedure(u"qsp_PrizingReleaseRun", {u"p_ProductionRunId"}, prizingReleaseRun);
  c.procedure(u"qsp_PrizingCloseRun",
              {u"p_ProductionRunId", u"p_StationId", u"p_Close", u"p_Force"}, prizingCloseRun);
  c.procedure(u"qsp_PrizingGradeChangeInProgress", {}, prizingGradeChangeInProgress);
  c.procedure(u"sp_GenerateProcResultsReport",
              {u"p_Season", u"p_CompanyID", u"p_FromDate", u"p_ToDate"}, generateProcResultsReport);
  c.procedure(u"qsp_LabProcessingResults",
              {u"p_Season", u"p_Companies", u"p_FromDate", u"p_ToDate"}, labProcessingResults);

  for (const char* table :
       {"PRODUCTIONRUNGRADE", "PICKINGS", "BYPRODUCTS", "STEMS", "PRODUCTIONRUNTARGET",
        "PRODUCTIONRUNREDRIED", "DEGRADATION", "OVENMOISTURE", "PACKEDMOISTURE", "GREENMOISTURE",
        "SUGARNICOTINE", "SAND", "STRIP", "LAMINA"}) {
    c.statement(std::string("CREATE INDEX IF NOT EXISTS IX_") + table + "_RUN ON " + table +
                " (ProductionRunId)");
  }
  c.statement(
      "CREATE INDEX IF NOT EXISTS IX_PRODUCTIONGREENGRADE_GRADE ON PRODUCTIONGREENGRADE "
      "(ProductionGradeId)");
  c.statement(
      "CREATE INDEX IF NOT EXISTS IX_BYPRODUCTSTEST_BYPRODUCTS ON BYPRODUCTSTEST (ByProductsId)");
}

}  // namespace vrdppo::embedded
