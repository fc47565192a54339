// Stem classes and types, picking types, by-product types and their mappings, and the two lists
// that join them to grades and companies.
#pragma once

#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

#pragma pack(push, 4)
struct StemClassRecord {
  Long StemClassId;
  FixedString<20> Description;
  FixedString<1> DeletedFlag;
  FixedString<11> KeyName;
};
struct StemTypeRecord {
  Long StemTypeID;
  Long ProductionGradeId;
  FixedString<20> Code;
  FixedString<50> Description;
  FixedString<1> DeletedFlag;
  Long StemClassId;
  Long GradeId;
  FixedString<17> KeyName;
};
struct StemTypeListRecord {
  Long StemTypeID;
  Long ProductionGradeId;
  FixedString<20> Code;
  FixedString<50> Description;
  FixedString<1> DeletedFlag;
  Long StemClassId;
  Long GradeId;
  FixedString<20> GradeCode;
  FixedString<17> Blank;
};
struct PickingTypeRecord {
  Long PickingTypeId;
  FixedString<50> Description;
  Long SortSequence;
  FixedString<1> DeletedFlag;
  FixedString<13> KeyName;
};
struct ByProductsTypeRecord {
  Long ByProductsTypeId;
  Long CompanyId;
  FixedString<10> Code;
  FixedString<50> Description;
  Long SortSequence;
  FixedString<1> DeletedFlag;
  FixedString<1> Active;
  FixedString<1> ShowCaseNumber;
  FixedString<1> ShowSampleTime;
  Long ByProductsMappingID;
  Long GradeId;
  FixedString<19> KeyName;
};
struct ByProductsMappingRecord {
  Long ByProductsMappingID;
  FixedString<10> Code;
  FixedString<19> KeyName;
};
struct CompanyByProductsListRecord {
  Long ByProductsTypeId;
  FixedString<10> byproductscode;
  FixedString<50> Description;
  Long CompanyId;
  FixedString<10> CompanyCode;
  FixedString<100> CompanyName;
  FixedString<1> companydeleted;
  FixedString<1> DeletedFlag;
  Long SortSequence;
  Long GradeId;
  FixedString<20> GradeCode;
  FixedString<16> Blank;
};
#pragma pack(pop)
static_assert(sizeof(StemClassRecord) == 68);
static_assert(sizeof(StemTypeRecord) == 196);
static_assert(sizeof(StemTypeListRecord) == 236);
static_assert(sizeof(PickingTypeRecord) == 136);
static_assert(sizeof(ByProductsTypeRecord) == 188);
static_assert(sizeof(ByProductsMappingRecord) == 64);
static_assert(sizeof(CompanyByProductsListRecord) == 432);

class cStemClassPersist final : public TablePersist<StemClassRecord> {
 public:
  cStemClassPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cStemTypePersist final : public TablePersist<StemTypeRecord> {
 public:
  cStemTypePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvStemTypeListPersist final : public ViewPersist<StemTypeListRecord> {
 public:
  cvStemTypeListPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cPickingTypePersist final : public TablePersist<PickingTypeRecord> {
 public:
  cPickingTypePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cByProductsTypePersist final : public TablePersist<ByProductsTypeRecord> {
 public:
  cByProductsTypePersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  // Moves the record's row one place up (-1) or down (1) among the rows sCriteria selects; any
  // other increment does nothing.
  void AdjustSortSequence(const std::u16string& sBuffer, const std::u16string& sConnect,
                          Long lIncrement, const std::u16string& sCriteria);
  // Opens or closes a place at the record's SortSequence, by sAction.
  void InsertDeleteAtSortSequence(const std::u16string& sBuffer, const std::u16string& sConnect,
                                  const std::u16string& sAction, const std::u16string& sCriteria);
};

class cByProductsMappingPersist final : public TablePersist<ByProductsMappingRecord> {
 public:
  cByProductsMappingPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }
};

class cvCompanyByProductsListPersist final : public ViewPersist<CompanyByProductsListRecord> {
 public:
  cvCompanyByProductsListPersist();
  static const ClassInfo& info();
  const ClassInfo& classInfo() const override { return info(); }

  // The list's forms of the two sort operations: they take the record and send an empty
  // command, so that the provider's error for it reaches the caller.
  void AdjustSortSequence(const std::u16string& sBuffer, const std::u16string& sConnect,
                          Long lIncrement, const std::u16string& sCriteria);
  void InsertDeleteAtSortSequence(const std::u16string& sBuffer, const std::u16string& sConnect,
                                  const std::u16string& sAction, const std::u16string& sCriteria);
};

}  // namespace vrdppo
VRDPPO_PUBLIC_END
