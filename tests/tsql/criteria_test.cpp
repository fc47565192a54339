// Criteria built from values that break hand-built statements, answered by a real server: its
// collation compares without regard to case, and a varchar holds what is outside its code page as
// "?", so the rows a value selects are those the server holds as equal.
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/hostile_criteria.hpp"
#include "tsql/tsql_schema.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {
namespace {

TEST(CriteriaOnTheServer, AValueSelectsExactlyTheRowsHoldingIt) {
  const char* connect = std::getenv("VRDPPO_TSQL_CONNECT");
  if (connect == nullptr || *connect == '\0') GTEST_SKIP() << "VRDPPO_TSQL_CONNECT names no server";
  const tsql::PlantDatabase database(fromUtf8(connect), u"vrdppo_criteria_");
  testing::expectCriteriaSelectExactlyTheirRows(database.connect());
  dbHelp::ConnectString.clear();
}

}  // namespace
}  // namespace vrdppo
