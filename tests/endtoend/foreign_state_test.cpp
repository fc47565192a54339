// A record state of another class whose states have the same length: the object would read it
// field by field as its own and take its key for one of its table's.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "endtoend/store_fixture.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/lab/settings.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/registry.hpp"

namespace vrdppo::testing {

namespace {

// A class's new record with the key given, as its initialiser leaves it.
std::u16string newRecord(const ClassInfo& c, Long key) {
  std::vector<std::byte> bytes(c.layout->bytes);
  initialiseRecord(*c.layout, bytes.data());
  writeField<Long>(bytes.data(), c.layout->columns[0].offset, key);
  return recordState(*c.layout, bytes.data());
}

// Every ordered pair of distinct tables whose states have one length.
std::vector<std::pair<const ClassInfo*, const ClassInfo*>> sameLengthTables() {
  std::vector<std::pair<const ClassInfo*, const ClassInfo*>> pairs;
  for (const ClassInfo* self : registry::classes()) {
    for (const ClassInfo* other : registry::classes()) {
      if (self != other && !self->isView && !other->isView &&
          self->layout->stateChars == other->layout->stateChars) {
        pairs.emplace_back(self, other);
      }
    }
  }
  return pairs;
}

using ForeignStates = StoreTest;

}  // namespace

TEST_F(ForeignStates, ATableRefusesAnotherTablesStateBeforeAnyStatement) {
  const auto pairs = sameLengthTables();
  ASSERT_GE(pairs.size(), 10u);  // the registry has several groups of one state length
  for (const auto& [self, other] : pairs) {
    SCOPED_TRACE(self->name + " given a " + other->name + " state");
    auto object = self->create();
    auto& table = static_cast<TableObject&>(*object);
    // A row of the table's own, which the foreign state's key names.
    ASSERT_TRUE(table.Commit(newRecord(*self, 0), connect));
    const Long key = table.key();
    const std::u16string before = table.Load(u"", connect);
    for (const Long foreignKey : {key, Long{0}}) {
      const std::u16string foreign = newRecord(*other, foreignKey);
      for (const bool commit : {false, true}) {
        resetLastRecordsAffected();
        try {
          commit ? table.Commit(foreign, connect) : table.Delete(foreign, connect);
          ADD_FAILURE() << (commit ? "Commit" : "Delete") << " took it, key " << foreignKey;
        } catch (const Error& e) {
          EXPECT_EQ(e.number(), err::kInvalidCall);
          EXPECT_NE(e.description().find(other->name + " state"), std::string::npos);
          EXPECT_NE(e.description().find(self->name + " state"), std::string::npos);
        }
        EXPECT_EQ(lastRecordsAffected(), -1);  // no statement ran
      }
    }
    EXPECT_EQ(table.Load(u"", connect), before);
  }
}

// What an object still takes: its own states, blank key names, views' states (blank), and its own
// record as GetState gave it after a caller copied another class's record of the same fields in.
TEST_F(ForeignStates, WhatAnObjectStillTakes) {
  const auto named = [](const char* name) { return registry::find(name); };
  const ClassInfo* setting = named("cLabSettingPersist");
  const ClassInfo* snapshot = named("cLabSettingSnapshotPersist");
  const struct {
    const ClassInfo* self;
    std::u16string state;
    bool taken;
  } cases[] = {
      {named("cDegradationPersist"), newRecord(*named("cDegradationPersist"), 3), true},
      {named("cDegradationPersist"), newRecord(*named("cCagePersist"), 3), false},
      {named("cDegradationPersist"), u"", true},  // short: blank padded, no key name
      {named("cDegradationPersist"), std::u16string(127, u' '), true},
      {named("cLabBiasPersist"), newRecord(*named("cvCageContentPersist"), 3), true},
      {named("cvCageContentPersist"), newRecord(*named("cLabBiasPersist"), 3), false},
      {snapshot, newRecord(*setting, 0), false},
      {setting, newRecord(*snapshot, 0), false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.self->name + " given " + toUtf8(c.state.substr(0, 8)));
    auto o = c.self->create();
    if (c.taken) {
      EXPECT_NO_THROW(o->SetState(c.state));
    } else {
      EXPECT_THROW(o->SetState(c.state), Error);
    }
  }
  // Snapshot a setting by copying its record in: the snapshot's own state, whatever it names;
  // another of the setting's states is still refused.
  cLabSettingPersist live;
  live.SetState(newRecord(*setting, 5));
  cLabSettingSnapshotPersist frozen;
  frozen.record() = live.record();
  EXPECT_NO_THROW(frozen.SetState(frozen.GetState()));
  EXPECT_NO_THROW(static_cast<PersistObject&>(frozen).SetState(frozen.GetState()));
  live.SetState(newRecord(*setting, 6));
  EXPECT_THROW(frozen.SetState(live.GetState()), Error);
}

}  // namespace vrdppo::testing
