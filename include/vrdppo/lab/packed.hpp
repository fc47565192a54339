// Packed samples and the links of their summary rows; the door to the checks on a container,
// to the header's bookkeeping of packed samples and to the advice notes.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct LabPackedRecord {
  Long LabPackedID;
  Long LabHeaderID;
  Long ProductionGradeId;
  Long LabSeason;
  Date SampleDateTime;
  Long Shift;
  FixedString<3> TestType;
  Long StemTypeID;
  Long ByProductID;
  FixedString<3> SampleType;
  Long SampleCount;
  FixedString<1> RangeAmount;
  Long SampleRange;
  Long ContainerNumber;
  Currency Temperature;
  Currency Temperature2;
  Long TempCount;
  Currency NicotinePct;
  Currency NicotinePct2;
  Currency SugarPct;
  Currency SugarPct2;
  Long InfCount;
  Currency MoisturePct;
  Currency MoisturePct2;
  Long MoistureCount;
  Currency OvenPct;
  Currency OvenPct2;
  Long OvenCount;
  Long NumberStems;
  Currency AverageLength;
  Currency AverageLength2;
  Long StemLengthCount;
  Currency LaminaInStemPct;
  Currency LaminaInStemPct2;
  Long LaminaInStemCount;
  Currency StemInScrapPct;
  Currency StemInScrapPct2;
  Long StemInScrapCount;
  FixedString<2> ResultCode;
  Currency WtUnder05;
  Currency Wt05to10;
  Currency Wt10to15;
  Currency Wt15to20;
  Currency Wt20to25;
  Currency Wt25to30;
  Currency Wt30to35;
  Currency Wt35to40;
  Currency WtOver40;
  Currency TotalWt;
  Currency WtUnder05Pct;
  Currency Wt05to10Pct;
  Currency Wt10to15Pct;
  Currency Wt15to20Pct;
  Currency Wt20to25Pct;
  Currency Wt25to30Pct;
  Currency Wt30to35Pct;
  Currency Wt35to40Pct;
  Currency WtOver40Pct;
  Long StemDetailsCount;
  Date LastUpdated;
  Long UpdatedByID;
  Currency StemInLam1;
  Currency StemInLam2;
  Currency StemInLam3;
  Currency StemInLam4;
  Currency StemInLam5;
  Currency StemInLamPct1;
  Currency StemInLamPct2;
  Currency StemInLamPct3;
  Currency StemInLamPct4;
  Currency StemInLamPct5;
  Long StemInLamCount;
  FixedString<1> StripAppearance;
  FixedString<1> PackingCartons;
  Currency Reweigh;
  Currency PackDensityVarPct;
  FixedString<17> KeyName;
};
struct LabPackedSumRecord {
  Long LabPackedSumID;
  Long ParentID;
  Long ChildID;
  Long SumType;
  FixedString<14> KeyName;
};
#pragma pack(pop)
static_assert(sizeof(LabPackedRecord) == 540);
static_assert(sizeof(LabPackedSumRecord) == 44);

class cLabPackedPersist final : public TablePersist<LabPackedRecord> {
 public:
  cLabPackedPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
  bool qsp_OnHoldCheck(const std::u16string& sBuffer, const std::u16string& sConnect, Long GradeId,
                       Long ContainerNumber, const std::u16string& Status, Long UserID);
  bool qsp_ContainerPrized(const std::u16string& sBuffer, const std::u16string& sConnect,
                           Long GradeId, Long ContainerNumber);
  bool LabAddPacked(const std::u16string& sBuffer, const std::u16string& sConnect, Long lID);
  bool LabRemovePacked(const std::u16string& sBuffer, const std::u16string& sConnect, Long lID);
  bool CreateAdviceNotes(const std::u16string& sBuffer, const std::u16string& sConnect,
                         Long lCompanyID, Long lSeason);
  void DeleteAdviceNotes(const std::u16string& sConnect, Long lCompanyID, Long lSeason);
  void SyncAdviceNotes(const std::u16string& sConnect, Long lSeason);
};

class cLabPackedSumPersist final : public TablePersist<LabPackedSumRecord> {
 public:
  cLabPackedSumPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
