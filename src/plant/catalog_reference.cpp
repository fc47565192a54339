// Reference data: companies and grades, green and production grades, stem, picking and
// by-product types, stations and the plant's settings, and the procedures that keep a list's
// SortSequence.
#include <cctype>
#include <string>

#include "plant/catalog.hpp"
#include "providers/embedded/errors.hpp"
#include "providers/embedded/session.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

// The table a sort procedure is given is a name, put into the statement: letters, digits and _.
std::u16string sortTable(const Variant& v) {
  std::u16string name = v.isNull() ? std::u16string() : toString(v);
  bool ok = !name.empty();
  for (const char16_t ch : name) ok = ok && ch < 128 && (std::isalnum(ch) || ch == u'_');
  if (!ok) {
    throw storeError(err::kCommandError, "Invalid object name '" + toUtf8(name) + "'.", "42S02",
                     native::kInvalidObject);
  }
  return name;
}

std::u16string sortCondition(const Variant& criteria) {
  const std::u16string text = criteria.isNull() ? std::u16string() : toString(criteria);
  return trimBlanks(text).empty() ? u"1 = 1" : u"(" + text + u")";
}

// Moves one row a place up (-1) or down (1) among the rows the criteria select, by swapping
// SortSequence with its neighbour there; at either end nothing moves.
std::shared_ptr<Recordset> adjustSortSequence(Session& session, const ProcArgs& args) {
  const std::u16string table = sortTable(args.get(0, u"p_Table"));
  const std::u16string key = longText(toLong(args.get(1, u"p_Id")));
  const std::int32_t step = toLong(args.get(2, u"p_Increment"));
  const std::u16string where = sortCondition(args.get(3, u"p_Criteria"));
  const std::u16string keyColumn = table + u"Id";
  session.transaction([&] {
    const auto own = session.execute(u"SELECT SortSequence FROM " + table + u" WHERE " + keyColumn +
                                     u" = " + key);
    if (own->State() != adStateOpen || own->EOF_()) return;
    const Variant place = own->Fields(std::size_t{0});
    if (place.isNull()) return;
    const std::u16string at = longText(toLong(place));
    const auto next =
        session.execute(u"SELECT TOP 1 " + keyColumn + u", SortSequence FROM " + table +
                        u" WHERE " + where + u" AND SortSequence " + (step > 0 ? u"> " : u"< ") +
                        at + u" ORDER BY SortSequence " + (step > 0 ? u"ASC" : u"DESC"));
    if (next->State() != adStateOpen || next->EOF_()) return;
    const std::u16string other = longText(toLong(next->Fields(std::size_t{0})));
    const std::u16string otherAt = longText(toLong(next->Fields(std::size_t{1})));
    session.execute(u"UPDATE " + table + u" SET SortSequence = " + otherAt + u" WHERE " +
                    keyColumn + u" = " + key);
    session.execute(u"UPDATE " + table + u" SET SortSequence = " + at + u" WHERE " + keyColumn +
                    u" = " + other);
  });
  return std::make_shared<Recordset>();
}

// Opens a place at a position ('I...': the rows from there move down one) or closes it ('D...':
// the rows behind it move up one), among the rows the criteria select.
std::shared_ptr<Recordset> insertDeleteAtSortSequence(Session& session, const ProcArgs& args) {
  const std::u16string table = sortTable(args.get(0, u"p_Table"));
  const std::u16string at = longText(toLong(args.get(1, u"p_SortSequence")));
  const Variant& actionArg = args.get(2, u"p_Action");
  const std::u16string action = actionArg.isNull() ? std::u16string() : toString(actionArg);
  const std::u16string where = sortCondition(args.get(3, u"p_Criteria"));
  const char16_t verb = action.empty() ? u' ' : static_cast<char16_t>(std::toupper(action[0]));
  if (verb == u'I') {
    session.execute(u"UPDATE " + table + u" SET SortSequence = SortSequence + 1 WHERE " + where +
                    u" AND SortSequence >= " + at);
  } else if (verb == u'D') {
    session.execute(u"UPDATE " + table + u" SET SortSequence = SortSequence - 1 WHERE " + where +
                    u" AND SortSequence > " + at);
  } else {
    throw storeError(err::kCommandError,
                     "Unknown sort action '" + toUtf8(action) + "': use Insert or Delete.", "42000",
                     50000);
  }
  return std::make_shared<Recordset>();
}

