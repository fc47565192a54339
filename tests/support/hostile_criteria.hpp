// Values made of what breaks a hand-built statement, each committed as a row and then found by
// criteria built from it: the same check for the embedded store and for a server.
#pragma once

#include <string>

namespace vrdppo::testing {

// Commits 200 stations whose descriptions are such values (some the longest the field holds),
// then for each builds "Description = ?" with it and loads: the criteria is one condition with
// one string, and it selects every row written with the value and none whose description the
// database holds as different (without regard to case, as a server compares). On the store,
// which holds what was written, that is exactly the rows holding the value.
void expectCriteriaSelectExactlyTheirRows(const std::u16string& connect);

}  // namespace vrdppo::testing
