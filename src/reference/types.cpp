#include "vrdppo/reference/types.hpp"

#include <cstddef>

#include "vrdppo/dbhelp.hpp"
#include "vrdppo/operations.hpp"

namespace vrdppo {

namespace {

using SC = StemClassRecord;
constexpr Column kStemClassColumns[] = {
    VRDPPO_COL(SC, StemClassId, 0, None),
    VRDPPO_COL(SC, Description, 4, S),
    VRDPPO_COL(SC, DeletedFlag, 44, S),
};
constexpr RecordLayout kStemClassLayout =
    makeLayout<SC, 36>(kStemClassColumns, VRDPPO_TRAILING(SC, KeyName, 46, u"StemClassId"));
// Carries a DeletedFlag, yet deletes the row.
constexpr TableConfig kStemClass =
    firstGeneration(u"STEMCLASS", u"STEMCLASSID", DeleteStyle::Hard, kStemClassLayout);

using STY = StemTypeRecord;
// The key and the grade are read as StemTypeID and GradeId, written as StemTypeId and GradeID.
constexpr Column kStemTypeColumns[] = {
    VRDPPO_COL2(STY, StemTypeID, 0, u"StemTypeID", u"StemTypeId", None),
    VRDPPO_COL(STY, ProductionGradeId, 4, L),
    VRDPPO_COL(STY, Code, 8, S),
    VRDPPO_COL(STY, Description, 48, S),
    VRDPPO_COL(STY, DeletedFlag, 148, S),
    VRDPPO_COL(STY, StemClassId, 152, L),
    VRDPPO_COL2(STY, GradeId, 156, u"GradeId", u"GradeID", L0),
};
constexpr RecordLayout kStemTypeLayout =
    makeLayout<STY, 104>(kStemTypeColumns, VRDPPO_TRAILING(STY, KeyName, 160, u"StemTypeId"));
constexpr TableConfig kStemType =
    secondGeneration(u"STEMTYPE", u"STEMTYPEID", DeleteStyle::Soft, TopArg::Optional,
                     CriteriaDeleteForm::SecondWithHardDelete, kStemTypeLayout);

using STL = StemTypeListRecord;
// The select list names the key and the grade as the table class writes them.
constexpr Column kStemTypeListColumns[] = {
    VRDPPO_COL2(STL, StemTypeID, 0, u"StemTypeID", u"StemTypeId", None),
    VRDPPO_COL(STL, ProductionGradeId, 4, None),
    VRDPPO_COL(STL, Code, 8, None),
    VRDPPO_COL(STL, Description, 48, None),
    VRDPPO_COL(STL, DeletedFlag, 148, None),
    VRDPPO_COL(STL, StemClassId, 152, None),
    VRDPPO_COL2(STL, GradeId, 156, u"GradeId", u"GradeID", None),
    VRDPPO_COL(STL, GradeCode, 160, None),
};
constexpr RecordLayout kStemTypeListLayout =
    makeLayout<STL, 124>(kStemTypeListColumns, VRDPPO_TRAILING(STL, Blank, 200, u""));
constexpr ViewConfig kStemTypeList{u"VSTEMTYPELIST", LoadStyle::List, TopArg::Optional,
                                   &kStemTypeListLayout};

using PT = PickingTypeRecord;
constexpr Column kPickingTypeColumns[] = {
    VRDPPO_COL(PT, PickingTypeId, 0, None),
    VRDPPO_COL(PT, Description, 4, S),
    VRDPPO_COL(PT, SortSequence, 104, L),
    VRDPPO_COL(PT, DeletedFlag, 108, S),
};
constexpr RecordLayout kPickingTypeLayout =
    makeLayout<PT, 72>(kPickingTypeColumns, VRDPPO_TRAILING(PT, KeyName, 110, u"PickingTypeId"));
// Carries a DeletedFlag, yet deletes the row.
constexpr TableConfig kPickingType =
    firstGeneration(u"PICKINGTYPE", u"PICKINGTYPEID", DeleteStyle::Hard, kPickingTypeLayout);

using BT = ByProductsTypeRecord;
constexpr Column kByProductsTypeColumns[] = {
    VRDPPO_COL(BT, ByProductsTypeId, 0, None),
    VRDPPO_COL(BT, CompanyId, 4, L),
    VRDPPO_COL(BT, Code, 8, S),
    VRDPPO_COL(BT, Description, 28, S),
    VRDPPO_COL(BT, SortSequence, 128, L),
    VRDPPO_COL(BT, DeletedFlag, 132, S),
    VRDPPO_COL(BT, Active, 134, S),
    VRDPPO_COL(BT, ShowCaseNumber, 136, S),
    VRDPPO_COL(BT, ShowSampleTime, 138, S),
    VRDPPO_COL(BT, ByProductsMappingID, 140, L0),
    // Written as GradeID.
    VRDPPO_COL2(BT, GradeId, 144, u"GradeId", u"GradeID", L0),
};
constexpr RecordLayout kByProductsTypeLayout = makeLayout<BT, 103>(
    kByProductsTypeColumns, VRDPPO_TRAILING(BT, KeyName, 148, u"ByProductsTypeId"));
constexpr TableConfig kByProductsType =
    secondGeneration(u"BYPRODUCTSTYPE", u"BYPRODUCTSTYPEID", DeleteStyle::Soft, TopArg::Optional,
                     CriteriaDeleteForm::SecondWithHardDelete, kByProductsTypeLayout);

using BM = ByProductsMappingRecord;
constexpr Column kByProductsMappingColumns[] = {
    VRDPPO_COL(BM, ByProductsMappingID, 0, None),
    VRDPPO_COL(BM, Code, 4, S),
};
constexpr RecordLayout kByProductsMappingLayout = makeLayout<BM, 33>(
    kByProductsMappingColumns, VRDPPO_TRAILING(BM, KeyName, 24, u"ByProductsMappingID"));
constexpr TableConfig kByProductsMapping = firstGeneration(
    u"BYPRODUCTSMAPPING", u"BYPRODUCTSMAPPINGID", DeleteStyle::Hard, kByProductsMappingLayout);

using CB = CompanyByProductsListRecord;
constexpr Column kCompanyByProductsListColumns[] = {
    VRDPPO_COL(CB, ByProductsTypeId, 0, None), VRDPPO_COL(CB, byproductscode, 4, None),
    VRDPPO_COL(CB, Description, 24, None),     VRDPPO_COL(CB, CompanyId, 124, None),
    VRDPPO_COL(CB, CompanyCode, 128, None),    VRDPPO_COL(CB, CompanyName, 148, None),
    VRDPPO_COL(CB, companydeleted, 348, None), VRDPPO_COL(CB, DeletedFlag, 350, None),
    VRDPPO_COL(CB, SortSequence, 352, None),   VRDPPO_COL(CB, GradeId, 356, None),
    VRDPPO_COL(CB, GradeCode, 360, None),
};
constexpr RecordLayout kCompanyByProductsListLayout =
    makeLayout<CB, 224>(kCompanyByProductsListColumns, VRDPPO_TRAILING(CB, Blank, 400, u""));
constexpr ViewConfig kCompanyByProductsList{u"VCOMPANYBYPRODUCTSLIST", LoadStyle::List,
                                            TopArg::Optional, &kCompanyByProductsListLayout};

// The two sort operations' registry entries, alike in both classes.
template <class Class>
std::vector<MemberInfo> sortMembers() {
  return {method<Class>("AdjustSortSequence",
                        {stringArg("sBuffer"), stringArg("sConnect"), longArg("lIncrement"),
                         stringArg("sCriteria")},
                        ValueType::None,
                        [](Class& o, std::span<const Variant> a) {
                          o.AdjustSortSequence(a[0].str(), a[1].str(), a[2].lng(), a[3].str());
                          return Variant();
                        }),
          method<Class>("InsertDeleteAtSortSequence",
                        {stringArg("sBuffer"), stringArg("sConnect"), stringArg("sAction"),
                         stringArg("sCriteria")},
                        ValueType::None, [](Class& o, std::span<const Variant> a) {
                          o.InsertDeleteAtSortSequence(a[0].str(), a[1].str(), a[2].str(),
                                                       a[3].str());
                          return Variant();
                        })};
}

}  // namespace

cStemClassPersist::cStemClassPersist() : TablePersist<StemClassRecord>(kStemClass) {}
const ClassInfo& cStemClassPersist::info() {
  static const ClassInfo i = tableClass<cStemClassPersist>("cStemClassPersist", kStemClass);
  return i;
}

cStemTypePersist::cStemTypePersist() : TablePersist<StemTypeRecord>(kStemType) {}
const ClassInfo& cStemTypePersist::info() {
  static const ClassInfo i = tableClass<cStemTypePersist>("cStemTypePersist", kStemType);
  return i;
}

cvStemTypeListPersist::cvStemTypeListPersist() : ViewPersist<StemTypeListRecord>(kStemTypeList) {}
const ClassInfo& cvStemTypeListPersist::info() {
  static const ClassInfo i =
      viewClass<cvStemTypeListPersist>("cvStemTypeListPersist", kStemTypeList);
  return i;
}

cPickingTypePersist::cPickingTypePersist() : TablePersist<PickingTypeRecord>(kPickingType) {}
const ClassInfo& cPickingTypePersist::info() {
  static const ClassInfo i = tableClass<cPickingTypePersist>("cPickingTypePersist", kPickingType);
  return i;
}

cByProductsTypePersist::cByProductsTypePersist()
    : TablePersist<ByProductsTypeRecord>(kByProductsType) {}
const ClassInfo& cByProductsTypePersist::info() {
  static const ClassInfo i = [] {
    auto members = tableMembers(kByProductsType);
    for (auto& m : sortMembers<cByProductsTypePersist>()) members.push_back(std::move(m));
    return tableClass<cByProductsTypePersist>("cByProductsTypePersist", kByProductsType,
                                              std::move(members));
  }();
  return i;
}

void cByProductsTypePersist::AdjustSortSequence(const std::u16string& sBuffer,
                                                const std::u16string& sConnect, Long lIncrement,
                                                const std::u16string& sCriteria) {
  const auto call = lock();
  if (lIncrement != 1 && lIncrement != -1) return;
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  // sCriteria goes between the quotes as it stands: a caller doubles its own quotes.
  runStatement(u"EXEC qspsys_AdjustSortSequence 'ByProductsType', " +
               longText(record().ByProductsTypeId) + u", " + longText(lIncrement) + u", '" +
               sCriteria + u"'");
}

void cByProductsTypePersist::InsertDeleteAtSortSequence(const std::u16string& sBuffer,
                                                        const std::u16string& sConnect,
                                                        const std::u16string& sAction,
                                                        const std::u16string& sCriteria) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  runStatement(u"EXEC qspsys_InsertDeleteAtSortSequence 'ByProductsType', " +
               longText(record().SortSequence) + u", '" + sAction + u"', '" + sCriteria + u"'");
}

