#include "providers/embedded/tokenizer.hpp"

#include <array>
#include <cstdint>

#include "providers/embedded/errors.hpp"
#include "vrdppo/recordset.hpp"

namespace vrdppo::embedded {

namespace {

// What an ASCII character may be in a token, looked up rather than compared range by range:
// every character of every statement passes through these.
enum Class : std::uint8_t { kSpace = 1, kWordStart = 2, kWordChar = 4 };

constexpr std::array<std::uint8_t, 128> kClasses = [] {
  std::array<std::uint8_t, 128> c{};
  for (const char x : {' ', '\t', '\r', '\n', '\f', '\v'})
    c[static_cast<unsigned char>(x)] = kSpace;
  for (int x = '0'; x <= '9'; ++x) c[x] = kWordChar;
  for (int x = 'a'; x <= 'z'; ++x) c[x] = kWordStart | kWordChar;
  for (int x = 'A'; x <= 'Z'; ++x) c[x] = kWordStart | kWordChar;
  c['_'] = c['#'] = kWordStart | kWordChar;
  c['$'] = c['@'] = kWordChar;
  return c;
}();

bool is(char16_t c, std::uint8_t cls) noexcept {
  // Every character past ASCII may start and continue a word.
  return c < 0x80 ? (kClasses[c] & cls) != 0 : (cls & (kWordStart | kWordChar)) != 0;
}

bool isWordStart(char16_t c) noexcept {
  return is(c, kWordStart);
}

bool isWordChar(char16_t c) noexcept {
  return is(c, kWordChar);
}

bool isDigit(char16_t c) noexcept {
  return c >= u'0' && c <= u'9';
}

bool isSpace(char16_t c) noexcept {
  return is(c, kSpace);
}

// The end of a quoted run that started at `at` with `close` as its closing character, a doubled
// closing character standing for one; npos when unclosed.
std::size_t quotedEnd(std::u16string_view s, std::size_t at, char16_t close) noexcept {
  std::size_t i = at + 1;
  while (i < s.size()) {
    if (s[i] == close) {
      if (i + 1 < s.size() && s[i + 1] == close) {
        i += 2;
        continue;
      }
      return i + 1;
    }
    ++i;
  }
  return std::u16string_view::npos;
}

}  // namespace

Tokens::Tokens(std::u16string_view source) : src_(source) {
  const std::u16string_view s = source;
  toks_.reserve(s.size() / 3 + 4);
  std::size_t i = 0;
  while (i < s.size()) {
    const char16_t c = s[i];
    const std::size_t start = i;
    Tok kind = Tok::Punct;
    std::size_t begin = i;
    if (isSpace(c)) {
      while (i < s.size() && isSpace(s[i])) ++i;
      kind = Tok::Space;
    } else if (c == u'-' && i + 1 < s.size() && s[i + 1] == u'-') {
      // The server ends a line comment at either line-end character, a lone CR included.
      while (i < s.size() && s[i] != u'\n' && s[i] != u'\r') ++i;
      kind = Tok::Comment;
    } else if (c == u'/' && i + 1 < s.size() && s[i + 1] == u'*') {
      int depth = 0;
      while (i < s.size()) {
        if (s[i] == u'/' && i + 1 < s.size() && s[i + 1] == u'*') {
          ++depth;
          i += 2;
        } else if (s[i] == u'*' && i + 1 < s.size() && s[i + 1] == u'/') {
          i += 2;
          if (--depth == 0) break;
        } else {
          ++i;
        }
      }
      if (depth != 0) throw syntaxError(u"Missing end comment mark '*/'.");
      kind = Tok::Comment;
    } else if (c == u'\'' || ((c == u'N' || c == u'n') && i + 1 < s.size() && s[i + 1] == u'\'')) {
      begin = c == u'\'' ? i : i + 1;
      i = quotedEnd(s, begin, u'\'');
      if (i == std::u16string_view::npos) {
        throw syntaxError(u"Unclosed quotation mark after the character string '" +
                          std::u16string(s.substr(begin + 1)) + u"'.");
      }
      kind = Tok::String;
    } else if (c == u'"') {
      i = quotedEnd(s, i, u'"');
      if (i == std::u16string_view::npos) {
        throw syntaxError(u"Unclosed quotation mark after the character string '" +
                          std::u16string(s.substr(start + 1)) + u"'.");
      }
      kind = Tok::Quoted;
    } else if (c == u'[') {
      i = quotedEnd(s, i, u']');
      if (i == std::u16string_view::npos) {
        throw syntaxError(u"Unclosed quotation mark after the character string '" +
                          std::u16string(s.substr(start + 1)) + u"'.");
      }
      kind = Tok::Bracketed;
    } else if (c == u'@') {
      ++i;
      while (i < s.size() && isWordChar(s[i])) ++i;
      kind = Tok::Variable;
    } else if (isDigit(c) || (c == u'.' && i + 1 < s.size() && isDigit(s[i + 1]))) {
      while (i < s.size() && isDigit(s[i])) ++i;
      if (i < s.size() && s[i] == u'.') {
        ++i;
        while (i < s.size() && isDigit(s[i])) ++i;
      }
      if (i < s.size() && (s[i] == u'e' || s[i] == u'E')) {
        std::size_t j = i + 1;
        if (j < s.size() && (s[j] == u'+' || s[j] == u'-')) ++j;
        if (j < s.size() && isDigit(s[j])) {
          i = j;
          while (i < s.size() && isDigit(s[i])) ++i;
        }
      }
      kind = Tok::Number;
    } else if (isWordStart(c)) {
      while (i < s.size() && isWordChar(s[i])) ++i;
      kind = Tok::Word;
    } else {
      ++i;
      if (i < s.size()) {
        const char16_t d = s[i];
        if ((c == u'<' && (d == u'=' || d == u'>')) || (c == u'>' && d == u'=') ||
            (c == u'!' && (d == u'=' || d == u'<' || d == u'>')) || (c == u'|' && d == u'|')) {
          ++i;
        }
      }
    }
    toks_.push_back({kind, static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(i)});
  }
  // Matching parentheses once, so that finding a ")" costs nothing however often it is asked.
  closers_.assign(toks_.size(), toks_.size());
  std::vector<std::size_t> open;
  for (std::size_t k = 0; k < toks_.size(); ++k) {
    if (isPunct(k, u'(')) {
      open.push_back(k);
    } else if (isPunct(k, u')') && !open.empty()) {
      closers_[open.back()] = k;
      open.pop_back();
    }
  }
}

std::size_t Tokens::skip(std::size_t i, std::size_t end) const noexcept {
  while (i < end && (toks_[i].kind == Tok::Space || toks_[i].kind == Tok::Comment)) ++i;
  return i;
}

bool Tokens::isWord(std::size_t i, std::u16string_view word) const noexcept {
  return i < toks_.size() && toks_[i].kind == Tok::Word && equalsNoCase(text(i), word);
}

bool Tokens::isPunct(std::size_t i, char16_t c) const noexcept {
  return i < toks_.size() && toks_[i].kind == Tok::Punct && toks_[i].end - toks_[i].begin == 1 &&
         src_[toks_[i].begin] == c;
}

std::vector<std::pair<std::size_t, std::size_t>> Tokens::statements() const {
  std::vector<std::pair<std::size_t, std::size_t>> out;
  int depth = 0;
  std::size_t start = 0;
  for (std::size_t i = 0; i < toks_.size(); ++i) {
    if (isPunct(i, u'(')) {
      ++depth;
    } else if (isPunct(i, u')')) {
      --depth;
    } else if (depth <= 0 && isPunct(i, u';')) {
      out.emplace_back(start, i);
      start = i + 1;
    }
  }
  out.emplace_back(start, toks_.size());
  return out;
}

std::u16string unquote(std::u16string_view token) {
  std::u16string out;
  if (token.size() < 2) return out;
  const char16_t close = token.back();
  const std::u16string_view inner = token.substr(1, token.size() - 2);
  out.reserve(inner.size());
  // Whole runs up to and including each closing character, whose double is then passed over.
  std::size_t from = 0;
  for (;;) {
    const std::size_t at = inner.find(close, from);
    if (at == std::u16string_view::npos) break;
    out.append(inner.substr(from, at + 1 - from));
    from = at + 1;
    if (from < inner.size() && inner[from] == close) ++from;
  }
  out.append(inner.substr(from));
  return out;
}

std::u16string nameOf(const Tokens& t, std::size_t i) {
  if (t[i].kind == Tok::Quoted || t[i].kind == Tok::Bracketed) return unquote(t.text(i));
  return std::u16string(t.text(i));
}

}  // namespace vrdppo::embedded
