#include "providers/embedded/functions.hpp"

#include <sqlite3.h>

#include <cstdint>
#include <string>

#include "providers/embedded/dates.hpp"

namespace vrdppo::embedded {

std::string_view textOf(sqlite3_value* v) {
  const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(v));
  if (!p) return {};
  return {p, static_cast<std::size_t>(sqlite3_value_bytes(v))};
}

void resultError(sqlite3_context* ctx, std::string_view message) {
  sqlite3_result_error(ctx, message.data(), static_cast<int>(message.size()));
}

namespace {

void resultText(sqlite3_context* ctx, std::string_view s) {
  sqlite3_result_text(ctx, s.data(), static_cast<int>(s.size()), SQLITE_TRANSIENT);
}

bool anyNull(int argc, sqlite3_value** argv) {
  for (int i = 0; i < argc; ++i) {
    if (sqlite3_value_type(argv[i]) == SQLITE_NULL) return true;
  }
  return false;
}

bool isLead(unsigned char b) noexcept {
  return (b & 0xC0) != 0x80;
}

// The byte offset of the n-th character (from 0) of s, or s.size().
std::size_t offsetOfChar(std::string_view s, std::int64_t n) {
  std::size_t i = 0;
  for (; i < s.size() && n > 0; --n) {
    ++i;
    while (i < s.size() && !isLead(static_cast<unsigned char>(s[i]))) ++i;
  }
  return i;
}

std::int64_t charCount(std::string_view s) {
  std::int64_t n = 0;
  for (unsigned char b : s) n += isLead(b) ? 1 : 0;
  return n;
}

char foldAscii(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

std::uint32_t foldChar(std::uint32_t c) noexcept {
  return c >= 'A' && c <= 'Z' ? c + 32 : c;
}

// Decodes one UTF-8 character at i, advancing i.
std::uint32_t decode(std::string_view s, std::size_t& i) {
  const auto b = static_cast<unsigned char>(s[i++]);
  if (b < 0x80) return b;
  int extra = b >= 0xF0 ? 3 : b >= 0xE0 ? 2 : 1;
  std::uint32_t c = b & (0x3F >> extra);
  while (extra-- > 0 && i < s.size()) c = (c << 6) | (static_cast<unsigned char>(s[i++]) & 0x3F);
  return c;
}

// LEN: characters without the trailing blanks.
void fnLen(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (anyNull(argc, argv)) return sqlite3_result_null(ctx);
  auto s = textOf(argv[0]);
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  sqlite3_result_int64(ctx, charCount(s));
}

void fnLeft(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (anyNull(argc, argv)) return sqlite3_result_null(ctx);
  const auto s = textOf(argv[0]);
  const auto n = sqlite3_value_int64(argv[1]);
  if (n < 0) return resultError(ctx, "Invalid length parameter passed to the left function.");
  resultText(ctx, s.substr(0, offsetOfChar(s, n)));
}

void fnRight(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (anyNull(argc, argv)) return sqlite3_result_null(ctx);
  const auto s = textOf(argv[0]);
  const auto n = sqlite3_value_int64(argv[1]);
  if (n < 0) return resultError(ctx, "Invalid length parameter passed to the right function.");
  const std::int64_t count = charCount(s);
  resultText(ctx, s.substr(offsetOfChar(s, n >= count ? 0 : count - n)));
}

// CHARINDEX(find, text [, start]): the 1-based character position, 0 when absent; letters are
// compared without regard to case, as the server's default collation does.
void fnCharindex(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (anyNull(argc, argv)) return sqlite3_result_null(ctx);
  const auto find = textOf(argv[0]);
  const auto s = textOf(argv[1]);
  std::int64_t start = argc > 2 ? sqlite3_value_int64(argv[2]) : 1;
  if (start < 1) start = 1;
  if (find.empty()) return sqlite3_result_int64(ctx, 0);
  for (std::size_t i = offsetOfChar(s, start - 1); i + find.size() <= s.size(); ++i) {
    if (!isLead(static_cast<unsigned char>(s[i]))) continue;
    std::size_t k = 0;
    while (k < find.size() && foldAscii(s[i + k]) == foldAscii(find[k])) ++k;
    if (k == find.size()) return sqlite3_result_int64(ctx, charCount(s.substr(0, i)) + 1);
  }
  sqlite3_result_int64(ctx, 0);
}

// CONCAT(a, b, ...): the texts of the arguments, a NULL counting as empty.
void fnConcat(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  std::string out;
  for (int i = 0; i < argc; ++i) out += textOf(argv[i]);
  resultText(ctx, out);
}

// REPLICATE(text, n), and SPACE(n) as REPLICATE(' ', n).
void fnReplicate(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (anyNull(argc, argv)) return sqlite3_result_null(ctx);
  const std::string_view unit = argc == 2 ? textOf(argv[0]) : std::string_view(" ");
  const auto n = sqlite3_value_int64(argv[argc - 1]);
  if (n < 0) return sqlite3_result_null(ctx);
  if (static_cast<std::uint64_t>(n) * unit.size() > 8000) {
    return resultError(ctx, "REPLICATE would give more than 8000 bytes.");
  }
  std::string out;
  for (std::int64_t i = 0; i < n; ++i) out += unit;
  resultText(ctx, out);
}

// LIKE as T-SQL reads a pattern: % and _, [abc], [a-c] and [^abc] sets, an optional escape
// character; letters compared without regard to case.
class LikePattern {
 public:
  LikePattern(std::string_view p, std::uint32_t escape) : p_(p), esc_(escape) {}

  bool matches(std::string_view s) const {
    std::size_t pi = 0;
    std::size_t si = 0;
    std::size_t starP = std::string_view::npos;
    std::size_t starS = 0;
    while (si < s.size()) {
      if (pi < p_.size() && p_[pi] == '%') {
        starP = ++pi;
        starS = si;
        continue;
      }
      std::size_t next = si;
      const std::uint32_t c = decode(s, next);
      std::size_t after = pi;
      if (pi < p_.size() && element(after, c)) {
        pi = after;
        si = next;
        continue;
      }
      if (starP == std::string_view::npos) return false;
      pi = starP;
      decode(s, starS);
      si = starS;
    }
    while (pi < p_.size() && p_[pi] == '%') ++pi;
    return pi == p_.size();
  }

 private:
  // Does the pattern element at i match c? Advances i past the element.
  bool element(std::size_t& i, std::uint32_t c) const {
    std::uint32_t pc = decode(p_, i);
    if (esc_ != 0 && pc == esc_ && i < p_.size()) return foldChar(decode(p_, i)) == foldChar(c);
    if (pc == '_') return true;
    if (pc == '[') {
      const std::size_t close = p_.find(']', i + 1);
      if (close != std::string_view::npos) {
        std::size_t k = i;
        bool negate = false;
        if (p_[k] == '^') {
          negate = true;
          ++k;
        }
        bool hit = false;
        const std::uint32_t fc = foldChar(c);
        while (k < close) {
          const std::uint32_t lo = foldChar(decode(p_, k));
          if (k + 1 < close && p_[k] == '-') {
            ++k;
            const std::uint32_t hi = foldChar(decode(p_, k));
            hit = hit || (fc >= lo && fc <= hi);
          } else {
            hit = hit || fc == lo;
          }
        }
        i = close + 1;
        return hit != negate;
      }
    }
    return foldChar(pc) == foldChar(c);
  }

  std::string_view p_;
  std::uint32_t esc_;
};

void fnLike(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (anyNull(argc, argv)) return sqlite3_result_null(ctx);
  std::uint32_t escape = 0;
  if (argc > 2) {
    const auto e = textOf(argv[2]);
    std::size_t i = 0;
    if (e.empty() || (escape = decode(e, i), i != e.size())) {
      return resultError(ctx, "The escape character of LIKE must be one character.");
    }
  }
  sqlite3_result_int(ctx, LikePattern(textOf(argv[0]), escape).matches(textOf(argv[1])) ? 1 : 0);
}

void fnScopeIdentity(sqlite3_context* ctx, int, sqlite3_value**) {
  const auto id = sqlite3_last_insert_rowid(sqlite3_context_db_handle(ctx));
  if (id == 0) return sqlite3_result_null(ctx);
  sqlite3_result_int64(ctx, id);
}

void fnAuditTrailId(sqlite3_context* ctx, int, sqlite3_value**) {
  const auto* source = static_cast<const AuditTrailSource*>(sqlite3_user_data(ctx));
  sqlite3_result_int(ctx, source->read(source->context));
}

int collateDates(void*, int n1, const void* a, int n2, const void* b) {
  return compareDateTexts({static_cast<const char*>(a), static_cast<std::size_t>(n1)},
                          {static_cast<const char*>(b), static_cast<std::size_t>(n2)});
}

}  // namespace

int registerFunctions(sqlite3* db, const AuditTrailSource* auditTrail) {
  using Fn = void (*)(sqlite3_context*, int, sqlite3_value**);
  struct Def {
    const char* name;
    int args;
    Fn fn;
  };
  static constexpr Def kPure[] = {
      {"len", 1, fnLen},
      {"vr_left", 2, fnLeft},
      {"vr_right", 2, fnRight},
      {"charindex", 2, fnCharindex},
      {"charindex", 3, fnCharindex},
      {"like", 2, fnLike},
      {"like", 3, fnLike},
      {"concat", -1, fnConcat},
      {"replicate", 2, fnReplicate},
      {"space", 1, fnReplicate},
  };
  constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  for (const auto& d : kPure) {
    const int rc = sqlite3_create_function_v2(db, d.name, d.args, kFlags, nullptr, d.fn, nullptr,
                                              nullptr, nullptr);
    if (rc != SQLITE_OK) return rc;
  }
  int rc = sqlite3_create_function_v2(db, "scope_identity", 0, SQLITE_UTF8, nullptr,
                                      fnScopeIdentity, nullptr, nullptr, nullptr);
  if (rc == SQLITE_OK) {
    rc = sqlite3_create_function_v2(db, "audittrailid", 0, SQLITE_UTF8,
                                    const_cast<AuditTrailSource*>(auditTrail), fnAuditTrailId,
                                    nullptr, nullptr, nullptr);
  }
  if (rc == SQLITE_OK) {
    rc = sqlite3_create_collation_v2(db, "VDATE", SQLITE_UTF8, nullptr, collateDates, nullptr);
  }
  if (rc == SQLITE_OK) rc = registerDateFunctions(db);
  return rc;
}

}  // namespace vrdppo::embedded
