// Green receipts: leaf weighed in, or moved between grades, before it is posted to inventory.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
// Members bear the spelling a row is read by; several are written in another case.
struct GreenReceiptRecord {
  Long greenreceiptid;
  Long GreenGradeId;
  Date receiptdate;
  Double GrossWeight;
  Double GrossBaleWeight;
  Double TareValue;
  Long TareUnitCount;
  FixedString<1> posted;
  FixedString<2> Status;
  FixedString<4> receipttype;
  Long WeightUomId;
  Long togreengradeid;
  Long ProductionRunId;
  Double weightremaining;
  FixedString<15> KeyName;
};
struct GreenReceiptListRecord {
  Long greenreceiptid;
  Long GreenGradeId;
  FixedString<2> Status;
  FixedString<4> receipttype;
  Date receiptdate;
  FixedString<10> GradeCode;
  Long togreengradeid;
  FixedString<10> togradecode;
  Double GrossWeight;
  FixedString<1> posted;
  Long CompanyId;
  FixedString<10> CompanyCode;
  FixedString<1> greengradedeleted;
  FixedString<1> companydeleted;
  Double weightremaining;
  FixedString<17> Blank;
};
#pragma pack(pop)
static_assert(sizeof(GreenReceiptRecord) == 112);
static_assert(sizeof(GreenReceiptListRecord) == 156);

class cGreenReceiptPersist final : public TablePersist<GreenReceiptRecord> {
 public:
  cGreenReceiptPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  // Posts every pending receipt through sp_PostGreenReceipts on a connection of its own; False
  // for any failure, which it never raises.
  bool PostReceipts(const std::u16string& sConnect, Long lContactId);
};

class cvGreenReceiptListPersist final : public ViewPersist<GreenReceiptListRecord> {
 public:
  cvGreenReceiptListPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
