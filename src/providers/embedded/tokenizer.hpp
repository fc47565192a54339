// The lexical layer of the store's dialect: T-SQL text cut into tokens that keep their place in
// the source, so that a translation can copy what it leaves alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vrdppo::embedded {

enum class Tok : std::uint8_t {
  Space,      // blanks, tabs, line ends
  Comment,    // -- to the end of the line, /* ... */ (nested)
  Word,       // a name or keyword
  Variable,   // @name, @@name
  Number,     // 12, 125.5, .5, 3.33E-02
  String,     // '...' with '' inside, N'...' (begin is then at the quote)
  Quoted,     // "..." with "" inside
  Bracketed,  // [...] with ]] inside
  Punct,      // operators and separators, one or two characters
};

struct Token {
  Tok kind;
  std::uint32_t begin;
  std::uint32_t end;
};

class Tokens {
 public:
  // Raises the store's syntax error for an unclosed quote, bracket or comment.
  explicit Tokens(std::u16string_view source);

  std::u16string_view source() const noexcept { return src_; }
  std::size_t size() const noexcept { return toks_.size(); }
  const Token& operator[](std::size_t i) const { return toks_[i]; }
  std::u16string_view text(std::size_t i) const {
    return src_.substr(toks_[i].begin, toks_[i].end - toks_[i].begin);
  }

  // The first token at or after i (before end) that is neither space nor comment; end if none.
  std::size_t skip(std::size_t i, std::size_t end) const noexcept;
  // Token i is a word equal to `word` without regard to case.
  bool isWord(std::size_t i, std::u16string_view word) const noexcept;
  bool isPunct(std::size_t i, char16_t c) const noexcept;
  // The index of the ")" closing the "(" at i, or end when it is not closed before end.
  std::size_t closing(std::size_t open, std::size_t end) const noexcept {
    return open < closers_.size() && closers_[open] < end ? closers_[open] : end;
  }

  // The statements of a batch: ranges of tokens between top-level ";".
  std::vector<std::pair<std::size_t, std::size_t>> statements() const;

 private:
  std::u16string_view src_;
  std::vector<Token> toks_;
  std::vector<std::size_t> closers_;  // for each "(", the index of its ")"; size() when none
};

// The value of a String, Quoted or Bracketed token: the text inside, its doubled closing
// character undone.
std::u16string unquote(std::u16string_view token);

// A name as the dialect compares it: a Word's text, or a Quoted or Bracketed token's value.
std::u16string nameOf(const Tokens& t, std::size_t i);

}  // namespace vrdppo::embedded
