#include "providers/embedded/query.hpp"

#include <array>

#include "providers/embedded/errors.hpp"
#include "vrdppo/recordset.hpp"

namespace vrdppo::embedded {

namespace {

bool isBlank(const Tokens& t, std::size_t i) {
  return t[i].kind == Tok::Space || t[i].kind == Tok::Comment;
}

bool isOrderBy(const Tokens& t, std::size_t i, std::size_t end) {
  const std::size_t by = t.skip(i + 1, end);
  return i < end && t.isWord(i, u"ORDER") && by < end && t.isWord(by, u"BY");
}

// The first top-level set operator or ORDER BY in [from, end), or end: where a SELECT stops.
std::size_t boundary(const Tokens& t, std::size_t from, std::size_t end) {
  for (std::size_t i = from; i < end; ++i) {
    if (t.isPunct(i, u'(')) {
      i = t.closing(i, end);
    } else if (isSetOperator(t, i) || isOrderBy(t, i, end)) {
      return i;
    }
  }
  return end;
}

bool isInteger(std::u16string_view number) {
  for (char16_t c : number) {
    if (c < u'0' || c > u'9') return false;
  }
  return true;
}

QuerySpec parseSpec(const Tokens& t, std::size_t select, std::size_t end) {
  QuerySpec s;
  s.select = s.quantifier = select;
  s.end = end;
  std::size_t j = t.skip(select + 1, end);
  if (j < end && (t.isWord(j, u"DISTINCT") || t.isWord(j, u"ALL"))) {
    s.quantifier = j;
    j = t.skip(j + 1, end);
  }
  s.list = s.quantifier + 1;
  if (j < end && t.isWord(j, u"TOP")) {
    std::size_t n = t.skip(j + 1, end);
    std::size_t last = n;
    if (n < end && t.isPunct(n, u'(')) {
      n = t.skip(n + 1, end);
      last = n < end ? t.skip(n + 1, end) : end;
      if (last >= end || !t.isPunct(last, u')')) throw syntaxErrorNear(u"TOP");
    }
    if (n >= end || t[n].kind != Tok::Number) throw syntaxErrorNear(u"TOP");
    if (!isInteger(t.text(n))) {
      throw storeError(err::kCommandError,
                       "The number of rows provided for a TOP or FETCH clauses row count "
                       "parameter must be an integer.",
                       "42000", native::kTopNotInteger);
    }
    const std::size_t after = t.skip(last + 1, end);
    if (after < end && (t.isWord(after, u"PERCENT") || t.isWord(after, u"WITH"))) {
      throw syntaxError(u"Incorrect syntax near '" + std::u16string(t.text(after)) +
                        u"': the store gives TOP n rows, not a percentage or ties.");
    }
    s.top = t.text(n);
    s.list = last + 1;
  }
  s.from = findTopLevel(t, s.list, end, u"FROM");
  return s;
}

// Words after which a string literal is an operand, not an alias.
constexpr std::array<std::u16string_view, 13> kBeforeOperand{
    u"AND",  u"OR",   u"NOT",    u"LIKE",    u"IN",   u"IS",     u"THEN",
    u"ELSE", u"WHEN", u"ESCAPE", u"BETWEEN", u"CASE", u"COLLATE"};

// Token i ends an operand, so that a string literal after it names the item.
bool endsOperand(const Tokens& t, std::size_t i) {
  switch (t[i].kind) {
    case Tok::Number:
    case Tok::String:
    case Tok::Quoted:
    case Tok::Bracketed:
      return true;
    case Tok::Word:
      for (auto w : kBeforeOperand) {
        if (t.isWord(i, w)) return false;
      }
      return true;
    case Tok::Punct:
      return t.isPunct(i, u')');
    default:
      return false;
  }
}

SelectItem selectItem(const Tokens& t, std::size_t begin, std::size_t end) {
  SelectItem item{begin, end, begin, end, kNone};
  const std::size_t first = t.skip(begin, end);
  if (first >= end) return item;
  std::size_t last = end - 1;
  while (last > first && isBlank(t, last)) --last;
  const Tok firstKind = t[first].kind;
  const std::size_t eq = t.skip(first + 1, end);
  const std::size_t value = eq < end ? t.skip(eq + 1, end) : end;
  if ((firstKind == Tok::Word || firstKind == Tok::Bracketed || firstKind == Tok::Quoted ||
       firstKind == Tok::String) &&
      eq < end && t.isPunct(eq, u'=') && value < end) {
    item.alias = first;  // name = expression
    item.exprBegin = value;
    item.exprEnd = last + 1;
    return item;
  }
  if (last == first || (t[last].kind != Tok::String && t[last].kind != Tok::Quoted)) return item;
  std::size_t before = last - 1;
  while (before > first && isBlank(t, before)) --before;
  if (t.isWord(before, u"AS")) {
    item.alias = last;  // expression AS 'name'
    item.exprBegin = first;
    item.exprEnd = before;
  } else if (endsOperand(t, before)) {
    item.alias = last;  // expression 'name'
    item.exprBegin = first;
    item.exprEnd = last;
  }
  return item;
}

// After blanks and opening parentheses from i comes a SELECT.
bool leadsToSelect(const Tokens& t, std::size_t i, std::size_t end) {
  i = t.skip(i, end);
  while (i < end && t.isPunct(i, u'(')) i = t.skip(i + 1, end);
  return i < end && t.isWord(i, u"SELECT");
}

}  // namespace

bool isSetOperator(const Tokens& t, std::size_t i) {
  return t.isWord(i, u"UNION") || t.isWord(i, u"INTERSECT") || t.isWord(i, u"EXCEPT");
}

std::size_t findTopLevel(const Tokens& t, std::size_t from, std::size_t end,
                         std::u16string_view word) {
  for (std::size_t i = from; i < end; ++i) {
    if (t.isPunct(i, u'(')) {
      i = t.closing(i, end);
    } else if (t.isWord(i, word)) {
      return i;
    }
  }
  return end;
}

bool isQuery(const Tokens& t, std::size_t begin, std::size_t end) {
  if (!leadsToSelect(t, begin, end)) return false;
  // Each parenthesis before the SELECT must close before a set operator, ORDER BY or the end.
  std::size_t open = t.skip(begin, end);
  for (std::size_t depth = 0; t.isPunct(open, u'('); ++depth) {
    if (depth == kMaxQueryNesting) throw nestedTooDeeply();
    const std::size_t close = t.closing(open, end);
    if (close >= end) return false;
    const std::size_t next = t.skip(close + 1, end);
    if (next < end && !isSetOperator(t, next) && !isOrderBy(t, next, end)) return false;
    end = close;
    open = t.skip(open + 1, end);
  }
  return true;
}

Error nestedTooDeeply() {
  return storeError(err::kCommandError,
                    "Some part of your SQL statement is nested too deeply. Rewrite the query or "
                    "break it up into smaller queries.",
                    "42000", native::kNestedTooDeeply);
}

Query parseQuery(const Tokens& t, std::size_t begin, std::size_t end) {
  Query q;
  q.orderBy = q.end = end;
  std::size_t i = t.skip(begin, end);
  for (;;) {
    QueryMember m;
    m.begin = i;
    std::size_t next = end;
    if (i < end && t.isPunct(i, u'(')) {
      const std::size_t close = t.closing(i, end);
      if (close >= end || !isQuery(t, i + 1, close)) throw syntaxErrorNear(u"(");
      m.parenthesised = true;
      m.end = close + 1;
      next = t.skip(close + 1, end);
    } else if (i < end && t.isWord(i, u"SELECT")) {
      next = boundary(t, i + 1, end);
      m.end = next;
      m.spec = parseSpec(t, i, next);
    } else if (i < end) {
      throw syntaxErrorNear(t.text(i));
    } else {
      throw syntaxErrorNear(q.operators.empty() ? u"SELECT" : t.text(q.operators.back().begin));
    }
    q.members.push_back(m);
    if (next >= end) break;
    if (isOrderBy(t, next, end)) {
      // Only the query as a whole is ordered; a member is ordered only in parentheses.
      const std::size_t stray = boundary(t, t.skip(next + 1, end) + 1, end);
      if (stray < end) throw syntaxErrorNear(t.text(stray));
      q.orderBy = next;
      break;
    }
    if (!isSetOperator(t, next)) throw syntaxErrorNear(t.text(next));
    SetOperator op{next, next + 1, t.isWord(next, u"INTERSECT")};
    const std::size_t all = t.skip(next + 1, end);
    if (all < end && t.isWord(all, u"ALL")) op.end = all + 1;
    q.operators.push_back(op);
    i = t.skip(op.end, end);
  }
  return q;
}

std::vector<SelectItem> selectItems(const Tokens& t, std::size_t begin, std::size_t end) {
  std::vector<SelectItem> items;
  std::size_t start = begin;
  for (std::size_t i = begin; i < end; ++i) {
    if (t.isPunct(i, u'(')) {
      i = t.closing(i, end);
    } else if (t.isPunct(i, u',')) {
      items.push_back(selectItem(t, start, i));
      start = i + 1;
    }
  }
  items.push_back(selectItem(t, start, end));
  return items;
}

}  // namespace vrdppo::embedded
