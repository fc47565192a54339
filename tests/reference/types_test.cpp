// Stem, picking and by-product types, stations and settings against the texts and layouts of
// their tables, on a scripted provider.
#include <gtest/gtest.h>

#include <functional>

#include "support/class_cases.hpp"
#include "support/scripted_provider.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/reference/stations.hpp"
#include "vrdppo/reference/types.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/render.hpp"

using namespace vrdppo;
using vrdppo::testing::providerError;
using vrdppo::testing::ScriptedProvider;

namespace {

const std::u16string kConnect = u"DSN=plant";
using Log = std::vector<std::string>;

std::u16string byProductsType(Long key, Long sort) {
  return newState<cByProductsTypePersist>([&](ByProductsTypeRecord& r) {
    r.ByProductsTypeId = key;
    r.SortSequence = sort;
  });
}

using Reference = vrdppo::testing::ScriptedTest;

}  // namespace

TEST_F(Reference, LayoutsMatchTheirTables) {
  vrdppo::testing::expectLayouts({
      {"cStemClassPersist", 68, 36, "STEMCLASS", u"StemClassId"},
      {"cStemTypePersist", 196, 104, "STEMTYPE", u"StemTypeId"},
      {"cvStemTypeListPersist", 236, 124, "VSTEMTYPELIST", u""},
      {"cPickingTypePersist", 136, 72, "PICKINGTYPE", u"PickingTypeId"},
      {"cByProductsTypePersist", 188, 103, "BYPRODUCTSTYPE", u"ByProductsTypeId"},
      {"cByProductsMappingPersist", 64, 33, "BYPRODUCTSMAPPING", u"ByProductsMappingID"},
      {"cvCompanyByProductsListPersist", 432, 224, "VCOMPANYBYPRODUCTSLIST", u""},
      {"cStationPersist", 412, 216, "STATION", u"StationId"},
      {"cProductionSettingsPersist", 1944, 1001, "PRODUCTIONSETTINGS", u"ProductionSettingsId"},
      {"cCalibrationPersist", 76, 67, "CALIBRATION", u"CalibrationId"},
  });
}

TEST_F(Reference, ListsUseTheWriteSpellings) {
  cStemTypePersist stemType;
  EXPECT_EQ(stemType.InsertFields(),
            u"ProductionGradeId, Code, Description, DeletedFlag, StemClassId, GradeID");
  EXPECT_EQ(stemType.SelectFields(),
            u"StemTypeId, ProductionGradeId, Code, Description, DeletedFlag, StemClassId, GradeID");
  db.answerRows(u"SELECT", {u"x"}, {}, 1);
  cvStemTypeListPersist list;
  list.Load(u"", kConnect, 3);
  EXPECT_EQ(db.statements().back(),
            u"SELECT TOP 3 StemTypeId, ProductionGradeId, Code, Description, DeletedFlag, "
            u"StemClassId, GradeID, GradeCode FROM VSTEMTYPELIST");
  cByProductsTypePersist byProducts;
  EXPECT_EQ(byProducts.InsertFields(),
            u"CompanyId, Code, Description, SortSequence, DeletedFlag, Active, ShowCaseNumber, "
            u"ShowSampleTime, ByProductsMappingID, GradeID");
  db.answerRows(u"SELECT", {u"x"}, {}, 1);
  cvCompanyByProductsListPersist companies;
  companies.Load(u"CompanyId = 3", kConnect);
  EXPECT_EQ(db.statements().back(),
            u"SELECT ByProductsTypeId, byproductscode, Description, CompanyId, CompanyCode, "
            u"CompanyName, companydeleted, DeletedFlag, SortSequence, GradeId, GradeCode FROM "
            u"VCOMPANYBYPRODUCTSLIST WHERE CompanyId = 3");

  // A stem type row is read under StemTypeID and GradeId.
  db.answerRows(u"FROM STEMTYPE",
                {u"StemTypeID", u"ProductionGradeId", u"Code", u"Description", u"DeletedFlag",
                 u"StemClassId", u"GradeId"},
                {{Long{4}, Long{5}, std::u16string(u"ST"), std::u16string(u"Stem"),
                  std::u16string(u"N"), Long{6}, Long{7}}},
                1);
  stemType.Load(u"", kConnect);
  EXPECT_EQ(stemType.record().StemTypeID, 4);
  EXPECT_EQ(stemType.record().GradeId, 7);
}

