#include "vrdppo/criteria.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>

#include "providers/embedded/tokenizer.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {

namespace {

// Words that begin a statement of their own: outside parentheses, where a criteria's expression
// cannot hold them, they would make the text a second statement. Inside, SELECT begins a
// subquery, which an expression may hold.
constexpr std::array<std::u16string_view, 44> kStatementWords{
    u"ALTER",     u"BACKUP",      u"BEGIN",    u"BREAK",   u"BULK",       u"CHECKPOINT", u"CLOSE",
    u"COMMIT",    u"CONTINUE",    u"CREATE",   u"DBCC",    u"DEALLOCATE", u"DECLARE",    u"DELETE",
    u"DENY",      u"DROP",        u"EXEC",     u"EXECUTE", u"FETCH",      u"GO",         u"GOTO",
    u"GRANT",     u"IF",          u"INSERT",   u"KILL",    u"MERGE",      u"OPEN",       u"PRINT",
    u"RAISERROR", u"RECONFIGURE", u"RESTORE",  u"RETURN",  u"REVOKE",     u"ROLLBACK",   u"SAVE",
    u"SELECT",    u"SET",         u"SHUTDOWN", u"THROW",   u"TRUNCATE",   u"UPDATE",     u"USE",
    u"WAITFOR",   u"WHILE"};

constexpr const char* kSource = "vrdppo.criteria";

[[noreturn]] void refuse(const std::string& why) {
  throw Error(err::kInvalidCall, "Criteria: " + why, kSource);
}

[[noreturn]] void refusePlaceholder(std::size_t number, std::size_t at, const std::string& why) {
  refuse("placeholder " + std::to_string(number) + " (character " + std::to_string(at + 1) +
         "): " + why);
}

bool wordish(char16_t c) {
  return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
         c == u'_' || c == u'@' || c == u'#' || c == u'$' || c == u'.' || c >= 0x80;
}

// Whether text written so far and a piece after it would read as one token across the seam: a
// value glued to a word or number of the template, "-" after "-" (a comment), "*" after "/"
// (another), a quote after a quote (one string with a doubled quote), a number after "1e-" (its
// exponent). A string after N stays N'...', the same string in Unicode.
bool joins(std::u16string_view before, char16_t after) {
  const char16_t last = before.back();
  // A number after a sign after "e" finishes an exponent ("1e-" and "5": "1e-5").
  const bool exponent = (last == u'-' || last == u'+') && before.size() >= 2 &&
                        (before[before.size() - 2] == u'e' || before[before.size() - 2] == u'E') &&
                        ((after >= u'0' && after <= u'9') || after == u'.');
  // A sign after a word or number could make an exponent of it ("1e" and "-5": "1e-5").
  return exponent || (wordish(last) && (wordish(after) || after == u'-')) ||
         (last == u'-' && after == u'-') || (last == u'/' && after == u'*') ||
         (last == u'*' && after == u'/') || (last == u'\'' && after == u'\'');
}

bool startsStatement(std::u16string_view word) {
  return std::any_of(kStatementWords.begin(), kStatementWords.end(),
                     [&](std::u16string_view w) { return equalsNoCase(word, w); });
}

// The value written as the library's statements write a value of its kind; a reason in `why`
// (and an empty result) when it cannot be.
std::u16string literal(const Variant& v, std::string& why) {
  switch (v.type()) {
    case VarType::Null:
      return u"Null";
    case VarType::Long:
      return longText(v.lng());
    case VarType::LongLong:
      return fromUtf8(std::to_string(v.longLong()));
    case VarType::Double:
      if (!std::isfinite(v.dbl())) {
        why = "a Double that is not a finite number has no SQL form";
        return {};
      }
      return doubleText(v.dbl());
    case VarType::Currency:
      return currencyText(v.cur());
    case VarType::Decimal: {
      std::u16string text = fromUtf8(v.decimal().text);
      std::size_t i = !text.empty() && text[0] == u'-' ? 1 : 0;
      bool digits = false;
      bool point = false;
      for (; i < text.size(); ++i) {
        if (text[i] >= u'0' && text[i] <= u'9') {
          digits = true;
        } else if (text[i] == u'.' && !point) {
          point = true;
        } else {
          digits = false;
          break;
        }
      }
      if (!digits) {
        why = "a Decimal whose text is not a number";
        return {};
      }
      return text;
    }
    case VarType::Date: {
      const Date d = v.date();
      // The server's datetime holds 1753-01-01 to 9999-12-31.
      DateParts p;
      try {
        p = splitDate(d);
      } catch (const Error&) {
        why = "a Date outside 0100-01-01 .. 9999-12-31";
        return {};
      }
      if (p.year < 1753) {
        why = "a Date before 1753-01-01, which the server's dates cannot hold";
        return {};
      }
      return dateLiteral(d, u"yyyy/MM/dd HH:MM:SS");
    }
    case VarType::String: {
      const std::u16string& s = v.str();
      if (s.find(u'\0') != std::u16string::npos) {
        why = "a string holding U+0000, which would end the statement's text";
        return {};
      }
      return stringLiteral(s);
    }
    case VarType::Empty:
    case VarType::Missing:
    case VarType::Boolean:
      break;
  }
  why = std::string("a value of type ") + varTypeName(v.type()) + ", which has no SQL form here";
  return {};
}

// Appends a piece beside a value (`value`: the piece is one, or follows one), a blank between
// them where they would otherwise read as one token. The template's own pieces join as written.
void append(std::u16string& out, std::u16string_view piece, bool value) {
  if (value && !out.empty() && !piece.empty() && joins(out, piece.front())) out += u' ';
  out += piece;
}

}  // namespace

