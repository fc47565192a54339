#include "providers/embedded/condition.hpp"

#include <array>
#include <string>
#include <vector>

#include "providers/embedded/errors.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

// Words that end a WHERE, ON or HAVING condition at its own level.
constexpr std::array<std::u16string_view, 17> kClauseWords{
    u"WHERE", u"GROUP", u"ORDER", u"HAVING", u"UNION", u"INTERSECT", u"EXCEPT", u"OPTION", u"FOR",
    u"JOIN",  u"INNER", u"FULL",  u"CROSS",  u"OUTER", u"ON",        u"WHEN",   u"ELSE"};

// Words that make a predicate of the expression around them.
constexpr std::array<std::u16string_view, 5> kPredicateWords{u"LIKE", u"IN", u"BETWEEN", u"IS",
                                                             u"EXISTS"};

bool isOneOf(const Tokens& t, std::size_t i, std::u16string_view const* words, std::size_t n) {
  if (t[i].kind != Tok::Word) return false;
  const auto text = t.text(i);
  for (std::size_t k = 0; k < n; ++k) {
    if (equalsNoCase(words[k], text)) return true;
  }
  return false;
}

class Conditions {
 public:
  Conditions(const Tokens& t, std::size_t end) : t_(t), end_(end) {}

  void scan(std::size_t begin) {
    std::vector<bool> searched;  // per CASE open around the token: a searched CASE
    for (std::size_t i = begin; i < end_; ++i) {
      if (t_[i].kind != Tok::Word) continue;
      if (t_.isWord(i, u"CASE")) {
        searched.push_back(t_.isWord(t_.skip(i + 1, end_), u"WHEN"));
      } else if (t_.isWord(i, u"END")) {
        if (!searched.empty()) searched.pop_back();
      } else if (t_.isWord(i, u"WHEN")) {
        if (!searched.empty() && searched.back()) condition(i + 1, until(i + 1, true));
      } else if (t_.isWord(i, u"WHERE") || t_.isWord(i, u"ON") || t_.isWord(i, u"HAVING")) {
        condition(i + 1, until(i + 1, false));
      }
    }
  }

 private:
  // The token after the CASE ... END that opens at i, or end_.
  std::size_t afterCase(std::size_t i) const {
    int depth = 0;
    for (; i < end_; ++i) {
      if (t_.isPunct(i, u'(')) {
        i = t_.closing(i, end_);
      } else if (t_.isWord(i, u"CASE")) {
        ++depth;
      } else if (t_.isWord(i, u"END") && --depth == 0) {
        return i + 1;
      }
    }
    return end_;
  }

  // The next token at the level of `i` (a parenthesised group or CASE passed over whole).
  std::size_t next(std::size_t i) const {
    if (t_.isPunct(i, u'(')) return t_.closing(i, end_) + 1;
    if (t_.isWord(i, u"CASE")) return afterCase(i);
    return i + 1;
  }

  // Where the condition starting at `from` ends: a clause word at its level, a ")" that closes
  // the parentheses around it, THEN for a WHEN's.
  std::size_t until(std::size_t from, bool when) const {
    for (std::size_t i = from; i < end_; i = next(i)) {
      if (t_.isPunct(i, u')')) return i;
      if (t_[i].kind != Tok::Word) continue;
      if (when
              ? t_.isWord(i, u"THEN")
              : isOneOf(t_, i, kClauseWords.data(), kClauseWords.size()) || t_.isWord(i, u"THEN") ||
                    ((t_.isWord(i, u"LEFT") || t_.isWord(i, u"RIGHT")) &&
                     !t_.isPunct(t_.skip(i + 1, end_), u'('))) {
        return i;
      }
    }
    return end_;
  }

  // AND, OR and NOT join predicates; BETWEEN's AND belongs to it.
  void condition(std::size_t begin, std::size_t end) {
    std::size_t part = begin;
    bool between = false;
    for (std::size_t i = begin; i < end; i = next(i)) {
      if (t_.isWord(i, u"BETWEEN")) {
        between = true;
      } else if (t_.isWord(i, u"AND") && between) {
        between = false;
      } else if (t_.isWord(i, u"AND") || t_.isWord(i, u"OR")) {
        predicate(part, i);
        part = i + 1;
      }
    }
    predicate(part, end);
  }

  void predicate(std::size_t begin, std::size_t end) {
    std::size_t first = t_.skip(begin, end);
    while (t_.isWord(first, u"NOT")) first = t_.skip(first + 1, end);
    if (first >= end) return;  // nothing at all: SQLite's parser refuses that
    std::size_t last = end;
    while (last > first && (t_[last - 1].kind == Tok::Space || t_[last - 1].kind == Tok::Comment)) {
      --last;
    }
    if (t_.isPunct(first, u'(') && t_.closing(first, end) == last - 1 &&
        !t_.isWord(t_.skip(first + 1, last), u"SELECT")) {
      condition(first + 1, last - 1);  // a condition in parentheses
      return;
    }
    for (std::size_t i = first; i < last; i = next(i)) {
      if (t_.isPunct(i, u'(') && t_.closing(i, end_) >= end_) return;  // SQLite's to refuse
      if (t_[i].kind == Tok::Punct) {
        const auto op = t_.text(i);
        if (op.find_first_of(u"=<>") != std::u16string_view::npos) return;
      } else if (isOneOf(t_, i, kPredicateWords.data(), kPredicateWords.size())) {
        return;
      }
    }
    const std::size_t near = t_.skip(last, end_);
    const std::size_t at = near < end_ && !t_.isPunct(near, u')') ? near : last - 1;
    throw storeError(err::kCommandError,
                     "An expression of non-boolean type specified in a context where a condition "
                     "is expected, near '" +
                         toUtf8(t_.text(at)) + "'.",
                     "42000", native::kNonBoolean);
  }

  const Tokens& t_;
  std::size_t end_;
};

}  // namespace

void checkConditions(const Tokens& t, std::size_t begin, std::size_t end) {
  Conditions(t, end).scan(begin);
}

}  // namespace vrdppo::embedded
