// What the registry says of each green leaf class: source, sizes, trailing literal, members in
// their slots, and the columns spelled one way when read and another when written.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "vrdppo/greenleaf/inventory.hpp"
#include "vrdppo/greenleaf/physical.hpp"
#include "vrdppo/greenleaf/receipts.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;

namespace {

// Members in slot order, private ones marked with a leading "-".
std::string memberList(const ClassInfo& info) {
  std::string out;
  for (const auto& m : info.members) {
    if (!out.empty()) out += ' ';
    if (!m.isPublic) out += '-';
    out += m.name;
  }
  return out;
}

const std::string kFirst =
    "RecordToObj GetState -SetState InsertValues InsertFields UpdateFields -FieldValue Load "
    "Commit Delete";
const std::string kPlain = "RecordToObj GetState -SetState -FieldValue Load";

}  // namespace

TEST(GreenLeafRegistry, EveryClassWithItsShape) {
  struct Case {
    const ClassInfo& info;
    const char* source;
    int bytes;
    int chars;
    std::u16string literal;
    std::string members;
  } cases[] = {
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
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.info.name);
    EXPECT_EQ(registry::find(c.info.name), &c.info);
    EXPECT_EQ(c.info.source, c.source);
    EXPECT_EQ(c.info.layout->bytes, c.bytes);
    EXPECT_EQ(c.info.layout->stateChars, c.chars);
    EXPECT_EQ(c.info.layout->trailing.literal, c.literal);
    EXPECT_EQ(memberList(c.info), c.members);
    EXPECT_EQ(c.info.members.back().dispatchId,
              kFirstDispatchId + static_cast<int>(c.info.members.size()) - 1);
  }
}

TEST(GreenLeafRegistry, ReceiptReadsLowerCaseAndWritesMixedCase) {
  const auto& cols = cGreenReceiptPersist::info().layout->columns;
  std::ostringstream pairs;
  for (const auto& c : cols) {
    if (c.read != c.write) pairs << toUtf8(c.read) << '>' << toUtf8(c.write) << ' ';
  }
  EXPECT_EQ(pairs.str(),
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
