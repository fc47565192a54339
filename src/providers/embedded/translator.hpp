// The store's dialect: one T-SQL statement rewritten as SQLite text.
#pragma once

#include <cstddef>
#include <string>

#include "tokenizer.hpp"

namespace vrdppo::embedded {

// Translates the tokens [begin, end) of one statement. With quotedIdentifier off, "..." is a
// string literal; with it on, an identifier. Raises the store's syntax error for what the
// dialect rejects; anything else is left to SQLite to judge.
std::u16string translate(const Tokens& tokens, std::size_t begin, std::size_t end,
                         bool quotedIdentifier);

// The name of the collation that compares texts of dates by the moment they stand for.
inline constexpr char16_t kDateCollation[] = u"VDATE";

}  // namespace vrdppo::embedded
