// The production run: its record, posting, the checks and procedures around its deletion, the
// prizing workflow, and the two views that list runs.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct ProductionRunRecord {
  Long ProductionRunId;
  Date ProductionDate;
  Long ShiftNumber;
  FixedString<2> Status;
  Long ProductionGradeId;
  FixedString<10> ProductionLine;
  FixedString<30> CCOperator;
  FixedString<30> RedrierOperator;
  Long MachineMinutes;
  FixedString<1> Picked;
  FixedString<255> Comments;
  Double RemainderIn;
  Double RemainderOut;
  Long WeightUomId;
  Double GrossBaleWeight;
  Double TareValue;
  Long TareUnitCount;
  Double FedIn;
  FixedString<1> ScanningComplete;
  FixedString<2> PrizingStatus;
  Long RunSequence;
  Long AbsoluteSequence;
  FixedString<1> UsesSilos;
};
struct ProductionRunListRecord {
  Long ProductionRunId;
  Date ProductionDate;
  Long ShiftNumber;
  Long ProductionGradeId;
  FixedString<10> ProductionGradeCode;
  FixedString<1> companydeleted;
  Long GradeId;
  FixedString<20> GradeCode;
  Long CompanyId;
  FixedString<10> CompanyCode;
  FixedString<2> Status;
  FixedString<1> ScanningComplete;
  FixedString<2> PrizingStatus;
  Long RunSequence;
  FixedString<1> ChinaReporting;
  FixedString<19> Blank;
};
struct ProductionRunPrizingRecord {
  Date ProductionDate;
  Long ProductionGradeId;
  FixedString<10> ProductionGradeCode;
  FixedString<2> Status;
  FixedString<1> ScanningComplete;
  Long ProductionRunId;
  FixedString<20> GradeCode;
  Long GradeId;
  FixedString<50> Description;
  Long GrowingYear;
  FixedString<20> PrizedGradeCode;
  FixedString<10> PrizedCompanyCode;
  FixedString<5> TypeCode;
  Long SortSequence;
  FixedString<50> GradeType;
  Long GradeTypeId;
  Long CompanyId;
  FixedString<10> CompanyCode;
  FixedString<100> CompanyName;
  FixedString<2> PrizingStatus;
  Long RunSequence;
  Double FedIn;
  FixedString<19> Blank;
};
#pragma pack(pop)
static_assert(sizeof(ProductionRunRecord) == 748);
static_assert(sizeof(ProductionRunListRecord) == 168);
static_assert(sizeof(ProductionRunPrizingRecord) == 652);

class cProductionRunPersist final : public TablePersist<ProductionRunRecord> {
 public:
  cProductionRunPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  // Runs sp_PostProductionRun on a connection of its own; False on any failure, never raises.
  bool Post(const std::u16string& sConnect, Long lSecurityProfileId, Long lRunId, bool bOldMode);
  // The database's reason why the run cannot be deleted; empty when it can.
  std::u16string sCanDeleteProductionRun(std::u16string sBuffer, std::u16string sConnect);
  // Zaps the run and what hangs from it, by procedure.
  bool Delete(const std::u16string& sBuffer, const std::u16string& sConnect) override;

  // Prizing: each sends its procedure for the record's run.
  Long CreatePrizedStageHeaders(std::u16string sBuffer, std::u16string sConnect);
  void AssignRunSequence(std::u16string sBuffer, std::u16string sConnect, Long lSwapId);
  void UpdatePrizingStatus(std::u16string sBuffer, std::u16string sConnect);
  void ReleaseToPrizing(std::u16string sBuffer, std::u16string sConnect);
  void CompletePrizing(std::u16string sBuffer, std::u16string sConnect, Long lStationId);
  bool bGradeChangeInProgress(std::u16string sBuffer, std::u16string sConnect);
};

class cvProductionRunListPersist final : public ViewPersist<ProductionRunListRecord> {
 public:
  cvProductionRunListPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvProductionRunPrizingPersist final : public ViewPersist<ProductionRunPrizingRecord> {
 public:
  cvProductionRunPrizingPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
