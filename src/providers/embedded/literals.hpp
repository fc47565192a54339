// The values the dialect writes into SQLite text: literals, identifiers and exact numbers.
#pragma once

#include <string>
#include <string_view>

namespace vrdppo::embedded {

// A float literal (one with an exponent) that no double holds is refused as a server refuses
// it; SQLite would make it an infinity and keep it.
void refuseFloatOutOfRange(std::u16string_view text);

// A decimal literal with more significant digits than a double keeps (a Currency at its
// limits has 19), as the exact value in the form "[-]digits e exponent"; nothing when a double
// holds it. SQLite would read it as the nearest double.
std::string exactDecimal(std::u16string_view text, bool negative);

// 'value' and "name", their quotes doubled inside.
void appendStringLiteral(std::u16string& out, std::u16string_view value);
void appendIdentifier(std::u16string& out, std::u16string_view name);

// X'...': the bytes as a blob literal.
void appendBlob(std::u16string& out, std::string_view bytes);

}  // namespace vrdppo::embedded
