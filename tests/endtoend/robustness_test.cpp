// Bad input of every kind must end in a numbered error or a result, never in a crash: random
// texts into the parsers, random states into every class, random statements into the store. Run
// under the sanitizer build, these find out-of-bounds reads and undefined behaviour.
#include <gtest/gtest.h>

#include <random>

#include "endtoend/store_fixture.hpp"
#include "support/error_number.hpp"
#include "support/scripted_provider.hpp"
#include "vrdppo/buffer.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/registry.hpp"

using namespace vrdppo;
using namespace vrdppo::testing;

namespace {

std::u16string randomText(std::mt19937& rng, std::size_t maxLength) {
  static const std::u16string alphabet = [] {
    std::u16string a = u"0123456789 -+.,:/()&HhOoEeTtAMPamp'\"[]@=*;xyzJanMarchDECSELECTFROMWHERE";
    a += {u'\0', static_cast<char16_t>(0xD800), u'\uFFFF'};  // a lone surrogate too
    return a;
  }();
  std::uniform_int_distribution<std::size_t> length(0, maxLength);
  std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
  std::u16string s(length(rng), u' ');
  for (auto& c : s) c = alphabet[pick(rng)];
  return s;
}

template <class F>
void survives(F f) {
  try {
    f();
  } catch (const Error&) {
  }
}

}  // namespace

TEST(Robustness, ParsersTakeAnyText) {
  std::mt19937 rng(20261122);
  for (int i = 0; i < 20000; ++i) {
    const std::u16string s = randomText(rng, 24);
    survives([&] { parseDate(s); });
    survives([&] { parseNumber(s); });
    survives([&] { toLong(Variant(s)); });
    survives([&] { toCurrency(Variant(s)); });
    survives([&] { dbHelp::ReplaceAll(s, u"'", u"''"); });
  }
}

TEST(Robustness, BuffersTakeAnyState) {
  std::mt19937 rng(7);
  std::uniform_int_distribution<std::int32_t> small(-40, 40);
  for (int i = 0; i < 3000; ++i) {
    // Header values stay small so that growth stays small; the records are anything.
    std::u16string state = randomText(rng, 60);
    state.resize(std::max<std::size_t>(state.size(), 8), u'\0');  // blanks would read as millions
    for (std::size_t k = 0; k + 1 < 8 && k + 1 < state.size(); k += 2) {
      const auto v = static_cast<std::uint32_t>(small(rng));  // -40 to 40, as two halves
      state[k] = static_cast<char16_t>(v & 0xFFFF);
      state[k + 1] = static_cast<char16_t>(v >> 16);
    }
    Buffer b;
    b.SetState(state);
    survives([&] { b.Item(small(rng)); });
    survives([&] { b.Item(small(rng), u"abc"); });
    survives([&] { b.RemoveRange(small(rng), small(rng)); });
    std::int32_t page = small(rng);
    survives([&] { b.ExtractPage(small(rng), page); });
    survives([&] { b.Remove(static_cast<std::int16_t>(small(rng))); });
    survives([&] { b.Add(u"xyz"); });
    survives([&] { b.GetState(); });
  }
  Buffer huge;
  EXPECT_EQ(numberOf([&] { huge.Initialize(32767, 2147483647); }), err::kOverflow);
  EXPECT_EQ(numberOf([&] { huge.Initialize(-5, 3); }), err::kInvalidCall);
}

TEST(Robustness, EveryClassTakesAnyStateAndRendersIt) {
  ScriptedProvider db;
  db.answerRows(u"InsertStatement", {u"Identity"}, {{std::int32_t{1}}});
  std::mt19937 rng(11);
  for (const ClassInfo* c : registry::classes()) {
    for (int i = 0; i < 40; ++i) {
      auto o = c->create();
      const std::u16string state = randomText(rng, 2u * c->layout->stateChars);
      o->SetState(state);
      EXPECT_EQ(o->GetState().size(), c->layout->stateChars);
      if (auto* table = dynamic_cast<TableObject*>(o.get())) {
        survives([&] { table->InsertValues(); });
        survives([&] { table->UpdateFields(); });
        survives([&] { table->Commit(state, u"DSN=x"); });
      }
    }
  }
  dbHelp::ConnectString.clear();
}

using StoreRobustness = StoreTest;

TEST_F(StoreRobustness, TheStoreAnswersAnyStatementWithAnError) {
  std::mt19937 rng(3);
  static const std::u16string words[] = {u"SELECT",
                                         u"TOP",
                                         u"*",
                                         u"FROM",
                                         u"STEMS",
                                         u"WHERE",
                                         u"EXEC",
                                         u"exec",
                                         u"@p_Stmt",
                                         u"=",
                                         u"\"",
                                         u"'",
                                         u"(",
                                         u")",
                                         u",",
                                         u"UPDATE",
                                         u"SET",
                                         u"DELETE",
                                         u"dbo.",
                                         u"[",
                                         u"]",
                                         u"1",
                                         u"Null",
                                         u"IN",
                                         u"sp_InsertStatement",
                                         u"qsp_InsertStatement",
                                         u"ZZ_SetAuditTrailID",
                                         u"INNER JOIN",
                                         u"ON",
                                         u"ORDER BY",
                                         u"--",
                                         u"/*",
                                         u"GETDATE()",
                                         u"ISNULL(",
                                         u"N'",
                                         u";"};
  std::uniform_int_distribution<std::size_t> pick(0, std::size(words) - 1);
  std::uniform_int_distribution<int> count(0, 12);
  dbHelp::ConnectString = connect;
  for (int i = 0; i < 600; ++i) {
    std::u16string sql;
    for (int k = count(rng); k > 0; --k) sql += words[pick(rng)] + u" ";
    survives([&] {
      const auto rs = dbHelp::OpenRecordset(sql);
      if (rs->State() == adStateOpen) rs->Close();
    });
  }
  // The store still works afterwards.
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM STEMS WHERE 1 = 0"), 0);
}
