// The plant schema the store ships: tables and views with exactly their records' columns, views
// that join honestly, identity keys, and schema upgrades of an existing file.
#include <vector>

#include <sqlite3.h>

#include "store_fixture.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

struct Columns {
  std::u16string_view object;
  std::vector<std::string_view> names;
};

class ColumnTest : public StoreTest, public ::testing::WithParamInterface<Columns> {};

TEST_P(ColumnTest, AreExactlyTheRecordsColumns) {
  const auto rs = sql(u"SELECT * FROM " + std::u16string(GetParam().object) + u" WHERE 1 = 0");
  ASSERT_EQ(rs->State(), adStateOpen);
  std::vector<std::string> got;
  for (std::size_t i = 0; i < rs->fieldCount(); ++i) got.push_back(toUtf8(rs->fieldName(i)));
  EXPECT_EQ(got, std::vector<std::string>(GetParam().names.begin(), GetParam().names.end()));
}

INSTANTIATE_TEST_SUITE_P(
    Plant, ColumnTest,
    ::testing::Values(
        Columns{u"GREENGRADE",
                {"GREENGRADEID", "GradeCode", "DeletedFlag", "CompanyId",
                 "ReportingProductionGradeId", "ScrapGrade"}},
        Columns{u"PRODUCTIONGRADE",
                {"PRODUCTIONGRADEID", "ProductionGradeCode", "GradeId", "DeletedFlag", "Active",
                 "EnforcePercent", "FineCut", "ReportingCompanyId", "ChinaReporting"}},
        Columns{u"PRODUCTIONGRADESPEC",
                {"PRODUCTIONGRADESPECID", "ProductionGradeId", "MinOverHalf", "MinOverQuarter",
                 "MaxThruQuarter", "MaxObjStem", "MaxTotalStem", "MaxLaminaOnStem", "MaxSandStrip",
                 "StripMoisture", "StemMoisture", "PkgTempMin", "PkgTempMax", "StripCaseWeight",
                 "CaseSize", "CaseStraps"}},
        Columns{u"PICKINGTYPE", {"PICKINGTYPEID", "Description", "SortSequence", "DeletedFlag"}},
        Columns{u"PRODUCTIONRUN", {"PRODUCTIONRUNID",  "ProductionDate",    "ShiftNumber",
                                   "Status",           "ProductionGradeId", "ProductionLine",
                                   "CCOperator",       "RedrierOperator",   "MachineMinutes",
                                   "Picked",           "Comments",          "RemainderIn",
                                   "RemainderOut",     "WeightUomId",       "GrossBaleWeight",
                                   "TareValue",        "TareUnitCount",     "FedIn",
                                   "ScanningComplete", "PrizingStatus",     "RunSequence",
                                   "AbsoluteSequence", "UsesSilos"}},
        Columns{u"STEMS",
                {"STEMSID", "TotalNetWeight", "ContainerStart", "ContainerEnd", "StemTypeID",
                 "ProductionRunId"}},
        Columns{u"PICKINGS", {"PICKINGSID", "ProductionRunId", "Weight", "PickingTypeId"}},
        Columns{u"BYPRODUCTS",
                {"BYPRODUCTSID", "ByProductsTypeId", "ProductionRunId", "ContainerStart",
                 "ContainerEnd", "TotalNetWeight", "SumLink", "DiscardFlag"}},
        Columns{u"PRODUCTIONRUNGRADE",
                {"PRODUCTIONRUNGRADEID", "ProductionGreenGradeId", "ProductionRunId", "WeightUsed",
                 "GrossBaleWeight", "TareValue", "TareUnitCount"}},
        Columns{u"PRODUCTIONGREENGRADE",
                {"PRODUCTIONGREENGRADEID", "ProductionGradeId", "GreenGradeId", "TargetPercentage",
                 "SortSequence", "DeletedFlag"}},
        Columns{u"PRODUCTIONRUNTARGET",
                {"PRODUCTIONRUNTARGETID", "ProductionGreenGradeId", "TargetPercentage",
                 "ThisRunWeight", "Comment", "ThisRunPercentage", "ProductionRunId"}},
        Columns{
            u"PRODUCTIONRUNREDRIED",
            {"PRODUCTIONRUNREDRIEDID", "ProductionGreenGradeId", "ProductionRunId", "WeightUsed"}},
        Columns{u"VGREENGRADELIST",
                {"GreenGradeId", "GradeCode", "CompanyId", "CompanyCode", "CompanyName",
                 "greengradedeleted", "companydeleted", "ScrapGrade"}},
        Columns{u"VPRODUCTIONGRADELIST",
                {"GradeId", "GradeCode", "ProductionGradeId", "ProductionGradeCode", "CompanyId",
                 "CompanyCode", "CompanyName", "productiongradedeleted", "ReportingCompanyId"}},
        Columns{u"VRUNPICKINGTYPES", {"ProductionRunId", "ProductionDate", "PickingTypeId"}}));

using SchemaTest = StoreTest;

