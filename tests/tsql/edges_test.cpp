// The number, date and text edges on a real server: the same table of cases the embedded store
// answers in its own suite, so that a case holds on both or fails on one.
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/store_edges.hpp"
#include "tsql/tsql_schema.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {
namespace {

TEST(Edges, TheServerAnswersTheStoresEdgeCases) {
  const char* connect = std::getenv("VRDPPO_TSQL_CONNECT");
  if (connect == nullptr || *connect == '\0') GTEST_SKIP() << "VRDPPO_TSQL_CONNECT names no server";
  const tsql::PlantDatabase database(fromUtf8(connect), u"vrdppo_edges_");
  testing::expectStoreEdges(database.connect());
}

}  // namespace
}  // namespace vrdppo
