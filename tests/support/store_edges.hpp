// The number, date and text edges that the embedded store and a server must answer alike: each
// value committed through a class and loaded back, or refused, the same on both.
#pragma once

#include <string>

namespace vrdppo::testing {

// Runs every edge case against the database that `connect` names (a store or a server with the
// plant's schema), reporting each difference from the expected answer as a test failure.
void expectStoreEdges(const std::u16string& connect);

}  // namespace vrdppo::testing
