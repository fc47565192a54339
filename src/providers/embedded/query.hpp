// The shape of a T-SQL query: its SELECTs, the set operators between them, and which SELECT
// each TOP, ORDER BY and alias belongs to. The translator writes SQLite text from this shape.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "tokenizer.hpp"
#include "vrdppo/error.hpp"

namespace vrdppo::embedded {

inline constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// SELECT [DISTINCT | ALL] [TOP n] list [FROM ...] [WHERE ...] [GROUP BY ...] [HAVING ...]. An
// ORDER BY after it belongs to the query around it, not to the SELECT.
struct QuerySpec {
  std::size_t select = 0;      // the SELECT keyword
  std::size_t quantifier = 0;  // DISTINCT or ALL; equal to select when there is none
  std::u16string_view top;     // TOP's row count; empty when there is none
  std::size_t list = 0;        // the first token after SELECT, the quantifier or the TOP
  std::size_t from = 0;        // the SELECT's own FROM, or end
  std::size_t end = 0;
};

// A member of a query: a SELECT, or a query of its own in parentheses.
struct QueryMember {
  std::size_t begin = 0;  // SELECT or "("
  std::size_t end = 0;    // one past the SELECT's last token, or past the ")"
  bool parenthesised = false;
  QuerySpec spec;  // when not parenthesised
};

struct SetOperator {
  std::size_t begin = 0;  // UNION, INTERSECT or EXCEPT
  std::size_t end = 0;    // one past ALL, or past the operator
  bool intersect = false;
};

// member { set-operator member } [ORDER BY ...]: the ORDER BY orders the whole result, and a
// TOP limits only the rows of the SELECT it is written in.
struct Query {
  std::vector<QueryMember> members;
  std::vector<SetOperator> operators;  // operators[k] stands between members[k] and [k + 1]
  std::size_t orderBy = 0;             // the ORDER keyword, or end
  std::size_t end = 0;
};

// Tokens [begin, end) hold a query: a SELECT, or a parenthesised query followed by nothing but
// a set operator or ORDER BY ("((SELECT 1) + 1)" holds none; "((SELECT 1) UNION (SELECT 2))"
// does).
bool isQuery(const Tokens& t, std::size_t begin, std::size_t end);

// How deep queries may nest in one another; a server stops well before.
inline constexpr std::size_t kMaxQueryNesting = 64;
// The server's error for a statement nested deeper than that.
Error nestedTooDeeply();

// The query in [begin, end), which must start with SELECT or "(". Raises the store's syntax
// error for what the server rejects (an ORDER BY before a set operator, a member that is no
// query) and for a TOP the store cannot give (PERCENT, WITH TIES, an expression).
Query parseQuery(const Tokens& t, std::size_t begin, std::size_t end);

// One item of a select list. An alias that SQLite would not read as one (`name = expr`,
// `expr 'name'`, `expr AS 'name'`) is picked out; `expr AS name` and `expr name` are left as
// they are written.
struct SelectItem {
  std::size_t begin = 0;  // the item's tokens, blanks included
  std::size_t end = 0;
  std::size_t exprBegin = 0;  // the expression, when alias is set
  std::size_t exprEnd = 0;
  std::size_t alias = kNone;
};

// The items of the select list in [begin, end), between its top-level commas.
std::vector<SelectItem> selectItems(const Tokens& t, std::size_t begin, std::size_t end);

// Token i is UNION, INTERSECT or EXCEPT.
bool isSetOperator(const Tokens& t, std::size_t i);

// The first top-level (outside parentheses) word `word` in [from, end), or end.
std::size_t findTopLevel(const Tokens& t, std::size_t from, std::size_t end,
                         std::u16string_view word);

}  // namespace vrdppo::embedded
