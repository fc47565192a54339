// UTF-8 and UTF-16 at the edges of the library (files, terminals, SQLite's and ODBC's APIs).
#pragma once

#include <string>
#include <string_view>

#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

// Lone surrogates become U+FFFD; invalid UTF-8 bytes likewise.
std::string toUtf8(std::u16string_view s);
std::u16string fromUtf8(std::string_view s);

// ASCII-only helpers for literals that are ASCII by construction.
std::u16string ascii(std::string_view s);

// U+0020 stripped from both ends (the platform's Trim: blanks only).
std::u16string_view trimBlanks(std::u16string_view s) noexcept;

// ASCII upper case, for names and keywords compared as the server compares them.
std::u16string upperAscii(std::u16string_view s);
std::string upperAscii(std::string_view s);

// A UTF-8 text as a JSON string, quotes included, appended to out.
void appendJsonString(std::string& out, std::string_view utf8);

// Case-insensitive comparison of ASCII letters, as the classes compare names.
bool equalsNoCase(std::u16string_view a, std::u16string_view b) noexcept;

}  // namespace vrdppo
VRDPPO_PUBLIC_END
