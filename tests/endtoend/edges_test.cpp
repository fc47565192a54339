// The number, date and text edges on the embedded store; the T-SQL suite runs the same table on
// a server.
#include "store_fixture.hpp"
#include "support/store_edges.hpp"

namespace vrdppo::testing {
namespace {

class Edges : public StoreTest {};

TEST_F(Edges, TheStoreAnswersAsAServerDoes) {
  expectStoreEdges(connect);
}

}  // namespace
}  // namespace vrdppo::testing
