// Records as named fields in text, for the command line: the state's lossless text form, each
// field's value as text, and records built from "FIELD=VALUE" assignments.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "vrdppo/error.hpp"
#include "vrdppo/record.hpp"
#include "vrdppo/registry.hpp"

namespace vrdppo::cli {

// A state in text: the body of a JSON string, ASCII only, every other code unit (U+0000 among
// them) as \uXXXX, so that any state travels through a terminal or a file unchanged. A blank at
// either end and a leading '-' are escaped too, so that neither trimming nor an option parser
// takes them.
std::string escapeState(std::u16string_view state);
// The inverse; surrounding double quotes are allowed. Throws std::invalid_argument.
std::u16string unescapeState(std::string_view text);

// "Long", "Double", "Currency", "Date", "String*15".
std::string typeText(const Column& column);

// A field's value as text: Long and Double as numbers (Double round-trips), Currency exactly,
// a Date as "YYYY-MM-DD HH:MM:SS" when that is exact and as its day count otherwise, a
// String*N without its trailing blanks and escaped as a state is.
std::string fieldText(const Column& column, const std::byte* record);
// Stores text of that form (or a date as YYYY-MM-DD[ HH:MM[:SS]]); throws std::invalid_argument.
void setFieldText(const Column& column, std::byte* record, std::string_view text);

// The column of that read or write spelling, without regard to case; nullptr when none.
const Column* findColumn(const RecordLayout& layout, std::string_view name);

// The trailing field and any bytes no field covers, for a lossless decode.
std::string trailingText(const RecordLayout& layout, const std::byte* record);
void setTrailingText(const RecordLayout& layout, std::byte* record, std::string_view text);
// Hex of the bytes that no field covers (struct padding, and the state's tail), empty if zero.
std::string unusedText(const RecordLayout& layout, std::u16string_view state);

// Assignments "NAME=VALUE": a column's name, "(trailing)" or "(unused)".
struct Assignment {
  std::string name;
  std::string value;
};
// Throws std::invalid_argument, naming the option the text came with when one is given.
Assignment parseAssignment(std::string_view text, std::string_view option = {});

// A state from the initialiser's record with the assignments applied.
std::u16string buildState(const RecordLayout& layout, const std::vector<Assignment>& sets);

// An error for a person, one or more lines: its number (in hex where it is a provider's
// HRESULT, as the documentation lists them), its text, its SQLSTATE and native number, and the
// statement that failed.
std::string errorText(const Error& e);

}  // namespace vrdppo::cli
