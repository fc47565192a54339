// How a column's value becomes SQL text, and the record support the contracts share.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "vrdppo/record.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

// The SQL text of one column of a record by its render code; "NULL" for a column without one.
std::u16string renderColumn(const Column& column, const std::byte* record);

// A text as the S render codes write a string field: its blanks at either end trimmed, its
// quotes doubled, between quotes.
std::u16string stringLiteral(std::u16string_view text);
// A date as the T render codes write it: formatDate's text between quotes.
std::u16string dateLiteral(Date d, std::u16string_view format);
// A date by a format of yyyy, MM, dd, HH, MM (minutes right behind HH) and SS, with the thread
// locale's separators in place of "/" and ":".
std::u16string formatDate(Date d, std::u16string_view format);

// "L0", "T0 yyyy/MM/dd HH:MM", "" for none.
std::string renderCodeText(const Column& column);
const char* fieldTypeText(FieldType type);  // Long, Double, Currency, Date; String*N separately

// The record initialiser: numbers 0, strings blanks, dates 1900/01/01, the trailing literal.
void initialiseRecord(const RecordLayout& layout, std::byte* record);
// One field as the initialiser leaves it.
void initialiseField(const Column& column, std::byte* record) noexcept;
// The state string: C characters, the record's R bytes first, U+0000 after them.
std::u16string recordState(const RecordLayout& layout, const std::byte* record);
void recordState(const RecordLayout& layout, const std::byte* record, std::u16string& out);
// A state cut or blank-padded to C characters, its first R bytes copied over the record.
void setRecordState(const RecordLayout& layout, std::byte* record, std::u16string_view state);

// One field from a row's value: Null gives the field's default, anything else is coerced.
void storeField(const Column& column, std::byte* record, const Variant& value);
// A field's value as a Variant (a String*N whole, blanks included).
Variant fieldValue(const Column& column, const std::byte* record);

}  // namespace vrdppo
VRDPPO_PUBLIC_END
