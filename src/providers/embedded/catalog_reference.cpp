// Reference data: companies and grades, green and production grades, picking types.
#include "providers/embedded/catalog.hpp"

namespace vrdppo::embedded {

void addReferenceCatalog(Catalog& c) {
  c.table("COMPANY", R"(
    CompanyId INTEGER PRIMARY KEY AUTOINCREMENT,
    CompanyCode VARCHAR(10),
    CompanyName VARCHAR(100),
    DeletedFlag VARCHAR(1))");

  c.table("GRADE", R"(
    GradeId INTEGER PRIMARY KEY AUTOINCREMENT,
    GradeCode VARCHAR(20),
    CompanyId INT,
    Description VARCHAR(50),
    DeletedFlag VARCHAR(1))");

  c.table("GREENGRADE", R"(
    GREENGRADEID INTEGER PRIMARY KEY AUTOINCREMENT,
    GradeCode VARCHAR(10),
    DeletedFlag VARCHAR(1),
    CompanyId INT,
    ReportingProductionGradeId INT,
    ScrapGrade VARCHAR(1))");

  c.table("PRODUCTIONGRADE", R"(
    PRODUCTIONGRADEID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionGradeCode VARCHAR(10),
    GradeId INT,
    DeletedFlag VARCHAR(1),
    Active VARCHAR(1),
    EnforcePercent VARCHAR(1),
    FineCut VARCHAR(1),
    ReportingCompanyId INT,
    ChinaReporting VARCHAR(1))");

  c.table("PRODUCTIONGRADESPEC", R"(
    PRODUCTIONGRADESPECID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionGradeId INT,
    MinOverHalf FLOAT,
    MinOverQuarter FLOAT,
    MaxThruQuarter FLOAT,
    MaxObjStem FLOAT,
    MaxTotalStem FLOAT,
    MaxLaminaOnStem FLOAT,
    MaxSandStrip FLOAT,
    StripMoisture FLOAT,
    StemMoisture FLOAT,
    PkgTempMin FLOAT,
    PkgTempMax FLOAT,
    StripCaseWeight FLOAT,
    CaseSize FLOAT,
    CaseStraps INT)");

  c.table("PICKINGTYPE", R"(
    PICKINGTYPEID INTEGER PRIMARY KEY AUTOINCREMENT,
    Description VARCHAR(50),
    SortSequence INT,
    DeletedFlag VARCHAR(1))");

  // Green grades with their companies; a grade whose company is missing still shows.
  c.view("VGREENGRADELIST", R"(
    SELECT g.GREENGRADEID AS GreenGradeId, g.GradeCode AS GradeCode, g.CompanyId AS CompanyId,
           c.CompanyCode AS CompanyCode, c.CompanyName AS CompanyName,
           g.DeletedFlag AS greengradedeleted, c.DeletedFlag AS companydeleted,
           g.ScrapGrade AS ScrapGrade
    FROM GREENGRADE g LEFT JOIN COMPANY c ON c.CompanyId = g.CompanyId)");

  // Production grades with the grade they make and that grade's company.
  c.view("VPRODUCTIONGRADELIST", R"(
    SELECT p.GradeId AS GradeId, gr.GradeCode AS GradeCode,
           p.PRODUCTIONGRADEID AS ProductionGradeId, p.ProductionGradeCode AS ProductionGradeCode,
           gr.CompanyId AS CompanyId, c.CompanyCode AS CompanyCode, c.CompanyName AS CompanyName,
           p.DeletedFlag AS productiongradedeleted, p.ReportingCompanyId AS ReportingCompanyId
    FROM PRODUCTIONGRADE p
    LEFT JOIN GRADE gr ON gr.GradeId = p.GradeId
    LEFT JOIN COMPANY c ON c.CompanyId = gr.CompanyId)");

  c.statement("CREATE INDEX IF NOT EXISTS IX_GRADE_COMPANY ON GRADE (CompanyId)");
  c.statement(
      "CREATE INDEX IF NOT EXISTS IX_PRODUCTIONGRADESPEC_GRADE ON PRODUCTIONGRADESPEC "
      "(ProductionGradeId)");
}

}  // namespace vrdppo::embedded
