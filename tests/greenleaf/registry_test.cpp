// What the registry says of each green leaf class: source, sizes, trailing literal, members in
// their slots, and the columns spelled one way when read and another when written.
#include <gtest/gtest.h>

#include <string>

#include "support/class_cases.hpp"
#include "vrdppo/greenleaf/inventory.hpp"
#include "vrdppo/greenleaf/physical.hpp"
#include "vrdppo/greenleaf/receipts.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;

namespace {

const std::string& kFirst = vrdppo::testing::kFirstGenerationMembers;
const std::string& kPlain = vrdppo::testing::kPlainViewMembers;
using vrdppo::testing::twoSpellings;

}  // namespace

TEST(GreenLeafRegistry, EveryClassWithItsShape) {
  vrdppo::testing::expectShapes({
      {cGreenReceiptPersist::info(), "GREENRECEIPT", 112, 94, u"GreenReceiptId",
       kFirst + " PostReceipts"},
      {cvGreenReceiptListPersist::info(), "VGREENRECEIPTLIST", 156, 104, u"", kPlain},
      {cGreenInventoryPersist::info(), "GREENINVENTORY", 68, 48, u"GreenInventoryId", kFirst},
      {cGreenInHousePersist::info(), "GREENINHOUSE", 52, 38, u"GreenInHouseID",
       kFirst + " DeleteAll"},
      {cInHouseRecGradesPersist::info(), "INHOUSERECGRADES", 144, 83, u"InHouseRecGradesID",
       kFirst + " DeleteAll"},
      {cvInHouseRecGradesPersist::info(), "VINHOUSERECGRADES", 140, 79, u"", kPlain},
      {cvGreenProdPersist::info(), "VGREENPROD", 48, 42, u"", kPlain},
      {cvProcessGreenPersist::info(), "VPROCESSGREEN", 364, 218, u"", kPlain},
      {cPhysicalInventoryPersist::info(), "PHYSICALINVENTORY", 168, 100, u"PhysicalInventoryId",
       kFirst + " Clear"},
      {cvPrepPhysicalPersist::info(), "VPREPPHYSICAL", 100, 58, u"", kPlain},
      {cNewSeasonLogPersist::info(), "NEWSEASONLOG", 140, 76, u"NewSeasonLogId", kFirst},
  });
}

TEST(GreenLeafRegistry, ReceiptReadsLowerCaseAndWritesMixedCase) {
  const auto& cols = cGreenReceiptPersist::info().layout->columns;
  EXPECT_EQ(twoSpellings(cGreenReceiptPersist::info()),
            "receiptdate>ReceiptDate posted>Posted receipttype>ReceiptType "
            "togreengradeid>ToGreenGradeId weightremaining>WeightRemaining ");
  EXPECT_EQ(toUtf8(cols[0].read), "greenreceiptid");
}

TEST(GreenLeafRegistry, ExtraMembersTakeTheirArguments) {
  const auto* post = cGreenReceiptPersist::info().member("PostReceipts");
  ASSERT_NE(post, nullptr);
  EXPECT_EQ(post->dispatchId, 0x6003000A);
  ASSERT_EQ(post->args.size(), 2u);
  EXPECT_EQ(post->args[1].name, "lContactId");
  EXPECT_EQ(post->args[1].type, ValueType::Long);
  EXPECT_EQ(post->result, ValueType::Boolean);
  for (const ClassInfo* info : {&cGreenInHousePersist::info(), &cInHouseRecGradesPersist::info(),
                                &cPhysicalInventoryPersist::info()}) {
    const auto& m = info->members.back();
    ASSERT_EQ(m.args.size(), 1u);
    EXPECT_EQ(m.args[0].name, "sConnect");
    EXPECT_EQ(m.result, ValueType::None);
  }
}