cByProductsMappingPersist::cByProductsMappingPersist()
    : TablePersist<ByProductsMappingRecord>(kByProductsMapping) {}
const ClassInfo& cByProductsMappingPersist::info() {
  static const ClassInfo i =
      tableClass<cByProductsMappingPersist>("cByProductsMappingPersist", kByProductsMapping);
  return i;
}

cvCompanyByProductsListPersist::cvCompanyByProductsListPersist()
    : ViewPersist<CompanyByProductsListRecord>(kCompanyByProductsList) {}
const ClassInfo& cvCompanyByProductsListPersist::info() {
  static const ClassInfo i = [] {
    auto members = viewMembers(kCompanyByProductsList);
    for (auto& m : sortMembers<cvCompanyByProductsListPersist>()) members.push_back(std::move(m));
    return viewClass<cvCompanyByProductsListPersist>("cvCompanyByProductsListPersist",
                                                     kCompanyByProductsList, std::move(members));
  }();
  return i;
}

// The list's versions never build their statement: the empty command is what they always sent.
void cvCompanyByProductsListPersist::AdjustSortSequence(const std::u16string& sBuffer,
                                                        const std::u16string& sConnect,
                                                        Long lIncrement,
                                                        const std::u16string& /*sCriteria*/) {
  const auto call = lock();
  if (lIncrement != 1 && lIncrement != -1) return;
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  runStatement(std::u16string());
}

void cvCompanyByProductsListPersist::InsertDeleteAtSortSequence(
    const std::u16string& sBuffer, const std::u16string& sConnect,
    const std::u16string& /*sAction*/, const std::u16string& /*sCriteria*/) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  runStatement(std::u16string());
}

}  // namespace vrdppo
