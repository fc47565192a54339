// Every table class through its public, late-bound members on a real store: a record as the
// initialiser leaves it and one with every column filled committed and loaded back, updated,
// deleted.
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

// Fills every column but the key with a value of its own, derived from its place and `seed`:
// strings with a single quote, and a double quote where the class doubles those. Dates stand at
// midnight: one class writes its date by day only.
std::u16string filledState(TableObject& o, Long key, int seed) {
  const RecordLayout& l = o.layout();
  std::byte* r = o.recordBytes();
  initialiseRecord(l, r);
  o.setKey(key);
  for (std::size_t i = 1; i < l.columns.size(); ++i) {
    const Column& c = l.columns[i];
    const int n = seed * 100 + static_cast<int>(i);
    switch (c.type) {
      case FieldType::Long:
        storeField(c, r, Variant(n));
        break;
      case FieldType::Double:
        storeField(c, r, Variant(n + 0.25));
        break;
      case FieldType::Currency:
        storeField(c, r, Variant(Currency{n * 12345LL}));
        break;
      case FieldType::Date:
        storeField(c, r, Variant(Date{kNov20 + seed}));
        break;
      case FieldType::String: {
        // A flag column of one character takes a letter.
        const std::u16string text =
            c.length == 1 ? std::u16string(1, u'A' + static_cast<char16_t>(seed))
                          : (o.config().doubleQuotesInInsert ? u"'\"" : u"O'K") + longText(n);
        storeField(c, r, Variant(text.substr(0, c.length)));
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

  // A record as the initialiser leaves it, zeros and blanks, comes back as it went.
  initialiseRecord(table.layout(), table.recordBytes());
  ASSERT_TRUE(table.Commit(table.GetState(), connect));
  Buffer loaded;
  loaded.SetState(loadByKey(*object, config, table.key(), connect));
  ASSERT_EQ(loaded.Count(), 1);
  EXPECT_EQ(loaded.Item(1), table.GetState());

  // Insert: the key comes back through GetState.
  const std::u16string fresh = filledState(table, 0, 1);
  ASSERT_TRUE(registry::invoke(*object, "Commit", std::vector<Variant>{fresh, connect}).boolean());
  const Long key = keyOf(object->GetState());
  ASSERT_GT(key, 0);
  const std::u16string inserted = filledState(table, key, 1);

  loaded.SetState(loadByKey(*object, config, key, connect));
  ASSERT_EQ(loaded.Count(), 1);
  EXPECT_EQ(loaded.Item(1), inserted);

  // Update every column.
  const std::u16string changed = filledState(table, key, 2);
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

std::vector<const char*> tableClasses() {
  std::vector<const char*> names;
  for (const ClassInfo* c : registry::classes()) {
    if (!c->isView) names.push_back(c->name.c_str());
  }
  return names;
}

INSTANTIATE_TEST_SUITE_P(Tables, RoundTrip, ::testing::ValuesIn(tableClasses()),
                         [](const auto& info) { return std::string(info.param); });