std::u16string buildCriteria(std::u16string_view templateText, std::span<const Variant> values) {
  std::optional<embedded::Tokens> parsed;
  try {
    parsed.emplace(templateText);
  } catch (const Error& e) {
    refuse("the template does not end what it opens: " + e.description());
  }
  const embedded::Tokens& tokens = *parsed;
  std::u16string out;
  out.reserve(templateText.size() + 16 * values.size());
  std::size_t placeholder = 0;
  int depth = 0;
  bool afterValue = false;
  std::size_t copied = 0;  // the template's text up to here is in out
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const embedded::Token& t = tokens[i];
    const std::u16string_view text = tokens.text(i);
    // What lies between tokens: the N of an N'...' string, whose token begins at its quote.
    if (t.begin > copied) {
      append(out, templateText.substr(copied, t.begin - copied), afterValue);
      afterValue = false;
    }
    copied = t.end;
    if (t.kind == embedded::Tok::Comment && text.starts_with(u"--")) {
      refuse("a \"--\" comment (character " + std::to_string(t.begin + 1) +
             ") would swallow what follows the criteria");
    }
    if (t.kind == embedded::Tok::Punct) {
      if (text == u"(") ++depth;
      if (text == u")" && --depth < 0) {
        refuse("a \")\" (character " + std::to_string(t.begin + 1) + ") closes nothing");
      }
      if (text == u";") {
        refuse("a \";\" (character " + std::to_string(t.begin + 1) + ") ends the statement");
      }
    }
    if (t.kind == embedded::Tok::Word && depth == 0 && startsStatement(text)) {
      refuse("\"" + toUtf8(text) + "\" (character " + std::to_string(t.begin + 1) +
             ") begins another statement");
    }
    if (t.kind == embedded::Tok::Punct && text == u"?") {
      ++placeholder;
      if (placeholder > values.size()) {
        refusePlaceholder(placeholder, t.begin,
                          "no value for it (" + std::to_string(values.size()) + " given)");
      }
      std::string why;
      const std::u16string value = literal(values[placeholder - 1], why);
      if (!why.empty()) refusePlaceholder(placeholder, t.begin, why);
      append(out, value, true);
      afterValue = true;
      continue;
    }
    append(out, text, afterValue);
    afterValue = false;
  }
  append(out, templateText.substr(std::min<std::size_t>(copied, templateText.size())), afterValue);
  if (depth != 0) refuse("a \"(\" is not closed");
  if (placeholder < values.size()) {
    refuse(std::to_string(values.size()) + " values for " + std::to_string(placeholder) +
           " placeholders: value " + std::to_string(placeholder + 1) + " has no place");
  }
  return out;
}

}  // namespace vrdppo
