// Green and production grades, the quality limits of production grades, and the lists that join
// them to companies.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct GreenGradeRecord {
  Long GreenGradeId;
  FixedString<10> GradeCode;
  FixedString<1> DeletedFlag;
  Long CompanyId;
  Long ReportingProductionGradeId;
  FixedString<1> ScrapGrade;
  FixedString<26> KeyName;
};
struct GreenGradeListRecord {
  Long GreenGradeId;
  FixedString<10> GradeCode;
  Long CompanyId;
  FixedString<10> CompanyCode;
  FixedString<100> CompanyName;
  FixedString<1> greengradedeleted;
  FixedString<1> companydeleted;
  FixedString<1> ScrapGrade;
  FixedString<17> Blank;
};
struct ProductionGradeRecord {
  Long ProductionGradeId;
  FixedString<10> ProductionGradeCode;
  Long GradeId;
  FixedString<1> DeletedFlag;
  FixedString<1> Active;
  FixedString<1> EnforcePercent;
  FixedString<1> FineCut;
  Long ReportingCompanyId;
  FixedString<1> ChinaReporting;
  FixedString<19> KeyName;
};
struct ProductionGradeSpecRecord {
  Long ProductionGradeSpecId;
  Long ProductionGradeId;
  Double MinOverHalf;
  Double MinOverQuarter;
  Double MaxThruQuarter;
  Double MaxObjStem;
  Double MaxTotalStem;
  Double MaxLaminaOnStem;
  Double MaxSandStrip;
  Double StripMoisture;
  Double StemMoisture;
  Double PkgTempMin;
  Double PkgTempMax;
  Double StripCaseWeight;
  Double CaseSize;
  Long CaseStraps;
  FixedString<21> KeyName;
};
struct ProductionGradeListRecord {
  Long GradeId;
  FixedString<20> GradeCode;
  Long ProductionGradeId;
  FixedString<10> ProductionGradeCode;
  Long CompanyId;
  FixedString<10> CompanyCode;
  FixedString<100> CompanyName;
  FixedString<1> productiongradedeleted;
  Long ReportingCompanyId;
  FixedString<22> Blank;
};
#pragma pack(pop)
static_assert(sizeof(GreenGradeRecord) == 92);
static_assert(sizeof(GreenGradeListRecord) == 288);
static_assert(sizeof(ProductionGradeRecord) == 80);
static_assert(sizeof(ProductionGradeSpecRecord) == 160);
static_assert(sizeof(ProductionGradeListRecord) == 344);

class cGreenGradePersist final : public TablePersist<GreenGradeRecord> {
 public:
  cGreenGradePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvGreenGradeListPersist final : public ViewPersist<GreenGradeListRecord> {
 public:
  cvGreenGradeListPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cProductionGradePersist final : public TablePersist<ProductionGradeRecord> {
 public:
  cProductionGradePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cProductionGradeSpecPersist final : public TablePersist<ProductionGradeSpecRecord> {
 public:
  cProductionGradeSpecPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvProductionGradeListPersist final : public ViewPersist<ProductionGradeListRecord> {
 public:
  cvProductionGradeListPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  // The processing-results report. Each opens a connection of its own with the ConnectString an
  // earlier call on the thread left; none stores one.
  void ClearProcessingResultsTables();
  // Failures end these two silently.
  void sp_GenerateProcessingResultsReport(const std::u16string& sCriteria);
  void ProcessingResults(Long lSeason, const std::u16string& sCompanies, Date dtFromDate,
                         Date dtToDate, const std::u16string& sConnect);
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
