#include "providers/odbc/odbc_session_effects.hpp"

#include <atomic>
#include <string>
#include <unordered_map>

#include "providers/embedded/tokenizer.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::odbc {

namespace {

using embedded::Tok;
using embedded::Tokens;

constexpr std::u16string_view kAuditProcedure = u"ZZ_SetAuditTrailID";

// What a word of the server's language may be in a plain query or data change.
enum class Word : std::uint8_t {
  Allowed,  // a reserved word of queries and data changes
  Update,   // UPDATE: its SET must follow its target
  Set,      // SET: only as an UPDATE's
  Other,    // any other reserved word, or a word that starts a statement: not plain
};

// The server's reserved words, and the few unreserved ones that start a statement. A word that is
// not reserved is a name (a table, a column, a function), and cannot start a statement after the
// batch's first; so reading the reserved words is enough to see every statement of the batch.
const std::unordered_map<std::u16string, Word>& words() {
  static const auto* table = [] {
    auto* m = new std::unordered_map<std::u16string, Word>;
    for (const char16_t* w :
         {u"ALL",          u"AND",          u"ANY",          u"AS",           u"ASC",
          u"BETWEEN",      u"BY",           u"CASE",         u"COALESCE",     u"COLLATE",
          u"CONVERT",      u"CROSS",        u"CURRENT_DATE", u"CURRENT_TIME", u"CURRENT_TIMESTAMP",
          u"CURRENT_USER", u"DEFAULT",      u"DELETE",       u"DESC",         u"DISTINCT",
          u"ELSE",         u"END",          u"ESCAPE",       u"EXCEPT",       u"EXISTS",
          u"FROM",         u"FULL",         u"GROUP",        u"HAVING",       u"HOLDLOCK",
          u"IN",           u"INNER",        u"INSERT",       u"INTERSECT",    u"INTO",
          u"IS",           u"JOIN",         u"LEFT",         u"LIKE",         u"NOT",
          u"NULL",         u"NULLIF",       u"ON",           u"OR",           u"ORDER",
          u"OUTER",        u"OVER",         u"PERCENT",      u"PIVOT",        u"RIGHT",
          u"SELECT",       u"SESSION_USER", u"SOME",         u"SYSTEM_USER",  u"THEN",
          u"TOP",          u"TRY_CONVERT",  u"UNION",        u"UNPIVOT",      u"USER",
          u"VALUES",       u"WHEN",         u"WHERE",        u"WITH"}) {
      m->emplace(w, Word::Allowed);
    }
    for (const char16_t* w :
         {u"ADD", u"ALTER", u"AUTHORIZATION", u"BACKUP", u"BEGIN", u"BREAK", u"BROWSE", u"BULK",
          u"CASCADE", u"CHECK", u"CHECKPOINT", u"CLOSE", u"CLUSTERED", u"COLUMN", u"COMMIT",
          u"COMPUTE", u"CONSTRAINT", u"CONTAINS", u"CONTAINSTABLE", u"CONTINUE", u"CREATE",
          u"CURRENT", u"CURSOR", u"DATABASE", u"DBCC", u"DEALLOCATE", u"DECLARE", u"DENY", u"DISK",
          u"DISTRIBUTED", u"DOUBLE", u"DROP", u"DUMP", u"ERRLVL", u"EXEC", u"EXECUTE", u"EXIT",
          u"EXTERNAL", u"FETCH", u"FILE", u"FILLFACTOR", u"FOR", u"FOREIGN", u"FREETEXT",
          u"FREETEXTTABLE", u"FUNCTION", u"GOTO", u"GRANT", u"IDENTITY", u"IDENTITY_INSERT",
          u"IDENTITYCOL", u"IF", u"INDEX", u"KEY", u"KILL", u"LINENO", u"LOAD", u"MERGE",
          u"NATIONAL", u"NOCHECK", u"NONCLUSTERED", u"OF", u"OFF", u"OFFSETS", u"OPEN",
          u"OPENDATASOURCE", u"OPENQUERY", u"OPENROWSET", u"OPENXML", u"OPTION", u"PLAN",
          u"PRECISION", u"PRIMARY", u"PRINT", u"PROC", u"PROCEDURE", u"PUBLIC", u"RAISERROR",
          u"READ", u"READTEXT", u"RECONFIGURE", u"REFERENCES", u"REPLICATION", u"RESTORE",
          u"RESTRICT", u"RETURN", u"REVERT", u"REVOKE", u"ROLLBACK", u"ROWCOUNT", u"ROWGUIDCOL",
          u"RULE", u"SAVE", u"SCHEMA", u"SECURITYAUDIT", u"SETUSER", u"SHUTDOWN", u"STATISTICS",
          u"TABLE", u"TABLESAMPLE", u"TEXTSIZE", u"TO", u"TRAN", u"TRANSACTION", u"TRIGGER",
          u"TRUNCATE", u"TSEQUAL", u"UNIQUE", u"UPDATETEXT", u"USE", u"VARYING", u"VIEW",
          u"WAITFOR", u"WHILE", u"WITHIN", u"WRITETEXT",
          // Not reserved, but each starts a statement of its own.
          u"THROW", u"GET", u"MOVE", u"SEND", u"RECEIVE", u"ENABLE", u"DISABLE"}) {
      m->emplace(w, Word::Other);
    }
    m->emplace(u"UPDATE", Word::Update);
    m->emplace(u"SET", Word::Set);
    return m;
  }();
  return *table;
}

Word wordKind(std::u16string_view w) {
  if (w.size() > 32) return Word::Allowed;  // longer than any keyword: a name
  const auto it = words().find(upperAscii(w));
  return it == words().end() ? Word::Allowed : it->second;
}

// Characters the server may take as blanks between words, where the reader would see one word.
bool holdsOtherBlank(std::u16string_view w) {
  for (const char16_t c : w) {
    if (c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200B) || c == 0x2028 ||
        c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000 || c == 0xFEFF) {
      return true;
    }
  }
  return false;
}

