#include "providers/odbc/odbc_session_effects.hpp"

#include <array>
#include <string>

#include "vrdppo/recordset.hpp"

namespace vrdppo::odbc {

namespace {

constexpr std::u16string_view kAuditProcedure = u"ZZ_SetAuditTrailID";

bool isWordStart(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c == u'@' ||
         c >= 0x80;
}

bool isWordChar(char16_t c) {
  return isWordStart(c) || (c >= u'0' && c <= u'9') || c == u'$';
}

// Words that, wherever they stand, change the session for good.
constexpr std::array<std::u16string_view, 9> kLastingWords{u"USE",
                                                           u"SETUSER",
                                                           u"REVERT",
                                                           u"CURSOR",
                                                           u"sp_setapprole",
                                                           u"sp_getapplock",
                                                           u"sp_set_session_context",
                                                           u"CONTEXT_INFO",
                                                           u"ZZ_SetAuditTrailID"};

constexpr std::array<std::u16string_view, 2> kTransactionWords{u"TRAN", u"TRANSACTION"};

template <std::size_t N>
bool isOneOf(const std::array<std::u16string_view, N>& words, std::u16string_view w) {
  for (auto k : words) {
    if (equalsNoCase(k, w)) return true;
  }
  return false;
}

// The end of the literal, quoted name or comment that starts at i, or i when none does.
std::size_t skipQuoted(std::u16string_view s, std::size_t i) {
  const char16_t c = s[i];
  char16_t close = 0;
  if (c == u'\'' || c == u'"') close = c;
  if (c == u'[') close = u']';
  if (close != 0) {
    for (std::size_t j = i + 1; j < s.size(); ++j) {
      if (s[j] != close) continue;
      if (j + 1 < s.size() && s[j + 1] == close) {
        ++j;  // doubled: part of the text
        continue;
      }
      return j + 1;
    }
    return s.size();
  }
  if (c == u'-' && i + 1 < s.size() && s[i + 1] == u'-') {
    const std::size_t eol = s.find(u'\n', i);
    return eol == std::u16string_view::npos ? s.size() : eol + 1;
  }
  if (c == u'/' && i + 1 < s.size() && s[i + 1] == u'*') {
    int depth = 0;
    for (std::size_t j = i; j + 1 < s.size(); ++j) {
      if (s[j] == u'/' && s[j + 1] == u'*') {
        ++depth;
        ++j;
      } else if (s[j] == u'*' && s[j + 1] == u'/') {
        ++j;
        if (--depth == 0) return j + 1;
      }
    }
    return s.size();
  }
  return i;
}

std::u16string_view trimmed(std::u16string_view s) {
  while (!s.empty() &&
         (s.front() == u' ' || s.front() == u'\t' || s.front() == u'\r' || s.front() == u'\n')) {
    s.remove_prefix(1);
  }
  while (!s.empty() && (s.back() == u' ' || s.back() == u'\t' || s.back() == u'\r' ||
                        s.back() == u'\n' || s.back() == u';')) {
    s.remove_suffix(1);
  }
  return s;
}

}  // namespace

std::optional<std::int32_t> gatewayAuditTrailId(std::u16string_view sql) {
  sql = trimmed(sql);
  constexpr std::u16string_view kExec = u"exec ";
  if (sql.size() <= kExec.size() + kAuditProcedure.size() + 1 ||
      !equalsNoCase(sql.substr(0, kExec.size()), kExec) ||
      !equalsNoCase(sql.substr(kExec.size(), kAuditProcedure.size()), kAuditProcedure) ||
      sql[kExec.size() + kAuditProcedure.size()] != u' ') {
    return std::nullopt;
  }
  std::u16string_view digits = sql.substr(kExec.size() + kAuditProcedure.size() + 1);
  const bool negative = !digits.empty() && digits.front() == u'-';
  if (negative) digits.remove_prefix(1);
  if (digits.empty() || digits.size() > 10) return std::nullopt;
  std::int64_t value = 0;
  for (char16_t c : digits) {
    if (c < u'0' || c > u'9') return std::nullopt;
    value = value * 10 + (c - u'0');
  }
  if (negative) value = -value;
  if (value < INT32_MIN || value > INT32_MAX) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

SessionEffects sessionEffects(std::u16string_view sql) {
  SessionEffects e;
  if (equalsNoCase(trimmed(sql), kGatewaySet)) return e;
  if ((e.auditTrailId = gatewayAuditTrailId(sql))) return e;
  bool updateSet = false;  // an UPDATE waits for its SET, which assigns columns
  bool exec = false;       // the word before was EXEC or EXECUTE
  for (std::size_t i = 0; i < sql.size();) {
    const std::size_t after = skipQuoted(sql, i);
    if (after != i) {
      i = after;
      exec = false;
      continue;
    }
    const char16_t c = sql[i];
    if (c == u'#') {  // a temporary table or procedure
      e.lasting = true;
      return e;
    }
    if (!isWordStart(c)) {
      ++i;
      continue;
    }
    std::size_t j = i;
    while (j < sql.size() && isWordChar(sql[j])) ++j;
    const std::u16string_view w = sql.substr(i, j - i);
    i = j;
    if (equalsNoCase(w, u"UPDATE")) {
      updateSet = true;
    } else if (equalsNoCase(w, u"SET")) {
      if (!updateSet) {
        e.lasting = true;  // a session option
        return e;
      }
      updateSet = false;
    } else if ((exec && equalsNoCase(w, u"AS")) || isOneOf(kLastingWords, w)) {
      e.lasting = true;
      return e;
    } else if (isOneOf(kTransactionWords, w)) {
      e.transaction = true;
    }
    exec = equalsNoCase(w, u"EXEC") || equalsNoCase(w, u"EXECUTE");
  }
  return e;
}

}  // namespace vrdppo::odbc
