// Production runs: the run, what it consumes and yields, and the run views.
#include "providers/embedded/catalog.hpp"

namespace vrdppo::embedded {

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

  for (const char* table : {"PRODUCTIONRUNGRADE", "PICKINGS", "BYPRODUCTS", "STEMS",
                            "PRODUCTIONRUNTARGET", "PRODUCTIONRUNREDRIED"}) {
    c.statement(std::string("CREATE INDEX IF NOT EXISTS IX_") + table + "_RUN ON " + table +
                " (ProductionRunId)");
  }
  c.statement(
      "CREATE INDEX IF NOT EXISTS IX_PRODUCTIONGREENGRADE_GRADE ON PRODUCTIONGREENGRADE "
      "(ProductionGradeId)");
}

}  // namespace vrdppo::embedded
