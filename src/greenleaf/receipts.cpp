#include "vrdppo/greenleaf/receipts.hpp"

#include <cstddef>
#include <span>
#include <vector>

#include "vrdppo/operations.hpp"

namespace vrdppo {

namespace {

using GR = GreenReceiptRecord;
// Rows are read by the lower-case names; the lists and FieldValue write five of them in mixed
// case. The key is read as greenreceiptid and named GREENRECEIPTID by UPDATE and DELETE.
constexpr Column kGreenReceiptColumns[] = {
    VRDPPO_COL(GR, greenreceiptid, 0, None),
    VRDPPO_COL(GR, GreenGradeId, 4, L),
    VRDPPO_COL2(GR, receiptdate, 8, u"receiptdate", u"ReceiptDate", T, u"yyyy/MM/dd"),
    VRDPPO_COL(GR, GrossWeight, 16, D),
    VRDPPO_COL(GR, GrossBaleWeight, 24, D0),
    VRDPPO_COL(GR, TareValue, 32, D0),
    VRDPPO_COL(GR, TareUnitCount, 40, L0),
    VRDPPO_COL2(GR, posted, 44, u"posted", u"Posted", S),
    VRDPPO_COL(GR, Status, 46, S),
    VRDPPO_COL2(GR, receipttype, 50, u"receipttype", u"ReceiptType", S),
    VRDPPO_COL(GR, WeightUomId, 60, L),
    VRDPPO_COL2(GR, togreengradeid, 64, u"togreengradeid", u"ToGreenGradeId", L0),
    VRDPPO_COL(GR, ProductionRunId, 68, L0),
    VRDPPO_COL2(GR, weightremaining, 72, u"weightremaining", u"WeightRemaining", D),
};
constexpr RecordLayout kGreenReceiptLayout =
    makeLayout<GR, 94>(kGreenReceiptColumns, VRDPPO_TRAILING(GR, KeyName, 80, u"GreenReceiptId"));
constexpr TableConfig kGreenReceipt =
    firstGeneration(u"GREENRECEIPT", u"GREENRECEIPTID", DeleteStyle::Hard, kGreenReceiptLayout);

using GL = GreenReceiptListRecord;
constexpr Column kGreenReceiptListColumns[] = {
    VRDPPO_COL(GL, greenreceiptid, 0, None),
    VRDPPO_COL(GL, GreenGradeId, 4, None),
    VRDPPO_COL(GL, Status, 8, None),
    VRDPPO_COL(GL, receipttype, 12, None),
    VRDPPO_COL(GL, receiptdate, 20, None),
    VRDPPO_COL(GL, GradeCode, 28, None),
    VRDPPO_COL(GL, togreengradeid, 48, None),
    VRDPPO_COL(GL, togradecode, 52, None),
    VRDPPO_COL(GL, GrossWeight, 72, None),
    VRDPPO_COL(GL, posted, 80, None),
    VRDPPO_COL(GL, CompanyId, 84, None),
    VRDPPO_COL(GL, CompanyCode, 88, None),
    VRDPPO_COL(GL, greengradedeleted, 108, None),
    VRDPPO_COL(GL, companydeleted, 110, None),
    VRDPPO_COL(GL, weightremaining, 112, None),
};
constexpr RecordLayout kGreenReceiptListLayout =
    makeLayout<GL, 104>(kGreenReceiptListColumns, VRDPPO_TRAILING(GL, Blank, 120, u""));
constexpr ViewConfig kGreenReceiptList{u"VGREENRECEIPTLIST", LoadStyle::Star, TopArg::None,
                                       &kGreenReceiptListLayout};

std::vector<MemberInfo> greenReceiptMembers() {
  auto m = tableMembers(kGreenReceipt);
  m.push_back(method<cGreenReceiptPersist>(
      "PostReceipts",
      {ArgInfo{"sConnect", ValueType::String}, ArgInfo{"lContactId", ValueType::Long}},
      ValueType::Boolean, [](cGreenReceiptPersist& o, std::span<const Variant> a) {
        return Variant(o.PostReceipts(a[0].str(), a[1].lng()));
      }));
  return m;
}

}  // namespace

cGreenReceiptPersist::cGreenReceiptPersist() : TablePersist<GreenReceiptRecord>(kGreenReceipt) {}
const ClassInfo& cGreenReceiptPersist::info() {
  static const ClassInfo i = tableClass<cGreenReceiptPersist>("cGreenReceiptPersist", kGreenReceipt,
                                                              greenReceiptMembers());
  return i;
}

bool cGreenReceiptPersist::PostReceipts(const std::u16string& sConnect, Long lContactId) {
  const auto call = lock();
  // ConnectString stays as it is.
  return postOnOwnConnection(sConnect, u"EXEC sp_PostGreenReceipts " + longText(lContactId));
}

cvGreenReceiptListPersist::cvGreenReceiptListPersist()
    : ViewPersist<GreenReceiptListRecord>(kGreenReceiptList) {}
const ClassInfo& cvGreenReceiptListPersist::info() {
  static const ClassInfo i =
      viewClass<cvGreenReceiptListPersist>("cvGreenReceiptListPersist", kGreenReceiptList);
  return i;
}

}  // namespace vrdppo