TEST_F(SchemaTest, ViewsJoinTheirTables) {
  Client c(path_);
  c.run(
      u"INSERT INTO COMPANY (CompanyId, CompanyCode, CompanyName, DeletedFlag) VALUES (3, 'C3', "
      u"'Third', 'Y')");
  c.run(u"INSERT INTO GRADE (GradeId, GradeCode, CompanyId) VALUES (5, 'G5', 3)");
  c.run(
      u"INSERT INTO GREENGRADE (GradeCode, DeletedFlag, CompanyId, ScrapGrade) VALUES "
      u"('GG1', 'N', 3, 'Y'), ('GG2', 'Y', 99, 'N')");
  c.run(
      u"INSERT INTO PRODUCTIONGRADE (ProductionGradeCode, GradeId, DeletedFlag, "
      u"ReportingCompanyId) VALUES ('P1', 5, 'N', 4)");
  c.run(u"INSERT INTO PRODUCTIONRUN (PRODUCTIONRUNID, ProductionDate) VALUES (7, '2019/03/07')");
  c.run(
      u"INSERT INTO PICKINGS (ProductionRunId, Weight, PickingTypeId) VALUES (7, 1, 2), "
      u"(7, 2, 2), (7, 3, 1), (7, 4, NULL), (8, 5, 2)");

  auto rs = c.run(u"SELECT * FROM VGREENGRADELIST WHERE greengradedeleted = 'n'");
  ASSERT_EQ(rs->recordCount(), 1u);
  EXPECT_EQ(rs->Fields(u"CompanyName"), Variant(u"Third"));
  EXPECT_EQ(rs->Fields(u"companydeleted"), Variant(u"Y"));
  EXPECT_EQ(rs->Fields(u"ScrapGrade"), Variant(u"Y"));
  rs = c.run(u"SELECT * FROM VGREENGRADELIST WHERE GradeCode = 'gg2'");
  ASSERT_EQ(rs->recordCount(), 1u);  // its company is missing; the grade still shows
  EXPECT_TRUE(rs->Fields(u"CompanyCode").isNull());

  rs = c.run(u"SELECT * FROM VPRODUCTIONGRADELIST");
  ASSERT_EQ(rs->recordCount(), 1u);
  EXPECT_EQ(rs->Fields(u"GradeCode"), Variant(u"G5"));
  EXPECT_EQ(rs->Fields(u"CompanyId"), Variant(3));
  EXPECT_EQ(rs->Fields(u"CompanyCode"), Variant(u"C3"));
  EXPECT_EQ(rs->Fields(u"productiongradedeleted"), Variant(u"N"));
  EXPECT_EQ(rs->Fields(u"ReportingCompanyId"), Variant(4));

  rs = c.run(
      u"SELECT * FROM VRUNPICKINGTYPES WHERE ProductionDate = '2019/03/07 00:00' ORDER BY "
      u"PickingTypeId");
  ASSERT_EQ(rs->recordCount(), 2u);
  EXPECT_EQ(rs->Fields(u"PickingTypeId"), Variant(1));
  EXPECT_EQ(rs->Fields(u"ProductionDate"), Variant(makeDate(2019, 3, 7)));
}

TEST_F(SchemaTest, KeysAreIdentitiesThatAreNeverReused) {
  EXPECT_EQ(insert(u"INSERT INTO PICKINGTYPE (Description) VALUES ('a')"), 1);
  EXPECT_EQ(insert(u"INSERT INTO PICKINGTYPE (Description) VALUES ('b')"), 2);
  sql(u"DELETE FROM PICKINGTYPE WHERE PICKINGTYPEID = 2");
  EXPECT_EQ(insert(u"INSERT INTO PICKINGTYPE (Description) VALUES ('c')"), 3);
}

TEST_F(SchemaTest, AnOlderFileIsBroughtUpToDateOncePerProcess) {
  insert(u"INSERT INTO STEMS (TotalNetWeight) VALUES (4.5)");
  direct("ALTER TABLE STEMS DROP COLUMN ContainerEnd; DROP VIEW VRUNPICKINGTYPES");
  {
    // The stamp of an older file, which no statement through the store may change.
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(path_.c_str(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, "PRAGMA user_version = 1", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
  }
  // Checked once per process: further connections find the file as it is.
  EXPECT_EQ(errorOf([&] { sql(u"SELECT ContainerEnd FROM STEMS"); }).nativeError(), 207);

  releaseStore(path_);
  EXPECT_TRUE(sql(u"SELECT ContainerEnd FROM STEMS")->Fields(u"ContainerEnd").isNull());
  EXPECT_EQ(sql(u"SELECT * FROM VRUNPICKINGTYPES")->State(), adStateOpen);
  EXPECT_EQ(scalar(u"SELECT TotalNetWeight FROM STEMS"), Variant(4.5));
  EXPECT_NE(scalar(u"PRAGMA user_version"), Variant(1));
}

}  // namespace

}  // namespace vrdppo::embedded::testing
