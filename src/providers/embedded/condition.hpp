// The search conditions of a statement: what a server takes where it expects a condition.
#pragma once

#include <cstddef>

#include "tokenizer.hpp"

namespace vrdppo::embedded {

// Checks every search condition in the statement [begin, end): each WHERE, ON and HAVING, and
// each WHEN of a searched CASE. A server refuses a condition that is a bare value (`WHERE 77`,
// `WHERE ProductionRunId`, `ON 1`), where SQLite would take it as true or false; the store
// refuses it too, with the server's error 4145.
void checkConditions(const Tokens& t, std::size_t begin, std::size_t end);

}  // namespace vrdppo::embedded
