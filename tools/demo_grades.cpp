// The demo's first section: companies, green and production grades, and the grade lists.
#include <fmt/format.h>

#include <ostream>

#include "demo.hpp"
#include "vrdppo/reference/grades.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::cli {

void demoGrades(DemoContext& d) {
  d.heading(
      "Companies and their grades (tables without a class of their own: written through the "
      "gateway's OpenRecordset)");
  d.company = d.insert(
      u"INSERT INTO COMPANY (CompanyCode, CompanyName, DeletedFlag) VALUES ('TT', 'Tobacco "
      u"Traders', 'N')");
  d.otherCompany = d.insert(
      u"INSERT INTO COMPANY (CompanyCode, CompanyName, DeletedFlag) VALUES ('LS', 'Leaf "
      u"Suppliers', 'N')");
  d.grade = d.insert(u"INSERT INTO GRADE (GradeCode, CompanyId, DeletedFlag) VALUES ('FLUE-A', " +
                     longText(d.company) + u", 'N')");
  d.statements();

  d.heading(
      "Green grades through cGreenGradePersist.Commit (key 0: insert; this class doubles \")");
  cGreenGradePersist green;
  for (const auto& [code, company] :
       {std::pair{u"L1O", d.company}, {u"X2F", d.company}, {u"B\"4", d.otherCompany}}) {
    green.Commit(newState<cGreenGradePersist>([&](GreenGradeRecord& r) {
                   put(r.GradeCode, code);
                   r.CompanyId = company;
                   put(r.ScrapGrade, u"N");
                 }),
                 d.connect);
    d.out << fmt::format("    GreenGradeId {} for {}, read back from GetState\n",
                         green.record().GreenGradeId, toUtf8(code));
    if (!d.greenGrade) d.greenGrade = green.record().GreenGradeId;
  }
  d.statements();

  d.heading("A production grade and its quality limits (second generation: qsp_, SELECT list)");
  cProductionGradePersist production;
  production.Commit(newState<cProductionGradePersist>([&](ProductionGradeRecord& r) {
                      put(r.ProductionGradeCode, u"STRIP-1");
                      r.GradeId = d.grade;
                      put(r.Active, u"Y");
                      r.ReportingCompanyId = d.company;
                    }),
                    d.connect);
  d.productionGrade = production.record().ProductionGradeId;
  cProductionGradeSpecPersist spec;
  spec.Commit(newState<cProductionGradeSpecPersist>([&](ProductionGradeSpecRecord& r) {
                r.ProductionGradeId = d.productionGrade;
                r.StripMoisture = 12.5;
                r.StemMoisture = 1.0 / 30;
              }),
              d.connect);
  d.statements();

  d.heading(
      "The grade lists, joined to companies (cvGreenGradeListPersist, "
      "cvProductionGradeListPersist)");
  cvGreenGradeListPersist list;
  d.table(list.layout(), list.Load(u"CompanyId = " + longText(d.company), d.connect));
  cvProductionGradeListPersist productionList;
  d.table(productionList.layout(), productionList.Load(u"", d.connect));
  d.statements();
}

}  // namespace vrdppo::cli
