// Reference lists and the sort-sequence procedures on a real store.
#include <gtest/gtest.h>

#include "endtoend/store_fixture.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/reference/types.hpp"

using namespace vrdppo;
using namespace vrdppo::testing;

namespace {

class Lists : public StoreTest {
 protected:
  Long byProductsType(const char16_t* code, Long sort) {
    cByProductsTypePersist o;
    EXPECT_TRUE(o.Commit(newState<cByProductsTypePersist>([&](ByProductsTypeRecord& r) {
                           r.CompanyId = company;
                           put(r.Code, code);
                           put(r.Description, std::u16string(code) + u" scrap");
                           r.SortSequence = sort;
                           put(r.DeletedFlag, u"N");
                           r.GradeId = grade;
                         }),
                         connect));
    return o.record().ByProductsTypeId;
  }
  std::u16string state(Long key, Long sort = 0) {
    return newState<cByProductsTypePersist>([&](ByProductsTypeRecord& r) {
      r.ByProductsTypeId = key;
      r.SortSequence = sort;
    });
  }
  // The codes of the company's types in SortSequence order, read through the list view.
  std::u16string order() {
    cvCompanyByProductsListPersist list;
    std::u16string codes;
    for (const auto& r : rowsOf<cvCompanyByProductsListPersist>(
             list.Load(u"CompanyId = " + longText(company) + u" ORDER BY SortSequence", connect))) {
      codes += text(r.byproductscode) + longText(r.SortSequence) + u" ";
    }
    return codes;
  }

  void SetUp() override {
    StoreTest::SetUp();
    company = insert(
        u"INSERT INTO COMPANY (CompanyCode, CompanyName, DeletedFlag) VALUES "
        u"('LGC', 'Leaf Growers Co-op', 'N')");
    grade = insert(u"INSERT INTO GRADE (GradeCode, CompanyId) VALUES ('FCV-A', " +
                   longText(company) + u")");
  }
  Long company = 0, grade = 0;
};

}  // namespace

TEST_F(Lists, ViewsJoinTypesToCompaniesAndGrades) {
  byProductsType(u"DUST", 1);
  cvCompanyByProductsListPersist list;
  const auto rows = rowsOf<cvCompanyByProductsListPersist>(list.Load(u"", connect, 5));
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(text(rows[0].byproductscode), u"DUST");
  EXPECT_EQ(text(rows[0].Description), u"DUST scrap");
  EXPECT_EQ(text(rows[0].CompanyName), u"Leaf Growers Co-op");
  EXPECT_EQ(text(rows[0].companydeleted), u"N");
  EXPECT_EQ(text(rows[0].GradeCode), u"FCV-A");

  cStemTypePersist stemType;
  ASSERT_TRUE(stemType.Commit(newState<cStemTypePersist>([&](StemTypeRecord& r) {
                                r.ProductionGradeId = 4;
                                put(r.Code, u"LS");
                                put(r.Description, u"Long stem");
                                r.StemClassId = 2;
                                r.GradeId = grade;
                              }),
                              connect));
  cvStemTypeListPersist stemTypes;
  const auto stems = rowsOf<cvStemTypeListPersist>(stemTypes.Load(u"", connect));
  ASSERT_EQ(stems.size(), 1u);
  EXPECT_EQ(stems[0].StemTypeID, stemType.record().StemTypeID);
  EXPECT_EQ(stems[0].GradeId, grade);
  EXPECT_EQ(text(stems[0].GradeCode), u"FCV-A");
  EXPECT_EQ(text(stems[0].Description), u"Long stem");
}

TEST_F(Lists, AdjustSortSequenceMovesOneRowAPlace) {
  const Long a = byProductsType(u"A", 1);
  byProductsType(u"B", 2);
  const Long c = byProductsType(u"C", 3);
  const std::u16string criteria = u"CompanyId = " + longText(company);
  cByProductsTypePersist o;
  o.AdjustSortSequence(state(c), connect, -1, criteria);
  EXPECT_EQ(order(), u"A1 C2 B3 ");
  o.AdjustSortSequence(state(a), connect, 1, criteria);
  EXPECT_EQ(order(), u"C1 A2 B3 ");
  o.AdjustSortSequence(state(c), connect, -1, criteria);  // at the top already
  EXPECT_EQ(order(), u"C1 A2 B3 ");
  o.AdjustSortSequence(state(a), connect, 2, criteria);  // not a step: nothing sent
  EXPECT_EQ(order(), u"C1 A2 B3 ");
}

TEST_F(Lists, InsertDeleteAtSortSequenceOpensAndClosesAPlace) {
  byProductsType(u"A", 1);
  byProductsType(u"B", 2);
  const std::u16string criteria = u"CompanyId = " + longText(company);
  cByProductsTypePersist o;
  o.InsertDeleteAtSortSequence(state(0, 2), connect, u"Insert", criteria);
  EXPECT_EQ(order(), u"A1 B3 ");
  byProductsType(u"N", 2);
  EXPECT_EQ(order(), u"A1 N2 B3 ");
  o.InsertDeleteAtSortSequence(state(0, 1), connect, u"Delete", criteria);
  EXPECT_EQ(order(), u"A1 N1 B2 ");
  // A quote in the criteria that the caller left undoubled breaks the statement.
  EXPECT_THROW(o.InsertDeleteAtSortSequence(state(0, 1), connect, u"Delete", u"Code = 'A'"), Error);
  EXPECT_THROW(o.InsertDeleteAtSortSequence(state(0, 1), connect, u"Shuffle", criteria), Error);
}

TEST_F(Lists, StemClassAndPickingTypeDeleteTheRowDespiteTheirFlag) {
  cPickingTypePersist picking;
  ASSERT_TRUE(picking.Commit(newState<cPickingTypePersist>([](PickingTypeRecord& r) {
                               put(r.Description, u"Green");
                               put(r.DeletedFlag, u"N");
                             }),
                             connect));
  ASSERT_TRUE(picking.Delete(picking.GetState(), connect));
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM PICKINGTYPE"), 0);
  cStemClassPersist stemClass;
  ASSERT_TRUE(stemClass.Commit(
      newState<cStemClassPersist>([](StemClassRecord& r) { put(r.Description, u"Long"); }),
      connect));
  ASSERT_TRUE(stemClass.Delete(stemClass.GetState(), connect));
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM STEMCLASS"), 0);
}