// The green inventory is the green-leaf tables' business; here the calls are accepted and
// answer nothing.
std::shared_ptr<Recordset> createInventory(Session&, const ProcArgs&) {
  return std::make_shared<Recordset>();
}

}  // namespace

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
    DeletedFlag VARCHAR(1),
    GrowingYear INT,
    GradeTypeId INT,
    PrizedGradeCode VARCHAR(20),
    PrizedCompanyCode VARCHAR(10))");

  // The kinds of grade that prizing sorts by.
  c.table("GRADETYPE", R"(
    GradeTypeId INTEGER PRIMARY KEY AUTOINCREMENT,
    TypeCode VARCHAR(5),
    GradeType VARCHAR(50),
    SortSequence INT)");

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

  c.table("STEMCLASS", R"(
    STEMCLASSID INTEGER PRIMARY KEY AUTOINCREMENT,
    Description VARCHAR(20),
    DeletedFlag VARCHAR(1))");

  c.table("STEMTYPE", R"(
    STEMTYPEID INTEGER PRIMARY KEY AUTOINCREMENT,
    ProductionGradeId INT,
    Code VARCHAR(20),
    Description VARCHAR(50),
    DeletedFlag VARCHAR(1),
    StemClassId INT,
    GradeId INT)");

  c.table("BYPRODUCTSTYPE", R"(
    BYPRODUCTSTYPEID INTEGER PRIMARY KEY AUTOINCREMENT,
    CompanyId INT,
    Code VARCHAR(10),
    Description VARCHAR(50),
    SortSequence INT,
    DeletedFlag VARCHAR(1),
    Active VARCHAR(1),
    ShowCaseNumber VARCHAR(1),
    ShowSampleTime VARCHAR(1),
    ByProductsMappingID INT,
    GradeId INT)");

  c.table("BYPRODUCTSMAPPING", R"(
    BYPRODUCTSMAPPINGID INTEGER PRIMARY KEY AUTOINCREMENT,
    Code VARCHAR(10))");

  c.table("STATION", R"(
    STATIONID INTEGER PRIMARY KEY AUTOINCREMENT,
    StationCode VARCHAR(20),
    Description VARCHAR(100),
    DeletedFlag VARCHAR(1),
    ScannerPort VARCHAR(5),
    ScannerBaud INT,
    ScannerParity VARCHAR(1),
    ScannerData VARCHAR(1),
    ScannerStop VARCHAR(1),
    ScalePort VARCHAR(5),
    ScaleBaud INT,
    ScaleParity VARCHAR(1),
    ScaleData VARCHAR(1),
    ScaleStop VARCHAR(1),
    TareTolerance INT,
    RealTimeLabels VARCHAR(1),
    NotifyInterval INT,
    DateTimeLabels VARCHAR(1),
    PrintDelay INT,
    StationType VARCHAR(2),
    AccessAllRuns VARCHAR(1),
    VerifyBigBales VARCHAR(1),
    ModelCode VARCHAR(1),
    cbGreenUnitTypeId INT,
    DefaultRecvLine INT,
    DefaultRecvMode VARCHAR(25))");

  c.table("PRODUCTIONSETTINGS", R"(
    PRODUCTIONSETTINGSID INTEGER PRIMARY KEY AUTOINCREMENT,
    GrossBaleWeight FLOAT,
    TareValue FLOAT,
    TareUnitCount INT,
    PreferredUom INT,
    SeasonStartDate DATETIME,
    Shift1Line VARCHAR(10),
    Shift1CC VARCHAR(30),
    Shift1Redrier VARCHAR(30),
    Shift2Line VARCHAR(10),
    Shift2CC VARCHAR(30),
    Shift2Redrier VARCHAR(30),
    Shift3Line VARCHAR(10),
    Shift3CC VARCHAR(30),
    Shift3Redrier VARCHAR(30),
    ExtranetDir VARCHAR(50),
    LabelFormatDir VARCHAR(50),
    ExcelExtractDir VARCHAR(50),
    BTDSN VARCHAR(50),
    DateTimeLabelFormat VARCHAR(256),
    ImperialLabelDir VARCHAR(256),
    PrintRemTicket VARCHAR(1),
    BarcodePrefix VARCHAR(6),
    ReweighTolerance INT,
    LbsPerLoad INT)");

  c.table("CALIBRATION", R"(
    CALIBRATIONID INTEGER PRIMARY KEY AUTOINCREMENT,
    CalibrationTS DATETIME,
    OperatorId INT,
    StationId INT,
    ShiftNumber INT,
    ProductionRunId INT,
    OnScale FLOAT,
    ScaleReading FLOAT)");

  // Stem types with the code of their grade.
  c.view("VSTEMTYPELIST", R"(
    SELECT s.STEMTYPEID AS StemTypeId, s.ProductionGradeId AS ProductionGradeId, s.Code AS Code,
           s.Description AS Description, s.DeletedFlag AS DeletedFlag,
           s.StemClassId AS StemClassId, s.GradeId AS GradeID, g.GradeCode AS GradeCode
    FROM STEMTYPE s LEFT JOIN GRADE g ON g.GradeId = s.GradeId)");

  // By-product types with their companies and grades.
  c.view("VCOMPANYBYPRODUCTSLIST", R"(
    SELECT b.BYPRODUCTSTYPEID AS ByProductsTypeId, b.Code AS byproductscode,
           b.Description AS Description, b.CompanyId AS CompanyId, c.CompanyCode AS CompanyCode,
           c.CompanyName AS CompanyName, c.DeletedFlag AS companydeleted,
           b.DeletedFlag AS DeletedFlag, b.SortSequence AS SortSequence, b.GradeId AS GradeId,
           g.GradeCode AS GradeCode
    FROM BYPRODUCTSTYPE b
    LEFT JOIN COMPANY c ON c.CompanyId = b.CompanyId
    LEFT JOIN GRADE g ON g.GradeId = b.GradeId)");

  c.procedure(u"qspsys_AdjustSortSequence", {u"p_Table", u"p_Id", u"p_Increment", u"p_Criteria"},
              adjustSortSequence);
  c.procedure(u"qspsys_InsertDeleteAtSortSequence",
              {u"p_Table", u"p_SortSequence", u"p_Action", u"p_Criteria"},
              insertDeleteAtSortSequence);
  c.procedure(u"qsp_CreateGreenInventory", {}, createInventory);
  c.procedure(u"qsp_CreatecbGreenInventory", {}, createInventory);

  c.statement("CREATE INDEX IF NOT EXISTS IX_GRADE_COMPANY ON GRADE (CompanyId)");
  c.statement("CREATE INDEX IF NOT EXISTS IX_BYPRODUCTSTYPE_COMPANY ON BYPRODUCTSTYPE (CompanyId)");
  c.statement(
      "CREATE INDEX IF NOT EXISTS IX_PRODUCTIONGRADESPEC_GRADE ON PRODUCTIONGRADESPEC "
      "(ProductionGradeId)");
}

}  // namespace vrdppo::embedded
