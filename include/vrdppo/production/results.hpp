// Processing results by year: production statistics and the prior years' degradation.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct ProductionStatsRecord {
  Long ProductionStatsId;
  Long ObjectTypeId;
  Long ObjectId;
  Long ProductionGradeId;
  FixedString<100> ObjectCode;
  Double YTD;
  Double PYTD;
  Double PYTD2;
  Double CurrentValue;
  FixedString<17> KeyName;
};
struct DegradationPYTDRecord {
  Long DegradationPYTDId;
  Long ProductionGradeId;
  Long TestType;
  Long DegradationType;
  Long SeasonYear;
  Double Over1;
  Double TotalOverHalf;
  Double OverHalf;
  Double FourXFour;
  Double EightXEight;
  Double StripOnPan;
  Double ThruQuarter;
  Double NonObj;
  Double ObjStem;
  Double TotalStem;
  Double StemOnPan;
  FixedString<17> KeyName;
};
#pragma pack(pop)
static_assert(sizeof(ProductionStatsRecord) == 284);
static_assert(sizeof(DegradationPYTDRecord) == 144);

class cProductionStatsPersist final : public TablePersist<ProductionStatsRecord> {
 public:
  cProductionStatsPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  // Takes lID where its neighbours take a state, and uses it not at all: the record is blanked.
  bool CriteriaDelete(Long lID, const std::u16string& sCriteria, const std::u16string& sConnect);
};

class cDegradationPYTDPersist final : public TablePersist<DegradationPYTDRecord> {
 public:
  cDegradationPYTDPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
