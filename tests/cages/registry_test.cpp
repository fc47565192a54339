// What the registry says of each cage class: source, sizes, trailing literal, members in their
// slots, and the columns spelled one way when read and another when written.
#include <gtest/gtest.h>

#include <string>

#include "support/class_cases.hpp"
#include "vrdppo/cages/cages.hpp"
#include "vrdppo/cages/movements.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;

namespace {

const std::string& kFirst = vrdppo::testing::kFirstGenerationMembers;
const std::string& kPlain = vrdppo::testing::kPlainViewMembers;

}  // namespace

TEST(CagesRegistry, EveryClassWithItsShape) {
  vrdppo::testing::expectShapes({
      {cCagePersist::info(), "CAGE", 140, 127, u"CageId", kFirst + " SendAlert", ""},
      {cCageStatusPersist::info(), "CAGESTATUS", 252, 130, u"CageStatusId", kFirst, ""},
      {cCageContentPersist::info(), "CAGECONTENT", 48, 33, u"CageContentId", kFirst, ""},
      {cvCageContentPersist::info(), "VCAGECONTENT", 88, 53, u"", kPlain, ""},
      {cCageMovementPersist::info(), "CAGEMOVEMENT", 100, 72, u"CageMovementId", kFirst + " Post",
       "MovementTs>MovementTS "},
      {cCageLogPersist::info(), "CAGELOG", 104, 88, u"CageLogId", kFirst,
       "CageMovementID>CageMovementId "},
      {cCageMoveCommentPersist::info(), "CAGEMOVECOMMENT", 300, 153, u"CageMoveCommentID",
       "-RecordToObj GetState -SetState -InsertValues -InsertFields -UpdateFields -SelectFields "
       "-FieldValue Load Commit Delete CriteriaDelete",
       ""},
      {cvCageLogPersist::info(), "VCAGELOG", 352, 230, u"", kPlain, ""},
  });
}

TEST(CagesRegistry, ExtraMembersTakeTheirArguments) {
  const auto* alert = cCagePersist::info().member("SendAlert");
  ASSERT_NE(alert, nullptr);
  EXPECT_EQ(alert->dispatchId, 0x6003000A);
  ASSERT_EQ(alert->args.size(), 3u);
  for (const auto& a : alert->args) EXPECT_FALSE(a.byRef) << a.name;  // all by value
  EXPECT_EQ(alert->args[1].name, "lAlertID");
  EXPECT_EQ(alert->result, ValueType::None);

  const auto* post = cCageMovementPersist::info().member("Post");
  ASSERT_NE(post, nullptr);
  ASSERT_EQ(post->args.size(), 2u);
  EXPECT_EQ(post->args[0].name, "sBuffer");
  EXPECT_TRUE(post->args[0].byRef);
  EXPECT_EQ(post->result, ValueType::Boolean);

  const auto* load = cCageMoveCommentPersist::info().member("Load");
  ASSERT_EQ(load->args.size(), 3u);
  EXPECT_TRUE(load->args[2].optional);  // lTop
  const auto* cd = cCageMoveCommentPersist::info().member("CriteriaDelete");
  ASSERT_EQ(cd->args.size(), 3u);  // no bHardDelete
  EXPECT_EQ(cd->args[1].name, "sConnect");
}

TEST(CagesRegistry, LateBoundSendAlertNeverRaises) {
  auto cage = registry::create("cCagePersist");
  const Variant args[] = {Variant(std::u16string(u"Provider=nothing")), Variant(std::int32_t{7}),
                          Variant(std::int32_t{120})};
  EXPECT_NO_THROW(registry::invoke(*cage, "SendAlert", args));
}
