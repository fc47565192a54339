// Every table class of reference data and production runs through its public, late-bound
// members on a real store: commit a new record, load it back, update it, delete it.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "endtoend/store_fixture.hpp"
#include "vrdppo/buffer.hpp"
#include "vrdppo/registry.hpp"

using namespace vrdppo;
using namespace vrdppo::testing;

namespace {

constexpr double kNov20 = 46346.0;  // 2026/11/20

// Fills every column but the key with a value of its own, derived from its place and `seed`.
// Dates stand at midnight: one class writes its date by day only.
std::u16string filledState(PersistObject& o, Long key, int seed) {
  const RecordLayout& l = o.layout();
  std::byte* r = o.recordBytes();
  initialiseRecord(l, r);
  std::memcpy(r + l.columns[0].offset, &key, sizeof key);
  for (std::size_t i = 1; i < l.columns.size(); ++i) {
    const Column& c = l.columns[i];
    const int v = seed * 100 + static_cast<int>(i);
    switch (c.type) {
      case FieldType::Long: {
        const Long n = v;
        std::memcpy(r + c.offset, &n, sizeof n);
        break;
      }
      case FieldType::Double: {
        const double d = v + 0.25;
        std::memcpy(r + c.offset, &d, sizeof d);
        break;
      }
      case FieldType::Date: {
        const Date d{kNov20 + seed};
        std::memcpy(r + c.offset, &d, sizeof d);
        break;
      }
      case FieldType::Currency:
        break;
      case FieldType::String: {
        // A flag column of one character takes a letter; wider ones a short text with a quote.
        const std::u16string s = c.length == 1
                                     ? std::u16string(1, u'A' + static_cast<char16_t>(seed))
                                     : u"O'K" + longText(v);
        std::memcpy(r + c.offset, s.data(), std::min<std::size_t>(s.size(), c.length) * 2);
        break;
      }
    }
  }
  return o.GetState();
}

Long keyOf(const std::u16string& state) {
  Long k;
  std::memcpy(&k, state.data(), sizeof k);
  return k;
}

std::u16string loadByKey(PersistObject& o, const TableConfig& config, Long key,
                         const std::u16string& connect) {
  std::vector<Variant> args{Variant(std::u16string(config.keyColumn) + u" = " + longText(key)),
                            Variant(connect)};
  if (config.top != TopArg::None) args.emplace_back(Long{0});
  return registry::invoke(o, "Load", args).str();
}

class RoundTrip : public StoreTest, public ::testing::WithParamInterface<const char*> {
 protected:
  // A parameterised test's names hold "/", which a file name cannot.
  void SetUp() override {
    path = scratchPath(std::string("RoundTrip-") + GetParam());
    removeStore(path);
    connect = embedded::connectString(path);
  }
};

}  // namespace

TEST_P(RoundTrip, CommitLoadUpdateDelete) {
  auto object = registry::create(GetParam());
  auto& table = dynamic_cast<TableObject&>(*object);
  const TableConfig& config = table.config();

  // Insert: the key comes back through GetState.
  const std::u16string fresh = filledState(*object, 0, 1);
  ASSERT_TRUE(registry::invoke(*object, "Commit", std::vector<Variant>{fresh, connect}).boolean());
  const Long key = keyOf(object->GetState());
  ASSERT_GT(key, 0);
  const std::u16string inserted = filledState(*object, key, 1);

  Buffer loaded;
  loaded.SetState(loadByKey(*object, config, key, connect));
  ASSERT_EQ(loaded.Count(), 1);
  EXPECT_EQ(loaded.Item(1), inserted);

  // Update every column.
  const std::u16string changed = filledState(*object, key, 2);
  ASSERT_TRUE(
      registry::invoke(*object, "Commit", std::vector<Variant>{changed, connect}).boolean());
  loaded.SetState(loadByKey(*object, config, key, connect));
  ASSERT_EQ(loaded.Count(), 1);
  EXPECT_EQ(loaded.Item(1), changed);

  // Delete: gone, or flagged where the class deletes softly.
  ASSERT_TRUE(
      registry::invoke(*object, "Delete", std::vector<Variant>{changed, connect}).boolean());
  loaded.SetState(loadByKey(*object, config, key, connect));
  if (config.deleteStyle == DeleteStyle::Soft) {
    ASSERT_EQ(loaded.Count(), 1);
    EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM " + std::u16string(config.table) + u" WHERE " +
                     std::u16string(config.keyColumn) + u" = " + longText(key) +
                     u" AND DeletedFlag = 'Y'"),
              1);
  } else {
    EXPECT_EQ(loaded.Count(), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Tables, RoundTrip,
    ::testing::Values("cStemClassPersist", "cStemTypePersist", "cPickingTypePersist",
                      "cByProductsTypePersist", "cByProductsMappingPersist", "cStationPersist",
                      "cProductionSettingsPersist", "cCalibrationPersist", "cProductionRunPersist",
                      "cProductionRunGradePersist", "cProductionGreenGradePersist",
                      "cPickingsPersist", "cByProductsPersist", "cStemsPersist",
                      "cProductionRunTargetPersist", "cProductionRunRedriedPersist",
                      "cDegradationPersist", "cOvenMoisturePersist", "cPackedMoisturePersist",
                      "cGreenMoisturePersist", "cByProductsTestPersist", "cSugarNicotinePersist",
                      "cSandPersist", "cSwingPersist", "cStripPersist", "cLaminaPersist",
                      "cProductionStatsPersist", "cDegradationPYTDPersist"),
    [](const auto& info) { return std::string(info.param); });
