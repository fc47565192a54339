#include <gtest/gtest.h>

#include "support/error_number.hpp"

#include <set>

#include "support/scripted_provider.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/registry.hpp"

using namespace vrdppo;
using vrdppo::testing::numberOf;
using vrdppo::testing::ScriptedProvider;

TEST(Registry, EveryClassIsCreatableByNameWithDistinctStableIdentifiers) {
  std::set<std::string> ids;
  for (const ClassInfo* c : registry::classes()) {
    auto o = registry::create(c->name);
    ASSERT_NE(o, nullptr);
    EXPECT_EQ(&o->classInfo(), c);
    EXPECT_EQ(o->GetState().size(), c->layout->stateChars);
    EXPECT_TRUE(ids.insert(c->classId).second);
    EXPECT_TRUE(ids.insert(c->interfaceId).second);
    EXPECT_EQ(c->classId.size(), 38u);
    // Dispatch identifiers are consecutive from 0x60030000 in member order.
    for (std::size_t i = 0; i < c->members.size(); ++i) {
      EXPECT_EQ(c->members[i].dispatchId, 0x60030000 + static_cast<int>(i));
    }
  }
  EXPECT_EQ(registry::find("CSTEMSPERSIST"), &cStemsPersist::info());
  EXPECT_EQ(stableGuid("x"), stableGuid("x"));
  EXPECT_EQ(numberOf([] { registry::create("cNoSuchPersist"); }), err::kCannotCreate);
}

TEST(Registry, ArgumentMetadata) {
  const MemberInfo* load = cStemsPersist::info().member("load");
  ASSERT_NE(load, nullptr);
  ASSERT_EQ(load->args.size(), 2u);
  EXPECT_EQ(load->args[0].name, "sCriteria");
  EXPECT_EQ(load->args[1].name, "sConnect");
  EXPECT_TRUE(load->args[0].byRef);
  EXPECT_EQ(load->result, ValueType::String);
  const MemberInfo* gradeLoad = registry::find("cGreenGradePersist")->member("Load");
  ASSERT_EQ(gradeLoad->args.size(), 3u);
  EXPECT_TRUE(gradeLoad->args[2].optional);
  EXPECT_EQ(gradeLoad->args[2].defaultValue, Variant(std::int32_t{0}));
  const MemberInfo* pgLoad = registry::find("cProductionGradePersist")->member("Load");
  EXPECT_FALSE(pgLoad->args[2].optional);  // required in that class
  EXPECT_EQ(cStemsPersist::info().member("Commit")->result, ValueType::Boolean);
}

TEST(Registry, InvokesByNameAndByDispatchIdentifierWithVariants) {
  ScriptedProvider db;
  db.answerRows(u"SELECT", {}, {});
  auto o = registry::create("cGreenGradePersist");
  // lTop left out: its default 0 applies; a Long given as text is coerced.
  registry::invoke(*o, "Load", std::vector<Variant>{Variant(u"CompanyId = 3"), Variant(u"DSN=x")});
  EXPECT_EQ(db.statements().back(), u"SELECT * FROM GREENGRADE WHERE CompanyId = 3");
  registry::invoke(*o, 0x60030009,
                   std::vector<Variant>{Variant(u""), Variant(u"DSN=x"), Variant(u"4")});
  EXPECT_EQ(db.statements().back(), u"SELECT TOP 4 * FROM GREENGRADE");
  const Variant state = registry::invoke(*o, "GetState", {});
  EXPECT_EQ(state.str().size(), 50u);
  const Variant deleted = registry::invoke(
      *o, "Delete", std::vector<Variant>{Variant(std::u16string(50, u'\0')), Variant(u"DSN=x")});
  EXPECT_EQ(deleted, Variant(true));
  dbHelp::ConnectString.clear();
}

TEST(Registry, RefusesWhatALateBoundCallerCannotReach) {
  auto pg = registry::create("cProductionGradePersist");
  const std::vector<Variant> none;
  EXPECT_EQ(numberOf([&] { registry::invoke(*pg, "InsertValues", none); }), err::kMemberNotFound);
  EXPECT_EQ(numberOf([&] { registry::invoke(*pg, "NoSuchMember", none); }), err::kMemberNotFound);
  EXPECT_EQ(numberOf([&] { registry::invoke(*pg, 0x60030000 + 99, none); }), err::kMemberNotFound);
  EXPECT_EQ(numberOf([&] {
              registry::invoke(*pg, "Load", std::vector<Variant>{Variant(u""), Variant(u"")});
            }),
            err::kArgumentNotOptional);
  EXPECT_EQ(numberOf([&] {
              registry::invoke(*pg, "Load",
                               std::vector<Variant>{Variant(u""), Variant(u""), Variant(u"x")});
            }),
            err::kTypeMismatch);
  auto stems = registry::create("cStemsPersist");
  // RecordToObj is public but takes a recordset, which a variant cannot carry.
  EXPECT_EQ(numberOf([&] { registry::invoke(*stems, "RecordToObj", none); }), err::kInvalidCall);
  EXPECT_EQ(numberOf([&] {
              registry::invoke(*stems, "GetState", std::vector<Variant>{Variant(u"extra")});
            }),
            err::kInvalidCall);
}