TEST_F(Reference, RenderCodesThatDifferFromTheirNeighbours) {
  db.answerRows(u"qsp_InsertStatement", {u"Identity"}, {{Long{1}}});
  db.answerRows(u"sp_InsertStatement", {u"Identity"}, {{Long{1}}});
  // Blank strings of the settings write Null but for PrintRemTicket and BarcodePrefix; a
  // default season start writes Null.
  cProductionSettingsPersist settings;
  settings.Commit(newState<cProductionSettingsPersist>([](ProductionSettingsRecord&) {}), kConnect);
  EXPECT_EQ(db.statements().back(),
            u"EXEC qsp_InsertStatement @p_Stmt = \"INSERT INTO PRODUCTIONSETTINGS  "
            u"(GrossBaleWeight, TareValue, TareUnitCount, PreferredUom, SeasonStartDate, "
            u"Shift1Line, Shift1CC, Shift1Redrier, Shift2Line, Shift2CC, Shift2Redrier, "
            u"Shift3Line, Shift3CC, Shift3Redrier, ExtranetDir, LabelFormatDir, ExcelExtractDir, "
            u"BTDSN, DateTimeLabelFormat, ImperialLabelDir, PrintRemTicket, BarcodePrefix, "
            u"ReweighTolerance, LbsPerLoad) VALUES (0, 0, 0, Null, Null, Null, Null, Null, Null, "
            u"Null, Null, Null, Null, Null, Null, Null, Null, Null, Null, Null, '', '', Null, "
            u"Null)\"");
  settings.Commit(newState<cProductionSettingsPersist>([](ProductionSettingsRecord& r) {
                    r.ProductionSettingsId = 2;
                    r.SeasonStartDate = Date{43531.5};
                  }),
                  kConnect);
  EXPECT_NE(db.statements().back().find(u"SeasonStartDate = '2019/03/07 12:00:00'"),
            std::u16string::npos);

  // The calibration writes its time stamp always, and a run of 0 as Null.
  cCalibrationPersist calibration;
  calibration.Commit(newState<cCalibrationPersist>([](CalibrationRecord&) {}), kConnect);
  EXPECT_EQ(db.statements().back(),
            u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO CALIBRATION (CalibrationTS, "
            u"OperatorId, StationId, ShiftNumber, ProductionRunId, OnScale, ScaleReading) VALUES "
            u"('1900/01/01 00:00:00', 0, 0, 0, Null, 0, 0)\"");

  // A station's baud of 0 and blank ports write Null; its code and flag write ''.
  cStationPersist station;
  station.Commit(newState<cStationPersist>([](StationRecord& r) {
                   r.StationId = 3;
                   put(r.StationCode, u"S'1");
                   r.ScaleBaud = 9600;
                 }),
                 kConnect);
  EXPECT_EQ(db.statements().back().substr(0, 157),
            u"UPDATE STATION SET StationCode = 'S''1', Description = '', DeletedFlag = '', "
            u"ScannerPort = Null, ScannerBaud = Null, ScannerParity = Null, ScannerData = Null");
  EXPECT_NE(db.statements().back().find(u"ScaleBaud = 9600"), std::u16string::npos);

  cStemClassPersist stemClass;
  stemClass.Commit(newState<cStemClassPersist>([](StemClassRecord&) {}), kConnect);
  EXPECT_EQ(db.statements().back(),
            u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO STEMCLASS (Description, "
            u"DeletedFlag) VALUES ('', '')\"");
  cByProductsMappingPersist mapping;
  mapping.Commit(newState<cByProductsMappingPersist>([](ByProductsMappingRecord& r) {
                   r.ByProductsMappingID = 6;
                   put(r.Code, u"SCRAP");
                 }),
                 kConnect);
  EXPECT_EQ(db.statements().back(),
            u"UPDATE BYPRODUCTSMAPPING SET Code = 'SCRAP' WHERE BYPRODUCTSMAPPINGID = 6");
}

TEST_F(Reference, DeleteStylesAndCriteriaDeleteForms) {
  const struct {
    const char* name;
    const char16_t* deleted;
  } cases[] = {
      {"cStemClassPersist", u"DELETE FROM STEMCLASS WHERE STEMCLASSID = 0"},
      {"cPickingTypePersist", u"DELETE FROM PICKINGTYPE WHERE PICKINGTYPEID = 0"},
      {"cStemTypePersist", u"UPDATE STEMTYPE SET DELETEDFLAG = 'Y' WHERE STEMTYPEID = 0"},
      {"cStationPersist", u"UPDATE STATION SET DELETEDFLAG = 'Y' WHERE STATIONID = 0"},
      {"cProductionSettingsPersist",
       u"DELETE FROM PRODUCTIONSETTINGS WHERE PRODUCTIONSETTINGSID = 0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto o = registry::create(c.name);
    const std::u16string zero(o->layout().stateChars, u'\0');
    registry::invoke(*o, "Delete", std::vector<Variant>{zero, kConnect});
    EXPECT_EQ(db.statements().back(), c.deleted);
  }
  // The settings' CriteriaDelete has no bHardDelete; the station's has.
  EXPECT_EQ(cProductionSettingsPersist::info().member("CriteriaDelete")->args.size(), 3u);
  EXPECT_EQ(cStationPersist::info().member("CriteriaDelete")->args.size(), 4u);
  EXPECT_EQ(cStemClassPersist::info().member("CriteriaDelete"), nullptr);
  EXPECT_FALSE(cStationPersist::info().member("Load")->args[2].optional);
  EXPECT_TRUE(cStemTypePersist::info().member("Load")->args[2].optional);
}

TEST_F(Reference, AdjustSortSequenceSendsOnlyForOneStep) {
  cByProductsTypePersist o;
  dbHelp::ConnectString = u"DSN=before";
  for (const Long step : {0, 2, -2}) {
    o.AdjustSortSequence(byProductsType(7, 4), kConnect, step, u"CompanyId = 3");
  }
  EXPECT_TRUE(db.log().empty());
  EXPECT_EQ(dbHelp::ConnectString, u"DSN=before");

  o.AdjustSortSequence(byProductsType(7, 4), kConnect, -1, u"CompanyId = 3");
  EXPECT_EQ(db.statements().back(),
            u"EXEC qspsys_AdjustSortSequence 'ByProductsType', 7, -1, 'CompanyId = 3'");
  o.AdjustSortSequence(byProductsType(8, 4), kConnect, 1, u"");
  EXPECT_EQ(db.statements().back(), u"EXEC qspsys_AdjustSortSequence 'ByProductsType', 8, 1, ''");
  EXPECT_EQ(dbHelp::ConnectString, kConnect);

  // Criteria and action go in as they stand: a quote in them is the caller's to double.
  o.InsertDeleteAtSortSequence(byProductsType(7, 4), kConnect, u"Insert", u"Code = 'X'");
  EXPECT_EQ(db.statements().back(),
            u"EXEC qspsys_InsertDeleteAtSortSequence 'ByProductsType', 4, 'Insert', 'Code = "
            u"'X''");
}

TEST_F(Reference, TheListsSortOperationsSendAnEmptyCommand) {
  cvCompanyByProductsListPersist o;
  o.AdjustSortSequence(u"", kConnect, 0, u"CompanyId = 3");
  EXPECT_TRUE(db.log().empty());
  o.AdjustSortSequence(u"", kConnect, 1, u"CompanyId = 3");
  EXPECT_EQ(db.statements().back(), u"");
  o.InsertDeleteAtSortSequence(u"", kConnect, u"Insert", u"CompanyId = 3");
  EXPECT_EQ(db.statements().back(), u"");
  EXPECT_EQ(o.record().ByProductsTypeId, 2097184);  // the private SetState ran on ""

  db.failExecute(u"", providerError(), 1);
  db.answerRows(u"QUOTED", {u"x"}, {}, 0);
  EXPECT_THROW(o.AdjustSortSequence(u"", kConnect, -1, u""), Error);
  // Both members stand after the view's own, in this order.
  const auto& m = cvCompanyByProductsListPersist::info().members;
  EXPECT_EQ(m[m.size() - 2].name, "AdjustSortSequence");
  EXPECT_EQ(m[m.size() - 1].name, "InsertDeleteAtSortSequence");
}

TEST_F(Reference, CreateInventoryRunsOnItsOwnConnectionAndRaises) {
  cProductionSettingsPersist o;
  o.sp_CreateGreenInventory(kConnect);
  EXPECT_EQ(db.log(), (Log{"create", "open DSN=plant|||-1", "execute qsp_CreateGreenInventory|-1",
                           "close", "release"}));
  EXPECT_EQ(dbHelp::ConnectString, kConnect);
  db.clear();
  o.sp_CreatecbGreenInventory(kConnect);
  EXPECT_EQ(db.statements(), (std::vector<std::u16string>{u"qsp_CreatecbGreenInventory"}));

  const struct {
    const char* where;
    std::function<void(ScriptedProvider&)> arm;
    Log log;
  } cases[] = {
      {"open",
       [](ScriptedProvider& p) { p.failOpen(providerError()); },
       {"create", "open |||-1", "release"}},
      {"execute",
       [](ScriptedProvider& p) { p.failExecute(u"qsp", providerError()); },
       {"create", "open |||-1", "execute qsp_CreateGreenInventory|-1", "release"}},
      {"close",
       [](ScriptedProvider& p) { p.failClose(providerError()); },
       {"create", "open |||-1", "execute qsp_CreateGreenInventory|-1", "close", "release"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.where);
    ScriptedProvider p;
    c.arm(p);
    // An empty string is opened as it is: the built-in default does not apply here.
    EXPECT_THROW(o.sp_CreateGreenInventory(u""), Error);
    EXPECT_EQ(p.log(), c.log);
  }
}
