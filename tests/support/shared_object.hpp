// Threads sharing one object: each commits records of its own through it and loads them back.
// Run on the embedded store by the stress suite and on a server by the T-SQL suite.
#pragma once

#include <string>

namespace vrdppo::testing {

// Runs `threads` threads of `rounds` Commit-and-Load rounds each through one cLabSettingPersist
// on `connect`, whose LABSETTING table starts empty, and records a test failure for every row
// that is mixed, another thread's, lost or doubled.
void expectSharedObjectKeepsEveryRowWhole(const std::u16string& connect, int threads, int rounds);

}  // namespace vrdppo::testing
