#include "support/hostile_criteria.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "endtoend/store_fixture.hpp"
#include "providers/embedded/tokenizer.hpp"
#include "vrdppo/criteria.hpp"
#include "vrdppo/reference/stations.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::testing {

namespace {

std::vector<std::u16string> hostileValues() {
  const std::vector<std::u16string> pieces{
      u"'",      u"''",         u"'''", u"\"", u"--", u"/*", u"*/",      u"]",    u"[",
      u";",      u"?",          u"%",   u"_",  u"\\", u"x",  u" OR 1=1", u"DROP", u"\u00e9",
      u"\u4e2d", u"\U0001F600", u")",   u"(",  u"N'", u"@@", u"\t",      u"\r\n"};
  std::mt19937 random(20261126);
  std::vector<std::u16string> values{u"O'Neil", u"'; DELETE FROM STATION --", u"]]", u"?"};
  for (int i = 0; values.size() < 200; ++i) {
    std::u16string v;
    const std::size_t length = 1 + random() % 60;
    while (v.size() < length) v += pieces[random() % pieces.size()];
    values.push_back(v.substr(0, i % 10 == 0 ? 100 : v.size()));  // some the longest it holds
  }
  return values;
}

}  // namespace

void expectCriteriaSelectExactlyTheirRows(const std::u16string& connect) {
  cStationPersist stations;
  std::vector<std::u16string> written;  // each row's description as the record held it
  std::vector<Long> keys;
  for (const auto& v : hostileValues()) {
    stations.record() = {};
    initialiseRecord(stations.layout(), stations.recordBytes());
    put(stations.record().Description, v);
    put(stations.record().StationCode, u"S");
    ASSERT_TRUE(stations.Commit(stations.GetState(), connect));
    written.push_back(text(stations.record().Description));
    keys.push_back(stations.record().StationId);
  }
  const auto all = rowsOf<cStationPersist>(stations.Load(u"", connect));
  ASSERT_EQ(all.size(), written.size());
  std::size_t checked = 0;
  for (std::size_t i = 0; i < written.size(); ++i) {
    SCOPED_TRACE(toUtf8(written[i]));
    const std::u16string criteria = buildCriteria(u"Description = ?", {{Variant(written[i])}});
    const embedded::Tokens tokens(criteria);
    std::vector<embedded::Tok> kinds;
    for (std::size_t t = 0; t < tokens.size(); ++t) {
      if (tokens[t].kind != embedded::Tok::Space) kinds.push_back(tokens[t].kind);
    }
    EXPECT_EQ(kinds, (std::vector<embedded::Tok>{embedded::Tok::Word, embedded::Tok::Punct,
                                                 embedded::Tok::String}));
    std::u16string held;
    for (const auto& r : all) {
      if (r.StationId == keys[i]) held = text(r.Description);
    }
    const auto found = rowsOf<cStationPersist>(stations.Load(criteria, connect));
    // Every row written with the value is selected, and none the database holds as different.
    // A server's varchar holds what lies outside its code page as "?", and a driver may give it
    // back so: rows held alike may then have been written differently, and are not all selected.
    for (std::size_t j = 0; j < written.size(); ++j) {
      if (!equalsNoCase(written[j], written[i])) continue;
      EXPECT_TRUE(std::any_of(found.begin(), found.end(),
                              [&](const auto& r) { return r.StationId == keys[j]; }))
          << "row " << keys[j] << " not selected";
    }
    for (const auto& r : found) {
      EXPECT_TRUE(equalsNoCase(text(r.Description), held)) << toUtf8(text(r.Description));
    }
    ++checked;
  }
  EXPECT_EQ(checked, 200u);
}

}  // namespace vrdppo::testing
