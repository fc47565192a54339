#include "vrdppo/reference/grades.hpp"

#include <cstddef>

#include "vrdppo/dbhelp.hpp"
#include "vrdppo/operations.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/render.hpp"

namespace vrdppo {

namespace {

using GG = GreenGradeRecord;
constexpr Column kGreenGradeColumns[] = {
    VRDPPO_COL(GG, GreenGradeId, 0, None),
    VRDPPO_COL(GG, GradeCode, 4, S),
    VRDPPO_COL(GG, DeletedFlag, 24, S),
    VRDPPO_COL(GG, CompanyId, 28, L),
    VRDPPO_COL(GG, ReportingProductionGradeId, 32, L0),
    VRDPPO_COL(GG, ScrapGrade, 36, S),
};
constexpr RecordLayout kGreenGradeLayout =
    makeLayout<GG, 50>(kGreenGradeColumns, VRDPPO_TRAILING(GG, KeyName, 38, u"GreenGradeId"));
// Unlike the rest of its generation: an optional lTop, and " doubled in the insert.
constexpr TableConfig kGreenGrade = [] {
  TableConfig c =
      firstGeneration(u"GREENGRADE", u"GREENGRADEID", DeleteStyle::Soft, kGreenGradeLayout);
  c.top = TopArg::Optional;
  c.doubleQuotesInInsert = true;
  return c;
}();

using GL = GreenGradeListRecord;
constexpr Column kGreenGradeListColumns[] = {
    VRDPPO_COL(GL, GreenGradeId, 0, None),     VRDPPO_COL(GL, GradeCode, 4, None),
    VRDPPO_COL(GL, CompanyId, 24, None),       VRDPPO_COL(GL, CompanyCode, 28, None),
    VRDPPO_COL(GL, CompanyName, 48, None),     VRDPPO_COL(GL, greengradedeleted, 248, None),
    VRDPPO_COL(GL, companydeleted, 250, None), VRDPPO_COL(GL, ScrapGrade, 252, None),
};
constexpr RecordLayout kGreenGradeListLayout =
    makeLayout<GL, 148>(kGreenGradeListColumns, VRDPPO_TRAILING(GL, Blank, 254, u""));
constexpr ViewConfig kGreenGradeList{u"VGREENGRADELIST", LoadStyle::Star, TopArg::None,
                                     &kGreenGradeListLayout};

using PG = ProductionGradeRecord;
constexpr Column kProductionGradeColumns[] = {
    VRDPPO_COL(PG, ProductionGradeId, 0, None),
    VRDPPO_COL(PG, ProductionGradeCode, 4, S),
    VRDPPO_COL(PG, GradeId, 24, L0),
    VRDPPO_COL(PG, DeletedFlag, 28, S),
    VRDPPO_COL(PG, Active, 30, S),
    VRDPPO_COL(PG, EnforcePercent, 32, S),
    VRDPPO_COL(PG, FineCut, 34, S),
    VRDPPO_COL(PG, ReportingCompanyId, 36, L),
    VRDPPO_COL(PG, ChinaReporting, 40, S),
};
constexpr RecordLayout kProductionGradeLayout = makeLayout<PG, 46>(
    kProductionGradeColumns, VRDPPO_TRAILING(PG, KeyName, 42, u"ProductionGradeId"));
constexpr TableConfig kProductionGrade =
    secondGeneration(u"PRODUCTIONGRADE", u"PRODUCTIONGRADEID", DeleteStyle::Soft, TopArg::Required,
                     CriteriaDeleteForm::SecondWithHardDelete, kProductionGradeLayout);

using PS = ProductionGradeSpecRecord;
constexpr Column kProductionGradeSpecColumns[] = {
    VRDPPO_COL(PS, ProductionGradeSpecId, 0, None),
    VRDPPO_COL(PS, ProductionGradeId, 4, L),
    VRDPPO_COL(PS, MinOverHalf, 8, D),
    VRDPPO_COL(PS, MinOverQuarter, 16, D),
    VRDPPO_COL(PS, MaxThruQuarter, 24, D),
    VRDPPO_COL(PS, MaxObjStem, 32, D),
    VRDPPO_COL(PS, MaxTotalStem, 40, D),
    VRDPPO_COL(PS, MaxLaminaOnStem, 48, D),
    VRDPPO_COL(PS, MaxSandStrip, 56, D),
    VRDPPO_COL(PS, StripMoisture, 64, D),
    VRDPPO_COL(PS, StemMoisture, 72, D),
    VRDPPO_COL(PS, PkgTempMin, 80, D),
    VRDPPO_COL(PS, PkgTempMax, 88, D),
    VRDPPO_COL(PS, StripCaseWeight, 96, D0),
    VRDPPO_COL(PS, CaseSize, 104, D0),
    VRDPPO_COL(PS, CaseStraps, 112, L0),
};
constexpr RecordLayout kProductionGradeSpecLayout = makeLayout<PS, 137>(
    kProductionGradeSpecColumns, VRDPPO_TRAILING(PS, KeyName, 116, u"ProductionGradeSpecId"));
constexpr TableConfig kProductionGradeSpec =
    secondGeneration(u"PRODUCTIONGRADESPEC", u"PRODUCTIONGRADESPECID", DeleteStyle::Hard,
                     TopArg::Required, CriteriaDeleteForm::Second, kProductionGradeSpecLayout);

using PL = ProductionGradeListRecord;
constexpr Column kProductionGradeListColumns[] = {
    VRDPPO_COL(PL, GradeId, 0, None),
    VRDPPO_COL(PL, GradeCode, 4, None),
    VRDPPO_COL(PL, ProductionGradeId, 44, None),
    VRDPPO_COL(PL, ProductionGradeCode, 48, None),
    VRDPPO_COL(PL, CompanyId, 68, None),
    VRDPPO_COL(PL, CompanyCode, 72, None),
    VRDPPO_COL(PL, CompanyName, 92, None),
    VRDPPO_COL(PL, productiongradedeleted, 292, None),
    VRDPPO_COL(PL, ReportingCompanyId, 296, None),
};
constexpr RecordLayout kProductionGradeListLayout =
    makeLayout<PL, 179>(kProductionGradeListColumns, VRDPPO_TRAILING(PL, Blank, 300, u""));
constexpr ViewConfig kProductionGradeList{u"VPRODUCTIONGRADELIST", LoadStyle::Star, TopArg::None,
                                          &kProductionGradeListLayout};

}  // namespace

cGreenGradePersist::cGreenGradePersist() : TablePersist<GreenGradeRecord>(kGreenGrade) {}
const ClassInfo& cGreenGradePersist::info() {
  // Load stands last in this class, behind Commit and Delete.
  static const ClassInfo i = tableClass<cGreenGradePersist>(
      "cGreenGradePersist", kGreenGrade,
      tableMembers(kGreenGrade,
                   {"RecordToObj", "GetState", "SetState", "InsertValues", "InsertFields",
                    "UpdateFields", "FieldValue", "Commit", "Delete", "Load"}));
  return i;
}

cvGreenGradeListPersist::cvGreenGradeListPersist()
    : ViewPersist<GreenGradeListRecord>(kGreenGradeList) {}
const ClassInfo& cvGreenGradeListPersist::info() {
  static const ClassInfo i =
      viewClass<cvGreenGradeListPersist>("cvGreenGradeListPersist", kGreenGradeList);
  return i;
}

cProductionGradePersist::cProductionGradePersist()
    : TablePersist<ProductionGradeRecord>(kProductionGrade) {}
const ClassInfo& cProductionGradePersist::info() {
  static const ClassInfo i =
      tableClass<cProductionGradePersist>("cProductionGradePersist", kProductionGrade);
  return i;
}

cProductionGradeSpecPersist::cProductionGradeSpecPersist()
    : TablePersist<ProductionGradeSpecRecord>(kProductionGradeSpec) {}
const ClassInfo& cProductionGradeSpecPersist::info() {
  static const ClassInfo i =
      tableClass<cProductionGradeSpecPersist>("cProductionGradeSpecPersist", kProductionGradeSpec);
  return i;
}

cvProductionGradeListPersist::cvProductionGradeListPersist()
    : ViewPersist<ProductionGradeListRecord>(kProductionGradeList) {}
const ClassInfo& cvProductionGradeListPersist::info() {
  using O = cvProductionGradeListPersist;
  static const ClassInfo i = [] {
    auto members = viewMembers(kProductionGradeList);
    members.push_back(
        method<O>("ClearProcessingResultsTables", {}, ValueType::None, [](O& o, auto) {
          o.ClearProcessingResultsTables();
          return Variant();
        }));
    members.push_back(method<O>("sp_GenerateProcessingResultsReport", {stringArg("sCriteria")},
                                ValueType::None, [](O& o, std::span<const Variant> a) {
                                  o.sp_GenerateProcessingResultsReport(a[0].str());
                                  return Variant();
                                }));
    members.push_back(method<O>("ProcessingResults",
                                {longArg("lSeason"), stringArg("sCompanies"), dateArg("dtFromDate"),
                                 dateArg("dtToDate"), stringArg("sConnect")},
                                ValueType::None, [](O& o, std::span<const Variant> a) {
                                  o.ProcessingResults(a[0].lng(), a[1].str(), a[2].date(),
                                                      a[3].date(), a[4].str());
                                  return Variant();
                                }));
    return viewClass<O>("cvProductionGradeListPersist", kProductionGradeList, std::move(members));
  }();
  return i;
}

namespace {

// The report's connections take the built-in default for an empty ConnectString.
const std::u16string& reportConnectString() {
  return dbHelp::ConnectString.empty() ? dbHelp::DefaultConnectString() : dbHelp::ConnectString;
}

}  // namespace

void cvProductionGradeListPersist::ClearProcessingResultsTables() {
  const auto call = lock();
  Connection connection;
  connection.setCursorLocation(adUseClient);
  connection.Open(reportConnectString(), {}, {}, adOptionUnspecified);
  connection.Execute(u"delete from ProcessingResultsReport", adOptionUnspecified);
  connection.Execute(u"delete from ProcessingResultsStems", adOptionUnspecified);
  connection.Close();
}

void cvProductionGradeListPersist::sp_GenerateProcessingResultsReport(
    const std::u16string& sCriteria) {
  const auto call = lock();
  Connection connection;
  try {
    connection.setCursorLocation(adUseClient);
    connection.Open(reportConnectString(), {}, {}, adOptionUnspecified);
    // No EXEC: the caller writes the argument list, quotes and all.
    connection.Execute(u"sp_GenerateProcResultsReport " + sCriteria, adOptionUnspecified);
    connection.Close();
  } catch (...) {
    // A failure, a time-out included, ends the report without a word.
  }
}

void cvProductionGradeListPersist::ProcessingResults(Long lSeason, const std::u16string& sCompanies,
                                                     Date dtFromDate, Date dtToDate,
                                                     const std::u16string& /*sConnect*/) {
  const auto call = lock();
  try {
    Connection connection;
    connection.setCursorLocation(adUseClient);
    connection.setCommandTimeout(300);
    // ConnectString as the thread has it: sConnect is not used, nor the built-in default.
    connection.Open(dbHelp::ConnectString, {}, {}, adOptionUnspecified);
    // sCompanies goes between the quotes as given; whole days from the first to the last. The
    // fixed times are part of the format, so their separators follow the locale as the date's do.
    connection.Execute(u"qsp_LabProcessingResults " + longText(lSeason) + u", '" + sCompanies +
                           u"','" + formatDate(dtFromDate, u"yyyy/MM/dd 00:00:00") + u"','" +
                           formatDate(dtToDate, u"yyyy/MM/dd 23:59:59") + u"'",
                       adOptionUnspecified);
    connection.Close();
  } catch (...) {
    // Every failure, the open included, is dropped.
  }
}

}  // namespace vrdppo
