// Lab headers, the laboratory's unit of work, and the work list the laboratory reads them from.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/variant.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct LabHeaderRecord {
  Long LabHeaderID;
  Long CompanyId;
  Long ProductionGradeId;
  Long LabSettingSnapshotID;
  Long ProductionRunId;
  Date StartDate;
  Long StartShift;
  Date EndDate;
  Long EndShift;
  FixedString<2> LabStatus;
  FixedString<1> DeletedFlag;
  Long GreenDegCount;
  Long StripDegCount;
  Long ScrapDegCount;
  Long StemDegCount;
  Long PackedStripCount;
  Long PackedStemCount;
  Long PackedScrapCount;
  Long GreenMoistureCount;
  Long ExitSiloCount;
  Long ForeignCount;
  FixedString<20> KeyName;
};
struct LabWorkListRecord {
  Long LabHeaderID;
  Long CompanyId;
  Long ProductionGradeId;
  Long LabSettingSnapshotID;
  Date StartDate;
  FixedString<2> LabStatus;
  FixedString<1> DeletedFlag;
  FixedString<10> CompanyCode;
  FixedString<100> CompanyName;
  FixedString<10> ProductionGradeCode;
  FixedString<20> Blank;
};
#pragma pack(pop)
static_assert(sizeof(LabHeaderRecord) == 132);
static_assert(sizeof(LabWorkListRecord) == 312);

class cLabHeaderPersist final : public TablePersist<LabHeaderRecord> {
 public:
  cLabHeaderPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
  bool qsp_LabCreateIntermediateNotes(const std::u16string& sBuffer, const std::u16string& sConnect,
                                      Long lSeason, Long lCompanyID,
                                      const std::u16string& sFromDate,
                                      const std::u16string& sToDate);
  // A missing vProductionGradeId withdraws the notes of the whole company.
  void DeleteIntermediateNotes(const std::u16string& sConnect, Long lSeason, Long lCompanyID,
                               const Variant& vProductionGradeId = Variant::missing());
  bool LockHeader(const std::u16string& sConnect, Long lLabHeaderId);
  void ReleaseHeader(const std::u16string& sConnect, Long lLabHeaderId);
};

class cvLabWorkListPersist final : public ViewPersist<LabWorkListRecord> {
 public:
  cvLabWorkListPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