bool isPlainPunct(std::u16string_view p) {
  if (p.size() == 2) return true;  // <=, >=, <>, !=, !<, !>, ||: comparisons and concatenation
  static constexpr std::u16string_view kPlain = u"(),.=<>+-*/%&|^~;!";
  return p.size() == 1 && kPlain.find(p[0]) != std::u16string_view::npos;
}

// The next token at or after i that is neither blank nor comment; t.size() when none.
std::size_t next(const Tokens& t, std::size_t i) {
  return t.skip(i, t.size());
}

bool startsStatement(const Tokens& t, std::size_t i) {
  return t.isPunct(i, u'(') || t.isWord(i, u"SELECT") || t.isWord(i, u"INSERT") ||
         t.isWord(i, u"UPDATE") || t.isWord(i, u"DELETE") || t.isWord(i, u"WITH");
}

bool isName(const Tokens& t, std::size_t i) {
  return i < t.size() &&
         (t[i].kind == Tok::Word || t[i].kind == Tok::Bracketed || t[i].kind == Tok::Quoted);
}

// The index of the SET of the UPDATE at i: UPDATE [TOP (n) [PERCENT]] name[.name...]
// [WITH (hints)] SET. t.size() when what follows is not that (UPDATE STATISTICS, a stray word).
std::size_t updateSet(const Tokens& t, std::size_t i) {
  const std::size_t end = t.size();
  i = next(t, i + 1);
  if (t.isWord(i, u"TOP")) {
    i = next(t, i + 1);
    if (!t.isPunct(i, u'(')) return end;
    i = next(t, t.closing(i, end) + 1);
    if (t.isWord(i, u"PERCENT")) i = next(t, i + 1);
  }
  if (!isName(t, i) || wordKind(t.text(i)) != Word::Allowed) return end;
  i = next(t, i + 1);
  while (t.isPunct(i, u'.')) {
    i = next(t, i + 1);
    if (!isName(t, i)) return end;
    i = next(t, i + 1);
  }
  if (t.isWord(i, u"WITH")) {
    i = next(t, i + 1);
    if (!t.isPunct(i, u'(')) return end;
    i = next(t, t.closing(i, end) + 1);
  }
  return t.isWord(i, u"SET") ? i : end;
}

// Tokens of a query or data change and nothing else: no temporary object, no statement of any
// other kind, no SET but an UPDATE's. With `whole`, the text is a batch of such statements, each
// beginning as one does; without it, a fragment that a procedure puts inside one of its own.
bool plainTokens(const Tokens& t, bool whole) {
  std::size_t i = next(t, 0);
  if (whole && (i == t.size() || !startsStatement(t, i))) return false;
  std::size_t allowedSet = t.size();
  for (; i < t.size(); i = next(t, i + 1)) {
    switch (t[i].kind) {
      case Tok::Word: {
        const std::u16string_view w = t.text(i);
        if (w.front() == u'#' || holdsOtherBlank(w)) return false;  // a temporary object
        switch (wordKind(w)) {
          case Word::Allowed:
            break;
          case Word::Update:
            allowedSet = updateSet(t, i);
            if (allowedSet == t.size()) return false;
            break;
          case Word::Set:
            if (i != allowedSet) return false;
            break;
          case Word::Other:
            return false;
        }
        break;
      }
      case Tok::Punct:
        if (!isPlainPunct(t.text(i))) return false;
        if (t.isPunct(i, u';')) {
          if (!whole) return false;
          const std::size_t after = next(t, i + 1);
          if (after != t.size() && !startsStatement(t, after)) return false;
        }
        break;
      case Tok::Quoted:
      case Tok::Bracketed:
        // A quoted name may name a temporary object as well as a plain one.
        if (embedded::unquote(t.text(i)).starts_with(u'#')) return false;
        break;
      case Tok::Variable:  // @@ functions; a variable of one's own needs a DECLARE
      case Tok::Number:
      case Tok::String:
      case Tok::Space:
      case Tok::Comment:
        break;
    }
  }
  return true;
}

