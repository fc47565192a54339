// Degradation (screen) samples and the links of their summary rows.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct LabDegradationRecord {
  Long LabDegradationID;
  Long LabHeaderID;
  Long ProductionGradeId;
  Long LabSeason;
  Date SampleDateTime;
  Long Shift;
  FixedString<3> TestType;
  FixedString<3> CaseType;
  FixedString<3> SampleType;
  Long SampleCount;
  FixedString<1> RangeAmount;
  Long SampleRange;
  Long ByProductID;
  Long StemTypeID;
  Long ContainerNumber;
  Currency SampleWeight;
  Currency SampleWeightPct;
  Currency OverOne;
  Currency OverOnePct;
  Currency OverHalf;
  Currency OverHalfPct;
  Currency TotalOverHalf;
  Currency TotalOverHalfPct;
  Currency OverQuarter;
  Currency OverQuarterPct;
  Currency OverEighth;
  Currency OverEighthPct;
  Currency OnPan;
  Currency OnPanPct;
  Currency ThruQuarter;
  Currency ThruQuarterPct;
  Currency TotalWeight;
  Currency TotalWeightPct;
  Currency Unaccountable;
  Currency UnaccountablePct;
  Currency Screen8;
  Currency Screen8Pct;
  Currency Screen9;
  Currency Screen9Pct;
  Currency StemSampleWeight;
  Currency Weight7And12;
  Currency WeightObj;
  Currency WeightPan;
  Currency TotalStemPct;
  Currency ObjPct;
  Currency PanPct;
  Currency NonObjPct;
  Long StemInLamCount;
  FixedString<2> ResultCode;
  Date LastUpdated;
  Long UpdatedByID;
  FixedString<17> KeyName;
};
struct LabDegSumRecord {
  Long LabDegSumID;
  Long ParentID;
  Long ChildID;
  Long SumType;
  FixedString<11> KeyName;
};
#pragma pack(pop)
static_assert(sizeof(LabDegradationRecord) == 384);
static_assert(sizeof(LabDegSumRecord) == 40);

class cLabDegradationPersist final : public TablePersist<LabDegradationRecord> {
 public:
  cLabDegradationPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
  bool LabAddDegradation(const std::u16string& sBuffer, const std::u16string& sConnect, Long lID);
  bool LabRemoveDegradation(const std::u16string& sBuffer, const std::u16string& sConnect,
                            Long lID);
  bool qsp_OnHoldCheck(const std::u16string& sBuffer, const std::u16string& sConnect, Long GradeId,
                       Long ContainerNumber, const std::u16string& Status, Long UserID);
  bool qsp_ContainerPrized(const std::u16string& sBuffer, const std::u16string& sConnect,
                           Long GradeId, Long ContainerNumber);
};

class cLabDegSumPersist final : public TablePersist<LabDegSumRecord> {
 public:
  cLabDegSumPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
