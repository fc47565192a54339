// Fixtures and table-driven checks that the class suites of every subsystem share: a scripted
// provider that leaves no connection string behind, the insert-update-delete round of a table
// class, the layout of a class against its table, and the registry's member and spelling lists.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/scripted_provider.hpp"
#include "support/statements.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::testing {

// A suite on the scripted provider; the thread's connection string is cleared after each test.
class ScriptedTest : public ::testing::Test {
 protected:
  void TearDown() override { dbHelp::ConnectString.clear(); }
  ScriptedProvider db;
};

// One record of a first-generation table class, as key 0 and as key 12, with the statements it
// must give.
struct TableCase {
  const char* name;
  std::function<std::unique_ptr<TableObject>()> make;
  std::function<std::u16string(Long key)> state;
  Statements expected;
};

// Commits each record as new, the provider answering key 12, then as key 12, then deletes it:
// each statement as expected, and the new key the only change to the record.
inline void expectInsertUpdateDelete(ScriptedProvider& db, const std::vector<TableCase>& cases,
                                     const std::u16string& connect) {
  db.answerRows(u"sp_InsertStatement", {u"Identity"}, {{std::int32_t{12}}});
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto o = c.make();
    ASSERT_TRUE(o->Commit(c.state(0), connect));
    EXPECT_EQ(db.statements().back(), c.expected.insert);
    EXPECT_EQ(o->GetState(), c.state(12));
    ASSERT_TRUE(o->Commit(c.state(12), connect));
    EXPECT_EQ(db.statements().back(), c.expected.update);
    ASSERT_TRUE(o->Delete(c.state(12), connect));
    EXPECT_EQ(db.statements().back(), c.expected.remove);
  }
}

// A class's sizes and source as its table gives them, and the literal its initialiser leaves in
// the trailing field (a table's key name; nothing for a view).
struct LayoutCase {
  const char* name;
  int bytes;
  int chars;
  const char* source;
  std::u16string_view literal;
};

inline void expectLayouts(const std::vector<LayoutCase>& cases) {
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const ClassInfo* info = registry::find(c.name);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->layout->bytes, c.bytes);
    EXPECT_EQ(info->layout->stateChars, c.chars);
    EXPECT_EQ(info->source, c.source);
    auto o = info->create();
    initialiseRecord(o->layout(), o->recordBytes());
    const std::u16string s = o->GetState();
    const TrailingField& t = info->layout->trailing;
    const std::u16string trailing = s.substr(t.offset / 2, t.length);
    EXPECT_EQ(trailing.substr(0, c.literal.size()), c.literal);
    EXPECT_EQ(trailing.find_first_not_of(u' ', c.literal.size()), std::u16string::npos);
  }
}

// Members in slot order, private ones marked with a leading "-".
inline std::string memberList(const ClassInfo& info) {
  std::string out;
  for (const auto& m : info.members) {
    if (!out.empty()) out += ' ';
    if (!m.isPublic) out += '-';
    out += m.name;
  }
  return out;
}

// The columns read under one spelling and written under another, as "read>write ".
inline std::string twoSpellings(const ClassInfo& info) {
  std::string out;
  for (const auto& c : info.layout->columns) {
    if (c.read != c.write) out += toUtf8(c.read) + '>' + toUtf8(c.write) + ' ';
  }
  return out;
}

// What the registry says of a class: its source, sizes, trailing literal, members in their slots
// (the last one at the dispatch identifier its slot gives) and, where given, the columns spelled
// one way when read and another when written.
struct ShapeCase {
  const ClassInfo& info;
  const char* source;
  int bytes;
  int chars;
  std::u16string literal;
  std::string members;
  const char* spellings = nullptr;  // not checked when null
};

inline void expectShapes(const std::vector<ShapeCase>& cases) {
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
    if (c.spellings) {
      EXPECT_EQ(twoSpellings(c.info), c.spellings);
    }
  }
}

// The members of a first-generation table class and of a plain view, in their slots.
inline const std::string kFirstGenerationMembers =
    "RecordToObj GetState -SetState InsertValues InsertFields UpdateFields -FieldValue Load "
    "Commit Delete";
inline const std::string kPlainViewMembers = "RecordToObj GetState -SetState -FieldValue Load";

}  // namespace vrdppo::testing
