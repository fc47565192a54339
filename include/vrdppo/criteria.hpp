// Criteria built from values: a template with "?" placeholders, each replaced by its value written
// as the library's own statements write a value of that kind, so that no value can change what
// the statement does. For the criteria members (Load's sCriteria, CriteriaDelete's), whose text
// goes into the statement as it stands.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "vrdppo/variant.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

// The criteria text of `templateText` with its placeholders replaced, in order, by `values`:
// a Long, LongLong or Decimal as its digits, a Double and a Currency as the render codes write
// them, a Date as 'yyyy/MM/dd HH:MM:SS', a String quoted with its quotes doubled (and its blanks
// at either end trimmed, as a record's string is written), Null as Null. A "?" inside a quoted
// string, a bracketed name or a comment is not a placeholder.
//
// Refused with error 5, naming the placeholder: too few or too many values; a value of a kind
// it cannot write (Empty, Missing, Boolean), a string holding U+0000, a Date outside
// 1753-01-01 .. 9999-12-31, a Double that is not finite, a Decimal that is not a number. Refused
// too, naming what is wrong: a template that is not one expression (a top-level ";", a word that
// begins another statement outside parentheses, a "--" comment that would swallow what the
// library appends, parentheses that do not balance, an unclosed quote, bracket or comment).
std::u16string buildCriteria(std::u16string_view templateText, std::span<const Variant> values);

}  // namespace vrdppo
VRDPPO_PUBLIC_END