bool plainText(std::u16string_view sql, bool whole) {
  try {
    return plainTokens(Tokens(sql), whole);
  } catch (const Error&) {
    return false;  // an unclosed quote or comment: the server reads it otherwise or not at all
  }
}

std::atomic<const KnownProcedure*> gProcedures{nullptr};
std::atomic<std::size_t> gProcedureCount{0};

const KnownProcedure* knownProcedure(std::u16string_view name) {
  const KnownProcedure* list = gProcedures.load(std::memory_order_acquire);
  const std::size_t n = gProcedureCount.load(std::memory_order_acquire);
  for (std::size_t k = 0; list != nullptr && k < n; ++k) {
    if (equalsNoCase(list[k].name, name)) return &list[k];
  }
  return nullptr;
}

// A call of a known procedure, alone in its batch: [EXEC] [dbo.]name, then arguments that are
// values ([@name =] a number, a text, NULL or DEFAULT), each text plain where the procedure runs
// or builds statements from it.
bool plainCall(const Tokens& t) {
  std::size_t i = next(t, 0);
  if (t.isWord(i, u"EXEC") || t.isWord(i, u"EXECUTE")) i = next(t, i + 1);
  if (!isName(t, i)) return false;
  std::u16string name = embedded::nameOf(t, i);
  i = next(t, i + 1);
  if (t.isPunct(i, u'.')) {
    if (!equalsNoCase(name, u"dbo")) return false;
    i = next(t, i + 1);
    if (!isName(t, i)) return false;
    name = embedded::nameOf(t, i);
    i = next(t, i + 1);
  }
  const KnownProcedure* procedure = knownProcedure(name);
  if (procedure == nullptr) return false;
  bool expectValue = true;
  for (; i < t.size() && !t.isPunct(i, u';'); i = next(t, i + 1)) {
    if (!expectValue) {
      if (!t.isPunct(i, u',')) return false;
      expectValue = true;
      continue;
    }
    if (t[i].kind == Tok::Variable) {
      i = next(t, i + 1);
      if (!t.isPunct(i, u'=')) return false;
      i = next(t, i + 1);
    }
    if (t.isPunct(i, u'-') || t.isPunct(i, u'+')) i = next(t, i + 1);
    if (i == t.size()) return false;
    const Tok kind = t[i].kind;
    if (kind == Tok::String || kind == Tok::Quoted) {
      const std::u16string text = embedded::unquote(t.text(i));
      if (procedure->text == KnownProcedure::Text::Statement && !plainText(text, true)) {
        return false;
      }
      if (procedure->text == KnownProcedure::Text::Fragments && !plainText(text, false)) {
        return false;
      }
    } else if (kind != Tok::Number && !t.isWord(i, u"NULL") && !t.isWord(i, u"DEFAULT")) {
      return false;
    }
    expectValue = false;
  }
  // Nothing but blanks and comments after a closing ";".
  return i == t.size() || next(t, i + 1) == t.size();
}

std::u16string_view trimmed(std::u16string_view s) {
  const auto blank = [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; };
  while (!s.empty() && blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && (blank(s.back()) || s.back() == u';')) s.remove_suffix(1);
  return s;
}

}  // namespace

void setKnownProcedures(std::span<const KnownProcedure> procedures) {
  gProcedureCount.store(0, std::memory_order_release);
  gProcedures.store(procedures.data(), std::memory_order_release);
  gProcedureCount.store(procedures.size(), std::memory_order_release);
}

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
  if (equalsNoCase(trimmed(sql), kGatewaySet)) {
    e.plain = true;
    return e;
  }
  if ((e.auditTrailId = gatewayAuditTrailId(sql))) {
    e.plain = true;
    return e;
  }
  try {
    const Tokens t(sql);
    e.plain = plainTokens(t, true) || plainCall(t);
  } catch (const Error&) {
    e.plain = false;
  }
  return e;
}

}  // namespace vrdppo::odbc
